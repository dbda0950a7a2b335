// The stations of a spreadsheet.

#include <gtest/gtest.h>

#include "common/textcoding.h"
#include "import/spreadsheetfixture.h"
#include "variables/timeconversions.h"

namespace {

using namespace importing;
using namespace testing_support;

constexpr float missing = common::MISSING_VALUE;
using Values = std::vector<float>;

RSpreadsheetFixture& stationsOf(RSpreadsheetFixture& file, const std::string& data)
{
    return file.read(twoVariables + data);
}

std::string levels(const std::string& station, int count, const std::string& date = "07/15/1995")
{
    std::string text;
    for (int k = 0; k < count; ++k)
        text += line(station, std::to_string(k) + "\t0\t" + std::to_string(k % 30) + ".5\t4", date);
    return text;
}

const std::string goodFile = levels("1", 3) + levels("2", 2) + levels("3", 1);

TEST(ReadSpreadsheet, AGoodFile)
{
    RSpreadsheetFixture file;
    stationsOf(file, goodFile);
    ASSERT_EQ(file.stations.size(), 3u);
    const READSTATION& station = file.stations[0];
    EXPECT_STREQ(station.header.cruise, "A16");
    EXPECT_STREQ(station.header.station, "1");
    EXPECT_STREQ(station.header.type, "B");
    EXPECT_EQ(station.header.longitude, 10.5f);
    EXPECT_EQ(station.header.latitude, -20.25f);
    EXPECT_EQ(station.header.bottomDepth, 4000);
    EXPECT_EQ(station.header.year, 1995);
    EXPECT_EQ(station.header.month, 7);
    EXPECT_EQ(station.header.day, 15);
    EXPECT_EQ(station.header.hour, 12);
    EXPECT_EQ(station.header.minute, 34);
    EXPECT_EQ(station.header.valueCount, 6);
    EXPECT_EQ(station.values[1], (Values{0, 1, 2}));
    EXPECT_EQ(station.values[2], (Values{0.5f, 1.5f, 2.5f}));
    EXPECT_EQ(station.flags[2], (std::vector<int>{4, 4, 4}));
    EXPECT_EQ(file.code, readEnd);
    EXPECT_TRUE(file.user.messages.empty());
    EXPECT_TRUE(file.user.notes.empty());
}

TEST(ReadSpreadsheet, TheBytesOfTheStationsAreThoseOfTheFile)
{
    RSpreadsheetFixture file;
    stationsOf(file, goodFile);
    EXPECT_EQ(file.bytes, static_cast<std::int64_t>((twoVariables + goodFile).size()));
}

TEST(ReadSpreadsheet, EveryKindOfLineEndGivesTheSame)
{
    RSpreadsheetFixture expected;
    stationsOf(expected, goodFile);
    for (const char* end : {"\r\n", "\r"}) {
        RSpreadsheetFixture file;
        file.read(replaced(twoVariables + goodFile, "\n", end));
        EXPECT_EQ(file.stations, expected.stations);
        EXPECT_TRUE(file.user.notes.empty());
    }
    RSpreadsheetFixture file;
    file.read((twoVariables + goodFile).substr(0, (twoVariables + goodFile).size() - 1));
    EXPECT_EQ(file.stations, expected.stations);
}

TEST(ReadSpreadsheet, AFileCutAtAnyByteGivesTheWholeLinesInFrontOfTheCut)
{
    const std::string content = twoVariables + goodFile;
    RSpreadsheetFixture whole;
    whole.read(content);
    for (std::size_t cut = twoVariables.size(); cut < content.size(); ++cut) {
        RSpreadsheetFixture file;
        file.read(content.substr(0, cut));
        ASSERT_EQ(file.result, HeaderResult::ok);
        const auto wholeLines = std::count(content.begin() + static_cast<std::ptrdiff_t>(twoVariables.size()),
                                           content.begin() + static_cast<std::ptrdiff_t>(cut), '\n');
        int read = 0;
        for (const READSTATION& station : file.stations) read += station.counts[1];
        ASSERT_GE(read, wholeLines) << cut;
        ASSERT_LE(read, wholeLines + 1) << cut;
        if (file.stations.size() < 2) continue;
        ASSERT_EQ(file.stations[0], whole.stations[0]) << cut;
    }
}

TEST(ReadSpreadsheet, NoDataLinesGiveNoStations)
{
    RSpreadsheetFixture file;
    file.read(twoVariables);
    EXPECT_TRUE(file.stations.empty());
    EXPECT_EQ(file.code, readEnd);
    file.read(twoVariables + "\n\n\r\n");
    EXPECT_TRUE(file.stations.empty());
    EXPECT_TRUE(file.user.notes.empty());
}

TEST(ReadSpreadsheet, LinesThatDifferOnlyInTimeAndBottomDepthAreOneStation)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "0\t0\t1\t0", "07/15/1995", "10:00") +
                         replaced(line("1", "9\t0\t1\t0", "07/15/1995", "23:59"), "4000", "77"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].counts[1], 2);
    EXPECT_EQ(file.stations[0].header.hour, 10);
    EXPECT_EQ(file.stations[0].header.bottomDepth, 4000);
}

