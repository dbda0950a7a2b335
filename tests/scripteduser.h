#pragma once

#include <deque>
#include <string>
#include <vector>

#include "common/user.h"

namespace testing_support {

// Keeps what it is told and answers from a script; when the script is at its end, the default answer.
class RScriptedUser : public common::RUser {
public:
    std::vector<std::string> messages; // "title: text", line breaks kept
    std::vector<std::string> notes;
    std::vector<std::string> statusTexts;
    std::deque<common::Answer> answers;
    std::deque<int> choices; // for choose()
    bool acceptReports = true;
    int abortAfter = -1; // raises the abort flag at this many progress updates

    void about(std::string_view title, std::string_view text) override { keep(title, text); }
    common::Answer question(std::string_view title, std::string_view text, common::Answer proposed) override
    {
        keep(title, text);
        if (answers.empty()) return proposed;
        const common::Answer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    int choose(std::string_view title, std::string_view text, std::span<const std::string_view>, int proposed,
               int) override
    {
        keep(title, text);
        if (choices.empty()) return proposed;
        const int choice = choices.front();
        choices.pop_front();
        return choice;
    }
    bool report(std::string_view title, std::string_view text) override
    {
        keep(title, text);
        return acceptReports;
    }
    void note(std::string_view text) override { notes.emplace_back(text); }
    void status(std::string_view text) override { statusTexts.emplace_back(text); }
    void beginBusy(std::string_view text) override
    {
        statusTexts.emplace_back(text);
        ++busy;
    }
    void setProgress(double percent) override
    {
        lastProgress = percent;
        if (abortAfter > 0 && --abortAfter == 0) abort = true;
    }
    void endBusy(std::string_view) override { --busy; }
    bool abortRequested() const override { return abort; }
    void setAbort(bool flag) override { abort = flag; }
    bool askAbort(std::string_view text, std::string_view title) override
    {
        if (!abort) return false;
        abort = question(title, text, common::Answer::yes) == common::Answer::yes;
        return abort;
    }
    bool interactive() const override { return true; }

    int busy = 0;
    bool abort = false;
    double lastProgress = 0;

private:
    void keep(std::string_view title, std::string_view text)
    {
        messages.push_back(std::string(title) + ": " + std::string(text));
    }
};

} // namespace testing_support
