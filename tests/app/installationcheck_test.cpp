#include "app/installationcheck.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "common/files.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace {

namespace fs = std::filesystem;
using app::InstallationResult;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_support::RScriptedUser;
using testing_support::RTemporaryDirectory;

void write(const std::string& path, const std::string& text = "x")
{
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << text;
}

std::string read(const std::string& path)
{
    return common::readFile(path).value_or("?");
}

class InstallationCheck : public testing::Test {
protected:
    InstallationCheck()
    {
        write(folder.file("nvq/bin/nvqmp"));
        fs::create_directories(folder.file("home"));
        fs::create_directories(folder.file("tmp"));
        environment.home = folder.file("home");
        environment.tmpDir = folder.file("tmp");
        environment.userName = "ann";
        environment.hostName = "box";
        environment.currentDirectory = folder.path();
    }
    // Without anybody to ask.
    bool check()
    {
        return app::checkInstallation(environment, setup, installation, user, {}) == InstallationResult::good;
    }
    // With a user who gives these answers, one after the other, and then cancels.
    InstallationResult ask(std::vector<app::SETUPSETTINGS> answers)
    {
        const app::AskSetup asked =
            [&](const app::SETUPSETTINGS& proposal) -> std::optional<app::SETUPSETTINGS> {
            proposals.push_back(proposal);
            if (proposals.size() > answers.size()) return std::nullopt;
            return answers[proposals.size() - 1];
        };
        return app::checkInstallation(environment, setup, installation, user, asked);
    }
    std::string badRoot(const std::string& root)
    {
        return "Installation problem...: Bad Installation Directory!\n\nNVQ executable " + root +
               "bin/nvqmp not found!";
    }
    std::string badTemp(const std::string& temp)
    {
        return "Installation problem...: Bad temp Directory!\n\nNVQ temp directory " + temp +
               " not found or read-only!";
    }

    const RTemporaryDirectory folder;
    app::ENVIRONMENT environment;
    app::SETUPSETTINGS setup;
    common::INSTALLATION installation;
    RScriptedUser user;
    std::vector<app::SETUPSETTINGS> proposals; // that were shown
};

TEST_F(InstallationCheck, FirstStartTakesTheProgramsOwnDirectory)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.root, folder.file("nvq/"));
    EXPECT_EQ(installation.coast, folder.file("nvq/coast/"));
    EXPECT_EQ(installation.include, folder.file("nvq/include/"));
    EXPECT_EQ(installation.userTree, folder.file("home/nvq_local/"));
    EXPECT_EQ(installation.palettes, folder.file("home/nvq_local/palettes/"));
    EXPECT_EQ(installation.temp, folder.file("tmp/"));
    EXPECT_EQ(installation.user, "ann");
    EXPECT_EQ(installation.host, "box");
    EXPECT_THAT(user.messages, IsEmpty());
}

TEST_F(InstallationCheck, RelativeProgramPathIsJoinedToTheCurrentDirectory)
{
    environment.programPath = "nvq/bin/nvqmp";
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.root, folder.file("nvq/"));
}

TEST_F(InstallationCheck, ProgramFoundBySearchPathIsKnownToTheSystem)
{
    environment.programPath = "nvqmp";
    environment.executable = folder.file("nvq/bin/nvqmp");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.root, folder.file("nvq/"));
}

TEST_F(InstallationCheck, BuildTreeHasItsDataInInstalled)
{
    fs::create_directories(folder.file("nvq/installed/coast"));
    environment.programPath = folder.file("nvq/bin/nvqmp");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.root, folder.file("nvq/installed/"));
}

TEST_F(InstallationCheck, EnvironmentWinsOverSettings)
{
    write(folder.file("other/bin/nvqmp"));
    environment.nvqmpHome = folder.file("nvq");
    environment.nvqmpUser = "eve";
    setup.home = folder.file("other");
    setup.user = "bob";
    setup.host = "desk";
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.root, folder.file("nvq/"));
    EXPECT_EQ(installation.user, "eve");
    EXPECT_EQ(installation.host, "desk");
}