TEST(ReadSpreadsheet, FieldsThatReadAlikeAreOneStation)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("12.000", "0\t0\t1\t0", "07/15/1995") + line(" 12", "9\t0\t1\t0", "7/15/95") +
                         line("12", "9\t0\t1\t0", "7/15/95", "12:34", "10.50\t-20,25"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].label(), "12");
    EXPECT_EQ(file.stations[0].counts[1], 3);
}

TEST(ReadSpreadsheet, EachPartOfTheKeyBeginsANewStation)
{
    const std::string first = line("1", "0\t0\t1\t0");
    for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{{"A16", "A17"},
                                                                                   {"\t1\t", "\t2\t"},
                                                                                   {"\tB\t", "\tC\t"},
                                                                                   {"07/", "08/"},
                                                                                   {"/15/", "/16/"},
                                                                                   {"1995", "1996"},
                                                                                   {"10.5", "10.6"},
                                                                                   {"-20.25", "-20.5"}}) {
        RSpreadsheetFixture file;
        stationsOf(file, first + replaced(first, from, to));
        EXPECT_EQ(file.stations.size(), 2u) << from;
    }
}

TEST(ReadSpreadsheet, AStationThatComesBackIsASecondOne)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 1) + levels("2", 1) + levels("1", 1));
    EXPECT_EQ(file.stations.size(), 3u);
}

TEST(ReadSpreadsheet, LevelsStayInTheOrderOfTheFile)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "50\t0\t1\t0") + line("1", "10\t0\t2\t0") + line("1", "30\t0\t3\t0"));
    EXPECT_EQ(file.stations[0].values[1], (Values{50, 10, 30}));
}

TEST(ReadSpreadsheet, DecimalCommasAreReadInEveryNumber)
{
    RSpreadsheetFixture file;
    stationsOf(file, replaced(line("1", "1,5\t0\t1,000,5\t0", "07/15/1995", "12:34", "10,5\t-20,25"), "4000",
                              "3999,75"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].values[1], Values{1.5f});
    EXPECT_EQ(file.stations[0].values[2], Values{1.0f});
    EXPECT_EQ(file.stations[0].header.longitude, 10.5f);
    EXPECT_EQ(file.stations[0].header.latitude, -20.25f);
    EXPECT_EQ(file.stations[0].header.bottomDepth, 3999.75f);
}

TEST(ReadSpreadsheet, EmptyFieldsAndTextAreNoValues)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t0\t\t0") + line("1", "2\t0\tn.a.\t0") + line("1", "3\t0\t-1e10\t0") +
                         line("1", "4\t0\t5\t0"));
    EXPECT_EQ(file.stations[0].values[2], (Values{missing, missing, missing, 5}));
    EXPECT_EQ(file.stations[0].counts[2], 1);
}

