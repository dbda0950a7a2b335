#include "app/session.h"

#include <cmath>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sessionfixture.h"

namespace {

namespace fs = std::filesystem;
using app::OpenResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_support::castText;
using testing_support::RAbsentUser;
using testing_support::RViewRecorder;
using testing_support::writeText;

using Session = testing_support::Session;
using InteractiveSession = testing_support::InteractiveSession;

// --- opening

TEST_F(Session, SpreadsheetBecomesANewCollectionBesideIt)
{
    openCast();
    EXPECT_TRUE(session.collection.isOpen);
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_EQ(session.collection.selectedStationCount, 4);
    EXPECT_EQ(session.collection.variableCount, 3);
    EXPECT_EQ(session.collection.path, file("cast"));
    EXPECT_EQ(session.state, app::stateReady);
    EXPECT_EQ(view.caption, "NVQ - " + file("cast.var"));
    EXPECT_EQ(session.settings.recentFiles[0], file("cast.var"));
    for (const char* const name : {"cast.var", "cast.hob", "cast.dob", "cast.log", "cast.inv"})
        EXPECT_TRUE(common::fileExists(file(name))) << name;
    EXPECT_THAT(read("cast.log"), HasSubstr("ann:box CREATE"));
    EXPECT_THAT(read("cast.log"), HasSubstr("IMPORT     4 Stations"));
}

TEST_F(Session, DefaultsAreInForceAfterAnOpen)
{
    openCast();
    EXPECT_EQ(session.setup.mode, graphics::modeStation);
    EXPECT_EQ(session.setup.count(), 6);
    EXPECT_EQ(session.collection.qualityLimit, 8);
    EXPECT_EQ(session.collection.criteria.qualityLimit, 8);
    EXPECT_EQ(session.setup.map.geometry.lonMax - session.setup.map.geometry.lonMin, 360);
    EXPECT_FALSE(session.collection.configChanged);
}

TEST_F(Session, TheCurrentDirectoryIsTheCollections)
{
    openCast();
    EXPECT_EQ(fs::current_path(), fs::canonical(folder.path()));
}

TEST_F(Session, CollectionOpensAgainFromItsDescription)
{
    openCast();
    EXPECT_TRUE(session.close(false));
    EXPECT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_EQ(session.collection.kind, 1);
    EXPECT_TRUE(session.collection.writable);
}

TEST_F(Session, BlanksAndColonsInTheNameBecomeUnderscores)
{
    writeText(file("a b:c.txt"), castText(1, 3));
    ASSERT_EQ(open("a b:c.txt"), OpenResult::ok);
    EXPECT_EQ(session.collection.name, "a_b_c");
    EXPECT_TRUE(common::fileExists(file("a_b_c.var")));
}

TEST_F(Session, CollectionWhoseFileHasABlankStillOpens)
{
    openCast();
    session.close(true);
    for (const char* const suffix : {".var", ".hob", ".dob"})
        fs::rename(file("cast") + suffix, file("my cast") + suffix);
    writeText(file("my cast.var"), common::replaceAll(read("my cast.var"), "cast", "my cast"));
    EXPECT_EQ(open("my cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
}

TEST_F(Session, VarInADirectoryNameIsTakenForACollection)
{
    fs::create_directories(file("old.var.d"));
    writeText(file("old.var.d/cast.txt"), castText(1, 3));
    EXPECT_EQ(open("old.var.d/cast.txt"), OpenResult::failed);
    EXPECT_THAT(user->messages, ElementsAre("Opening Collection ...: Collection \"" +
                                            file("old.var.d/cast.var") + "\" does not exist!"));
}

TEST_F(Session, ArgumentIsJudgedAsGivenAndFoundInTheStartDirectory)
{
    fs::create_directories(file("old.var.d"));
    writeText(file("old.var.d/cast.txt"), castText(2, 3));
    EXPECT_EQ(session.openArgument("cast.txt", file("old.var.d")), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 2);
}

TEST_F(Session, ArgumentWithoutAnExtensionIsACollection)
{
    openCast();
    session.close(true);
    EXPECT_EQ(session.openArgument("cast", folder.path()), OpenResult::ok);
}

TEST_F(Session, UnknownKindIsTold)
{
    EXPECT_EQ(session.open("/data/x.dat"), OpenResult::failed);
    EXPECT_THAT(user->messages,
                ElementsAre("Unknown File Type ...: Don't know how to handle file:\n\n/data/x.dat"));
}

TEST_F(Session, KindsWithoutAReaderAreToldAndTheOpenCollectionStays)
{
    openCast();
    user->messages.clear();
    for (const char* const name : {"/d/x.nc", "/d/x.cdf", "/d/x.ol", "/d/x.sum"})
        EXPECT_EQ(session.open(name), OpenResult::failed) << name;
    EXPECT_EQ(user->messages.size(), 4u);
    EXPECT_EQ(user->messages[0],
              "Opening ...: NVQ can't open this kind of file yet (netCDF file):\n\n/d/x.nc");
    EXPECT_TRUE(session.collection.isOpen);
}

TEST_F(Session, MissingDirectoryIsTold)
{
    EXPECT_EQ(session.open("/nowhere/at/all/a.var"), OpenResult::failed);
    EXPECT_THAT(user->messages, ElementsAre("Collection Directory: /nowhere/at/all/\n\ndoes not exist!"));
}

TEST_F(Session, EmptyPathClosesWhatIsOpen)
{
    openCast();
    EXPECT_EQ(session.open(""), OpenResult::ok);
    EXPECT_FALSE(session.collection.isOpen);
}

TEST_F(Session, FailedOpenLeavesNoCollectionOpen)
{
    openCast();
    EXPECT_EQ(open("missing.var"), OpenResult::failed);
    EXPECT_FALSE(session.collection.isOpen);
    EXPECT_EQ(session.state, app::stateIdle);
    EXPECT_EQ(view.idles, 1);
}

TEST_F(Session, TwoOpensHaveTwoTemporaryNames)
{
    openCast();
    const std::string first = session.collection.tempId;
    EXPECT_EQ(filesIn("tmp"), 2);
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_NE(session.collection.tempId, first);
    EXPECT_EQ(filesIn("tmp"), 2); // those of the first are gone
    session.close(true);
    EXPECT_EQ(filesIn("tmp"), 0);
}

TEST_F(Session, TemporaryFilesOfOthersAreLeftAlone)
{
    RViewRecorder otherView;
    RAbsentUser otherUser;
    app::RSession other(otherUser, otherView);
    other.installation = session.installation;
    other.runMode = app::commandFileRun;
    writeText(file("other.txt"), castText(2, 3));
    ASSERT_EQ(other.open(file("other.txt")), OpenResult::ok);
    openCast();
    session.close(true);
    EXPECT_EQ(other.collection.selectedStationCount, 2);
    EXPECT_TRUE(common::fileExists(file("tmp/") + other.collection.tempId + ".val"));
    other.close(true);
    EXPECT_EQ(filesIn("tmp"), 0);
}

TEST_F(Session, TemporaryFilesThatCannotBeMadeAreTold)
{
    openCast();
    session.close(true);
    user->messages.clear();
    session.installation.temp = "/nowhere/";
    EXPECT_EQ(open("cast.var"), OpenResult::noTemporaryFile);
    EXPECT_FALSE(session.collection.isOpen);
    EXPECT_EQ(user->messages.size(), 1u);
}

// --- import

TEST_F(Session, SecondSpreadsheetGoesIntoTheOpenCollection)
{
    openCast();
    std::string other = castText(3, 4);
    for (std::size_t at = 0; (at = other.find("TEST\t", at)) != std::string::npos; ++at)
        other.replace(at, 4, "MORE");
    writeText(file("more.txt"), other);
    ASSERT_EQ(open("more.txt"), OpenResult::ok);
    EXPECT_EQ(session.collection.name, "cast");
    EXPECT_EQ(session.collection.stationCount, 7);
    EXPECT_EQ(session.collection.selectedStationCount, 7);
    EXPECT_FALSE(common::fileExists(file("more.var")));
}

TEST_F(Session, RunCanBeRepeated)
{
    for (int run = 0; run < 3; ++run) {
        openCast();
        EXPECT_EQ(session.collection.stationCount, 4);
        session.close(true);
    }
}

TEST_F(Session, CollectionWithOtherChangesIsNotReplaced)
{
    openCast();
    session.collection.addLogLine("DELETE 2 Stations");
    session.close(true);
    user->messages.clear();
    const std::string before = read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log");
    EXPECT_EQ(open("cast.txt"), OpenResult::failed);
    EXPECT_EQ(read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log"), before);
    ASSERT_EQ(user->messages.size(), 1u);
    EXPECT_THAT(user->messages[0], HasSubstr("set_import overwrite=yes"));
    session.importSettings.overwrite = true;
    EXPECT_EQ(open("cast.txt"), OpenResult::ok);
}

TEST_F(Session, CollectionWithoutALogIsNotReplaced)
{
    openCast();
    session.close(true);
    fs::remove(file("cast.log"));
    EXPECT_EQ(open("cast.txt"), OpenResult::failed);
}

TEST_F(Session, BadHeaderLosesNothingOfTheOldCollection)
{
    openCast();
    session.close(true);
    const std::string before = read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log");
    for (const std::string& bad : {std::string(), std::string("just words\n1 2 3\n")}) {
        writeText(file("cast.txt"), bad);
        EXPECT_EQ(open("cast.txt"), OpenResult::failed);
        EXPECT_EQ(read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log"), before);
    }
}

TEST_F(Session, ImportThatFailsBehindTheHeaderBringsTheOldCollectionBack)
{
    openCast();
    session.close(true);
    const std::string before = read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log");
    std::string text = castText(2, 3);
    text.insert(text.find("5/3/1999"), "99/");
    writeText(file("cast.txt"), text);
    EXPECT_EQ(open("cast.txt"), OpenResult::failed);
    EXPECT_FALSE(session.collection.isOpen);
    EXPECT_EQ(read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log"), before);
}

TEST_F(Session, ImportOfNothingLeavesNoCollectionBehind)
{
    const std::string text = castText(1, 1);
    writeText(file("empty.txt"), text.substr(0, text.find('\n') + 1));
    EXPECT_EQ(open("empty.txt"), OpenResult::failed);
    for (const char* const suffix : {".var", ".hob", ".dob", ".log", ".inv"})
        EXPECT_FALSE(common::fileExists(file("empty") + suffix)) << suffix;
}

TEST_F(Session, ImportThatFailsMidwayKeepsTheStationsBefore)
{
    std::string text = castText(3, 3);
    text.insert(text.find("5/4/1999"), "99/"); // the third station
    writeText(file("part.txt"), text);
    EXPECT_EQ(open("part.txt"), OpenResult::failed);
    EXPECT_EQ(session.collection.stationCount, 2);
    session.close(true);
    EXPECT_EQ(open("part.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 2);
}

TEST_F(InteractiveSession, UserIsAskedBeforeACollectionIsReplaced)
{
    openCast();
    session.close(true);
    user->messages.clear();
    user->answers = {common::Answer::no};
    EXPECT_EQ(open("cast.txt"), OpenResult::failed);
    ASSERT_EQ(user->messages.size(), 1u);
    EXPECT_EQ(user->messages[0],
              "NVQ Data Import: Collection\n\n" + file("cast.var") + "\n\nalready exists!  Replace it?");
    EXPECT_TRUE(common::fileExists(file("cast.var")));
    user->answers = {common::Answer::yes};
    EXPECT_EQ(open("cast.txt"), OpenResult::ok);
}

TEST_F(InteractiveSession, UndoOfANewCollectionLeavesNothing)
{
    user->acceptReports = false;
    EXPECT_EQ(open("cast.txt"), OpenResult::failed);
    EXPECT_FALSE(common::fileExists(file("cast.var")));
    EXPECT_FALSE(common::fileExists(file("cast.hob")));
}

// --- damage

TEST_F(Session, TruncatedFilesAreToldAndLeftAlone)
{
    openCast();
    session.close(true);
    for (const char* const suffix : {".var", ".hob", ".dob"}) {
        const std::string good = read(std::string("cast") + suffix);
        const std::string cut = good.substr(0, std::min<std::size_t>(good.size() / 2, 40));
        writeText(file("cast") + suffix, cut);
        user->messages.clear();
        user->notes.clear();
        const OpenResult result = open("cast.var");
        EXPECT_TRUE(result == OpenResult::failed || !user->messages.empty() || !user->notes.empty())
            << suffix;
        session.close(true);
        EXPECT_EQ(read(std::string("cast") + suffix), cut) << suffix;
        writeText(file("cast") + suffix, good);
    }
}

// --- closing

TEST_F(Session, CloseWritesTheLastFiles)
{
    openCast();
    session.lastFiles.graphics = file("pictures/a.png");
    session.close(false);
    EXPECT_EQ(read("cast.cfl"), "cast\npictures/a.png\n\n\n\n");
    EXPECT_EQ(view.caption, "NVQ");
    EXPECT_EQ(view.idles, 1);
    EXPECT_EQ(session.state, app::stateIdle);
    EXPECT_TRUE(session.stale);
}

TEST_F(Session, CloseOfNothingIsDone)
{
    EXPECT_TRUE(session.close(false));
    EXPECT_EQ(view.idles, 0);
}

TEST_F(Session, CommandFileRunDoesNotReadTheLastFiles)
{
    openCast();
    session.close(true);
    writeText(file("cast.cfl"), "other\np.png\n\n\n\n");
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.configName, file("cast"));
    EXPECT_EQ(session.lastFiles.graphics, "");
}

TEST_F(InteractiveSession, LastFilesAreReadAtAnOpen)
{
    openCast();
    session.close(true);
    writeText(file("cast.cfl"), "sub\\other.cfg\np.png\n\n\n\n");
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.configName, file("sub/other"));
    EXPECT_EQ(session.lastFiles.graphics, file("p"));
}

// --- configurations

TEST_F(Session, MissingConfigurationIsTold)
{
    openCast();
    user->messages.clear();
    EXPECT_FALSE(session.loadConfiguration(file("my")));
    EXPECT_THAT(user->messages, ElementsAre("Loading Configuration ...: Configuration file  " +
                                            file("my.cfg") + "  not found!"));
}

std::string head(const std::string& version, std::string name)
{
    name.resize(31, '\0');
    return version + std::string(1, '\0') + name + std::string(4, '\0');
}

TEST_F(Session, ConfigurationsAreJudgedByTheirHead)
{
    openCast();
    const auto reason = [this](const std::string& content) {
        writeText(file("my.cfg"), content);
        user->messages.clear();
        EXPECT_FALSE(session.loadConfiguration(file("my.cfg")));
        return user->messages.empty() ? std::string() : user->messages.front();
    };
    EXPECT_THAT(reason(head("CFG1.18", "cast")), HasSubstr("  is out-dated!"));
    EXPECT_THAT(reason(head("CFG1.32", "cast")), HasSubstr("  not supported by installed NVQ version!\n\n"));
    EXPECT_THAT(reason(head("CFG1.24", "other")), HasSubstr("  belongs to different collection!"));
    EXPECT_THAT(reason(head("CFG1.24", "CAST")), HasSubstr("can't be loaded by this version"));
    EXPECT_THAT(reason(head("CFG1.31", "other")), HasSubstr("can't be loaded by this version"));
    EXPECT_THAT(reason(head("CFG1.31", "cast").substr(0, 42)), HasSubstr("  not found!"));
    EXPECT_THAT(reason("CFG9.31"), HasSubstr("  not found!"));
    EXPECT_THAT(reason(""), HasSubstr("  not found!"));
}

// --- the view

TEST_F(Session, ViewCommandsNeedAnOpenCollection)
{
    EXPECT_EQ(session.setMode(1), "no collection is open");
    EXPECT_EQ(session.useLayout("SCATTER 2 Win"), "no collection is open");
    EXPECT_EQ(session.setWindow(1, "1", "2", std::nullopt), "no collection is open");
    EXPECT_EQ(session.setRange(1, 0, 0, 1), "no collection is open");
    EXPECT_EQ(session.fullRange(std::nullopt), "no collection is open");
    EXPECT_EQ(session.setStyle(1, 0, std::nullopt), "no collection is open");
    EXPECT_EQ(session.setPalette(0, "Nvq"), "no collection is open");
    EXPECT_EQ(session.setDomain(0, 10, 0, 10, {}, {}), "no collection is open");
    EXPECT_EQ(session.plotStation(1), "no collection is open");
}

TEST_F(Session, ModeSwitchEmptiesThePlottedList)
{
    openCast();
    EXPECT_EQ(session.plotStation(std::nullopt), "");
    EXPECT_EQ(session.collection.plottedStationCount, 4);
    EXPECT_EQ(session.setMode(graphics::modeScatter), "");
    EXPECT_EQ(session.collection.plottedStationCount, 0);
    EXPECT_EQ(session.setup.mode, graphics::modeScatter);
    EXPECT_TRUE(session.collection.configChanged);
    EXPECT_TRUE(session.stale);
    EXPECT_EQ(session.setMode(graphics::modeScatter), ""); // already there
    EXPECT_THAT(session.setMode(graphics::modeSection), HasSubstr("SECTION mode"));
    EXPECT_THAT(session.setMode(graphics::modeSurface), HasSubstr("SURFACE mode"));
    EXPECT_EQ(session.setup.mode, graphics::modeScatter);
}

TEST_F(Session, LayoutByMenuText)
{
    openCast();
    EXPECT_EQ(session.useLayout("station 2 win"), "");
    EXPECT_EQ(session.setup.count(), 2);
    EXPECT_EQ(session.useLayout("STATION 5 Win"), "there is no layout \"STATION 5 Win\"");
}

TEST_F(Session, WindowTakesVariablesByNumberAndByLabel)
{
    openCast();
    EXPECT_EQ(session.setMode(graphics::modeScatter), "");
    EXPECT_EQ(session.setWindow(1, "3", "-temperature", "Depth [m]"), "");
    EXPECT_EQ(session.setup.window(1).xVar, 3);
    EXPECT_EQ(session.setup.window(1).yVar, -2);
    EXPECT_EQ(session.setup.window(1).zVar, 1);
    EXPECT_EQ(session.setWindow(1, "Salinity", "Temperature [°C]", std::nullopt), "");
    EXPECT_EQ(session.setup.window(1).yVar, 2); // the degree sign of a UTF-8 command file
    EXPECT_EQ(session.setup.window(1).zVar, 0);
    EXPECT_EQ(session.setWindow(1, "Salinity", "Oxygen", std::nullopt), "there is no variable \"Oxygen\"");
    EXPECT_EQ(session.setWindow(1, "4", "1", std::nullopt), "there is no variable \"4\"");
    EXPECT_EQ(session.setWindow(7, "1", "2", std::nullopt), "there is no data window 7 in SCATTER mode");
    EXPECT_EQ(session.setWindow(0, "1", "2", std::nullopt), "there is no data window 0 in SCATTER mode");
}

TEST_F(Session, RangesGoToTwins)
{
    openCast();
    ASSERT_EQ(session.setMode(graphics::modeScatter), "");
    ASSERT_EQ(session.setWindow(1, "Salinity", "Temperature", "Depth"), "");
    ASSERT_EQ(session.setWindow(2, "Temperature", "-Depth", std::nullopt), "");
    ASSERT_EQ(session.setRange(1, 1, 3, 17), "");
    EXPECT_FLOAT_EQ(session.setup.window(1).yMin, 3);
    EXPECT_FLOAT_EQ(session.setup.window(2).xMax, 17);
    ASSERT_EQ(session.setRange(1, 2, 100, 400), "");
    EXPECT_FLOAT_EQ(session.setup.window(1).zMax, 400);
    EXPECT_FLOAT_EQ(session.setup.window(2).yMin, 400); // reversed
    EXPECT_FLOAT_EQ(session.setup.window(2).yMax, 100);
    EXPECT_EQ(session.setRange(2, 2, 0, 1), "window 2 has no colour variable");
}

TEST_F(Session, NewWindowTakesRangesFromTheDataAndFromItsTwins)
{
    openCast();
    ASSERT_EQ(session.setMode(graphics::modeScatter), "");
    ASSERT_EQ(session.setWindow(1, "Salinity", "Temperature", std::nullopt), "");
    ASSERT_EQ(session.setRange(1, 1, 3, 17), "");
    ASSERT_EQ(session.setWindow(4, "Depth", "-Temperature", std::nullopt), "");
    ASSERT_EQ(session.setRange(4, 0, 0, 500), "");
    EXPECT_FLOAT_EQ(session.setup.window(4).yMin, 17);
    EXPECT_FLOAT_EQ(session.setup.window(4).yMax, 3);
    EXPECT_FLOAT_EQ(session.setup.window(1).yMin, 3); // unharmed
    EXPECT_LE(session.setup.window(1).xMin, 34.0f);
    EXPECT_GE(session.setup.window(1).xMax, 34.5f);
    ASSERT_EQ(session.fullRange(std::nullopt), "");
    EXPECT_LE(session.setup.window(1).yMin, 15.0f);
    EXPECT_GE(session.setup.window(1).yMax, 20.0f);
    EXPECT_EQ(session.fullRange(9), "there is no data window 9 in SCATTER mode");
}

TEST_F(Session, StylesOfThisVersion)
{
    openCast();
    EXPECT_EQ(session.setStyle(1, graphics::styleNumbers, 1.25f), "");
    EXPECT_EQ(session.setup.window(1).style, graphics::styleNumbers);
    EXPECT_FLOAT_EQ(session.setup.window(1).symbolSize, 1.25f);
    EXPECT_EQ(session.setStyle(1, 1, std::nullopt), "plot style 1 can't be drawn by this version yet");
    EXPECT_EQ(session.setStyle(1, 5, std::nullopt), "there is no plot style 5");
}

TEST_F(Session, PaletteMustExist)
{
    openCast();
    fs::create_directories(file("palettes"));
    writeText(file("palettes/Mine.pal"), "0 0 0 0\n");
    EXPECT_EQ(session.setPalette(1, "Mine"), "");
    EXPECT_STREQ(session.setup.window(1).palette, "Mine");
    EXPECT_EQ(session.setPalette(0, "Mine.pal"), "");
    EXPECT_STREQ(session.setup.map.palette, "Mine.pal");
    EXPECT_EQ(session.setPalette(1, "Yours"), "there is no palette \"Yours\"");
    EXPECT_EQ(session.setPalette(1, ""), "there is no palette \"\"");
    EXPECT_EQ(session.setPalette(1, std::string(200, 'x')),
              "there is no palette \"" + std::string(200, 'x') + "\"");
}

TEST_F(Session, DomainSelectsStations)
{
    openCast(); // at 25 W, 55 S to 40 S
    EXPECT_EQ(session.setDomain(-40, 0, -52, -30, {}, {}), "");
    EXPECT_EQ(session.collection.selectedStationCount, 3);
    EXPECT_EQ(session.setDomain(-180, 180, -90, 90, 5, std::pair(-25.0, -40.0)), "");
    EXPECT_EQ(session.setup.map.geometry.id, 5);
    EXPECT_EQ(session.collection.selectedStationCount, 4);
    EXPECT_THAT(session.setDomain(10, 10, 0, 1, {}, {}), HasSubstr("no domain"));
    EXPECT_THAT(session.setDomain(0, 361, 0, 1, {}, {}), HasSubstr("no domain"));
    EXPECT_THAT(session.setDomain(0, 10, -91, 1, {}, {}), HasSubstr("no domain"));
    EXPECT_EQ(session.setDomain(0, 10, 0, 10, 7, {}), "there is no projection 7");
    EXPECT_THAT(session.setDomain(0, 10, 0, 10, 5, std::pair(0.0, 91.0)), HasSubstr("pole"));
}

TEST_F(Session, StationsArePlottedOnce)
{
    openCast();
    EXPECT_EQ(session.plotStation(2), "");
    EXPECT_EQ(session.plotStation(2), "");
    EXPECT_EQ(session.collection.plottedStationCount, 1);
    EXPECT_EQ(session.plotStation(std::nullopt), "");
    EXPECT_EQ(session.collection.plottedStationCount, 4);
    EXPECT_EQ(session.plotStation(5), "station 5 isn't among the selected stations");
    ASSERT_EQ(session.setMode(graphics::modeScatter), "");
    EXPECT_THAT(session.plotStation(1), HasSubstr("STATION mode"));
}

TEST_F(Session, AnImportThatReplacesStationsForgetsThePlottedOnes)
{
    openCast();
    ASSERT_EQ(session.plotStation(2), "");
    const std::string all = castText(4, 30), header = all.substr(0, all.find('\n') + 1);
    writeText(file("longer.txt"),
              header + all.substr(all.find("TEST\t1"), all.find("TEST\t2") - all.find("TEST\t1")));
    ASSERT_TRUE(session.importFile(importing::Format::spreadsheet, file("longer.txt"),
                                   importing::ImportMode::addReplace));
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_EQ(session.collection.plottedStationCount, 0); // number 2 is another station now
}

TEST_F(Session, AnImportThatAppendsKeepsThePlottedStations)
{
    openCast();
    ASSERT_EQ(session.plotStation(2), "");
    const std::string all = castText(9, 3), header = all.substr(0, all.find('\n') + 1);
    writeText(file("more.txt"), header + all.substr(all.find("TEST\t9")));
    ASSERT_TRUE(session.importFile(importing::Format::spreadsheet, file("more.txt"),
                                   importing::ImportMode::addReplace));
    EXPECT_EQ(session.collection.stationCount, 5);
    EXPECT_EQ(session.collection.plottedStationCount, 1);
}

TEST_F(Session, StatusTextFollowsModeAndState)
{
    EXPECT_EQ(session.statusText(), "Choose File>Open to open or File>New to create a collection.");
    openCast();
    EXPECT_EQ(session.statusText(), "Press 'p' to plot current station.");
    ASSERT_EQ(session.plotStation(1), "");
    EXPECT_EQ(session.statusText(), "Press 'p' to add current station to the plot.");
    ASSERT_EQ(session.setMode(graphics::modeScatter), "");
    EXPECT_EQ(session.statusText(), "Press 'p' or double-click on the map to plot.");
    ASSERT_EQ(session.setMode(graphics::modeMap), "");
    EXPECT_EQ(session.statusText(), "Ready");
    session.state = app::stateLayout;
    EXPECT_EQ(session.statusText(), "Change Layout:  R-MSE-CLICK menu ...");
    session.state = app::stateReady;
    ASSERT_EQ(session.setDomain(100, 120, 0, 10, {}, {}), "");
    EXPECT_EQ(session.statusText(), "Select a collection");
}

// --- output

TEST_F(Session, ForeignPictureExtensionWritesNothing)
{
    openCast();
    EXPECT_FALSE(session.exportGraphics(file("a.tif"), -1, 100));
    EXPECT_FALSE(session.exportGraphics(file("a"), -1, 100));
    EXPECT_FALSE(common::fileExists(file("a.tif")));
    EXPECT_EQ(user->notes.size(), 2u);
}

TEST_F(Session, PictureOfAWindowThatIsNotThereIsRefused)
{
    openCast();
    EXPECT_FALSE(session.exportGraphics(file("a.png"), 9, 100));
    EXPECT_FALSE(session.exportGraphics(file("a.png"), -2, 100));
    EXPECT_THAT(user->notes, ElementsAre("there is no data window 9 in STATION mode",
                                         "there is no data window -2 in STATION mode"));
}

TEST_F(Session, ResolutionIsAskedForWhereItIsBelowOne)
{
    openCast();
    EXPECT_FALSE(session.exportGraphics(file("a.png"), 0, 0)); // nobody tells
    EXPECT_FALSE(common::fileExists(file("a.png")));
    view.resolution = 30;
    EXPECT_TRUE(session.exportGraphics(file("a.png"), 0, 0));
    EXPECT_TRUE(common::fileExists(file("a.png")));
    EXPECT_EQ(session.lastFiles.graphics, file("a.png"));
    EXPECT_EQ(user->statusTexts.back(), "Plot written to: " + file("a.png"));
}

TEST_F(Session, PictureThatCannotBeWrittenIsTold)
{
    openCast();
    user->messages.clear();
    EXPECT_FALSE(session.exportGraphics("/nowhere/a.png", 0, 30));
    ASSERT_FALSE(user->messages.empty());
    EXPECT_EQ(user->messages.back(), "Save Screen to File ...: File /nowhere/a.png could not be written.");
}

TEST_F(Session, ExportLeavesTheScreenAsItWas)
{
    openCast();
    ASSERT_EQ(session.setMode(graphics::modeScatter), "");
    ASSERT_EQ(session.fullRange(std::nullopt), "");
    const float size = session.setup.window(1).xLen, low = session.setup.window(1).xMin;
    const auto factor = graphics::fontSettings().factor;
    const int width = graphics::drawState().device.widthPx;
    ASSERT_TRUE(session.exportGraphics(file("a.png"), -1, 300));
    EXPECT_EQ(session.setup.window(1).xLen, size);
    EXPECT_EQ(session.setup.window(1).xMin, low);
    EXPECT_EQ(graphics::fontSettings().factor, factor);
    EXPECT_EQ(graphics::drawState().device.widthPx, width);
    EXPECT_EQ(session.setup.mode, graphics::modeScatter);
}

TEST_F(Session, ExportedDataComeBackAsTheyWere)
{
    openCast();
    ASSERT_TRUE(session.exportSpreadsheet(file("out.txt")));
    session.close(true);
    ASSERT_EQ(open("out.txt"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
    ASSERT_TRUE(session.exportSpreadsheet(file("again.txt")));
    EXPECT_EQ(read("again.txt"), read("out.txt"));
}

TEST_F(Session, CloseInACommandFileIsAskedOfTheView)
{
    writeText(file("run.cmd"), "quit\nopen_collection " + file("cast.txt") + "\n");
    EXPECT_TRUE(app::executeCommandFile(file("run.cmd"), session, view, *user));
    EXPECT_EQ(view.closes, 1);
    EXPECT_TRUE(session.collection.isOpen);
    EXPECT_EQ(session.runMode, app::interactiveRun);
}

TEST_F(Session, ImportSettingsLastForOneCommandFile)
{
    writeText(file("run.cmd"), "set_import overwrite=yes\n");
    EXPECT_TRUE(app::executeCommandFile(file("run.cmd"), session, view, *user));
    EXPECT_FALSE(session.importSettings.overwrite);
}

TEST_F(Session, UnreadableCommandFileIsNoted)
{
    EXPECT_FALSE(app::executeCommandFile(file("none.cmd"), session, view, *user));
    EXPECT_FALSE(app::executeCommandFile(folder.path(), session, view, *user));
    EXPECT_FALSE(app::executeCommandFile("", session, view, *user));
    EXPECT_EQ(user->notes.size(), 3u);
    EXPECT_EQ(session.runMode, app::interactiveRun);
}

TEST_F(Session, GateLooksAtTheSession)
{
    EXPECT_FALSE(session.isAllowed(app::cmdSaveScreen, 0));
    openCast();
    EXPECT_TRUE(session.isAllowed(app::cmdSaveScreen, 0));
    EXPECT_TRUE(session.isAllowed(app::cmdExportSpreadsheet, 0));
    EXPECT_TRUE(session.isAllowed(app::cmdViewLog, 0));
    session.state = app::stateBusy;
    EXPECT_FALSE(session.isAllowed(app::cmdExit, 0));
}

} // namespace