TEST_F(InstallationCheck, SettingsWinOverTheProgramPath)
{
    write(folder.file("other/bin/nvqmp"));
    environment.programPath = folder.file("nvq/bin/nvqmp");
    setup.home = folder.file("other");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.root, folder.file("other/"));
}

TEST_F(InstallationCheck, BadNamedDirectoryIsToldAndTheProgramPathTried)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    setup.home = folder.file("gone");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.root, folder.file("nvq/"));
    EXPECT_THAT(user.messages,
                ElementsAre("Installation problem...: Bad Installation Directory!\n\nNVQ executable " +
                            folder.file("gone/bin/nvqmp") + " not found!"));
}

TEST_F(InstallationCheck, NoInstallationAtAll)
{
    environment.programPath = folder.file("elsewhere/bin/nvqmp");
    EXPECT_FALSE(check());
    EXPECT_EQ(installation.root, "");
    EXPECT_EQ(user.messages.size(), 1u);
}

TEST_F(InstallationCheck, BadTempDirectoryIsToldAndTheNextTried)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    setup.temp = folder.file("gone");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.temp, folder.file("tmp/"));
    EXPECT_THAT(user.messages,
                ElementsAre("Installation problem...: Bad temp Directory!\n\nNVQ temp directory " +
                            folder.file("gone") + " not found or read-only!"));
}

TEST_F(InstallationCheck, NvqmpTempWinsOverTmpDir)
{
    fs::create_directories(folder.file("scratch"));
    environment.programPath = folder.file("nvq/bin/nvqmp");
    environment.nvqmpTemp = folder.file("scratch");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.temp, folder.file("scratch/"));
}

TEST_F(InstallationCheck, AllOfTheTreeDerivesFromTheRoot)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    EXPECT_TRUE(check());
    EXPECT_EQ(installation.help, folder.file("nvq/doc/"));
    EXPECT_EQ(installation.guide, folder.file("nvq/doc/nvqGuide.htm"));
    EXPECT_EQ(installation.atmhist, folder.file("nvq/atmhist/"));
    EXPECT_EQ(installation.home, folder.file("home/"));
}

// --- with a user to ask

TEST_F(InstallationCheck, FirstStartProposesTheProgramsOwnDirectory)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    EXPECT_EQ(ask({{folder.file("nvq"), folder.file("tmp"), "eva", "desk"}}), InstallationResult::entered);
    ASSERT_EQ(proposals.size(), 1u);
    EXPECT_EQ(proposals[0].home, folder.file("nvq/"));
    EXPECT_EQ(proposals[0].user, "ann");
    EXPECT_EQ(proposals[0].host, "box");
    EXPECT_EQ(installation.root, folder.file("nvq/"));
    EXPECT_EQ(installation.temp, folder.file("tmp/"));
    EXPECT_EQ(installation.user, "eva");
    EXPECT_EQ(installation.host, "desk");
    EXPECT_EQ(setup.home, folder.file("nvq/"));
    EXPECT_EQ(setup.temp, folder.file("tmp/"));
    EXPECT_EQ(setup.user, "eva");
    EXPECT_EQ(setup.host, "desk");
    EXPECT_THAT(user.messages, IsEmpty());
}

TEST_F(InstallationCheck, ProgramOutsideOfAnInstallationIsProposedAllTheSame)
{
    environment.programPath = folder.file("elsewhere/bin/nvqmp");
    EXPECT_EQ(ask({}), InstallationResult::bad);
    ASSERT_EQ(proposals.size(), 1u);
    EXPECT_EQ(proposals[0].home, folder.file("elsewhere/"));
}

TEST_F(InstallationCheck, GoodSettingsAreNotAskedAbout)
{
    setup.home = folder.file("nvq");
    EXPECT_EQ(ask({}), InstallationResult::good);
    EXPECT_THAT(proposals, IsEmpty());
    EXPECT_EQ(installation.temp, folder.file("tmp/"));
}

TEST_F(InstallationCheck, GoodEnvironmentIsNotAskedAbout)
{
    environment.nvqmpHome = folder.file("nvq");
    EXPECT_EQ(ask({}), InstallationResult::good);
    EXPECT_THAT(proposals, IsEmpty());
    EXPECT_EQ(setup.home, "_unknown_");
}

