// What real spreadsheets hold beside the layout: quotes, other dates, blank ends, text for numbers.

#include <gtest/gtest.h>

#include "import/datefields.h"
#include "import/quotedline.h"
#include "import/spreadsheetfixture.h"

namespace {

using namespace importing;
using namespace testing_support;

constexpr float missing = common::MISSING_VALUE;
using Values = std::vector<float>;

// --- quotes

std::vector<std::string> fieldsOf(const std::string& text, char separator)
{
    std::array<std::string_view, 20> fields;
    std::string buffer;
    const int count = splitQuoted(text, separator, buffer, fields);
    return {fields.begin(), fields.begin() + count};
}
using Fields = std::vector<std::string>;

TEST(QuotedLine, AQuotedFieldMayHoldTheSeparator)
{
    EXPECT_EQ(fieldsOf("\"a;b\";c;\"d\"", ';'), (Fields{"a;b", "c", "d"}));
    EXPECT_EQ(fieldsOf("a;\"\";\"b\"", ';'), (Fields{"a", "", "b"}));
    EXPECT_EQ(fieldsOf(" \"a b\"  c \"d\" ", ' '), (Fields{"a b", "c", "d"}));
    EXPECT_EQ(fieldsOf("a; \"b;c\" ;d", ';'), (Fields{"a", "b;c", "d"}));
}

TEST(QuotedLine, TwoQuotesAreOne)
{
    EXPECT_EQ(fieldsOf("\"5\"\" net\";\"\"\"\"", ';'), (Fields{"5\" net", "\""}));
}

TEST(QuotedLine, OtherQuotesAreCharacters)
{
    EXPECT_EQ(fieldsOf("5\";\"a;b\"c;\"d", ';'), (Fields{"5\"", "\"a", "b\"c", "\"d"}));
    EXPECT_EQ(fieldsOf("\"a\"b;\"c;d\"", ';'), (Fields{"\"a\"b", "c;d"}));
    EXPECT_EQ(fieldsOf("\"", ';'), Fields{"\""});
}

TEST(QuotedLine, NothingInAFieldDividesIt)
{
    EXPECT_EQ(fieldsOf("\"a\x1F b\";c\x1F"
                       "d",
                       ';'),
              (Fields{"a  b", "c d"}));
}

TEST(RealSpreadsheet, QuotedLabelsAndValuesAreReadAsWithoutQuotes)
{
    const std::string data = line("1", "5\t0\t20,5\t4") + line("1", "6\t0\t21\t0") + line("2", "6\t0\t21\t0");
    RSpreadsheetFixture plain, quoted;
    plain.read(twoVariables + data);
    quoted.read("\"" + replaced(replaced(twoVariables, "\t", "\"\t\""), "\n", "\"\n") + "\"" +
                replaced(replaced(data, "\t", "\"\t\""), "\n", "\"\n\""));
    EXPECT_EQ(quoted.stations, plain.stations);
    EXPECT_EQ(quoted.stations.size(), 2u);
    RSpreadsheetFixture some;
    some.read(twoVariables + replaced(data, "20,5", "\"20,5\""));
    EXPECT_EQ(some.stations, plain.stations);
}

TEST(RealSpreadsheet, AQuotedSeparatorIsPartOfTheLabel)
{
    RSpreadsheetFixture file;
    file.read(replaced(replaced(twoVariables, "Temperature", "\"Temperature; mean\""), "\t", ";") +
              replaced(replaced(line("S", "5\t0\t20\t4"), "\t", ";"), ";S;", ";\"S;1\";"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].label(), "S;1");
    EXPECT_EQ(file.stations[0].values[2], Values{20});
}

TEST(RealSpreadsheet, QuotesBehindTheFirstBlocksAreFound)
{
    std::string data;
    for (int k = 0; k < 30000; ++k) data += line("1", "5\t0\t20\t4");
    RSpreadsheetFixture file;
    file.read(twoVariables + data + line("\"2\"", "5\t0\t\"7\"\t4"));
    ASSERT_EQ(file.stations.size(), 2u);
    EXPECT_EQ(file.stations[1].label(), "2");
    EXPECT_EQ(file.stations[1].values[2], Values{7});
}

// --- dates

variables::HEADERTIME dateOf(const std::string& text)
{
    variables::HEADERTIME time;
    return scanDate(text, time) ? time : variables::HEADERTIME{};
}

TEST(DateField, IsReadInEachOfItsForms)
{
    const variables::HEADERTIME day{2009, 7, 14, 0, 0};
    for (const char* text : {"07/14/2009", "7/14/2009", "2009-07-14", "2009-7-14", "14.07.2009", "14.7.2009",
                             " 2009-07-14 ", "2009-07-14Z", "2009-07-14T"})
        EXPECT_EQ(dateOf(text), day) << text;
    EXPECT_EQ(dateOf("14.07.99").year, 1999);
    EXPECT_EQ(dateOf("14.07.2010"),
              (variables::HEADERTIME{2010, 7, 14, 0, 0})); // its last zero is no fraction
    EXPECT_EQ(dateOf("0099-07-14").year, 99);
}

TEST(DateField, TakesTheTimeBehindIt)
{
    const variables::HEADERTIME moment{2009, 7, 14, 12, 30};
    for (const char* text :
         {"2009-07-14T12:30", "2009-07-14T12:30:00", "2009-07-14T12:30:59.5Z", "2009-07-14 12:30",
          "2009-07-14t12:30+00:00", "2009-07-14T12:30-0000", "14.07.2009 12:30", "07/14/2009 12:30"})
        EXPECT_EQ(dateOf(text), moment) << text;
}

TEST(DateField, RefusesWhatItCanNotRead)
{
    for (const char* text : {"", "x", "2009", "20090714", "09-07-14", "2009-07", "14.07", "07/14",
                             "2009-07-14T12:30+02:00", "2009-07-14T12:30:00-0330", "1/2/40000"})
        EXPECT_EQ(dateOf(text), variables::HEADERTIME{}) << text;
}

TEST(RealSpreadsheet, DatesOfOtherFormsAreRead)
{
    for (const char* date : {"2010-07-20", "20.07.2010", "07/20/2010"}) {
        RSpreadsheetFixture file;
        file.read(twoVariables + line("1", "5\t0\t20\t4", date));
        ASSERT_EQ(file.stations.size(), 1u) << date;
        EXPECT_EQ(file.stations[0].header.year, 2010) << date;
        EXPECT_EQ(file.stations[0].header.month, 7) << date;
        EXPECT_EQ(file.stations[0].header.day, 20) << date;
        EXPECT_EQ(file.stations[0].header.hour, 12) << date;
    }
}

TEST(RealSpreadsheet, ADateWithATimeGivesItWhereThereIsNoTimeColumn)
{
    const std::string data = line("1", "5\t0\t20\t4", "2009-07-14T23:45:00Z", "01:02");
    RSpreadsheetFixture both, alone;
    both.read(twoVariables + data);
    EXPECT_EQ(both.stations.at(0).header.hour, 1);
    alone.read(replaced(twoVariables, "hh:mm", "x") + data);
    ASSERT_EQ(alone.stations.size(), 1u);
    EXPECT_EQ(alone.stations[0].header.hour, 23);
    EXPECT_EQ(alone.stations[0].header.minute, 45);
}

TEST(RealSpreadsheet, AWrongDateIsToldWithItsColumnAndText)
{
    RSpreadsheetFixture file;
    file.read(twoVariables + line("1", "5\t0\t20\t4", "2009/07/14", "12:34", "10.5\t95"));
    ASSERT_EQ(file.user.messages.size(), 1u);
    for (const std::string part :
         {":2: column 4 \"mon/day/yr\" holds \"2009/07/14\"", ":2: column 7 \"Lat (°N)\" holds \"95\""})
        EXPECT_NE(file.user.messages[0].find(file.path() + part), std::string::npos) << part;
    EXPECT_EQ(file.user.messages[0].find("column 6"), std::string::npos);
}

// --- values

TEST(RealSpreadsheet, WordsForNoValueAreNoFault)
{
    RSpreadsheetFixture file;
    std::string data;
    for (const char* text : {"NaN", "nan", "-NAN", "inf", "-Inf", "+INFINITY", "", "  ", "-1e10"})
        data += line("1", std::string("5\t0\t") + text + "\t4");
    file.read(twoVariables + data);
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].counts[2], 0);
    EXPECT_EQ(file.account.unreadable, 0);
    EXPECT_EQ(file.account.valuesRead, 9);
}

