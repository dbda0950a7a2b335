// Spreadsheets on their way into a collection.

#include <filesystem>
#include <limits>
#include <regex>

#include <gtest/gtest.h>

#include "collection/sidefiles.h"
#include "filesizelimit.h"
#include "import/importfixture.h"

namespace {

using namespace importing;
using namespace testing_support;
using collection::RCollection;
using common::Answer;

TEST(ImportSpreadsheet, StoresTheStationsOfAFile)
{
    RImports run;
    run.import(cast("1", 3) + cast("2", 5));
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_EQ(run.result.stationsStored, 2);
    EXPECT_EQ(run.labels(), (Labels{"1", "2"}));
    EXPECT_EQ(run.stored, (Labels{"1", "2"}));
    EXPECT_EQ(run.load(2).counts[1], 5);
    EXPECT_EQ(run.messages(), Labels{"Importing Station-Data ...: 2 Stations Imported from\n\ncasts.txt"});
    EXPECT_EQ(run.user().busy, 0);
}

TEST(ImportSpreadsheet, DescriptionAndInventoryAreUpToDateAfterwards)
{
    RImports run;
    run.import(cast("1", 3) + cast("2", 5) + cast("9", 2, 5, "B"));
    EXPECT_NE(run.sample.bytes(".var").find("Nstat: 3\n"), std::string::npos);
    EXPECT_EQ(run.collection().cruiseCount, 2);
    EXPECT_EQ(run.sample.bytes(".inv").substr(0, 7), "INV1.05");
    RCollection again;
    again.writable = true;
    ASSERT_EQ(again.openStationFiles(run.collection().path, run.user()), collection::OpenFilesResult::ok);
    EXPECT_EQ(again.stationCount, 3);
}

TEST(ImportSpreadsheet, TheStatusLineNamesTheFileAndTheWork)
{
    RImports run;
    run.import(cast("1", 3));
    const auto& texts = run.user().statusTexts;
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "File: " + run.path()), 1);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Importing Data ...      ESC aborts"), 1);
}

TEST(ImportSpreadsheet, TheLogTakesALine)
{
    RImports run;
    run.import(cast("1", 3));
    const std::string log = run.sample.bytes(".log");
    const std::regex expected(
        "[A-Z][a-z]{2}/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d> ann:ship IMPORT     1 Stations "
        ".*casts\\.txt \\([A-Z][a-z]{2}/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d\\)\n"
        "[A-Z][a-z]{2}/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d> ann:ship ACCOUNT Lines: .*; Stations: 1 read, "
        "1 added, 0 replaced; Values: .*\n$");
    EXPECT_TRUE(std::regex_search(log, expected)) << log;
    EXPECT_NE(log.find("(" + collection::fileTime(run.path()) + ")\n"), std::string::npos) << log;
}

TEST(ImportSpreadsheet, AnEmptyFileEndsWithNoStationsAndAnErrorLine)
{
    RImports run;
    run.importFile("");
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.collection().stationCount, 0);
    const std::string log = run.sample.bytes(".log");
    EXPECT_NE(log.find("\nERROR: IMPORT     0 Stations "), std::string::npos) << log;
    EXPECT_EQ(run.user().busy, 0);
}

TEST(ImportSpreadsheet, AFileWithoutStationsLeavesAnErrorLine)
{
    RImports run;
    run.import("");
    EXPECT_EQ(run.result.stationsStored, 0);
    EXPECT_NE(run.sample.bytes(".log").find("\nERROR: IMPORT     0 Stations "), std::string::npos);
}

TEST(ImportSpreadsheet, AnEmptyCollectionIsNeverAskedAbout)
{
    RImports run;
    run.import(cast("1", 3) + cast("2", 3) + cast("1", 4));
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "1"}));
    EXPECT_FALSE(run.told("Replace It?"));
}

TEST(ImportSpreadsheet, AStationThatIsThereIsReplacedAfterAQuestion)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.import(cast("2", 2, 20) + cast("3", 2, 20));
    EXPECT_TRUE(
        run.told("Confirm Station Replace: Station: A16  - 2  - B Already in Collection!\n\nReplace It?"));
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "3"}));
    EXPECT_EQ(run.load(2).values[2], (std::vector<float>{20, 20}));
    EXPECT_EQ(run.load(2).counts[1], 2);
}

