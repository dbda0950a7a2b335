#pragma once

// The user in front of the window: boxes, the status line, a progress bar. Where nobody can be asked, without
// a screen and inside a command file, messages go to standard error instead.

#include <memory>
#include <string>

#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QProgressBar>

#include "app/session.h"
#include "common/headlessuser.h"

namespace app {

class RWindowUser final : public common::RUser {
public:
    // What it speaks through; all of them outlive it or are null.
    struct PARTS {
        QMainWindow* window = nullptr;
        QLabel* statusField = nullptr;
        QLabel* stationField = nullptr; // the progress bar takes its place
        RSession* session = nullptr;
        bool onScreen = false;
    };
    void attach(const PARTS& parts) { parts_ = parts; }

    void about(std::string_view title, std::string_view text) override;
    [[nodiscard]] common::Answer question(std::string_view title, std::string_view text,
                                          common::Answer proposed) override;
    [[nodiscard]] int choose(std::string_view title, std::string_view text,
                             std::span<const std::string_view> buttons, int proposed, int escape) override;
    [[nodiscard]] bool report(std::string_view title, std::string_view text) override;
    void note(std::string_view text) override;
    void status(std::string_view text) override;
    void beginBusy(std::string_view text) override;
    void setProgress(double percent) override;
    void endBusy(std::string_view text) override;
    [[nodiscard]] bool abortRequested() const override { return abort_; }
    void setAbort(bool abort) override { abort_ = abort; }
    [[nodiscard]] bool askAbort(std::string_view question, std::string_view title) override;
    [[nodiscard]] bool interactive() const override;

private:
    [[nodiscard]] QWidget* over() const; // what boxes stand over
    void showBar();

    PARTS parts_;
    common::RHeadlessUser headless_;
    bool abort_ = false;
    int depth_ = 0; // long operations in progress
    int savedState_ = stateIdle;
    QPointer<QProgressBar> bar_;
};

} // namespace app
