#pragma once

// The seam between operations and whoever watches them. The window implements it with boxes and the status
// line, the headless run writes to standard error and answers by a fixed rule, tests script the answers.
// Only the outermost operation speaks; everything below returns a result.

#include <span>
#include <string>
#include <string_view>

namespace common {

enum class Answer { yes, no, cancel };

class RUser {
public:
    virtual ~RUser() = default;

    // A notice with one button.
    virtual void about(std::string_view title, std::string_view text) = 0;

    // A question with "&Yes", "&No", "&Cancel"; `proposed` is the default button.
    [[nodiscard]] virtual Answer question(std::string_view title, std::string_view text,
                                          Answer proposed = Answer::yes) = 0;

    // A question with buttons of its own, their texts with "&": the place of the answer among them.
    // `proposed` is the default button, `escape` the one that ESC and closing the box mean.
    [[nodiscard]] virtual int choose(std::string_view title, std::string_view text,
                                     std::span<const std::string_view> buttons, int proposed, int escape) = 0;

    // A report with "&OK", "&Undo", "&Cancel"; true for OK.
    [[nodiscard]] virtual bool report(std::string_view title, std::string_view text) = 0;

    // A line of plain diagnosis that is no box: damage found on the way, defaults taken.
    virtual void note(std::string_view text) = 0;

    // The left field of the status line.
    virtual void status(std::string_view text) = 0;

    // A long operation: busy state with a progress bar of 0 to 100, until the matching endBusy. They nest.
    virtual void beginBusy(std::string_view text) = 0;
    virtual void setProgress(double percent) = 0; // also runs the event pump
    virtual void endBusy(std::string_view text = {}) = 0;

    // The abort flag, which ESC raises.
    [[nodiscard]] virtual bool abortRequested() const = 0;
    virtual void setAbort(bool abort) = 0;

    // If the abort flag is set, asks `question`; yes returns true and leaves the flag, any other answer
    // clears the flag and returns false. Without the flag it returns false at once.
    [[nodiscard]] virtual bool askAbort(std::string_view question, std::string_view title) = 0;

    // False where nobody can be asked: without a display and inside a command file.
    [[nodiscard]] virtual bool interactive() const = 0;
};

// Ends the busy state on every way out of an operation.
class [[nodiscard]] RBusyGuard {
public:
    RBusyGuard(RUser& user, std::string_view text) : user_(user) { user_.beginBusy(text); }
    ~RBusyGuard() { user_.endBusy(); }
    RBusyGuard(const RBusyGuard&) = delete;
    RBusyGuard& operator=(const RBusyGuard&) = delete;

private:
    RUser& user_;
};

// The suffix of every status text of an operation that ESC can break off.
inline constexpr std::string_view escAborts = "     ESC aborts";

} // namespace common