TEST(ReadSpreadsheet, NumbersWithTextBehindThemAreReadUpToItAndTold)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "0\t0\t1.25  \t0") + line("1", "1\t0\t1.5D+03\t0") +
                         line("1", "2\t0\t1,234.5\t0") + line("1", "3\t0\t1 234,5\t0") +
                         line("1", "4\t0\t5*\t0") + line("1", "5\t0\t0x10\t0") + line("1", "6\t0\t1e3 \t0"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].values[2], (Values{1.25f, 1.5f, 1.234f, 1, 5, 0, 1000}));
    EXPECT_EQ(file.account.partly, 5);
    EXPECT_EQ(file.account.firstPartly,
              "line 3, column \"Temperature [°C]\": \"1.5D+03\", read up to \"1.5\"");
    EXPECT_EQ(file.account.unreadable, 0);
    EXPECT_EQ(file.account.valuesRead, 14);
    expectSums(file.account);
    EXPECT_NE(accountText(file.account, {}, ImportMode::addReplace)
                  .find("Fields that are only partly a number: 5, the first in line 3, "),
              std::string::npos);
    stationsOf(file, line("1", "0\t0\t2.5 m/s"));
    EXPECT_EQ(file.account.partly, 1); // the last field of its line
}

TEST(ReadSpreadsheet, FlagsAreReadOnlyBesideAValueAndAreUnknownOtherwise)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t\t2\tx") + line("1", "1\t257\t\t8") + line("1", "1\t-1\t2\t4.9") +
                         line("1", "1\t8\t2"));
    EXPECT_EQ(file.stations[0].flags[1], (std::vector<int>{1, 1, 255, 8}));
    EXPECT_EQ(file.stations[0].flags[2], (std::vector<int>{1, 1, 4, 1}));
}

TEST(ReadSpreadsheet, AVariableWithoutAnyValueHasNoBlock)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t0\t\t") + line("1", "2\t0\t\t"));
    EXPECT_TRUE(file.stations[0].values[2].empty());
    EXPECT_EQ(file.stations[0].header.valueCount, 2);
}

TEST(ReadSpreadsheet, WithoutAnyDepthTheFirstVariableStillHasItsBlock)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "\t0\t5\t0"));
    EXPECT_EQ(file.stations[0].values[1], Values{missing});
    EXPECT_EQ(file.stations[0].values[2], Values{5});
    EXPECT_EQ(file.stations[0].counts[1], 1);
}

TEST(ReadSpreadsheet, YearsBelowAHundredAreOfTheLastCentury)
{
    const auto yearOf = [](const std::string& year) {
        RSpreadsheetFixture file;
        stationsOf(file, line("1", "1\t0\t2\t0", "7/15/" + year));
        return file.stations.empty() ? -1 : static_cast<int>(file.stations[0].header.year);
    };
    EXPECT_EQ(yearOf("99"), 1999);
    EXPECT_EQ(yearOf("00"), 1900);
    EXPECT_EQ(yearOf("100"), 100);
    EXPECT_EQ(yearOf("2024"), 2024);
    EXPECT_EQ(yearOf("40000"), -1);
    EXPECT_EQ(yearOf("x"), -1);
}

TEST(ReadSpreadsheet, AYearThatAHeaderCannotHoldIsRefusedWithItsField)
{
    const std::string header = replaced(twoVariables, "mon/day/yr", "days since 1900-01-01 00:00:00");
    RSpreadsheetFixture file;
    file.read(header + line("1", "1\t0\t2\t0", "40000") + line("2", "1\t0\t2\t0", "20000000"));
    ASSERT_EQ(file.result, HeaderResult::ok);
    file.header.desc.metaColumn[metaDate] = 3;
    file.header.desc.convId[metaDate] = variables::daysSinceRow;
    ASSERT_TRUE(variables::referenceDayOf(file.header.labels[3], file.header.desc.referenceDay[metaDate]));
    file.readStations();
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].header.year, 2009);
    EXPECT_TRUE(file.endedEarly);
    ASSERT_EQ(file.user.messages.size(), 1u);
    EXPECT_NE(file.user.messages[0].find("Line 3: Invalid date 00/00/0000"), std::string::npos);
    EXPECT_NE(
        file.user.messages[0].find(":3: column 4 \"days since 1900-01-01 00:00:00\" holds \"20000000\""),
        std::string::npos)
        << file.user.messages[0];
}

TEST(ReadSpreadsheet, LongitudesWestAreCountedOnEastwards)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t0\t2\t0", "7/15/95", "0:0", "-150.5\t10") +
                         line("1", "1\t0\t2\t0", "7/15/95", "0:0", "360\t10") +
                         line("1", "1\t0\t2\t0", "7/15/95", "0:0", "-360\t11"));
    ASSERT_EQ(file.stations.size(), 3u);
    EXPECT_EQ(file.stations[0].header.longitude, 209.5f);
    EXPECT_EQ(file.stations[1].header.longitude, 0);
    EXPECT_EQ(file.stations[2].header.longitude, 0);
}

