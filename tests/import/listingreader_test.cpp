// Stations of listings as the reader delivers them.

#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "import/listingfixture.h"

namespace {

using namespace importing;
using namespace testing_support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr float missing = common::MISSING_VALUE;
const std::string numbers4 = "              1              2              3\n";
const std::string numbers3 = "            1            2            3\n";
const std::string levels4 = "            0 0       20.125 4           35 1\n"
                            "         10.5 1       -1e+10 8     34.98766 2\n";
const std::string levels3 = "            0       20.125           35\n"
                            "         10.5    -1.0e+010     34.98766\n";

std::string file4(const HEAD4& head = {}, const std::string& levels = levels4)
{
    return head4(threeLabels) + head.line() + numbers4 + levels;
}

std::string file3(const HEAD4& head = {}, const std::string& levels = levels3)
{
    return head.line3() + numbers3 + levels;
}

TEST(ListingReader, AStationOfVersion4ComesWithValuesAndFlags)
{
    RListingFixture f;
    f.read4(file4());
    EXPECT_EQ(f.code, readEnd);
    ASSERT_EQ(f.stations.size(), 1U);
    const READSTATION& s = f.stations[0];
    EXPECT_STREQ(s.header.cruise, "A16");
    EXPECT_STREQ(s.header.station, "12");
    EXPECT_STREQ(s.header.type, "B");
    EXPECT_EQ(s.header.month, 7);
    EXPECT_EQ(s.header.day, 15);
    EXPECT_EQ(s.header.year, 1995);
    EXPECT_EQ(s.header.hour, 0);
    EXPECT_EQ(s.header.minute, 0);
    EXPECT_EQ(s.header.longitude, 209.519f);
    EXPECT_EQ(s.header.latitude, -17.5f);
    EXPECT_EQ(s.header.bottomDepth, 3596);
    EXPECT_EQ(s.header.lastSampleDepth, 10);
    EXPECT_THAT(s.values[1], ElementsAre(0, 10.5f));
    EXPECT_THAT(s.values[2], ElementsAre(20.125f, missing));
    EXPECT_THAT(s.values[3], ElementsAre(35, 34.98766f));
    EXPECT_THAT(s.flags[1], ElementsAre(0, 1));
    EXPECT_THAT(s.flags[2], ElementsAre(4, 1));
    EXPECT_THAT(s.flags[3], ElementsAre(1, 2));
    EXPECT_EQ(s.counts[1], 2);
    EXPECT_EQ(s.counts[2], 1);
    EXPECT_EQ(s.counts[3], 2);
}

TEST(ListingReader, InVersion3AllFlagsAreUnknown)
{
    RListingFixture f;
    f.read3(description3(threeLabels), file3());
    ASSERT_EQ(f.stations.size(), 1U) << f.fault;
    EXPECT_THAT(f.stations[0].values[2], ElementsAre(20.125f, missing));
    EXPECT_THAT(f.stations[0].values[3], ElementsAre(35, 34.98766f));
    for (int v = 1; v <= 3; ++v)
        EXPECT_THAT(f.stations[0].flags[static_cast<std::size_t>(v)], ElementsAre(1, 1));
    EXPECT_EQ(f.stations[0].header.bottomDepth, 3596);
}

TEST(ListingReader, LabelsAreTakenByTheirColumnsBlanksInside)
{
    HEAD4 head;
    head.cruise = "Meteor 11  leg 5 abc";
    head.station = "St. 7 / haul 12.500";
    RListingFixture f;
    f.read4(file4(head));
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_STREQ(f.stations[0].header.cruise, "Meteor 11  leg 5 abc");
    EXPECT_STREQ(f.stations[0].header.station, "St. 7 / haul 12.500");
    head.cruise = "Leg 5 of 9";
    head.station = "a b c";
    f.read3(description3(threeLabels), file3(head));
    EXPECT_STREQ(f.stations.at(0).header.cruise, "Leg 5 of 9");
    EXPECT_STREQ(f.stations.at(0).header.station, "a b c");
}

TEST(ListingReader, AFileThatAnEditorHasTurnedIntoUtf8IsReadByCharacters)
{
    HEAD4 head;
    head.cruise = "M\xC3\xA4rz \xC3\x9C" + std::string(14, ' '); // 20 characters
    head.station = std::string(18, ' ') + "\xC3\xA9"
                                          "7";
    std::string line =
        "# " + head.cruise + " " + head.station + " C 12/15/1995 209.519 -17.500  3596    10    2   3\n";
    RListingFixture f;
    f.read4(head4(threeLabels) + line + numbers4 + levels4);
    ASSERT_EQ(f.stations.size(), 1U) << f.currentLine;
    EXPECT_STREQ(f.stations[0].header.cruise, "M\xE4rz \xDC");
    EXPECT_STREQ(f.stations[0].header.station, "\xE9"
                                               "7");
    EXPECT_STREQ(f.stations[0].header.type, "C");
    EXPECT_EQ(f.stations[0].header.month, 12);
}

TEST(ListingReader, Latin1AndUtf8LabelsInOneFileKeepTheirCharacters)
{
    HEAD4 first, second;
    first.cruise = "M\xE4rz";
    second.cruise = "\xD0\x9C\xD0\xBE\xD1\x80\xD0\xB5";
    RListingFixture f;
    f.read4(file4(first) + second.line() + numbers4 + levels4);
    ASSERT_EQ(f.stations.size(), 2U);
    EXPECT_STREQ(f.stations[0].header.cruise, "M\xE4rz");
    EXPECT_STREQ(f.stations[1].header.cruise, "\xD0\x9C\xD0\xBE\xD1\x80\xD0\xB5");
}

TEST(ListingReader, AStationThatLacksAVariableGetsNoBlockForIt)
{
    HEAD4 head;
    head.variables = 2;
    RListingFixture f;
    f.read4(head4(threeLabels) + head.line() + "              1              3\n" +
            "            0 0           35 1\n           10 0           36 1\n");
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_THAT(f.stations[0].values[2], IsEmpty());
    EXPECT_EQ(f.stations[0].counts[2], 0);
    EXPECT_THAT(f.stations[0].values[3], ElementsAre(35, 36));
    EXPECT_EQ(f.stations[0].header.valueCount, 4);
}

TEST(ListingReader, AVariableWithoutAnyValueGetsNoBlock)
{
    RListingFixture f;
    f.read4(file4({}, "   0 0 -1e10 0 35 1\n  10 0 -1.0e+010 8 36 1\n"));
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_THAT(f.stations[0].values[2], IsEmpty());
    EXPECT_THAT(f.stations[0].values[3], ElementsAre(35, 36));
}

TEST(ListingReader, TheFirstVariableCountsInEveryLevelAlsoWhereItIsMissing)
{
    RListingFixture f;
    f.read4(file4({}, "   -1e10 0 1 0 35 1\n  10 0 2 0 36 1\n"));
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_EQ(f.stations[0].counts[1], 2);
    EXPECT_THAT(f.stations[0].values[1], ElementsAre(missing, 10));
}

TEST(ListingReader, WithoutASourceForTheFirstVariableItsValuesAreMissing)
{
    RListingFixture f;
    f.targetSources = {0, 2, 1}; // the third takes what the file calls depth
    f.read4(file4());
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_THAT(f.stations[0].values[1], ElementsAre(missing, missing));
    EXPECT_THAT(f.stations[0].values[3], ElementsAre(0, 10.5f));
    EXPECT_EQ(f.stations[0].counts[1], 2);
}

TEST(ListingReader, VariablesMayStandInAnyOrder)
{
    RListingFixture f;
    f.read4(head4(threeLabels) + HEAD4().line() + " 3 1 2\n 35 5 0 6 4 7\n 36 5 10 6 5 7\n");
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_THAT(f.stations[0].values[1], ElementsAre(0, 10));
    EXPECT_THAT(f.stations[0].values[3], ElementsAre(35, 36));
    EXPECT_THAT(f.stations[0].flags[3], ElementsAre(5, 5));
}

TEST(ListingReader, ADescriptionsNumbersNeedNotCount)
{
    std::string description = description3(threeLabels);
    description = replaced(description, "\n 2   ", "\n12   ");
    RListingFixture f;
    f.read3(description, HEAD4().line3() + "  3  1 12\n 35 0 20\n 36 10 21\n");
    ASSERT_EQ(f.stations.size(), 1U) << f.fault;
    EXPECT_THAT(f.stations[0].values[2], ElementsAre(20, 21));
}

TEST(ListingReader, AVariableThatIsNotDescribedIsToldOnce)
{
    RListingFixture f;
    const std::string station = HEAD4().line() + " 1 2 7\n 0 0 5 0 6 0\n 1 0 6 0 7 0\n";
    f.read4(head4(threeLabels) + station + station);
    EXPECT_EQ(f.stations.size(), 2U);
    EXPECT_THAT(f.user.notes,
                ElementsAre(f.path() + ":12: variable 7 is not described; its values are not read"));
}

TEST(ListingReader, WhatStandsBehindTheAnnouncedVariablesIsToldOnce)
{
    RListingFixture f;
    const std::string station = HEAD4().line() + " 1 2 3\n 0 0 5 0 6 0 9 0\n 1 0 6 0 7 0 9 0\n";
    f.read4(head4(threeLabels) + station + station);
    EXPECT_EQ(f.stations.size(), 2U);
    EXPECT_THAT(f.user.notes,
                ElementsAre(HasSubstr(f.path() + ":13: the line holds more than the station's 3 "
                                                 "variables")));
}

TEST(ListingReader, LabelsFollowTheRuleForNumbers)
{
    HEAD4 head;
    head.station = "12.000";
    RListingFixture f;
    f.read4(file4(head));
    EXPECT_STREQ(f.stations.at(0).header.station, "12"); // as a spreadsheet has it
}

TEST(ListingReader, TheSameVariableTwiceIsABadHeader)
{
    RListingFixture f;
    f.read4(head4(threeLabels) + HEAD4().line() + " 1 2 2\n" + levels4);
    EXPECT_EQ(f.code, readBadHeader);
    EXPECT_EQ(f.lineNumber, 12);
    EXPECT_EQ(f.currentLine, " 1 2 2");
}

// --- dates and positions

TEST(ListingReader, Year1899AndYear2201AreRejected)
{
    for (const int year : {1899, 2201}) {
        HEAD4 head;
        head.date = common::format(" 7/15/%4d", year);
        RListingFixture f;
        f.read4(file4(head));
        EXPECT_EQ(f.code, readBadHeader);
        EXPECT_THAT(f.user.messages, ElementsAre(common::format(
                                         "NVQ Data Import: Invalid Date (mm/dd/yyyy) 7/15/%d for Station\n\n"
                                         "A16 12\n\nImport will be aborted...",
                                         year)));
        RListingFixture g;
        g.read3(description3(threeLabels), file3(head));
        EXPECT_EQ(g.code, readBadHeader);
        EXPECT_EQ(g.user.messages, f.user.messages);
    }
}

TEST(ListingReader, TheFirstAndTheLastYearAreTaken)
{
    for (const char* date : {" 1/ 1/1900", "12/31/2200"}) {
        HEAD4 head;
        head.date = date;
        RListingFixture f;
        EXPECT_EQ(f.read4(file4(head)).stations.size(), 1U) << date;
    }
}

TEST(ListingReader, DaysAndMonthsOutsideTheCalendarAreRejected)
{
    for (const char* date : {" 0/15/1995", "13/15/1995", " 7/ 0/1995", " 7/32/1995"}) {
        HEAD4 head;
        head.date = date;
        RListingFixture f;
        EXPECT_EQ(f.read4(file4(head)).code, readBadHeader) << date;
        EXPECT_EQ(f.user.messages.size(), 1U);
    }
}

TEST(ListingReader, LongitudesBecome0To360AndTheFullCircleIsZero)
{
    const auto longitudeOf = [](const std::string& text) {
        HEAD4 head;
        head.longitude = text;
        RListingFixture f;
        f.read4(file4(head));
        return f.stations.empty() ? -1.0f : f.stations[0].header.longitude;
    };
    EXPECT_EQ(longitudeOf("0.000"), 0);
    EXPECT_EQ(longitudeOf("360.000"), 0);
    EXPECT_EQ(longitudeOf("-0.500"), 359.5f);
    EXPECT_EQ(longitudeOf("-360.00"), 0);
    EXPECT_EQ(longitudeOf("359.999"), 359.999f);
}

TEST(ListingReader, PositionsOutsideTheEarthAreRejected)
{
    const auto expectRefused = [](const std::string& longitude, const std::string& latitude) {
        HEAD4 head;
        head.longitude = longitude;
        head.latitude = latitude;
        RListingFixture f;
        EXPECT_EQ(f.read4(file4(head)).code, readBadHeader);
        EXPECT_THAT(f.user.messages, ElementsAre("NVQ Data Import: Invalid Position for Station\n\nA16 "
                                                 "12\n\nImport will be aborted..."));
    };
    expectRefused("360.001", "10.000");
    expectRefused("-360.01", "10.000");
    expectRefused("10.000", "90.001");
    expectRefused("10.000", "-90.001");
}

// --- headers that can't be read

TEST(ListingReader, EachFieldOfAHeaderThatIsNoneIsNamed)
{
    const std::string good = HEAD4().line();
    const auto reasonFor = [&](std::size_t column, const std::string& junk) {
        std::string line = good;
        line.replace(column, junk.size(), junk);
        RListingFixture f;
        f.read4(head4(threeLabels) + line + numbers4 + levels4);
        EXPECT_EQ(f.code, readBadHeader);
        EXPECT_EQ(f.lineNumber, 11);
        EXPECT_EQ(f.currentLine.substr(f.currentLine.find('\n')), "\n\n" + line.substr(0, line.size() - 1));
        return f.currentLine.substr(0, f.currentLine.find('\n'));
    };
    EXPECT_EQ(reasonFor(0, "x"), "reason: stopped at character 1 (not a header line).");
    EXPECT_EQ(reasonFor(1, "x"), "reason: stopped at character 1 (not a header line).");
    EXPECT_EQ(reasonFor(46, "xx"), "reason: stopped at character 47 (month).");
    EXPECT_EQ(reasonFor(48, "-"), "reason: stopped at character 50 (day).");
    EXPECT_EQ(reasonFor(49, "1x"), "reason: stopped at character 50 (day).");
    EXPECT_EQ(reasonFor(52, "  x "), "reason: stopped at character 53 (year).");
    EXPECT_EQ(reasonFor(57, "1.2.3  "), "reason: stopped at character 58 (longitude).");
    EXPECT_EQ(reasonFor(65, "    nan"), "reason: stopped at character 66 (latitude).");
    EXPECT_EQ(reasonFor(73, "     "), "reason: stopped at character 74 (bottom depth).");
    EXPECT_EQ(reasonFor(79, "1,5  "), "reason: stopped at character 80 (deepest depth).");
    EXPECT_EQ(reasonFor(84, "   -1"), "reason: stopped at character 85 (nlvls).");
    EXPECT_EQ(reasonFor(90, "x"), "reason: stopped at character 91 (ncols).");
}

TEST(ListingReader, AHeaderThatEndsEarlyNamesTheFirstFieldThatIsMissing)
{
    const std::string good = HEAD4().line();
    const auto reasonFor = [&](std::size_t length) {
        RListingFixture f;
        f.read4(head4(threeLabels) + good.substr(0, length) + "\n" + numbers4 + levels4);
        EXPECT_EQ(f.code, readBadHeader);
        return f.currentLine.substr(0, f.currentLine.find('\n'));
    };
    EXPECT_EQ(reasonFor(2), "reason: stopped at character 3 (cruise label).");
    EXPECT_EQ(reasonFor(23), "reason: stopped at character 24 (station label).");
    EXPECT_EQ(reasonFor(44), "reason: stopped at character 45 (station type).");
    EXPECT_EQ(reasonFor(90), "reason: stopped at character 91 (ncols).");
}

TEST(ListingReader, Version3GivesNoReasons)
{
    HEAD4 head;
    head.date = "xx/15/1995";
    RListingFixture f;
    f.read3(description3(threeLabels), file3(head));
    EXPECT_EQ(f.code, readBadHeader);
    EXPECT_EQ(f.lineNumber, 1);
    EXPECT_THAT(f.currentLine, StartsWith("# A16 "));
}

TEST(ListingReader, ADateIsReadUpToItsSlashes)
{
    HEAD4 head;
    head.date = " 7-15-1995";
    RListingFixture f;
    EXPECT_EQ(f.read4(file4(head)).code, readBadHeader);
}

// --- levels

TEST(ListingReader, TheLineNumberIsThePhysicalLineOfTheFile)
{
    RListingFixture f;
    f.read4(head4(threeLabels) + "\n\n" + HEAD4().line() + numbers4 + " 0 0 1 0 2 0\n 10 0 1 0 x 0\n");
    EXPECT_EQ(f.code, readBadData);
    EXPECT_EQ(f.lineNumber, 16);
    EXPECT_EQ(f.currentLine, " 10 0 1 0 x 0");
    f.read3(description3(threeLabels), file3({}, " 1 2 3\n\n"));
    EXPECT_EQ(f.code, readBadData);
    EXPECT_EQ(f.lineNumber, 4);
}

TEST(ListingReader, AFileThatEndsWithinAStationIsBadData)
{
    RListingFixture f;
    f.read4(file4({}, " 0 0 1 0 2 0\n"));
    EXPECT_EQ(f.code, readBadData);
    EXPECT_EQ(f.lineNumber, 14);
    EXPECT_EQ(f.currentLine, "");
    EXPECT_THAT(f.stations, IsEmpty());
    EXPECT_EQ(f.account.refusedLines, 3);
    EXPECT_EQ(f.account.valuesRefused, 3);
}

TEST(ListingReader, NumbersAreReadWhereverTheyStandInALevel)
{
    RListingFixture f;
    f.read4(file4({}, "0 0\t+1.5e1 0       -1.234567e-10 9\n  10 1 2-3 0 behind it\n"));
    EXPECT_EQ(f.code, readBadData); // "2-3 0": a value 2, a flag -3
    f.read4(file4({}, "0 0\t+1.5e1 0       -1.234567e-10 9\n  10 1 2 0 3 0 behind it\n"));
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_THAT(f.stations[0].values[2], ElementsAre(15, 2));
    EXPECT_THAT(f.stations[0].values[3], ElementsAre(-1.234567e-10f, 3));
    EXPECT_THAT(f.stations[0].flags[3], ElementsAre(9, 0));
    f.read3(description3(threeLabels), file3({}, " 0 1-2\n 1-3-4\n")); // run together
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_THAT(f.stations[0].values[3], ElementsAre(-2, -4));
}

TEST(ListingReader, WhatIsNoNumberIsBadData)
{
    for (const char* level : {"0 0 1 0 nan 0", "0 0 1 0 1e99 0", "0 0 1,5 0 2 0", "0 0 1.2.3 0 2 0",
                              "0 0 1 0 2 300", "0 0 1 0 2", "0 0 1 x 2 0", "0x10 0 1 0 2 0", "", "# A16"}) {
        RListingFixture f;
        EXPECT_EQ(f.read4(file4({}, std::string(level) + "\n 1 1 1 1 1 1\n")).code, readBadData) << level;
    }
}

TEST(ListingReader, BlankLinesBetweenStationsAndAtTheEndAreCounted)
{
    RListingFixture f;
    f.read4(file4() + "\n  \n" + HEAD4().line() + numbers4 + levels4 + "\r\n\x1A");
    EXPECT_EQ(f.code, readEnd);
    EXPECT_EQ(f.stations.size(), 2U);
    EXPECT_EQ(f.account.blankLines, 4);
    EXPECT_EQ(f.account.dataLines, 4);
    EXPECT_EQ(f.account.headerLines, 10 + 4);
    EXPECT_EQ(f.account.valuesDelivered, 10);
}

TEST(ListingReader, LineEndsOfAllMachinesAreRead)
{
    for (const char* end : {"\r\n", "\r", "\n"}) {
        RListingFixture f;
        f.read4(replaced(file4() + HEAD4().line() + numbers4 + levels4, "\n", end));
        EXPECT_EQ(f.stations.size(), 2U);
        EXPECT_EQ(f.code, readEnd);
    }
}

TEST(ListingReader, TheBytesOfAllStationsAreThoseOfTheFile)
{
    RListingFixture f;
    const std::string content = file4() + HEAD4().line() + numbers4 + levels4;
    f.read4(content);
    EXPECT_EQ(f.bytes, static_cast<std::int64_t>(content.size()));
}

TEST(ListingReader, AStationWithoutLevelsIsPassedOver)
{
    HEAD4 empty;
    empty.levels = 0;
    RListingFixture f;
    f.read4(head4(threeLabels) + empty.line() + numbers4 + empty.line() + numbers4 + HEAD4().line() +
            numbers4 + levels4);
    EXPECT_EQ(f.code, readEnd);
    EXPECT_EQ(f.stations.size(), 1U);
    EXPECT_EQ(f.account.stationsRefused, 2);
    EXPECT_EQ(f.account.refusedLines, 4);
    EXPECT_EQ(f.user.notes.size(), 1U);
}

// --- limits

std::string manyLevels(int levels, const std::string& level = " 0 0 1 0 2 0\n")
{
    HEAD4 head;
    head.levels = levels;
    std::string text = head4(threeLabels) + head.line() + numbers4;
    for (int k = 0; k < levels; ++k) text += level;
    return text;
}

TEST(ListingReader, AStationOf20001LevelsAsksOnceAndKeeps20000)
{
    RListingFixture f;
    f.read4(manyLevels(20001) + HEAD4().line() + numbers4 + levels4);
    EXPECT_THAT(f.user.messages,
                ElementsAre("NVQ Data Import: More than 20000 levels! Station: A16 -- 12 clipped."));
    ASSERT_EQ(f.stations.size(), 2U);
    EXPECT_EQ(f.stations[0].counts[1], 20000);
    EXPECT_EQ(f.stations[1].counts[1], 2);
    EXPECT_EQ(f.account.refusedLines, 1);
    EXPECT_EQ(f.account.valuesRefused, 3);
}

TEST(ListingReader, AStationOf20000LevelsIsNotAskedAbout)
{
    RListingFixture f;
    f.read4(manyLevels(20000));
    EXPECT_THAT(f.user.messages, IsEmpty());
    EXPECT_EQ(f.stations.at(0).counts[1], 20000);
}

TEST(ListingReader, CancelAtALimitEndsTheImport)
{
    RListingFixture f;
    f.user.choices = {1};
    f.read4(manyLevels(20001));
    EXPECT_EQ(f.code, readCancelled);
    EXPECT_THAT(f.stations, IsEmpty());
}

std::vector<std::string> labels(int count)
{
    std::vector<std::string> made;
    for (int v = 1; v <= count; ++v) made.push_back("Variable " + std::to_string(v));
    return made;
}

TEST(ListingReader, ACapacityThatIsTooSmallTruncatesTheStation)
{
    HEAD4 head;
    head.levels = 2001;
    head.variables = 1;
    std::string text = head4(labels(50)) + head.line() + " 1\n";
    for (int k = 0; k < head.levels; ++k) text += common::format(" %d 0\n", k);
    RListingFixture f;
    f.read4(text);
    EXPECT_THAT(f.user.messages,
                ElementsAre("NVQ Data Import: Station: A16 -- 12 truncated to first 1999 of 2001 levels.."));
    EXPECT_EQ(f.stations.at(0).counts[1], 1999);
    EXPECT_EQ(f.stations.at(0).values[1].back(), 1998);
    EXPECT_EQ(f.account.refusedLines, 2);
}

TEST(ListingReader, BothLimitsOfLevelsAreAskedAbout)
{
    std::string text = head4(labels(10));
    HEAD4 head;
    head.levels = 20001;
    head.variables = 1;
    text += head.line() + " 1\n";
    for (int k = 0; k < head.levels; ++k) text += " 7 0\n";
    RListingFixture f;
    f.read4(text);
    EXPECT_THAT(f.user.messages, ElementsAre(HasSubstr("More than 20000 levels!"),
                                             HasSubstr("truncated to first 9999 of 20001 levels..")));
    EXPECT_EQ(f.stations.at(0).counts[1], 9999);
}

TEST(ListingReader, OfMoreThan50VariablesTheFirst50AreRead)
{
    HEAD4 head;
    head.levels = 1;
    head.variables = 51;
    std::string numbers, values;
    for (int v = 1; v <= 51; ++v) {
        numbers += common::format("%15d", v);
        values += common::format(" %12d %1d", 100 + v, v % 10);
    }
    RListingFixture f;
    f.read4(head4(labels(50)) + head.line() + numbers + "\n" + values + "\n");
    EXPECT_THAT(f.user.messages,
                ElementsAre("NVQ Data Import: More than 50 variables! Station: A16 -- 12 clipped."));
    ASSERT_EQ(f.stations.size(), 1U);
    EXPECT_THAT(f.stations[0].values[50], ElementsAre(150));
    EXPECT_THAT(f.stations[0].flags[49], ElementsAre(9));
}

// --- the description of version 3

TEST(ListingDescription, AllFieldsComeOut)
{
    RListingFixture f;
    std::string text = description3(threeLabels, 12345);
    f.read3(replaced(text, "  8.2\n", " 10.3\n"), "");
    EXPECT_EQ(f.header.name, "casts");
    EXPECT_EQ(f.header.type, "HYD");
    EXPECT_EQ(f.header.stationCount, 12345);
    EXPECT_EQ(f.header.lineCount, 0);
    EXPECT_EQ(f.header.description, f.directory.file("casts.var"));
    ASSERT_EQ(f.header.variables.size(), 4U);
    EXPECT_STREQ(f.header.variables[2].label, "Temperature [~$m~#C]");
    EXPECT_EQ(f.header.variables[2].width, 10);
    EXPECT_EQ(f.header.variables[2].decimals, 3);
}

TEST(ListingDescription, ALongNameMovesTheCountsAndIsNoFault)
{
    RListingFixture f;
    f.read3(replaced(description3(threeLabels), "casts  ", "Nvar: 9 of the south"), "");
    EXPECT_EQ(f.header.name, "Nvar: 9 of the south");
    EXPECT_EQ(f.header.variables.size(), 4U);
}

TEST(ListingDescription, AFullLabelKeepsItsEnd)
{
    RListingFixture f;
    f.read3(description3({"Dissolved organic carbon 2"}), "");
    EXPECT_THAT(f.fault, HasSubstr(":5: no ranges and format"));
    f.fault.clear();
    f.read3(description3({"Dissolved organic carbon2", "O\xC3\xB6"}), "");
    EXPECT_EQ(f.fault, "");
    EXPECT_STREQ(f.header.variables[1].label, "Dissolved organic carbon2");
    EXPECT_STREQ(f.header.variables[2].label, "O\xF6");
}

TEST(ListingDescription, WhatIsNoneIsRefusedWithItsLine)
{
    const auto faultOf = [](const std::string& text) {
        RListingFixture f;
        f.read3(text, "");
        EXPECT_THAT(f.fault, StartsWith(f.directory.file("casts.var") + ":"));
        return f.fault.substr(f.fault.find(".var") + 4);
    };
    const std::string good = description3(threeLabels);
    EXPECT_EQ(faultOf(""), ":1: the file ends before the first line");
    EXPECT_EQ(faultOf("NVQ4.0\nCollection: a\n"), ":1: no description of a 3.0 listing");
    EXPECT_EQ(faultOf(replaced(good, "Nvar:   3", "Nvar:   x")), ":1: no valid number of variables");
    EXPECT_EQ(faultOf(replaced(good, "Nvar:   3", "Nvar:  51")),
              ":1: 51 variables, but a collection has at most 50");
    EXPECT_EQ(faultOf(replaced(good, "Nstat:     1", "Nstat:    -1")), ":1: no valid number of stations");
    EXPECT_EQ(faultOf(replaced(good, "Nvar:   3", "Nvar:   4")),
              ":7: the file ends before the line of variable 4");
    EXPECT_EQ(faultOf(replaced(good, " 2   T", " x   T")), ":6: no number of variable 2 of 3");
    EXPECT_EQ(faultOf(replaced(good, " 2   T", " 1   T")), ":6: a second variable 1");
    EXPECT_EQ(faultOf(replaced(good, "1.00  8.2", "1.00")),
              ":5: no ranges and format behind the label of variable 1");
    EXPECT_EQ(faultOf("Type:Collection: Nstat: Nvar:\n"), ":1: no description of a 3.0 listing");
}

} // namespace