TEST(RealSpreadsheet, TextForNumbersIsCountedAndTheFirstIsTold)
{
    RSpreadsheetFixture file;
    file.read(twoVariables + line("1", "5\t0\t20\t4") + line("1", "6\t0\t n/a \t4") +
              line("1", "x\t0\t1e39\t4"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].values[2], (Values{20, missing, missing}));
    EXPECT_EQ(file.account.unreadable, 3);
    EXPECT_EQ(file.account.firstUnreadable, "line 3, column \"Temperature [°C]\": \"n/a\"");
    expectSums(file.account);
}

TEST(RealSpreadsheet, TrailingSeparatorsAreNothing)
{
    RSpreadsheetFixture plain, trailing;
    const std::string data = line("1", "5\t0\t20\t4") + line("1", "6\t0\t21\t4");
    plain.read(twoVariables + data);
    trailing.read(replaced(twoVariables + data, "\n", "\t\t\t\n"));
    EXPECT_EQ(trailing.stations, plain.stations);
    EXPECT_TRUE(trailing.user.notes.empty());
}

TEST(RealSpreadsheet, ColumnsBeyondTheLastAreToldOnce)
{
    std::string header = metaHeader;
    for (int i = 9; i <= 108; ++i) header += i < 12 ? "\tV" + std::to_string(i) : "\t";
    RSpreadsheetFixture file;
    file.read(header + "x\n" + line("1", "5\t6\t7") + line("2", "5\t6\t7"));
    EXPECT_EQ(file.stations.size(), 2u);
    EXPECT_EQ(file.user.notes,
              std::vector<std::string>{file.path() + ":1: columns beyond number 107 are not read"});
}

