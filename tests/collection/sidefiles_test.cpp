#include "collection/sidefiles.h"

#include <filesystem>
#include <regex>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "collection/damage.h"
#include "samplecollection.h"
#include "unprivileged.h"

namespace collection {
namespace {

namespace fs = std::filesystem;
using testing_support::profile;
using testing_support::RSampleCollection;

class SideFiles : public testing::Test {
protected:
    RSampleCollection sample;
    RCollection& collection = sample.collection;
};

// --- `.idv`

TEST_F(SideFiles, VariableIdsAreKeptByKey)
{
    EXPECT_EQ(collection.getVariableId("Depth [m]"), 0);
    ASSERT_TRUE(collection.setVariableId("Depth [m]", 1));
    ASSERT_TRUE(collection.setVariableId("Salinity [psu]", 3));
    ASSERT_TRUE(collection.setVariableId("Depth [m]", 2));
    EXPECT_EQ(collection.getVariableId("Depth [m]"), 2);
    EXPECT_EQ(collection.getVariableId("Salinity [psu]"), 3);
    EXPECT_EQ(collection.getVariableId("Depth"), 0);
    EXPECT_EQ(sample.bytes(".idv"), "Depth [m]=2\nSalinity [psu]=3\n");
    EXPECT_FALSE(common::fileExists(collection.path + ".id"));
}

TEST_F(SideFiles, ALineWithoutEqualSignIsKeptWithOne)
{
    sample.setBytes(".idv", "strange\nDepth [m]=1");
    ASSERT_TRUE(collection.setVariableId("Depth [m]", 4));
    EXPECT_EQ(sample.bytes(".idv"), "strange=\nDepth [m]=4\n");
}

TEST_F(SideFiles, AVariableIdThatHasNoFormIsRefused)
{
    ASSERT_TRUE(collection.setVariableId("a", 1));
    for (const std::string& key :
         {std::string(), std::string("b=c"), std::string("b\nc"), std::string(118, 'k')}) {
        EXPECT_FALSE(collection.setVariableId(key, 1)) << key;
    }
    EXPECT_FALSE(collection.setVariableId("b", 0));
    EXPECT_FALSE(collection.setVariableId("b", 5));
    EXPECT_EQ(sample.bytes(".idv"), "a=1\n");
    const std::string longest(117, 'k');
    EXPECT_TRUE(collection.setVariableId(longest, 2));
    EXPECT_EQ(collection.getVariableId(longest), 2);
}

TEST_F(SideFiles, ALineOfMoreThan119BytesHasNoKey)
{
    sample.setBytes(".idv", "a=" + std::string(118, ' ') + "1\na=2\n");
    EXPECT_EQ(collection.getVariableId("a"), 2);
}

TEST_F(SideFiles, IdsThatCantBeReadAreNotReplaced)
{
    fs::create_directory(collection.path + ".idv");
    EXPECT_EQ(collection.getVariableId("a"), 0);
    EXPECT_FALSE(collection.setVariableId("a", 1));
    EXPECT_TRUE(fs::is_directory(collection.path + ".idv"));
}

TEST_F(SideFiles, AVariableIdThatIsNoVariableIsNone)
{
    sample.setBytes(".idv", "a=99\nb=x\nc=-1\nd=4\nd=1\n");
    EXPECT_EQ(collection.getVariableId("a"), 0);
    EXPECT_EQ(collection.getVariableId("b"), 0);
    EXPECT_EQ(collection.getVariableId("c"), 0);
    EXPECT_EQ(collection.getVariableId("d"), 4);
}

// --- `.log`

TEST_F(SideFiles, LogLinesAreAppendedInTheirForm)
{
    collection.addLogLine("IMPORT     3 Stations a.txt (Jan/01/2020 00:00:00)");
    collection.userName = "me";
    collection.hostName = "here";
    collection.addLogLine("COMMENT two\nlines");
    const std::string log = sample.bytes(".log");
    const std::regex form(
        "[A-Z][a-z]{2}/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d> user:host CREATE\n"
        "[A-Z][a-z]{2}/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d> user:host IMPORT     3 Stations a.txt "
        "\\(Jan/01/2020 00:00:00\\)\n[^\n]*> me:here COMMENT two lines\n");
    EXPECT_TRUE(std::regex_match(log, form)) << log;
}

TEST_F(SideFiles, ALogLineBehindACutOneStartsANewLine)
{
    sample.setBytes(".log", "cut");
    EXPECT_TRUE(appendLogLine(collection.path, "COMMENT x", "me", "here"));
    EXPECT_TRUE(sample.bytes(".log").starts_with("cut\n"));
    EXPECT_TRUE(sample.bytes(".log").ends_with("> me:here COMMENT x\n"));
    EXPECT_FALSE(appendLogLine("/nowhere/at/all", "COMMENT x", "me", "here"));
}

TEST(LogTime, EnglishMonthsInLocalTime)
{
    std::tm local{};
    local.tm_year = 109;
    local.tm_mon = 4;
    local.tm_mday = 7;
    local.tm_hour = 3;
    local.tm_min = 4;
    local.tm_sec = 5;
    local.tm_isdst = -1;
    EXPECT_EQ(logTime(std::mktime(&local)), "May/07/2009 03:04:05");
    EXPECT_EQ(fileTime("/nowhere/at/all"), "");
}

TEST_F(SideFiles, OnlyCreationsAndImportsCanBeRunAgain)
{
    EXPECT_TRUE(isMadeByImportsOnly(collection.path));
    collection.addLogLine("IMPORT     3 Stations a > b.txt (x)");
    EXPECT_TRUE(isMadeByImportsOnly(collection.path));
    sample.setBytes(".log", sample.bytes(".log") + "ERROR: IMPORT     0 Stations a > b.txt (x)\n");
    EXPECT_TRUE(isMadeByImportsOnly(collection.path));
    collection.addLogLine("UNDONE IMPORT");
    collection.addLogLine("COMPLETED IMPORT");
    collection.addLogLine("UNDONE SORTCONDENSE"); // which left nothing behind
    EXPECT_TRUE(isMadeByImportsOnly(collection.path));
    const std::string log = sample.bytes(".log");
    for (const char* const other :
         {"COMPLETED SORTCONDENSE", "COMPLETED DELETE 3 Stations", "EDITHEADER <a b c>"}) {
        collection.addLogLine(other);
        EXPECT_FALSE(isMadeByImportsOnly(collection.path)) << other;
        sample.setBytes(".log", log);
    }
    collection.addLogLine("COMMENT CREATE");
    EXPECT_FALSE(isMadeByImportsOnly(collection.path));
    EXPECT_FALSE(isMadeByImportsOnly(collection.path + "x"));
    sample.setBytes(".log", "garbage\n");
    EXPECT_FALSE(isMadeByImportsOnly(collection.path));
    sample.setBytes(".log", "");
    EXPECT_FALSE(isMadeByImportsOnly(collection.path));
}

// --- `.cfl`

TEST_F(SideFiles, LastFilesKeepFiveLinesInOrder)
{
    LASTFILES files;
    files.configName = sample.directory.file("sample");
    files.graphics = sample.directory.file("pictures/map");
    files.others = {sample.directory.file("a"), "", "/elsewhere/far/c"};
    ASSERT_TRUE(writeLastFiles(collection.path, collection.directory, files));
    EXPECT_EQ(sample.bytes(".cfl"), "sample\npictures/map\na\n\n/elsewhere/far/c\n");
    LASTFILES read;
    ASSERT_TRUE(readLastFiles(collection.path, collection.directory, read));
    EXPECT_EQ(read.configName, files.configName);
    EXPECT_EQ(read.graphics, files.graphics);
    EXPECT_EQ(read.others, files.others);
}

TEST_F(SideFiles, LastFilesTakeForeignSeparatorsAndLoseExtensions)
{
    sample.setBytes(".cfl", "conf.cfg\r\nsub\\picture.png\n");
    LASTFILES files;
    files.others[1] = "kept";
    ASSERT_TRUE(readLastFiles(collection.path, collection.directory, files));
    EXPECT_EQ(files.configName, sample.directory.file("conf"));
    EXPECT_EQ(files.graphics, sample.directory.file("sub/picture"));
    EXPECT_EQ(files.others[1], "kept");
    EXPECT_FALSE(readLastFiles(collection.path + "x", collection.directory, files));
}

TEST_F(SideFiles, APointInANameSurvivesWritingAndReading)
{
    LASTFILES files;
    files.configName = sample.directory.file("2010.10");
    files.graphics = sample.directory.file("map.v2");
    files.others = {sample.directory.file("dir.d/plain"), sample.directory.file("a.b."), ""};
    LASTFILES read = files;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(writeLastFiles(collection.path, collection.directory, read));
        read = {};
        ASSERT_TRUE(readLastFiles(collection.path, collection.directory, read));
        EXPECT_EQ(read.configName, files.configName);
        EXPECT_EQ(read.graphics, files.graphics);
        EXPECT_EQ(read.others, files.others);
    }
}

TEST_F(SideFiles, TheExtensionOfAPictureIsCutOnce)
{
    LASTFILES files;
    files.graphics = sample.directory.file("map.v2.png");
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(writeLastFiles(collection.path, collection.directory, files));
        files.graphics.clear();
        ASSERT_TRUE(readLastFiles(collection.path, collection.directory, files));
        EXPECT_EQ(files.graphics, sample.directory.file("map.v2"));
    }
}