TEST(ReadSpreadsheet, LettersOfTheHemispheresAreSigns)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t0\t2\t0", "7/15/95", "0:0", "10.5W\t20.25S") +
                         line("1", "1\t0\t2\t0", "7/15/95", "0:0", "10,5° e\t20.25 N"));
    ASSERT_EQ(file.stations.size(), 2u);
    EXPECT_EQ(file.stations[0].header.longitude, 349.5f);
    EXPECT_EQ(file.stations[0].header.latitude, -20.25f);
    EXPECT_EQ(file.stations[1].header.longitude, 10.5f);
    EXPECT_EQ(file.stations[1].header.latitude, 20.25f);
}

TEST(ReadSpreadsheet, PositionsWithMoreThanANumberAreRefused)
{
    for (const char* const position : {"10 30.5\t20", "10\t20 15 S", "-10.5W\t20", "10:30\t20", "10N\t20"}) {
        RSpreadsheetFixture file;
        stationsOf(file, line("1", "1\t0\t2\t0", "7/15/95", "0:0", position));
        EXPECT_TRUE(file.stations.empty()) << position;
        ASSERT_EQ(file.user.messages.size(), 1u) << position;
        EXPECT_NE(file.user.messages[0].find("Invalid location"), std::string::npos) << position;
    }
}

TEST(ReadSpreadsheet, LabelsAreCutToTwentyBytesAndTheTypeToOne)
{
    RSpreadsheetFixture file;
    stationsOf(file, replaced(line("abcdefghijklmnopqr  tuvw", "1\t0\t2\t0"), "\tB\t", "\tXBT\t"));
    EXPECT_EQ(file.stations[0].label(), "abcdefghijklmnopqr");
    EXPECT_STREQ(file.stations[0].header.type, "X");
    file.read(twoVariables + line("Ørsted-Ærø-Ålborg-Øst-Æ", "1\t0\t2\t0"));
    EXPECT_EQ(file.stations[0].label().size(), 20u);
    EXPECT_EQ(file.stations[0].label().substr(0, 4), "\xD8rst");
}

TEST(ReadSpreadsheet, StationsWhoseLabelsDifferOnlyInWhatIsCutStayApart)
{
    const auto withCruise = [](const char* cruise, const char* data) {
        return replaced(line("1", data), "A16", cruise);
    };
    RSpreadsheetFixture file;
    stationsOf(file, withCruise("EXPEDITION-LABEL-LONG-1", "10\t0\t2\t0") +
                         withCruise(" EXPEDITION-LABEL-LONG-1 ", "20\t0\t3\t0") +
                         withCruise("EXPEDITION-LABEL-LONG-2", "10\t0\t4\t0") +
                         withCruise("EXPEDITION-LABEL-LON", "30\t0\t4\t0"));
    ASSERT_EQ(file.stations.size(), 3u);
    for (const READSTATION& station : file.stations)
        EXPECT_STREQ(station.header.cruise, "EXPEDITION-LABEL-LON");
    EXPECT_EQ(file.stations[0].counts[1], 2);
    EXPECT_EQ(file.account.labelsCut, 2);
    EXPECT_EQ(file.account.firstCut, "EXPEDITION-LABEL-LONG-1");
    expectSums(file.account);
    stationsOf(file, withCruise("EXPEDITION         ", "10\t0\t2\t0") +
                         withCruise("  EXPEDITION                  ", "20\t0\t3\t0"));
    EXPECT_EQ(file.stations.size(), 1u); // none is cut
}

TEST(ReadSpreadsheet, TheTypeIsSettledByTheNumberOfLevels)
{
    for (const auto& [count, expected] : {std::pair(250, "B"), std::pair(251, "C")}) {
        RSpreadsheetFixture file;
        stationsOf(file, replaced(levels("1", count), "\tB\t", "\t*\t") +
                             replaced(levels("2", count), "\tB\t", "\t\t"));
        ASSERT_EQ(file.stations.size(), 2u);
        EXPECT_STREQ(file.stations[0].header.type, expected);
        EXPECT_STREQ(file.stations[1].header.type, expected);
    }
}

