#include "selection/criteria.h"

#include <cstring>

#include <gtest/gtest.h>

#include "common/text.h"
#include "samplecollection.h"

namespace selection {
namespace {

using collection::defaultCriteria;
using collection::SELECTIONCRITERIA;
using testing_support::fillStation;
using testing_support::missing;

// A station that the defaults select.
struct SAMPLE {
    collection::STATIONHDR header{};
    collection::LEVELCOUNTS counts{};
    SELECTIONCRITERIA criteria = defaultCriteria();
    collection::DOMAINPOLYGON polygon;
    SAMPLE()
    {
        common::copyText(header.cruise, "A20");
        common::copyText(header.station, "10");
        common::copyText(header.type, "B");
        header.longitude = 300;
        header.latitude = 30;
        header.day = 15;
        header.month = 7;
        header.year = 1995;
        header.bottomDepth = 4000;
        header.lastSampleDepth = 3500;
        counts[1] = 10;
        counts[3] = 4;
    }
    bool passes(int number = 1, bool checkCruise = true)
    {
        return passesSelection(number, header, counts, criteria, polygon, checkCruise);
    }
    bool passesLabel(std::string_view label)
    {
        common::copyText(header.station, label);
        return passes();
    }
    void setBounds(std::string_view from, std::string_view to)
    {
        common::copyText(criteria.stationLabelFrom, from);
        common::copyText(criteria.stationLabelTo, to);
    }
};

// --- defaults

TEST(DefaultCriteria, SelectEveryStation)
{
    for (const int year : {-32768, -1, 0, 1899, 1995, 32767}) {
        SAMPLE sample;
        sample.header.year = static_cast<std::int16_t>(year);
        EXPECT_TRUE(sample.passes()) << year;
    }
    SAMPLE sample;
    sample.header.longitude = 0;
    sample.header.latitude = -90;
    EXPECT_TRUE(sample.passes());
    sample.header.longitude = 360;
    sample.header.latitude = 90;
    EXPECT_TRUE(sample.passes());
    sample.header.bottomDepth = sample.header.lastSampleDepth = missing;
    EXPECT_TRUE(sample.passes());
    for (const std::string_view label : {"", "zzz", "\xE9toile", "{", "12345678901234567890"}) {
        EXPECT_TRUE(sample.passesLabel(label)) << label;
    }
}

TEST(DefaultCriteria, AreEqualByteByByte)
{
    const SELECTIONCRITERIA a = defaultCriteria();
    std::array<char, sizeof(SELECTIONCRITERIA)> dirt;
    dirt.fill('\xAA');
    SELECTIONCRITERIA b;
    std::memcpy(static_cast<void*>(&b), dirt.data(), sizeof b);
    b = defaultCriteria();
    EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0);
}

TEST(DefaultCriteria, HaveTheirValues)
{
    const SELECTIONCRITERIA criteria = defaultCriteria();
    EXPECT_STREQ(criteria.cruisePattern, "*");
    EXPECT_STREQ(criteria.stationType, "*");
    EXPECT_STREQ(criteria.stationLabelTo, "zzzzzzzzzzzzzzzzzzzz");
    EXPECT_EQ(criteria.internalMin, 1);
    EXPECT_EQ(criteria.internalMax, 99999999);
    EXPECT_EQ(criteria.yearMin, -9999999);
    EXPECT_EQ(criteria.qualityLimit, 8);
    EXPECT_STREQ(criteria.months, "++++++++++++");
    EXPECT_EQ(std::string(criteria.requiredMask), std::string(50, ' '));
    EXPECT_EQ(criteria.lonMin, 0);
    EXPECT_EQ(criteria.lonMax, 360);
    EXPECT_EQ(criteria.latMin, -90);
    EXPECT_EQ(criteria.latMax, 90);
    EXPECT_EQ(criteria.stationNumberMin, -1);
    EXPECT_EQ(criteria.reservedFlags[0], 1);
}

TEST(ResetSelection, TakesTheMapDomainAndTheYearsOfTheKind)
{
    SELECTIONCRITERIA criteria = defaultCriteria();
    criteria.internalMin = 7;
    resetSelection(criteria, {.lonMin = -30, .lonMax = 20, .latMin = -10, .latMax = 60}, 1);
    EXPECT_EQ(criteria.internalMin, 1);
    EXPECT_EQ(criteria.lonMin, -30);
    EXPECT_EQ(criteria.latMax, 60);
    EXPECT_EQ(criteria.yearMax, 9999999);
    resetSelection(criteria, {}, 2);
    EXPECT_EQ(criteria.yearMin, -40000);
    EXPECT_EQ(criteria.yearMax, 5000);
}

// --- the station test

TEST(PassesSelection, NumbersAreInclusiveAndAtLeast1)
{
    SAMPLE sample;
    EXPECT_FALSE(sample.passes(0));
    sample.criteria.internalMin = 5;
    sample.criteria.internalMax = 7;
    EXPECT_FALSE(sample.passes(4));
    EXPECT_TRUE(sample.passes(5));
    EXPECT_TRUE(sample.passes(7));
    EXPECT_FALSE(sample.passes(8));
    sample.criteria.internalMin = -5;
    EXPECT_FALSE(sample.passes(0));
}

TEST(PassesSelection, DomainAcrossZeroTakes360FromLongitudesBeyondIt)
{
    SAMPLE sample;
    sample.criteria.lonMin = -30;
    sample.criteria.lonMax = 20;
    for (const auto& [longitude, passes] : {std::pair{350.0f, true},
                                            {25.0f, false},
                                            {20.0f, true},
                                            {330.0f, true},
                                            {329.0f, false},
                                            {0.0f, true}}) {
        sample.header.longitude = longitude;
        EXPECT_EQ(sample.passes(), passes) << longitude;
    }
}

TEST(PassesSelection, LatitudesAreInclusive)
{
    SAMPLE sample;
    sample.criteria.latMin = 30;
    sample.criteria.latMax = 40;
    EXPECT_TRUE(sample.passes());
    sample.header.latitude = 40;
    EXPECT_TRUE(sample.passes());
    sample.header.latitude = 40.01f;
    EXPECT_FALSE(sample.passes());
}

TEST(PassesSelection, APolygonBindsOnlyIfItIsUsed)
{
    SAMPLE sample;
    const float lon[] = {-20, 20, 20, -20, -20}, lat[] = {-10, -10, 10, 10, -10};
    std::copy(std::begin(lon), std::end(lon), sample.polygon.lon.begin());
    std::copy(std::begin(lat), std::end(lat), sample.polygon.lat.begin());
    sample.polygon.nPoints = 5;
    sample.criteria.lonMin = -180;
    sample.criteria.lonMax = 180;
    EXPECT_TRUE(sample.passes());
    sample.criteria.usePolygon = 1;
    EXPECT_FALSE(sample.passes());
    sample.header.longitude = 350; // -10 on the map
    sample.header.latitude = 5;
    EXPECT_TRUE(sample.passes());
    sample.polygon.nPoints = -3;
    EXPECT_FALSE(sample.passes());
}

TEST(PassesSelection, DaysMonthsAndYears)
{
    SAMPLE sample;
    sample.criteria.dayMin = 10;
    sample.criteria.dayMax = 15;
    EXPECT_TRUE(sample.passes());
    sample.header.day = 16;
    EXPECT_FALSE(sample.passes());
    sample.header.day = 12;
    sample.criteria.months[6] = ' ';
    EXPECT_FALSE(sample.passes());
    sample.header.month = 8;
    EXPECT_TRUE(sample.passes());
    sample.criteria.yearMin = 1996;
    EXPECT_FALSE(sample.passes());
}

TEST(PassesSelection, MonthsThatDontExistFail)
{
    SAMPLE sample;
    for (const int month : {0, 13, -1, 32767}) {
        sample.header.month = static_cast<std::int16_t>(month);
        EXPECT_FALSE(sample.passes()) << month;
    }
}

TEST(PassesSelection, YearsOf1900To2100DropAStationOf1899)
{
    SAMPLE sample;
    sample.criteria.yearMin = 1900;
    sample.criteria.yearMax = 2100;
    sample.header.year = 1899;
    EXPECT_FALSE(sample.passes());
    sample.header.year = 1900;
    EXPECT_TRUE(sample.passes());
}

TEST(PassesSelection, DepthLimitsAreInclusive)
{
    SAMPLE sample;
    sample.criteria.bottomMin = sample.criteria.bottomMax = 4000;
    sample.criteria.lastDepthMin = sample.criteria.lastDepthMax = 3500;
    EXPECT_TRUE(sample.passes());
    sample.header.bottomDepth = 4000.5f;
    EXPECT_FALSE(sample.passes());
    sample.header.bottomDepth = 4000;
    sample.header.lastSampleDepth = 3499.5f;
    EXPECT_FALSE(sample.passes());
}

TEST(PassesSelection, RequiredVariablesNeedAValue)
{
    SAMPLE sample;
    sample.criteria.requiredList[0] = 3;
    sample.criteria.requiredCount = 1;
    EXPECT_TRUE(sample.passes());
    sample.criteria.requiredList[1] = 2;
    sample.criteria.requiredCount = 2;
    EXPECT_FALSE(sample.passes());
    sample.criteria.requiredList[1] = 99;
    EXPECT_FALSE(sample.passes());
    sample.criteria.requiredCount = -1;
    EXPECT_TRUE(sample.passes());
}

TEST(PassesSelection, TypeIsAnyOrEqual)
{
    SAMPLE sample;
    common::copyText(sample.criteria.stationType, "B");
    EXPECT_TRUE(sample.passes());
    common::copyText(sample.criteria.stationType, "C");
    EXPECT_FALSE(sample.passes());
}

TEST(PassesSelection, LabelBoundsOf9And12)
{
    SAMPLE sample;
    sample.setBounds("9", "12");
    EXPECT_TRUE(sample.passesLabel("10"));
    EXPECT_TRUE(sample.passesLabel("9"));
    EXPECT_TRUE(sample.passesLabel("12"));
    EXPECT_FALSE(sample.passesLabel("100"));
    EXPECT_FALSE(sample.passesLabel("13"));
    EXPECT_FALSE(sample.passesLabel("1"));
    EXPECT_FALSE(sample.passesLabel("8"));
}

TEST(PassesSelection, LabelBoundsOfLettersAreComparedByteByByte)
{
    SAMPLE sample;
    sample.setBounds("A1", "M99");
    EXPECT_TRUE(sample.passesLabel("A1"));
    EXPECT_TRUE(sample.passesLabel("B7"));
    EXPECT_TRUE(sample.passesLabel("A10"));
    EXPECT_FALSE(sample.passesLabel("100"));
    EXPECT_FALSE(sample.passesLabel("N1"));
    EXPECT_FALSE(sample.passesLabel("B"));
    EXPECT_FALSE(sample.passesLabel("B777"));
}

TEST(PassesSelection, LengthsOfTheLabelBoundsBind)
{
    SAMPLE sample;
    sample.setBounds("10", "20");
    EXPECT_TRUE(sample.passesLabel("10"));
    EXPECT_TRUE(sample.passesLabel("20"));
    EXPECT_FALSE(sample.passesLabel("100"));
    EXPECT_FALSE(sample.passesLabel("1"));
    EXPECT_FALSE(sample.passesLabel("2"));
}

TEST(PassesSelection, NumericBoundsNeedANumericLabel)
{
    SAMPLE sample;
    sample.criteria.stationNumberMin = 0;
    sample.criteria.stationNumberMax = 12;
    EXPECT_FALSE(sample.passesLabel("A1"));
    EXPECT_FALSE(sample.passesLabel("1A"));
    EXPECT_FALSE(sample.passesLabel(""));
    EXPECT_TRUE(sample.passesLabel("9"));
    EXPECT_TRUE(sample.passesLabel("012"));
    EXPECT_FALSE(sample.passesLabel("13"));
    sample.criteria.stationNumberMin = -1; // one of the two alone is without effect
    EXPECT_TRUE(sample.passesLabel("A1"));
}

TEST(PassesSelection, CruiseIsMatchedOnRequestOnly)
{
    SAMPLE sample;
    common::copyText(sample.criteria.cruisePattern, "A2?");
    EXPECT_TRUE(sample.passes());
    common::copyText(sample.criteria.cruisePattern, "a2?");
    EXPECT_FALSE(sample.passes());
    EXPECT_TRUE(sample.passes(1, false));
}

// --- polygons

bool inside(std::vector<float> lon, const std::vector<float>& lat, float x, float y)
{
    return pointInPolygon(lon, lat, x, y);
}

TEST(PointInPolygon, EvenOddRule)
{
    const std::vector<float> lon{0, 10, 10, 0, 0}, lat{0, 0, 10, 10, 0};
    EXPECT_TRUE(inside(lon, lat, 5, 5));
    EXPECT_FALSE(inside(lon, lat, 15, 5));
    EXPECT_FALSE(inside(lon, lat, 5, 15));
    EXPECT_FALSE(inside(lon, lat, 5, -5));
    EXPECT_FALSE(inside({}, {}, 0, 0));
    EXPECT_FALSE(inside({1}, {1}, 1, 1));
}

TEST(PointInPolygon, AConcavePolygonHasItsBay)
{
    const std::vector<float> lon{0, 10, 10, 5, 0, 0}, lat{0, 0, 10, 2, 10, 0};
    EXPECT_FALSE(inside(lon, lat, 5.01f, 5));
    EXPECT_TRUE(inside(lon, lat, 5.01f, 1));
    EXPECT_TRUE(inside(lon, lat, 9.5f, 5));
}

TEST(PointInPolygon, AVertexOfTheSameLongitudeIsMovedInTheArray)
{
    std::vector<float> lon{0, 5, 10, 5, 0};
    const std::vector<float> lat{5, 0, 5, 10, 5};
    EXPECT_TRUE(pointInPolygon(lon, lat, 5, 5));
    EXPECT_GT(lon[1], 5);
    EXPECT_NEAR(lon[1], 5, 1e-5);
    EXPECT_GT(lon[3], 5);
    EXPECT_TRUE(pointInPolygon(lon, lat, 0, 5) || lon[0] != 0);
    EXPECT_NE(lon[0], 0);
    EXPECT_EQ(lon[0], lon[4]);
}

TEST(PointInPolygon, TheLastEdgeIsNotClosedByItself)
{
    EXPECT_FALSE(inside({0, 10, 10, 0}, {0, 0, 10, 10}, 5, 5) &&
                 inside({0, 10, 10, 10}, {0, 0, 10, 10}, 5, 5));
    // An open triangle: only one edge spans the longitude, below the point.
    EXPECT_FALSE(inside({0, 10, 10}, {0, 0, 10}, 5, 2));
    EXPECT_TRUE(inside({0, 10, 10, 0}, {0, 0, 10, 0}, 5, 2));
}

// --- samples

class Samples : public testing::Test {
protected:
    Samples()
    {
        collection.variableCount = 3;
        collection.totalVariableCount = 4;
        fillStation(station, {{10, 20, 30, 40}, {1, 2, missing, 4}, {5, 6, 7, 8}, {9, 9, 9, 9}});
        for (std::size_t cell = 0; cell < 16; ++cell) {
            station.flags[cell] = std::array<std::uint8_t, 4>{0, 1, 4, 8}[cell % 4];
        }
        station.collection = &collection;
        station.levelCount[2] = 3;
        station.levelCount[3] = station.levelCount[4] = 4;
        criteria = defaultCriteria();
    }
    void setRange(int variable, float from, float to)
    {
        criteria.sampleVariable = variable;
        criteria.sampleMin = from;
        criteria.sampleMax = to;
    }
    // The values of a variable, "." for a missing one.
    std::string row(int variable)
    {
        std::string text;
        for (int k = 0; k < station.levels(); ++k) {
            const float value = valueAt(station, variable, k, -1);
            text += value == missing ? "." : common::formatG(value);
            text += ' ';
        }
        return text;
    }
    collection::RCollection collection;
    collection::STATIONDATA station;
    SELECTIONCRITERIA criteria;
};

TEST_F(Samples, QualityLimitBlanksWorseValuesButNeverThePrimaryVariable)
{
    EXPECT_EQ(applyQualityLimit(station, 1, missing), 6);
    EXPECT_EQ(row(1), "10 20 30 40 ");
    EXPECT_EQ(row(2), "1 2 . . ");
    EXPECT_EQ(row(3), "5 6 . . ");
    EXPECT_EQ(station.levelCount[3], 4);
}

TEST_F(Samples, QualityLimit0KeepsGoodValuesOnly)
{
    applyQualityLimit(station, 0, missing);
    EXPECT_EQ(row(3), "5 . . . ");
    EXPECT_EQ(applyQualityLimit(station, 4, missing), 3); // the values of flag 8, whatever they are
}

TEST_F(Samples, QualityLimit8LeavesValuesUntouched)
{
    EXPECT_EQ(applyQualityLimit(station, 8, missing), 0);
    station.flags[5] = 255;
    EXPECT_EQ(applyQualityLimit(station, 8, missing), 0);
    EXPECT_EQ(row(3), "5 6 7 8 ");
}

TEST_F(Samples, SampleRangeBlanksOtherSamplesInAllButThePrimaryVariable)
{
    setRange(3, 6, 7);
    applySampleRange(station, criteria, missing);
    EXPECT_EQ(row(1), "10 20 30 40 ");
    EXPECT_EQ(row(2), ". 2 . . ");
    EXPECT_EQ(row(3), ". 6 7 . ");
    EXPECT_EQ(row(4), ". 9 9 . ");
}

TEST_F(Samples, SampleRangeInReverseOrderWorks)
{
    setRange(1, 30, 20);
    applySampleRange(station, criteria, missing);
    EXPECT_EQ(row(3), ". 6 7 . ");
}

TEST_F(Samples, SampleRangeOfEqualLimitsKeepsEqualValuesOnly)
{
    setRange(1, 20, 20);
    applySampleRange(station, criteria, missing);
    EXPECT_EQ(row(3), ". 6 . . ");
}

TEST_F(Samples, AMissingValueOfTheRangeVariableDropsTheSample)
{
    setRange(2, -2e10f, 2e10f);
    applySampleRange(station, criteria, missing);
    EXPECT_EQ(row(3), "5 6 . 8 ");
}

TEST_F(Samples, WithoutTheRangeVariableAllSamplesDrop)
{
    station.offset[4] = -1;
    setRange(4, 0, 100);
    applySampleRange(station, criteria, missing);
    EXPECT_EQ(row(2), ". . . . ");
    EXPECT_EQ(row(1), "10 20 30 40 ");
}

TEST_F(Samples, ARangeVariableThatDoesntExistChangesNothing)
{
    for (const int variable : {0, -1, 5, 99}) {
        setRange(variable, 100, 200);
        applySampleRange(station, criteria, missing);
        EXPECT_EQ(compressToSampleRange(station, criteria), 4);
        EXPECT_EQ(row(3), "5 6 7 8 ");
    }
}

TEST_F(Samples, CompressionTakesSamplesOut)
{
    setRange(3, 6, 7);
    EXPECT_EQ(compressToSampleRange(station, criteria), 2);
    EXPECT_EQ(station.levels(), 2);
    EXPECT_EQ(station.header.valueCount, 8);
    EXPECT_EQ(row(1), "20 30 ");
    EXPECT_EQ(row(2), "2 . ");
    EXPECT_EQ(row(3), "6 7 ");
    EXPECT_EQ(row(4), "9 9 ");
    EXPECT_EQ(station.levelCount[2], 1);
    EXPECT_EQ(flagAt(station, 3, 0), 1);
    EXPECT_EQ(flagAt(station, 3, 1), 4);
}

TEST_F(Samples, CompressionDropsVariablesThatLoseAllValues)
{
    setRange(1, 30, 30);
    EXPECT_EQ(compressToSampleRange(station, criteria), 1);
    EXPECT_EQ(station.offset[2], -1);
    EXPECT_EQ(station.levelCount[2], 0);
    EXPECT_EQ(station.offset[3], 1);
    EXPECT_EQ(station.header.valueCount, 3);
    EXPECT_EQ(row(3), "7 ");
}

TEST_F(Samples, CompressionTakesBlocksInAnyOrder)
{
    std::swap(station.offset[2], station.offset[4]); // a derived variable that was computed early
    setRange(1, 20, 30);
    EXPECT_EQ(compressToSampleRange(station, criteria), 2);
    EXPECT_EQ(row(1), "20 30 ");
    EXPECT_EQ(row(2), "9 9 ");
    EXPECT_EQ(row(3), "6 7 ");
    EXPECT_EQ(row(4), "2 . ");
    EXPECT_EQ(station.header.valueCount, 8);
}

TEST_F(Samples, CompressionHandlesTheFiftiethVariable)
{
    collection.totalVariableCount = 50;
    station.offset[50] = station.offset[4];
    station.offset[4] = -1;
    setRange(50, 9, 9);
    station.values[13] = 8;
    EXPECT_EQ(compressToSampleRange(station, criteria), 3);
    EXPECT_EQ(row(50), "9 9 9 ");
    EXPECT_EQ(row(3), "5 7 8 ");
}

TEST_F(Samples, CompressionWithAllSamplesInRangeChangesNothing)
{
    setRange(1, 0, 100);
    station.offset[2] = -1; // a hole in the layout that a packing would close
    EXPECT_EQ(compressToSampleRange(station, criteria), 4);
    EXPECT_EQ(station.offset[3], 8);
    EXPECT_EQ(station.header.valueCount, 16);
}

TEST_F(Samples, CompressionWithoutTheRangeVariableLeavesNoSample)
{
    station.offset[4] = -1;
    setRange(4, 0, 100);
    EXPECT_EQ(compressToSampleRange(station, criteria), 0);
    EXPECT_EQ(station.levels(), 0);
    EXPECT_EQ(station.header.valueCount, 0);
}

// --- the stages of a load

TEST(SelectionStages, ALoadBlanksByTheCollectionsLimitAndRange)
{
    testing_support::RSampleCollection sample(3);
    fillStation(sample.station, {{10, 20, 30}, {1, 2, 3}, {4, 5, 6}});
    testing_support::place(sample.station, 1, 1);
    sample.station.flags[4] = 4;
    ASSERT_EQ(sample.collection.writeStation(0, sample.station, false), collection::WriteResult::ok);
    RSelectionStages stages;
    sample.collection.stages = &stages;
    sample.collection.qualityLimit = 1;
    sample.collection.criteria.sampleVariable = 1;
    sample.collection.criteria.sampleMin = 15;
    sample.collection.criteria.sampleMax = 99;
    collection::STATIONDATA station;
    ASSERT_EQ(sample.collection.loadStation(1, station, true), collection::LoadResult::ok);
    EXPECT_EQ(valueAt(station, 2, 0, -1), missing);
    EXPECT_EQ(valueAt(station, 2, 1, -1), missing);
    EXPECT_EQ(valueAt(station, 2, 2, -1), 3);
    EXPECT_EQ(valueAt(station, 3, 1, -1), 5);
    ASSERT_EQ(sample.collection.loadStation(1, station, false), collection::LoadResult::ok);
    EXPECT_EQ(valueAt(station, 2, 1, -1), 2);
}

} // namespace
} // namespace selection