TEST_F(InstallationCheck, BadSettingsAreToldAndAskedAbout)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    setup.home = folder.file("gone");
    setup.temp = folder.file("missing");
    setup.user = "bob";
    EXPECT_EQ(ask({{folder.file("nvq"), "", "bob", "box"}}), InstallationResult::entered);
    EXPECT_THAT(user.messages, ElementsAre(badRoot(folder.file("gone/")), badTemp(folder.file("missing"))));
    EXPECT_EQ(proposals[0].home, folder.file("nvq/"));
    EXPECT_EQ(proposals[0].temp, "");
    EXPECT_EQ(proposals[0].user, "bob");
}

TEST_F(InstallationCheck, BadTempDirectoryOfTheSettingsAloneIsAskedAbout)
{
    setup.home = folder.file("nvq");
    setup.temp = folder.file("missing");
    EXPECT_EQ(ask({{folder.file("nvq"), folder.file("tmp"), "a", "b"}}), InstallationResult::entered);
    EXPECT_EQ(proposals[0].home, folder.file("nvq/"));
    EXPECT_THAT(user.messages, ElementsAre(badTemp(folder.file("missing"))));
}

TEST_F(InstallationCheck, WhatIsEnteredIsTestedAndAskedAgain)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    write(folder.file("file"));
    EXPECT_EQ(ask({{folder.file("gone"), folder.file("file"), "eva", "desk"},
                   {"", folder.file("tmp"), "eva", "desk"},
                   {folder.file("nvq"), folder.file("tmp"), "eva", "desk"}}),
              InstallationResult::entered);
    ASSERT_EQ(proposals.size(), 3u);
    EXPECT_EQ(proposals[1].home, folder.file("gone")); // as it was entered
    EXPECT_EQ(proposals[1].temp, folder.file("file"));
    EXPECT_EQ(proposals[2].user, "eva");
    EXPECT_THAT(user.messages,
                ElementsAre(badRoot(folder.file("gone/")), badTemp(folder.file("file")), badRoot("")));
}

TEST_F(InstallationCheck, CancelIsABadInstallation)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    EXPECT_EQ(ask({}), InstallationResult::bad);
    EXPECT_EQ(installation.root, "");
    EXPECT_EQ(setup.home, "_unknown_");
    EXPECT_FALSE(installation.temp.empty());
}

TEST_F(InstallationCheck, EmptyTempFieldIsTheSystemsDirectoryAtEachStart)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    EXPECT_EQ(ask({{folder.file("nvq"), "", "", ""}}), InstallationResult::entered);
    EXPECT_EQ(installation.temp, folder.file("tmp/"));
    EXPECT_EQ(installation.user, "ann"); // the system's, where nothing was entered
    EXPECT_EQ(installation.host, "box");
    EXPECT_EQ(setup.temp, "");
    fs::create_directories(folder.file("tmp2"));
    environment.tmpDir = folder.file("tmp2");
    EXPECT_EQ(ask({}), InstallationResult::good);
    EXPECT_EQ(installation.temp, folder.file("tmp2/"));
}

TEST_F(InstallationCheck, BadSystemTempDirectoryIsTold)
{
    environment.programPath = folder.file("nvq/bin/nvqmp");
    environment.tmpDir = folder.file("missing");
    EXPECT_EQ(ask({{folder.file("nvq"), "", "", ""}}), InstallationResult::bad);
    EXPECT_THAT(user.messages, testing::Contains(badTemp(folder.file("missing/"))));
}

TEST_F(InstallationCheck, EnteredNamesWinOverTheEnvironmentOnce)
{
    environment.nvqmpUser = "eve";
    environment.nvqmpHost = "node";
    environment.programPath = folder.file("nvq/bin/nvqmp");
    EXPECT_EQ(ask({{folder.file("nvq"), "", "typed", "desk"}}), InstallationResult::entered);
    EXPECT_EQ(proposals[0].user, "eve");
    EXPECT_EQ(installation.user, "typed");
    EXPECT_EQ(installation.host, "desk");
}