TEST(RealSpreadsheet, TheFlagsOfTheFiftiethVariableAreRead)
{
    std::string header = metaHeader, data;
    for (int i = 1; i <= 50; ++i) {
        header += "\tV" + std::to_string(i) + "\tQF";
        data += (i > 1 ? "\t" : "") + std::to_string(i) + "\t" + std::to_string(i % 10 + 1);
    }
    for (const bool another : {false, true}) {
        RSpreadsheetFixture file;
        file.read(header + "\n" + line("1", data));
        ASSERT_EQ(file.header.sourceCount(), 50);
        ASSERT_EQ(file.stations.size(), 1u);
        EXPECT_EQ(file.stations[0].values[50], std::vector<float>{50});
        EXPECT_EQ(file.stations[0].flags[49], std::vector<int>{10});
        EXPECT_EQ(file.stations[0].flags[50], std::vector<int>{1});
        EXPECT_TRUE(file.user.notes.empty());
        data.back() = '7';
        file.read(header + (another ? "\tmore\n" : ":V50\n") + line("1", data + (another ? "\t3" : "")));
        EXPECT_EQ(file.stations.at(0).flags[50], std::vector<int>{7});
        EXPECT_EQ(file.user.notes.size(), another ? 1u : 0u);
        data.back() = '1';
    }
    RSpreadsheetFixture other;
    other.read(header.substr(0, header.size() - 2) + "Quality\n" + line("1", data));
    EXPECT_EQ(other.user.notes,
              std::vector<std::string>{other.path() + ":1: columns beyond number 107 are not read"});
}