TEST_F(SideFiles, AllFiveLinesThatWereReadAreWrittenBack)
{
    const std::string text = "conf\npictures/map\na\n../b\n/far/away/c\n";
    sample.setBytes(".cfl", text);
    LASTFILES files;
    ASSERT_TRUE(readLastFiles(collection.path, collection.directory, files));
    ASSERT_TRUE(writeLastFiles(collection.path, collection.directory, files));
    EXPECT_EQ(sample.bytes(".cfl"), text);
}

TEST_F(SideFiles, NamesOfMoreThan255BytesAreNotKept)
{
    LASTFILES files;
    files.graphics = sample.directory.file(std::string(255, 'g'));
    files.others[0] = sample.directory.file(std::string(256, 'h'));
    ASSERT_TRUE(writeLastFiles(collection.path, collection.directory, files));
    EXPECT_EQ(sample.bytes(".cfl"), "sample\n" + std::string(255, 'g') + "\n\n\n\n");
    sample.setBytes(".cfl", "\n" + std::string(256, 'x') + "\n\n");
    LASTFILES read;
    read.configName = "default";
    read.graphics = "kept";
    read.others[0] = "gone";
    ASSERT_TRUE(readLastFiles(collection.path, collection.directory, read));
    EXPECT_EQ(read.configName, "default");
    EXPECT_EQ(read.graphics, "kept");
    EXPECT_EQ(read.others[0], "");
}

