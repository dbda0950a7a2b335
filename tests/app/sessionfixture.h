#pragma once

// A session of its own in a folder of its own, and who looks at it, for tests.

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/sessioncommands.h"
#include "castfile.h"
#include "common/files.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace testing_support {

// A user who is not there, and what was told.
class RAbsentUser : public RScriptedUser {
public:
    [[nodiscard]] bool interactive() const override { return false; }
};

class RViewRecorder : public app::RSessionView {
public:
    void showIdle() override { ++idles; }
    void captionChanged(const std::string& text) override { caption = text; }
    void requestClose() override { ++closes; }
    void recentFilesChanged() override { ++recents; }
    int askResolution() override { return resolution; }
    std::optional<app::CREATIONCHOICE> chooseVariables(const std::string& name) override
    {
        asked.push_back("variables of " + name);
        return choice;
    }
    bool editVariables(const std::string& name, std::vector<collection::VARINFO>& variables,
                       std::span<const collection::VARINFO> old) override
    {
        asked.push_back("edit " + name);
        oldVariables = static_cast<int>(old.size());
        if (edited) variables = *edited;
        return acceptEdit;
    }
    std::string askFile(const app::FILEQUESTION& question) override
    {
        asked.push_back(question.caption + "|" + question.filter + "|" + question.proposal);
        return answer;
    }
    std::optional<std::string> askLine(std::string_view title, std::string_view) override
    {
        asked.emplace_back(title);
        return line;
    }
    std::unique_ptr<importing::RImportSettler> importSettler() override
    {
        ++settlers;
        return makeSettler ? makeSettler() : nullptr;
    }
    std::optional<std::vector<int>> chooseOutputVariables(const std::vector<int>& proposed) override
    {
        asked.emplace_back("variables");
        return chosen ? *chosen : proposed;
    }
    bool editCriteria(app::EDITEDCRITERIA& work) override
    {
        asked.emplace_back("criteria");
        if (criteria) criteria(work);
        return acceptEdit;
    }
    void showImported(std::span<const selection::SELECTEDSTATION> stations) override
    {
        imported += static_cast<int>(stations.size());
    }
    int idles = 0, closes = 0, resolution = 0, recents = 0, oldVariables = -1;
    std::string caption;
    std::vector<std::string> asked;
    std::optional<app::CREATIONCHOICE> choice;
    std::optional<std::vector<collection::VARINFO>> edited;
    bool acceptEdit = true;
    std::string answer;              // a file's path
    std::optional<std::string> line; // of text
    std::function<std::unique_ptr<importing::RImportSettler>()> makeSettler;
    std::optional<std::optional<std::vector<int>>> chosen; // variables, nothing in it: cancelled
    std::function<void(app::EDITEDCRITERIA&)> criteria;
    int imported = 0, settlers = 0;
};

class Session : public testing::Test {
protected:
    explicit Session(bool interactive = false)
        : user(interactive ? std::make_unique<RScriptedUser>()
                           : std::unique_ptr<RScriptedUser>(new RAbsentUser)),
          session(*user, view)
    {
        std::filesystem::create_directories(folder.file("tmp"));
        session.installation.temp = folder.file("tmp/");
        session.installation.root = folder.path();
        session.installation.user = "ann";
        session.installation.host = "box";
        session.runMode = app::commandFileRun;
        writeText(folder.file("cast.txt"), castText(4, 6));
    }
    ~Session() override { std::filesystem::current_path("/"); }

    std::string file(const std::string& name) const { return folder.file(name); }
    std::string read(const std::string& name) const { return common::readFile(file(name)).value_or("none"); }
    app::OpenResult open(const std::string& name) { return session.open(file(name)); }
    void openCast() { ASSERT_EQ(open("cast.txt"), app::OpenResult::ok); }
    int filesIn(const std::string& name) const
    {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(file(name)),
                                              std::filesystem::directory_iterator()));
    }

    const RTemporaryDirectory folder;
    RViewRecorder view;
    std::unique_ptr<RScriptedUser> user;
    app::RSession session;
};

class InteractiveSession : public Session {
protected:
    InteractiveSession() : Session(true) { session.runMode = app::interactiveRun; }
};

} // namespace testing_support