TEST(RealSpreadsheet, VariablesBeyondTheFiftiethAndCutLabelsAreTold)
{
    std::string header = metaHeader + "\t" + std::string(61, 'a');
    for (int i = 2; i <= 52; ++i) header += "\tV" + std::to_string(i);
    RSpreadsheetFixture file;
    file.read(header + "\n");
    ASSERT_EQ(file.user.notes.size(), 2u);
    EXPECT_NE(file.user.notes[0].find("column 9 is cut"), std::string::npos) << file.user.notes[0];
    EXPECT_NE(file.user.notes[1].find("column 59 \"V51\""), std::string::npos) << file.user.notes[1];
}

// --- ends

TEST(RealSpreadsheet, LinesOfSeparatorsAtTheEndAreBlank)
{
    const std::string data = line("1", "5\t0\t20\t4") + line("2", "6\t0\t21\t4");
    RSpreadsheetFixture plain;
    plain.read(twoVariables + data);
    for (const std::string end :
         {"\t\t\t\t\t\t\t\t\t\t\t\n", "\t\t\t\t\t\t\t\t\t\n\n \t\n", "\n\t\t\t\t\t\t\t\t\t"}) {
        RSpreadsheetFixture file;
        file.read(twoVariables + data + end);
        EXPECT_EQ(file.stations, plain.stations);
        EXPECT_TRUE(file.user.messages.empty()) << file.user.messages[0];
        EXPECT_TRUE(file.user.notes.empty());
        EXPECT_EQ(file.account.blankLines,
                  std::count(end.begin(), end.end(), '\n') + (end.ends_with('\n') ? 0 : 1));
        EXPECT_EQ(file.account.refusedLines, 0);
        expectSums(file.account);
    }
}

TEST(RealSpreadsheet, LinesOfSeparatorsAtTheEndOfAFileWithoutMetadataAreNoLevels)
{
    const std::string header =
        "Cruise\tStation\tx\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]\tT\n";
    RSpreadsheetFixture file;
    file.read(header + "\t\t1\t1/1/2000\t\t5\t5\t\t7\n\t\t\t\t\t\t\t\t\n");
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].counts[1], 1);
    EXPECT_EQ(file.account.blankLines, 1);
}

TEST(RealSpreadsheet, ALineOfSeparatorsInsideIsAStationThatTheCheckRejects)
{
    RSpreadsheetFixture file;
    file.read(twoVariables + line("1", "5\t0\t20\t4") + "\t\t\t\t\t\t\t\t\t\t\t\n" +
              line("2", "6\t0\t21\t4") + "\n");
    EXPECT_EQ(file.stations.size(), 1u);
    EXPECT_TRUE(file.endedEarly);
    EXPECT_EQ(file.account.dataLines, 1);
    EXPECT_EQ(file.account.refusedLines, 1);
    EXPECT_EQ(file.account.blankLines, 2);
    EXPECT_EQ(file.account.stationsRefused, 1);
    expectSums(file.account);
}

TEST(RealSpreadsheet, EveryEndOfLineGoesWithAMarkAndBlankLines)
{
    RSpreadsheetFixture plain;
    const std::string content = twoVariables + line("1", "5\t0\t20\t4") + line("2", "6\t0\t21\t4");
    plain.read(content);
    for (const char* end : {"\n", "\r\n", "\r"}) {
        RSpreadsheetFixture file;
        file.read("\xEF\xBB\xBF" + replaced(content + "\n\t\t\n", "\n", end));
        EXPECT_EQ(file.stations, plain.stations);
        EXPECT_TRUE(file.user.notes.empty());
    }
}

TEST(RealSpreadsheet, AHugeFirstLineOfAFileWithCarriageReturnsIsRead)
{
    RSpreadsheetFixture file;
    const std::string header = replaced(twoVariables, "\n", std::string(900000, '\t') + "\n");
    file.read(replaced(header + line("1", "5\t0\t20\t4"), "\n", "\r"));
    EXPECT_EQ(file.stations.size(), 1u);
}

// --- the account