TEST(ImportSpreadsheet, AReplacedStationThatGrewStandsAtTheEndAndIsFoundAgain)
{
    RImports run;
    run.import(cast("1", 2) + cast("2", 2) + cast("3", 2));
    run.import(cast("1", 9, 20) + cast("2", 9, 21) + cast("3", 9, 22));
    EXPECT_EQ(run.collection().stationCount, 3);
    Labels labels = run.labels();
    std::sort(labels.begin(), labels.end());
    EXPECT_EQ(labels, (Labels{"1", "2", "3"}));
    run.import(cast("3", 20, 30) + cast("1", 20, 31) + cast("2", 20, 32) + cast("1", 25, 33));
    EXPECT_EQ(run.collection().stationCount, 3);
    for (int n = 1; n <= 3; ++n) {
        const READSTATION station = run.load(n);
        EXPECT_EQ(station.values[2][0], station.label() == "1" ? 33 : station.label() == "2" ? 32 : 30);
    }
}

TEST(ImportSpreadsheet, NoKeepsTheOldStationAndAbortEndsTheImport)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.user().choices = {2, 3};
    run.import(cast("1", 3, 20) + cast("2", 3, 20) + cast("3", 3, 20));
    EXPECT_EQ(run.load(1).values[2][0], 10);
    EXPECT_EQ(run.load(2).values[2][0], 10);
    EXPECT_EQ(run.collection().stationCount, 2);
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
}

TEST(ImportSpreadsheet, YesToAllAsksNoMore)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.user().choices = {1, 2, 2};
    run.import(cast("1", 3, 20) + cast("2", 3, 20));
    EXPECT_EQ(run.user().choices.size(), 2u); // one was asked for
    EXPECT_EQ(run.load(2).values[2][0], 20);
}

TEST(ImportSpreadsheet, WithoutTheCheckStationsAreAppended)
{
    RImports run;
    run.import(cast("1", 3));
    run.options.checkExisting = false;
    run.import(cast("1", 3));
    EXPECT_EQ(run.labels(), (Labels{"1", "1"}));
}

TEST(ImportSpreadsheet, StationsAreMatchedByLabelsTypeDayAndPosition)
{
    const std::string old = cast("7", 2);
    const auto isFound = [&](const std::string& from, const std::string& to) {
        RImports run;
        run.import(old);
        run.import(replaced(old, from, to));
        return run.collection().stationCount == 1;
    };
    EXPECT_TRUE(isFound("/15/", "/16/"));
    EXPECT_TRUE(isFound("/15/", "/14/"));
    EXPECT_FALSE(isFound("/15/", "/17/"));
    EXPECT_FALSE(isFound("1995", "1996"));
    EXPECT_TRUE(isFound("10.5", "10.69"));
    EXPECT_FALSE(isFound("10.5", "10.71"));
    EXPECT_TRUE(isFound("-20.25", "-20.4"));
    EXPECT_FALSE(isFound("-20.25", "-20.5"));
    EXPECT_FALSE(isFound("\tB\t", "\tC\t"));
    EXPECT_FALSE(isFound("A16", "A17"));
    EXPECT_FALSE(isFound("\t7\t", "\t8\t"));
    EXPECT_TRUE(isFound("12:34", "01:00"));
}

TEST(ImportSpreadsheet, TheDayBeforeIsOneDayAwayAlsoAcrossAYear)
{
    RImports run;
    run.import(replaced(cast("7", 2), "07/15/1995", "12/31/1995"));
    run.import(replaced(cast("7", 2), "07/15/1995", "1/1/1996"));
    EXPECT_EQ(run.collection().stationCount, 1);
}

TEST(ImportSpreadsheet, AmongSeveralThatMatchTheFirstIsReplaced)
{
    RImports run;
    run.options.checkExisting = false;
    run.import(cast("1", 3, 1) + cast("2", 3, 2) + cast("1", 3, 3));
    run.options.checkExisting = true;
    run.import(cast("1", 3, 9));
    EXPECT_EQ(run.load(1).values[2][0], 9);
    EXPECT_EQ(run.load(3).values[2][0], 3);
}