TEST_F(SideFiles, ConfigurationDefaultsToTheCollectionsPath)
{
    ASSERT_TRUE(writeLastFiles(collection.path, collection.directory, {}));
    EXPECT_EQ(sample.bytes(".cfl"), "sample\n\n\n\n\n");
}

// --- creation and removal

TEST_F(SideFiles, CreationRemovesIdsWritesTheDescriptionAndLogs)
{
    sample.setBytes(".idv", "a=1\n");
    collection.closeStationFiles();
    collection.stationCount = 7;
    ASSERT_TRUE(collection.createEmptyFiles());
    EXPECT_FALSE(common::fileExists(collection.path + ".idv"));
    EXPECT_EQ(collection.stationCount, 0);
    EXPECT_NE(sample.bytes(".var").find("Nstat: 0\n"), std::string::npos);
    EXPECT_TRUE(sample.bytes(".log").ends_with(" CREATE\n"));
}

TEST_F(SideFiles, RemovalTakesTheLogAndTheConfigurationOnRequestOnly)
{
    ASSERT_EQ(sample.put(profile(2, 4)), WriteResult::ok);
    collection.readInventory(true, sample.user);
    collection.closeStationFiles();
    sample.setBytes(".cfg", "x");
    sample.setBytes(".info", "x");
    ASSERT_TRUE(removeCollectionFiles(collection.path, false, false));
    for (const char* const suffix : {".var", ".hob", ".dob", ".inv", ".cid", ".info"}) {
        EXPECT_FALSE(common::fileExists(collection.path + suffix)) << suffix;
    }
    EXPECT_TRUE(common::fileExists(collection.path + ".log"));
    EXPECT_TRUE(common::fileExists(collection.path + ".cfg"));
    ASSERT_TRUE(removeCollectionFiles(collection.path, true, true));
    EXPECT_FALSE(common::fileExists(collection.path + ".log"));
    EXPECT_FALSE(common::fileExists(collection.path + ".cfg"));
}

