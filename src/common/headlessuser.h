#pragma once

#include "common/user.h"

namespace common {

// Speaks where nobody listens: every message goes to standard error as one line "title: text" (line breaks
// become blanks), a report is acknowledged with OK, a question takes its default answer, nothing blocks.
class RHeadlessUser : public RUser {
public:
    void about(std::string_view title, std::string_view text) override;
    [[nodiscard]] Answer question(std::string_view title, std::string_view text, Answer proposed) override;
    [[nodiscard]] int choose(std::string_view title, std::string_view text,
                             std::span<const std::string_view> buttons, int proposed, int escape) override;
    [[nodiscard]] bool report(std::string_view title, std::string_view text) override;
    void note(std::string_view text) override;
    void status(std::string_view) override {}
    void beginBusy(std::string_view) override {}
    void setProgress(double) override {}
    void endBusy(std::string_view) override {}
    [[nodiscard]] bool abortRequested() const override { return abort_; }
    void setAbort(bool abort) override { abort_ = abort; }
    [[nodiscard]] bool askAbort(std::string_view question, std::string_view title) override;
    [[nodiscard]] bool interactive() const override { return false; }

    // One message as it is written, without the line end: runs of white space become one blank.
    [[nodiscard]] static std::string messageLine(std::string_view title, std::string_view text);

private:
    bool abort_ = false;
};

} // namespace common