TEST(ImportSpreadsheet, ACruiseAssociationRenamesTheCruiseBeforeTheSearch)
{
    RImports run;
    run.import(cast("1", 3, 1));
    run.options.run.cruises = {{"OTHER", "C", "A16"}, {"OTHER", "B", "A16"}};
    run.import(cast("1", 3, 9, "OTHER"));
    EXPECT_EQ(run.collection().stationCount, 1);
    EXPECT_STREQ(run.load(1).header.cruise, "A16");
    EXPECT_EQ(run.load(1).values[2][0], 9);
}

TEST(ImportSpreadsheet, MergeAveragesAndStaysTheSameWhenRepeated)
{
    RImports run;
    run.import(cast("1", 3, 10));
    run.import(cast("1", 3, 20), ImportMode::merge);
    EXPECT_EQ(run.load(1).values[2], (std::vector<float>{15, 15, 15}));
    EXPECT_EQ(run.messages(), Labels{"Importing Station-Data ...: 1 Stations Merged from\n\ncasts.txt"});
    const READSTATION before = run.load(1);
    run.import(cast("1", 3, 15), ImportMode::merge);
    EXPECT_EQ(run.load(1).values, before.values);
    EXPECT_EQ(run.load(1).flags, before.flags);
}

TEST(ImportSpreadsheet, UpdateReplacesAndKeepsTheHeader)
{
    RImports run;
    run.import(cast("1", 3, 10));
    run.import(replaced(cast("1", 3, 20), "12:34", "05:00"), ImportMode::update);
    EXPECT_EQ(run.load(1).values[2], (std::vector<float>{20, 20, 20}));
    EXPECT_EQ(run.load(1).header.hour, 12);
    EXPECT_TRUE(run.told("1 Stations Updated from"));
}

TEST(ImportSpreadsheet, MergedLevelsAreSorted)
{
    RImports run;
    run.import(line("1", "0\t0\t1\t0\t35\t0") + line("1", "100\t0\t2\t0\t35\t0"));
    run.import(line("1", "50\t0\t9\t0\t35\t0"), ImportMode::merge);
    EXPECT_EQ(run.load(1).values[1], (std::vector<float>{0, 50, 100}));
    EXPECT_EQ(run.load(1).values[2], (std::vector<float>{1, 9, 2}));
}

TEST(ImportSpreadsheet, MergeTellsOfStationsThatAreNotThereUntilItIsToldNotTo)
{
    RImports run;
    run.import(cast("1", 3, 10));
    run.user().choices = {0, 1};
    run.import(cast("7", 1) + cast("8", 1) + cast("9", 1) + cast("1", 3, 20), ImportMode::merge);
    EXPECT_EQ(run.user().messages.size(), 3u);
    EXPECT_EQ(run.user().messages[0],
              "Station not Found ...: A16  - 7  - B not in Collection!\nNo Data Import for this "
              "Station!\n\nContinue showing warnings?");
    EXPECT_EQ(run.labels(), Labels{"1"});
    EXPECT_EQ(run.load(1).values[2][0], 15);
}

TEST(ImportSpreadsheet, AbortAtAMissingStationEndsTheMerge)
{
    RImports run;
    run.import(cast("1", 3, 10));
    run.user().choices = {2};
    run.import(cast("7", 1) + cast("1", 3, 20), ImportMode::merge);
    EXPECT_EQ(run.load(1).values[2][0], 10);
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
}

TEST(ImportSpreadsheet, UpdateDropsMissingStationsSilently)
{
    RImports run;
    run.import(cast("1", 3, 10));
    run.import(cast("7", 1), ImportMode::update);
    EXPECT_EQ(run.messages(), Labels{"Importing Station-Data ...: 0 Stations Updated from\n\ncasts.txt"});
    EXPECT_EQ(run.labels(), Labels{"1"});
}

TEST(ImportSpreadsheet, MergeAndUpdateAreRefusedForAnEmptyCollection)
{
    for (const ImportMode mode : {ImportMode::merge, ImportMode::update}) {
        RImports run;
        run.import(cast("1", 3), mode);
        EXPECT_EQ(run.user().messages,
                  Labels{"Collection is empty ...: Merge/Update not possible for empty collections."});
        EXPECT_EQ(run.result.end, ImportEnd::failed);
    }
}