TEST(SpreadsheetAccount, EveryLineAndValueHasItsPlace)
{
    RSpreadsheetFixture file;
    file.read(twoVariables + line("1", "5\t0\t20\t4") + line("1", "\t0\t20\t4") + line("2", "5\t0\t\t4") +
              "\n\n");
    EXPECT_EQ(file.account.lines, 6);
    EXPECT_EQ(file.account.headerLines, 1);
    EXPECT_EQ(file.account.dataLines, 3);
    EXPECT_EQ(file.account.blankLines, 2);
    EXPECT_EQ(file.account.refusedLines, 0);
    EXPECT_EQ(file.account.valuesRead, 4);
    EXPECT_EQ(file.account.valuesDelivered, 4);
    EXPECT_EQ(file.account.stationsRefused, 0);
}

TEST(SpreadsheetAccount, WhatComesBehindTheEndOfReadingIsRefused)
{
    RSpreadsheetFixture file;
    file.read(twoVariables + line("1", "5\t0\t20\t4") + "the end\n\n" + line("2", "5\t0\t20\t4"));
    EXPECT_EQ(file.account.lines, 5);
    EXPECT_EQ(file.account.refusedLines, 2);
    EXPECT_EQ(file.account.blankLines, 1);
    RSpreadsheetFixture bad;
    bad.read(twoVariables + line("1", "5\t0\t20\t4") + line("1", std::string(1 << 20, ' ')));
    EXPECT_EQ(bad.code, readBadData);
    EXPECT_EQ(bad.account.refusedLines, 2);
    EXPECT_EQ(bad.account.stationsRefused, 1);
    EXPECT_EQ(bad.account.valuesRefused, 2);
    expectSums(bad.account);
}

TEST(SpreadsheetAccount, StationsAndVariablesThatDoNotFitAreRefused)
{
    std::string data;
    for (int k = 0; k < 32768; ++k) data += line("1", "1\t1\t2\t2");
    for (int k = 0; k < 30000; ++k) data += line("2", "1\t1\t2\t2");
    RSpreadsheetFixture file;
    file.read(metaHeader + "\tA\tB\tC\tD\n" + data);
    EXPECT_EQ(file.account.stationsRefused, 1);
    EXPECT_EQ(file.account.refusedLines, 32768);
    EXPECT_EQ(file.account.dataLines, 30000);
    EXPECT_EQ(file.account.valuesRead, 4 * (32768 + 30000));
    EXPECT_EQ(file.account.valuesDelivered, 90000);
    expectSums(file.account);
}

TEST(SpreadsheetAccount, CutLabelsAreCountedByStation)
{
    RSpreadsheetFixture file;
    const std::string label = "Ærø, the longest label of all";
    file.read(twoVariables + line("1", "5\t0\t20\t4") + line(label, "5\t0\t20\t4") +
              line(label, "6\t0\t20\t4") + replaced(line("3", "5\t0\t20\t4"), "\tB\t", "\tXBT\t") +
              line("12345678901234567890", "6\t0\t20\t4"));
    EXPECT_EQ(file.stations.size(), 4u);
    EXPECT_EQ(file.account.labelsCut, 2);
    EXPECT_EQ(file.account.firstCut, label);
}

TEST(SpreadsheetAccount, ADefaultCountsAsRead)
{
    RSpreadsheetFixture file;
    file.write(twoVariables + line("1", "5\t0\t20\t4"));
    ASSERT_EQ(readSpreadsheetHeader(file.path(), nullptr, file.user, file.header), HeaderResult::ok);
    std::vector<collection::VARINFO> targets = file.header.sources;
    associateByNumber(file.header.sources, targets);
    targets[2].assocSource = -1;
    file.header.sources[2].defaultValue = 7.5f;
    RSpreadsheetReader reader(file.header, targets, {}, file.user);
    ASSERT_TRUE(reader.open(file.path()));
    collection::STATIONDATA station;
    while (reader.readStation(station) > 0) {
    }
    EXPECT_EQ(reader.account().valuesDelivered, 2);
    expectSums(reader.account());
}

} // namespace