TEST(ReadSpreadsheet, ALineOfSeparatorsBeginsAStationThatTheCheckRejects)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 2) + "\t\t\t\t\t\t\t\t\t\t\t\n" + levels("2", 2));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_TRUE(file.endedEarly);
    ASSERT_EQ(file.user.messages.size(), 1u);
    EXPECT_TRUE(
        file.user.messages[0].starts_with("NVQ Data Import: Line 4: Invalid date 00/00/0000 (mm/dd/yyyy).\n"))
        << file.user.messages[0];
    EXPECT_NE(file.user.messages[0].find("\nImport will be aborted.\n\n" + file.path() +
                                         ":4: column 4 \"mon/day/yr\" holds \"\"\n"),
              std::string::npos);
}

TEST(ReadSpreadsheet, AStationWithoutAReadablePositionIsRejected)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t0\t2\t0", "7/15/95", "0:0", "\t10"));
    EXPECT_TRUE(file.stations.empty());
    EXPECT_NE(file.user.messages.at(0).find("Invalid location"), std::string::npos);
}

TEST(ReadSpreadsheet, AFaultyHeaderIsToldWithItsLine)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 1) + line("2", "1\t0\t2\t0", "13/15/95", "25:00"));
    EXPECT_EQ(file.user.messages,
              std::vector<std::string>{"NVQ Data Import: Line 3: Invalid date 13/15/1995 (mm/dd/yyyy).\n"
                                       "Invalid time 25:00 (hh.sMM).\n\nImport will be aborted.\n\n" +
                                       file.path() + ":3: column 4 \"mon/day/yr\" holds \"13/15/95\"\n" +
                                       file.path() + ":3: column 5 \"hh:mm\" holds \"25:00\""});
    EXPECT_EQ(file.code, readEnd);
}

TEST(ReadSpreadsheet, HourTwentyFourBecomesHourZero)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t0\t2\t0", "7/15/95", "24:00"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].header.hour, 0);
    EXPECT_EQ(file.stations[0].header.day, 15);
}

std::pair<int, int> clockOf(const RSpreadsheetFixture& file)
{
    const collection::STATIONHDR& header = file.stations.at(0).header;
    return {header.hour, header.minute};
}

TEST(ReadSpreadsheet, TimesOfATwelveHourClock)
{
    const std::vector<std::pair<std::string, std::pair<int, int>>> times = {
        {"1:30 PM", {13, 30}},   {"12:05 am", {0, 5}}, {"12:05 p.m.", {12, 5}}, {"1:30pm", {13, 30}},
        {"9:15:30 AM", {9, 15}}, {"1 PM", {13, 0}},    {"13:30 PM", {13, 30}},  {"11:59:59.5 Pm", {23, 59}}};
    for (const auto& [text, expected] : times) {
        RSpreadsheetFixture column, date;
        stationsOf(column, line("1", "1\t0\t2\t0", "7/15/95", text));
        ASSERT_EQ(column.stations.size(), 1u) << text;
        EXPECT_EQ(clockOf(column), expected) << text;
        date.read(replaced(twoVariables, "\thh:mm", "") +
                  replaced(line("1", "1\t0\t2\t0", "7/15/95 " + text, "gone"), "gone\t", ""));
        ASSERT_EQ(date.stations.size(), 1u) << text;
        EXPECT_EQ(clockOf(date), expected) << text;
    }
}

