#include "collection/stationdata.h"

#include <gtest/gtest.h>

#include "samplecollection.h"

namespace collection {
namespace {

using testing_support::fillStation;
using testing_support::missing;

TEST(FlagName, FourFlagsHaveNames)
{
    EXPECT_EQ(flagName(0), "good");
    EXPECT_EQ(flagName(1), "unknown");
    EXPECT_EQ(flagName(4), "questionable");
    EXPECT_EQ(flagName(8), "bad");
    for (const int flag : {-1, 2, 3, 5, 6, 7, 9, 255}) EXPECT_EQ(flagName(flag), "");
}

TEST(DateNumber, YearMonthDayInOneNumber)
{
    STATIONHDR header{};
    header.year = 1995;
    header.month = 7;
    header.day = 3;
    EXPECT_EQ(dateNumber(header), 19950703.0);
}

TEST(NumericLabel, FromTheFirstToTheLastCharacter)
{
    EXPECT_EQ(numericLabel("12"), 12);
    EXPECT_EQ(numericLabel("-3"), -3);
    EXPECT_EQ(numericLabel("007"), 7);
    for (const char* const text : {"", "12A", "A12", "1.5", " 1", "1 ", "+1", "99999999999"}) {
        EXPECT_FALSE(numericLabel(text)) << text;
    }
}

TEST(StationData, MissingValueHasItsBitPattern)
{
    EXPECT_EQ(std::bit_cast<std::uint32_t>(common::MISSING_VALUE), 0xD01502F9U);
}

TEST(StationData, ClearLeavesNothingLoaded)
{
    STATIONDATA station;
    fillStation(station, {{1, 2}, {3, 4}});
    station.number = 4;
    station.clear();
    EXPECT_EQ(station.number, 0);
    EXPECT_EQ(station.levels(), 0);
    EXPECT_EQ(station.offset[1], -1);
    EXPECT_EQ(station.header.valueCount, 0);
}

TEST(ValueAt, ReadsThroughTheOffsets)
{
    STATIONDATA station;
    fillStation(station, {{1, 2}, {}, {3, missing}}, 4);
    EXPECT_EQ(valueAt(station, 1, 1, -9), 2);
    EXPECT_EQ(valueAt(station, 3, 0, -9), 3);
    EXPECT_EQ(valueAt(station, 3, 1, -9), missing);
    EXPECT_EQ(flagAt(station, 3, 0), 4);
}

TEST(ValueAt, VariableZeroGivesTheDefaultAndFlagBad)
{
    STATIONDATA station;
    fillStation(station, {{1, 2}});
    EXPECT_EQ(valueAt(station, 0, 0, -9), -9);
    EXPECT_EQ(flagAt(station, 0, 0), 8);
}

TEST(ValueAt, WhatDoesntExistGivesTheDefaultAndFlagBad)
{
    RCollection collection;
    collection.totalVariableCount = 2;
    STATIONDATA station;
    fillStation(station, {{1, 2}, {}, {5, 6}});
    station.collection = &collection;
    for (const auto& [variable, level] : {std::pair{1, 2}, {1, -1}, {2, 0}, {3, 0}, {51, 0}, {-1, 0}}) {
        EXPECT_EQ(valueAt(station, variable, level, -9), -9) << variable << ' ' << level;
        EXPECT_EQ(flagAt(station, variable, level), 8) << variable << ' ' << level;
    }
    collection.totalVariableCount = 3;
    EXPECT_EQ(valueAt(station, 3, 0, -9), 5);
}

} // namespace
} // namespace collection