TEST(ImportSpreadsheet, UndoTakesTheNewStationsBack)
{
    RImports run;
    run.import(cast("1", 3));
    run.user().acceptReports = false;
    run.import(cast("2", 3) + cast("3", 3));
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_EQ(run.result.stationsStored, 0);
    EXPECT_EQ(run.labels(), Labels{"1"});
    EXPECT_NE(run.sample.bytes(".var").find("Nstat: 1\n"), std::string::npos);
    EXPECT_NE(run.sample.bytes(".log").find("ERROR: IMPORT     0 Stations"), std::string::npos);
    EXPECT_EQ(run.sample.reopen(), collection::OpenFilesResult::ok);
    run.user().acceptReports = true;
    run.import(cast("4", 3));
    EXPECT_EQ(run.labels(), (Labels{"1", "4"}));
}

TEST(ImportSpreadsheet, UndoBringsReplacedAndMovedStationsBack)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 11) + cast("3", 3, 12));
    const std::string before = run.sample.bytes(".hob") + run.sample.bytes(".dob") + run.sample.bytes(".var");
    run.user().acceptReports = false;
    run.import(cast("1", 7, 20) + cast("2", 2, 21) + cast("4", 3, 22));
    EXPECT_TRUE(run.told("3 Stations Imported"));
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_TRUE(run.sample.bytes(".hob") + run.sample.bytes(".dob") + run.sample.bytes(".var") == before);
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "3"}));
    EXPECT_EQ(run.load(1).values[2][0], 10);
    EXPECT_EQ(run.load(2).values[2][0], 11);
    EXPECT_EQ(run.collection().cruiseCount, 1);
}

TEST(ImportSpreadsheet, NothingOfARunReachesTheCollectionBeforeItsEnd)
{
    RImports run;
    run.import(cast("1", 3) + cast("2", 3));
    const std::string hob = run.sample.bytes(".hob"), var = run.sample.bytes(".var");
    run.options.run.stationStored = [&](const collection::STATIONHDR&) {
        EXPECT_TRUE(run.collection().isChanging());
        EXPECT_EQ(run.sample.bytes(".var"), var);
    };
    run.import(cast("1", 2) + cast("3", 3));
    EXPECT_FALSE(run.collection().isChanging());
    EXPECT_NE(run.sample.bytes(".var"), var);
    EXPECT_FALSE(common::fileExists(run.collection().path + ".jnl"));
}

TEST(ImportSpreadsheet, AFullCollectionIsToldByNameAndKeepsWhatItHas)
{
    RImports run;
    run.import(cast("1", 3) + cast("2", 3));
    // The last block begins near the end of what an offset can hold; the hole in the file takes no room.
    collection::STATIONHDR header{};
    ASSERT_TRUE(run.collection().readStationHeader(2, header, nullptr));
    const std::string block = run.sample.bytes(".dob").substr(static_cast<std::size_t>(header.dataOffset));
    header.dataOffset = std::numeric_limits<std::int32_t>::max() - 100;
    std::filesystem::resize_file(run.collection().path + ".dob", std::uintmax_t{1} << 31);
    {
        const common::FilePtr file = common::openFile(run.collection().path + ".dob", "r+b");
        ASSERT_TRUE(file && std::fseek(file.get(), header.dataOffset, SEEK_SET) == 0);
        ASSERT_EQ(std::fwrite(block.data(), 1, block.size(), file.get()), block.size());
    }
    ASSERT_EQ(run.sample.reopen(), collection::OpenFilesResult::ok);
    ASSERT_TRUE(run.collection().writeStationHeader(2, header, nullptr));
    ASSERT_EQ(run.sample.reopen(), collection::OpenFilesResult::ok);
    run.import(cast("3", 20) + cast("4", 3) + cast("5", 3));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.result.stationsStored, 1); // the last that an offset can point to
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "3"}));
    EXPECT_EQ(run.user().messages.at(0),
              "Importing Station-Data ...: Write-Error 9!\n\n Import will be Aborted\n\n" +
                  run.collection().path +
                  ".dob is full: a collection holds 2 GiB of data. Sorting and condensing it may make room.");
    ASSERT_EQ(run.sample.reopen(), collection::OpenFilesResult::ok);
    EXPECT_EQ(run.load(3).counts[1], 20);
}