TEST(ProcessEnvironment, TmpdirThenTempNameTheSystemsDirectory)
{
    const char* const old = std::getenv("TMPDIR");
    const std::string kept = old ? old : "";
    ::setenv("TEMP", "/from/temp", 1);
    ::setenv("TMPDIR", "/from/tmpdir", 1);
    EXPECT_EQ(app::systemTemp(app::processEnvironment("", "")), "/from/tmpdir/");
    ::unsetenv("TMPDIR");
    EXPECT_EQ(app::systemTemp(app::processEnvironment("", "")), "/from/temp/");
    ::unsetenv("TEMP");
    EXPECT_EQ(app::systemTemp(app::processEnvironment("", "")), "/tmp/");
    if (old) ::setenv("TMPDIR", kept.c_str(), 1);
}

class UserTree : public InstallationCheck {
protected:
    UserTree()
    {
        write(folder.file("nvq/palettes/Nvq.pal"), "installed");
        write(folder.file("nvq/macros/a.mac"));
        write(folder.file("nvq/data/gazetteer/places.gzt"));
        write(folder.file("nvq/data/gazetteer/CFGs/p.cfg"));
        write(folder.file("nvq/data/SAVE/s.txt"));
        environment.programPath = folder.file("nvq/bin/nvqmp");
        EXPECT_TRUE(check());
    }
    std::string own(const std::string& name) { return folder.file("home/nvq_local/" + name); }
};

TEST_F(UserTree, FirstStartCopiesTheInstalledTree)
{
    app::prepareUserTree(installation, user);
    EXPECT_THAT(user.statusTexts, ElementsAre("Copying files ..."));
    EXPECT_TRUE(common::directoryExists(own("cmd_files")));
    EXPECT_TRUE(common::fileExists(own("data/gazetteer/places.gzt")));
    EXPECT_TRUE(common::fileExists(own("data/gazetteer/CFGs/p.cfg")));
    EXPECT_TRUE(common::fileExists(own("data/SAVE/s.txt")));
    EXPECT_TRUE(common::fileExists(own("palettes/Nvq.pal")));
    EXPECT_TRUE(common::fileExists(own("macros/a.mac")));
}

TEST_F(UserTree, PresentTree_NothingCopiedButPalettesAndMacros)
{
    fs::create_directories(own(""));
    app::prepareUserTree(installation, user);
    EXPECT_THAT(user.statusTexts, IsEmpty());
    EXPECT_FALSE(common::directoryExists(own("data")));
    EXPECT_TRUE(common::fileExists(own("palettes/Nvq.pal")));
    EXPECT_TRUE(common::fileExists(own("macros/a.mac")));
}

TEST_F(UserTree, OwnPalettesAreLeftAlone)
{
    write(own("palettes/Mine.pal"), "mine");
    app::prepareUserTree(installation, user);
    EXPECT_FALSE(common::fileExists(own("palettes/Nvq.pal")));
    EXPECT_EQ(read(own("palettes/Mine.pal")), "mine");
}

TEST_F(UserTree, FilesAreNotOverwritten)
{
    write(own("palettes/readme"), "mine");
    write(folder.file("nvq/palettes/readme"), "theirs");
    app::prepareUserTree(installation, user);
    EXPECT_EQ(read(own("palettes/readme")), "mine");
    EXPECT_EQ(read(own("palettes/Nvq.pal")), "installed");
}

TEST_F(UserTree, HomeThatCannotBeWrittenDoesNoHarm)
{
    if (::geteuid() == 0)
        installation.userTree = "/proc/nvq_local/"; // root may write everywhere else
    else
        fs::permissions(folder.file("home"), fs::perms::owner_read | fs::perms::owner_exec);
    installation.palettes = installation.userTree + "palettes/";
    app::prepareUserTree(installation, user);
    EXPECT_FALSE(common::fileExists(installation.palettes + "Nvq.pal"));
    if (::geteuid() != 0) fs::permissions(folder.file("home"), fs::perms::owner_all);
}

} // namespace