TEST(ReadSpreadsheet, ATimeOfGreenwichIsReadAndOneOfAnotherZoneIsRefusedWithItsField)
{
    for (const char* text :
         {"12:30", "12:30Z", "12:30 UTC", "12:30:15 gmt", "12:30+00:00", "12:30 UTC+0", "12:30h"}) {
        RSpreadsheetFixture file;
        stationsOf(file, line("1", "1\t0\t2\t0", "7/15/95", text));
        ASSERT_EQ(file.stations.size(), 1u) << text;
        EXPECT_EQ(file.stations[0].header.hour, 12) << text;
        EXPECT_EQ(file.stations[0].header.minute, 30) << text;
    }
    for (const std::string text :
         {"12:30 EST", "12:30+02:00", "12:30 UTC-3", "13:30 AM", "12:30 MESZ", "12:30 - 13:00"}) {
        RSpreadsheetFixture column, date;
        stationsOf(column, line("1", "1\t0\t2\t0", "7/15/95", text));
        EXPECT_TRUE(column.stations.empty()) << text;
        ASSERT_EQ(column.user.messages.size(), 1u) << text;
        EXPECT_NE(column.user.messages[0].find(":2: column 5 \"hh:mm\" holds \"" + text + "\""),
                  std::string::npos)
            << column.user.messages[0];
        date.read(replaced(twoVariables, "\thh:mm", "") +
                  replaced(line("1", "1\t0\t2\t0", "2009-07-14T" + text, "gone"), "gone\t", ""));
        EXPECT_TRUE(date.stations.empty()) << text;
        ASSERT_EQ(date.user.messages.size(), 1u) << text;
    }
}

TEST(ReadSpreadsheet, ALineWithTooFewFieldsEndsTheFileAndIsTold)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 2) + "the end\n" + levels("2", 2));
    EXPECT_EQ(file.stations.size(), 1u);
    ASSERT_EQ(file.user.notes.size(), 1u);
    EXPECT_TRUE(file.user.notes[0].starts_with(file.path() + ":4: ")) << file.user.notes[0];
    RSpreadsheetFixture blank;
    stationsOf(blank, levels("1", 2) + "\n" + levels("2", 2));
    EXPECT_EQ(blank.stations.size(), 1u);
    EXPECT_EQ(blank.user.notes.size(), 1u);
}

TEST(ReadSpreadsheet, AFileThatIsLeftBeforeItsEndHasEndedEarly)
{
    for (const char* rest : {"the end\n", "the end", "# comment\n\n", "A16\t2\tB"}) {
        RSpreadsheetFixture file;
        stationsOf(file, levels("1", 2) + rest);
        EXPECT_EQ(file.stations.size(), 1u) << rest;
        EXPECT_TRUE(file.endedEarly) << rest;
        EXPECT_EQ(file.user.notes.size(), 1u) << rest;
    }
    for (const char* blank : {"\n", "   \n", " \t \n"}) {
        RSpreadsheetFixture file;
        stationsOf(file, levels("1", 2) + blank + levels("2", 2));
        EXPECT_EQ(file.stations.size(), 1u) << blank;
        EXPECT_TRUE(file.endedEarly) << blank;
        EXPECT_EQ(file.account.refusedLines, 2) << blank;
        expectSums(file.account);
    }
    for (const char* nothing : {"", "\n", " \n\t\t\n\x1A"}) {
        RSpreadsheetFixture file;
        stationsOf(file, goodFile + nothing);
        EXPECT_EQ(file.stations.size(), 3u) << nothing;
        EXPECT_FALSE(file.endedEarly) << nothing;
    }
}

TEST(ReadSpreadsheet, WhatStandsBehindACarriageReturnInsideALineIsTold)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 2) + replaced(line("1", "7\t0\t8\t0"), "\n", "\r") + levels("2", 2));
    EXPECT_EQ(file.account.linesCut, 1);
    EXPECT_EQ(file.account.firstCutLine, 4);
    EXPECT_NE(accountText(file.account, {}, ImportMode::addReplace).find(": 1, the first line 4."),
              std::string::npos);
    stationsOf(file, goodFile);
    EXPECT_EQ(file.account.linesCut, 0);
}

TEST(ReadSpreadsheet, BlankLinesAtTheEndAreNoDamage)
{
    RSpreadsheetFixture file;
    stationsOf(file, goodFile + "\n  \n\x1A\n");
    EXPECT_EQ(file.stations.size(), 3u);
    EXPECT_TRUE(file.user.notes.empty());
}