TEST(ImportSpreadsheet, AFullDiskIsToldAndTheCollectionIsAsBefore)
{
    RImports run;
    run.import(cast("1", 3) + cast("2", 3));
    const std::string before = run.sample.bytes(".hob") + run.sample.bytes(".dob") + run.sample.bytes(".var");
    std::string many;
    for (int i = 3; i < 3000; ++i) many += cast(std::to_string(i), 30);
    std::ofstream(run.path(), std::ios::binary) << threeVariables + many;
    {
        const RFileSizeLimit full(400000);
        run.user().messages.clear();
        run.result =
            importSpreadsheet(run.collection(), run.sample.station, run.path(), run.options, run.user());
    }
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.result.stationsStored, 0);
    EXPECT_TRUE(run.told("Could not write " + run.collection().path +
                         ".var, .hob and .dob!\n\nThe collection is as it was before the import."));
    EXPECT_TRUE(run.sample.bytes(".hob") + run.sample.bytes(".dob") + run.sample.bytes(".var") == before);
    EXPECT_EQ(run.labels(), (Labels{"1", "2"}));
    run.import(cast("3", 3));
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "3"}));
}

TEST(ImportSpreadsheet, ARemovedFileIsToldAndNothingIsWritten)
{
    RImports run;
    run.import(cast("1", 3));
    std::filesystem::remove(run.collection().path + ".dob");
    const std::string hob = run.sample.bytes(".hob"), log = run.sample.bytes(".log");
    run.filesAreThere = false;
    run.import(cast("2", 3));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.user().messages.size(), 1U);
    EXPECT_TRUE(run.told("Collection " + run.collection().path + " can't be changed"));
    EXPECT_TRUE(run.sample.bytes(".hob") == hob);
    EXPECT_EQ(run.sample.bytes(".log"), log);
    EXPECT_FALSE(common::fileExists(run.collection().path + ".dob"));
}

TEST(ImportSpreadsheet, UndoOfTheFirstImportLeavesAnEmptyCollectionThatOpens)
{
    RImports run;
    run.user().acceptReports = false;
    run.import(cast("1", 3));
    EXPECT_EQ(run.collection().stationCount, 0);
    EXPECT_EQ(run.sample.reopen(), collection::OpenFilesResult::ok);
    run.user().acceptReports = true;
    run.import(cast("4", 3));
    EXPECT_EQ(run.labels(), Labels{"4"});
}

TEST(ImportSpreadsheet, EscapeAsksAndKeepsWhatWasStored)
{
    std::string many;
    for (int i = 0; i < 40; ++i) many += cast(std::to_string(i), 2);
    RImports run;
    run.user().abortAfter = 2;
    run.import(many);
    EXPECT_TRUE(run.told("Importing Station-Data ...: Really Want to Abort?"));
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_EQ(run.collection().stationCount, 20);
    EXPECT_FALSE(run.user().abort);
    EXPECT_TRUE(run.told("20 Stations Imported"));

    RImports other;
    other.user().abortAfter = 2;
    other.user().answers = {Answer::no};
    other.import(many);
    EXPECT_EQ(other.collection().stationCount, 40);
    EXPECT_EQ(other.result.end, ImportEnd::done);
}

TEST(ImportSpreadsheet, ABadLineKeepsTheStationsBeforeIt)
{
    RImports run;
    run.import(cast("1", 3) + cast("2", 3) + line("3", std::string(1 << 21, 'x')));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.labels(), Labels{"1"}); // the second was not yet known to be complete
    EXPECT_TRUE(run.told("Error reading input file ...: Could not interpret data line 8.\n\n"));
}

TEST(ImportSpreadsheet, AFaultyHeaderEndsTheImportAsAFailure)
{
    RImports run;
    run.import(cast("1", 3) + replaced(cast("2", 3), "07/", "77/"));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.labels(), Labels{"1"});
    EXPECT_TRUE(run.told("Line 5: Invalid date 77/15/1995"));
}