TEST_F(SideFiles, AHeaderFileThatCantGoKeepsTheRest)
{
    collection.closeStationFiles();
    fs::remove(collection.path + ".hob");
    fs::create_directories(collection.path + ".hob/inside"); // can't be unlinked
    EXPECT_FALSE(removeCollectionFiles(collection.path, true, true));
    EXPECT_TRUE(common::fileExists(collection.path + ".var"));
    EXPECT_TRUE(common::fileExists(collection.path + ".dob"));
    EXPECT_TRUE(common::fileExists(collection.path + ".log"));
}

TEST_F(SideFiles, WritableNeedsTheDirectoryAndTheFiles)
{
    EXPECT_TRUE(filesAreWritable(collection.path, collection.directory, false));
    EXPECT_TRUE(filesAreWritable(collection.path + "new", collection.directory, true));
    EXPECT_FALSE(filesAreWritable(collection.path, "/nowhere/at/all/", true));
    fs::permissions(sample.directory.path(), fs::perms::all);
    for (const char* const suffix : {".var", ".dob"})
        fs::permissions(collection.path + suffix, fs::perms::all);
    fs::permissions(collection.path + ".hob", fs::perms::owner_read | fs::perms::others_read);
    const testing_support::RUnprivileged nobody;
    ASSERT_TRUE(nobody.works());
    EXPECT_FALSE(filesAreWritable(collection.path, collection.directory, false));
    EXPECT_TRUE(filesAreWritable(collection.path, collection.directory, true));
}

TEST_F(SideFiles, ResetLeavesNothingOpenAndNothingKnown)
{
    ASSERT_EQ(sample.put(profile(2, 4)), WriteResult::ok);
    ASSERT_TRUE(collection.openTemporaryFiles());
    const std::string val = sample.directory.file(collection.tempId + ".val");
    collection.readInventory(true, sample.user);
    collection.reset();
    EXPECT_FALSE(collection.isOpen);
    EXPECT_EQ(collection.kind, 0);
    EXPECT_EQ(collection.stationCount, 0);
    EXPECT_TRUE(collection.cruises.empty());
    EXPECT_TRUE(collection.path.empty());
    EXPECT_EQ(collection.variables[3].label[0], '\0');
    EXPECT_FALSE(common::fileExists(val));
}

TEST_F(SideFiles, InfoFileStandsBesideTheCollection)
{
    EXPECT_EQ(collection.infoFile(), collection.path + ".info");
}

TEST_F(SideFiles, InfoFileOfAFileInAProtectedFolderStandsWithTheTemporaryOnes)
{
    collection.kind = 2;
    EXPECT_EQ(collection.infoFile(), collection.path + ".info");
    collection.directory = "/nowhere/at/all/";
    collection.tempId = "NVQ_1";
    EXPECT_EQ(collection.infoFile(), collection.tempDirectory + "NVQ_1_sample.info");
    collection.kind = 1;
    EXPECT_EQ(collection.infoFile(), "/nowhere/at/all/sample.info");
}

// --- damage

TEST(DamageReport, RunsAreDrawnTogetherAndMuchIsCounted)
{
    RDamageReport report;
    testing_support::RScriptedUser user;
    report.tell("p", user);
    EXPECT_TRUE(user.notes.empty());
    report.add(7);
    EXPECT_EQ(report.numbers(), "7");
    report.tell("p", user);
    EXPECT_EQ(user.notes.at(0), "p.hob, p.dob: damaged, left out station 7");
    report.add(8);
    report.add(10);
    EXPECT_EQ(report.numbers(), "7 to 8, 10");
    for (int i = 0; i < 1000000; ++i) report.add(20 + 2 * i);
    EXPECT_EQ(report.count(), 1000003);
    EXPECT_TRUE(report.numbers().ends_with("52, 54 and 999982 more")) << report.numbers();
}

} // namespace
} // namespace collection