TEST(ReadSpreadsheet, ManyLevelsGrowTheBuffersWithoutLoss)
{
    for (const int count : {499, 500, 501, 999, 1001, 20000}) {
        RSpreadsheetFixture file;
        stationsOf(file, levels("1", count) + levels("2", 3));
        ASSERT_EQ(file.stations.size(), 2u);
        ASSERT_EQ(file.stations[0].counts[1], count);
        for (int k = 0; k < count; ++k) {
            ASSERT_EQ(file.stations[0].values[1][static_cast<std::size_t>(k)], static_cast<float>(k));
            ASSERT_EQ(file.stations[0].values[2][static_cast<std::size_t>(k)],
                      static_cast<float>(k % 30) + 0.5f);
            ASSERT_EQ(file.stations[0].flags[2][static_cast<std::size_t>(k)], 4);
        }
        EXPECT_EQ(file.stations[1].values[1], (Values{0, 1, 2}));
    }
}

TEST(ReadSpreadsheet, NothingOfALongStationIsLeftInTheNextOne)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 700) + line("2", "5\t\t\t") + line("2", "6\t\t\t"));
    EXPECT_EQ(file.stations[1].values[1], (Values{5, 6}));
    EXPECT_EQ(file.stations[1].flags[1], (std::vector<int>{1, 1}));
    EXPECT_TRUE(file.stations[1].values[2].empty());
}

TEST(ReadSpreadsheet, AStationOfTooManyLevelsIsToldAndTheOthersAreRead)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 2) + levels("2", 32768) + levels("3", 32767));
    ASSERT_EQ(file.stations.size(), 2u);
    EXPECT_EQ(file.stations[0].label(), "1");
    EXPECT_EQ(file.stations[1].label(), "3");
    EXPECT_EQ(file.stations[1].counts[1], 32767);
    EXPECT_EQ(file.user.messages,
              std::vector<std::string>{"Station not stored!: Too many data points for Station A16 2"});
    EXPECT_EQ(file.bytes,
              static_cast<std::int64_t>(
                  (twoVariables + levels("1", 2) + levels("2", 32768) + levels("3", 32767)).size()));
}

TEST(ReadSpreadsheet, VariablesThatDoNotFitAreOmittedAndTold)
{
    std::string data;
    for (int k = 0; k < 30000; ++k) data += line("1", std::to_string(k) + "\t1\t2\t3");
    RSpreadsheetFixture file;
    file.read(metaHeader + "\tA\tB\tC\tD\n" + data);
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].counts[3], 30000);
    EXPECT_EQ(file.stations[0].counts[4], 0);
    EXPECT_TRUE(file.stations[0].values[4].empty());
    EXPECT_EQ(file.user.messages,
              std::vector<std::string>{
                  "Variable 4 and following omitted!: Too many data points for Station A16 1"});
}

TEST(ReadSpreadsheet, ALineOfNearlyAMebibyteIsRead)
{
    const std::string filler(1000000, ' ');
    RSpreadsheetFixture file;
    stationsOf(file, line("1", "1\t0\t" + filler + "2.5\t0") + line("1", "2\t0\t3\t0" + filler));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].values[2], (Values{2.5f, 3}));
}

TEST(ReadSpreadsheet, ALongerLineIsBadData)
{
    RSpreadsheetFixture file;
    stationsOf(file, levels("1", 1) + line("2", std::string(1 << 20, ' ')) + levels("3", 1));
    EXPECT_EQ(file.code, readBadData);
}

TEST(ReadSpreadsheet, BlanksDivideFieldsInRuns)
{
    class RBlanks : public RSpreadsheetSettler {
    public:
        bool settleProperties(SPREADSHEETDESC& desc, std::span<const std::string>) override
        {
            desc.sepIndex = 2;
            desc.sepChars = ' ';
            return true;
        }
        bool settleHeaderVariables(SPREADSHEETDESC& desc, std::span<const std::string> labels) override
        {
            EXPECT_EQ(labels.size(), 7u);
            desc.metaColumn[metaLongitude] = 3;
            desc.metaColumn[metaLatitude] = 4;
            desc.role[3] = metaLongitude;
            desc.role[4] = metaLatitude;
            desc.nMeta = 5;
            return true;
        }
    };
    RBlanks settler;
    RSpreadsheetFixture file;
    file.read("  Cruise Station   mon/day/yr LON LAT  Depth Temp\n"
              " A16   7 7/15/95   -30  20   5 10.5\n"
              "A16 7 7/15/95 -30 20   6 11\n",
              &settler);
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].label(), "7");
    EXPECT_EQ(file.stations[0].header.longitude, 330);
    EXPECT_EQ(file.stations[0].values[1], (Values{5, 6}));
    EXPECT_EQ(file.stations[0].values[2], (Values{10.5f, 11}));
}