TEST(ImportSpreadsheet, AShortLineInFrontOfOthersEndsTheImportAsAFailure)
{
    for (const char* line : {"\n", "# comment\n"}) {
        RImports run;
        run.import(cast("1", 3) + line + cast("2", 3));
        EXPECT_EQ(run.result.end, ImportEnd::failed);
        EXPECT_EQ(run.labels(), Labels{"1"}); // what was stored stays
        EXPECT_FALSE(run.user().notes.empty());
    }
    RImports run;
    run.import(cast("1", 3) + "\n\n");
    EXPECT_EQ(run.result.end, ImportEnd::done);
}

TEST(ImportSpreadsheet, ColumnsThatNothingTakesAreTold)
{
    RImports run;
    run.importFile(replaced(threeVariables, "Salinity [psu]", "Chlorophyll [°]") + cast("1", 2));
    EXPECT_EQ(run.user().notes, Labels{run.path() + ": not imported: \"Chlorophyll [°]\""});
    EXPECT_EQ(run.load(1).counts[3], 0);
}

TEST(ImportSpreadsheet, AFileOfTheCollectionsOwnColumnsKeepsThemApart)
{
    RImports run;
    std::string header = metaHeader;
    int v = 0;
    for (const char* const label : {"CTDPRS [DBAR]", "CTDSAL [PSS-78]", "SALNTY [PSS-78]"}) {
        collection::setLabel(run.collection().variables.at(static_cast<std::size_t>(++v)), label);
        header += std::string("\t") + label;
    }
    run.importFile(header + "\n" + line("1", "10\t35\t34"));
    ASSERT_EQ(run.result.stationsStored, 1);
    const READSTATION station = run.load(1);
    EXPECT_EQ(station.values[1], std::vector<float>{10});
    EXPECT_EQ(station.values[2], std::vector<float>{35});
    EXPECT_EQ(station.values[3], std::vector<float>{34});
    EXPECT_TRUE(run.user().notes.empty());
}

TEST(ImportSpreadsheet, AFileOfOtherVariablesIsRefused)
{
    RImports run;
    run.importFile(metaHeader + "\tChlorophyll\n" + line("1", "5"));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_TRUE(run.told("no column of a variable of collection"));
    EXPECT_EQ(run.collection().stationCount, 0);
}

TEST(ImportSpreadsheet, AWriteProtectedCollectionIsLeftAlone)
{
    RImports run;
    run.import(cast("1", 2));
    run.collection().writable = false;
    run.import(cast("2", 2));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.collection().stationCount, 1);
}

TEST(ImportSpreadsheet, AUserMayCancelTheOptions)
{
    class RCancel : public RImportSettler {
    public:
        bool settleProperties(SPREADSHEETDESC&, std::span<const std::string>) override { return true; }
        bool settleHeaderVariables(SPREADSHEETDESC&, std::span<const std::string>) override { return true; }
        bool settleImport(IMPORTCHOICES&) override { return false; }
        int identify(std::string_view, std::string_view, std::span<const collection::VARINFO>) override
        {
            return 0;
        }
        std::optional<std::string> chooseDescription(std::string_view, const std::string&) override
        {
            return std::nullopt;
        }
    };
    RCancel settler;
    RImports run;
    run.options.settler = &settler;
    run.import(cast("1", 2));
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_EQ(run.collection().stationCount, 0);
    EXPECT_TRUE(run.user().messages.empty());
}

TEST(ImportSpreadsheet, CriteriaAreAsBeforeAfterwards)
{
    RImports run;
    run.collection().criteria.yearMin = 1990;
    run.import(cast("1", 2));
    EXPECT_EQ(run.collection().criteria.yearMin, 1990);
}

// --- a new collection

TEST(SpreadsheetVariables, BecomeThoseOfTheNewCollection)
{
    const RTemporaryDirectory directory;
    const std::string path = directory.file("new.txt");
    std::ofstream(path) << metaHeader + "\tCTDSAL [PSS-78]\tQF\tCTDPRS [DBAR]\tQF\tSame\tSame\n"
                        << line("1", "35\t0\t100\t4\t1\t2");
    RScriptedUser user;
    RCollection target;
    SPREADSHEETHEADER header;
    ASSERT_TRUE(spreadsheetVariables(path, nullptr, target, header, user));
    EXPECT_EQ(target.variableCount, 4);
    EXPECT_EQ(target.totalVariableCount, 4);
    EXPECT_EQ(target.headerRecordSize, 88);
    EXPECT_EQ(target.type, "HYD");
    EXPECT_STREQ(target.variables[2].label, "CTDPRS [DBAR]");
    EXPECT_EQ(target.variables[2].position, 2);

    target.directory = directory.path();
    target.name = "new";
    target.path = directory.path() + "new";
    target.writable = true;
    ASSERT_TRUE(target.createEmptyFiles());
    ASSERT_EQ(target.openStationFiles(target.path, user), collection::OpenFilesResult::ok);
    collection::STATIONDATA station;
    IMPORTOPTIONS options;
    options.header = header;
    EXPECT_EQ(importSpreadsheet(target, station, path, options, user).stationsStored, 1);
    ASSERT_EQ(target.loadStation(1, station, false), collection::LoadResult::ok);
    const READSTATION read = copyOf(station, 4);
    for (std::size_t v = 1; v <= 4; ++v)
        EXPECT_EQ(read.values[v], (std::vector<float>{std::array{0.0f, 35.0f, 100.0f, 1.0f, 2.0f}[v]}));
    EXPECT_EQ(read.flags[2], std::vector<int>{4});
}

TEST(SpreadsheetVariables, AFileWithoutDataColumnsMakesNoCollection)
{
    const RTemporaryDirectory directory;
    const std::string path = directory.file("new.txt");
    std::ofstream(path) << metaHeader + "\n" << line("1", "");
    RScriptedUser user;
    RCollection target;
    SPREADSHEETHEADER header;
    EXPECT_FALSE(spreadsheetVariables(path, nullptr, target, header, user));
    EXPECT_EQ(target.variableCount, 0);
    EXPECT_EQ(user.messages.size(), 1u);
}

std::string sharedData()
{
    const char* const named = std::getenv("NVQ_SHARED_DATA");
    return named ? named : NVQ_SOURCE_DIR "/../shared/data";
}

TEST(ImportSpreadsheet, ARealSection)
{
    const std::string path = sharedData() + "/casts/spreadsheet/section_dev.txt";
    if (!common::fileExists(path)) GTEST_SKIP() << "no file " << path;
    const RTemporaryDirectory directory;
    RScriptedUser user;
    RCollection target;
    SPREADSHEETHEADER read;
    ASSERT_TRUE(spreadsheetVariables(path, nullptr, target, read, user));
    ASSERT_EQ(target.variableCount, 13);
    target.directory = directory.path();
    target.name = "section";
    target.path = directory.path() + "section";
    target.writable = true;
    ASSERT_TRUE(target.createEmptyFiles());
    ASSERT_EQ(target.openStationFiles(target.path, user), collection::OpenFilesResult::ok);
    collection::STATIONDATA station;
    IMPORTOPTIONS options;
    options.header = read;
    EXPECT_EQ(importSpreadsheet(target, station, path, options, user).stationsStored, 106);
    // The counts that the file's description tells.
    const int values[] = {3272, 3272, 3272, 3229, 3042, 3042, 3035, 3042, 967, 967, 652, 539, 347};
    std::array<int, 13> counted{};
    std::map<int, int> flags;
    for (int n = 1; n <= 106; ++n) {
        ASSERT_EQ(target.loadStation(n, station, false), collection::LoadResult::ok);
        const READSTATION copy = copyOf(station, 13);
        for (std::size_t v = 1; v <= 13; ++v) {
            counted[v - 1] += copy.counts[v];
            for (std::size_t k = 0; k < copy.values[v].size(); ++k)
                if (copy.values[v][k] != missing) ++flags[copy.flags[v][k]];
        }
    }
    for (std::size_t v = 0; v < 13; ++v) EXPECT_EQ(counted[v], values[v]) << v + 1;
    EXPECT_EQ(flags, (std::map<int, int>{{0, 21093}, {1, 6888}, {4, 339}, {8, 358}}));
    EXPECT_EQ(target.cruiseCount, 1);
    EXPECT_TRUE(user.notes.empty());
}

} // namespace