TEST(ReadSpreadsheet, MetadataBehindTheDataAreRead)
{
    class RAccept : public RSpreadsheetSettler {
    public:
        bool settleProperties(SPREADSHEETDESC&, std::span<const std::string>) override { return true; }
        bool settleHeaderVariables(SPREADSHEETDESC& desc, std::span<const std::string>) override
        {
            common::copyText(desc.defCruise, "X");
            desc.convId[metaLongitude] = 1;
            desc.convA[metaLongitude] = -1;
            desc.convB[metaLongitude] = 5;
            return true;
        }
    };
    RAccept settler;
    RSpreadsheetFixture file;
    file.read("Depth\tQF\tLon (°E)\tmon/day/yr\tLat (°N)\tStation\n5\t4\t30\t1/2/2003\t40\tS\n"
              "6\t0\t30\t1/2/2003\t40\tS\n7\t0\t30\t1/2/2003\t41\tS\n",
              &settler);
    ASSERT_EQ(file.stations.size(), 2u);
    EXPECT_STREQ(file.stations[0].header.cruise, "X");
    EXPECT_EQ(file.stations[0].header.longitude, 335); // -30 + 5, counted on eastwards
    EXPECT_EQ(file.stations[0].values[1], (Values{5, 6}));
    EXPECT_EQ(file.stations[0].flags[1], (std::vector<int>{4, 0}));
}

TEST(ReadSpreadsheet, WithoutAVariableThereAreNoStations)
{
    RSpreadsheetFixture file;
    file.read(metaHeader + "\n" + line("1", ""));
    EXPECT_EQ(file.result, HeaderResult::ok);
    EXPECT_TRUE(file.stations.empty());
    EXPECT_EQ(file.code, readEnd);
}

TEST(ReadSpreadsheet, ADefaultValueFillsItsVariable)
{
    RSpreadsheetFixture file;
    file.read(twoVariables + levels("1", 2));
    std::vector<collection::VARINFO> targets = file.header.sources;
    associateByNumber(file.header.sources, targets);
    targets[2].assocSource = -1;
    file.header.sources[2].defaultValue = 7.5f;
    RSpreadsheetReader reader(file.header, targets, {}, file.user);
    ASSERT_TRUE(reader.open(file.path()));
    collection::STATIONDATA station;
    ASSERT_GT(reader.readStation(station), 0);
    const READSTATION read = copyOf(station, 2);
    EXPECT_EQ(read.values[2], (Values{7.5f, 7.5f}));
    EXPECT_EQ(read.flags[2], (std::vector<int>{1, 1}));
    EXPECT_EQ(read.counts[2], 2);
}

TEST(ReadSpreadsheet, ABrokenLabelDoesNotHideTheColumnsOfAHeaderInUtf8)
{
    RSpreadsheetFixture file;
    stationsOf(file, line("\u00E9", "1\t0\t2\t0") + line("\xC3", "1\t0\t2\t0") + line("\xE9", "1\t0\t2\t0"));
    ASSERT_EQ(file.result, HeaderResult::ok);
    EXPECT_TRUE(file.header.standardLayout);
    EXPECT_EQ(file.header.labels[5], "Lon (°E)");
    ASSERT_EQ(file.stations.size(), 3u);
    EXPECT_EQ(file.stations[0].label(), common::labelFromFile("\u00E9", true));
    EXPECT_EQ(file.stations[1].label(), "\xC3");
    EXPECT_EQ(file.stations[2].label(), "\xE9");
    EXPECT_TRUE(file.user.notes.empty());
    EXPECT_TRUE(file.user.messages.empty());
}

TEST(ReadSpreadsheet, ALaterLabelInLatin1TurnsTheFileLatin1)
{
    // The first mebibyte is ASCII, so that the coding shows only behind it.
    RSpreadsheetFixture file;
    std::string content = replaced(twoVariables, " [°C]", "");
    content += levels("1", 20000) + line("Troms\xF8", "1\t0\t2\t0");
    file.read(content);
    ASSERT_EQ(file.stations.size(), 2u);
    EXPECT_EQ(file.stations[1].label(), "Troms\xF8");
}

} // namespace
