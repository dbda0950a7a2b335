#include <cmath>
#include <limits>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "filesizelimit.h"
#include "samplecollection.h"

namespace collection {
namespace {

using testing_support::fillStation;
using testing_support::missing;
using testing_support::place;
using testing_support::profile;
using testing_support::RFileSizeLimit;
using testing_support::RSampleCollection;

class WriteStation : public testing::Test {
protected:
    STATIONHDR headerOf(int number)
    {
        STATIONHDR header{};
        EXPECT_TRUE(collection.readStationHeader(number, header, nullptr)) << number;
        return header;
    }
    std::string labels()
    {
        std::string all;
        for (int n = 1; n <= collection.stationCount; ++n) all += headerOf(n).station;
        return all;
    }
    // Every value of a station of profile(levels, 4, seed).
    void expectProfile(int number, int levels, float seed)
    {
        ASSERT_EQ(collection.loadStation(number, station, false), LoadResult::ok);
        ASSERT_EQ(station.levels(), levels);
        const auto columns = profile(levels, 4, seed);
        for (int v = 1; v <= 4; ++v) {
            for (int k = 0; k < levels; ++k) {
                ASSERT_EQ(valueAt(station, v, k, -9),
                          columns[static_cast<std::size_t>(v - 1)][static_cast<std::size_t>(k)]);
            }
        }
    }
    void putThree()
    {
        for (int i = 1; i <= 3; ++i) {
            ASSERT_EQ(
                sample.put(profile(4, 4, static_cast<float>(i)), 0, "A", std::string(1, char('a' + i - 1))),
                WriteResult::ok);
        }
    }
    RSampleCollection sample;
    RCollection& collection = sample.collection;
    STATIONDATA& station = sample.station;
};

TEST_F(WriteStation, FirstStationGetsDataOffset0)
{
    ASSERT_EQ(sample.put(profile(3, 4)), WriteResult::ok);
    EXPECT_EQ(headerOf(1).dataOffset, 0);
    EXPECT_EQ(station.number, 1);
    EXPECT_EQ(collection.stationCount, 1);
    ASSERT_EQ(sample.put(profile(3, 4)), WriteResult::ok);
    EXPECT_EQ(headerOf(2).dataOffset, 60);
    EXPECT_EQ(station.number, 2);
}

TEST_F(WriteStation, NumbersOutOfRangeAppend)
{
    putThree();
    for (const int number :
         {4, 0, -1, 99, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        const int before = collection.stationCount;
        ASSERT_EQ(sample.put(profile(2, 4), number), WriteResult::ok);
        EXPECT_EQ(station.number, before + 1);
    }
}

TEST_F(WriteStation, FewerCellsStayInPlaceAndLeaveAGap)
{
    putThree();
    const int size = static_cast<int>(sample.bytes(".dob").size());
    ASSERT_EQ(sample.put(profile(2, 4, 9), 2, "A", "x"), WriteResult::ok);
    EXPECT_EQ(station.number, 2);
    EXPECT_EQ(headerOf(2).dataOffset, 80);
    EXPECT_EQ(headerOf(3).dataOffset, 160);
    EXPECT_EQ(labels(), "axc");
    EXPECT_EQ(static_cast<int>(sample.bytes(".dob").size()), size);
    expectProfile(1, 4, 1);
    expectProfile(2, 2, 9);
    expectProfile(3, 4, 3);
}

TEST_F(WriteStation, GrownStationMovesToTheEndAndLaterNumbersDecrease)
{
    putThree();
    ASSERT_EQ(sample.put(profile(5, 4, 9), 1, "A", "x"), WriteResult::ok);
    EXPECT_EQ(station.number, 3);
    EXPECT_EQ(collection.stationCount, 3);
    EXPECT_EQ(labels(), "bcx");
    EXPECT_EQ(headerOf(3).dataOffset, 240);
    expectProfile(1, 4, 2);
    expectProfile(2, 4, 3);
    expectProfile(3, 5, 9);
    EXPECT_EQ(sample.bytes(".hob").size(), 6U + 3 * 88);
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    EXPECT_EQ(labels(), "bcx");
}

TEST_F(WriteStation, LastStationGrowsInPlace)
{
    putThree();
    ASSERT_EQ(sample.put(profile(7, 4, 9), 3, "A", "x"), WriteResult::ok);
    EXPECT_EQ(station.number, 3);
    EXPECT_EQ(headerOf(3).dataOffset, 160);
    EXPECT_EQ(labels(), "abx");
    expectProfile(3, 7, 9);
    ASSERT_EQ(sample.put(profile(2, 4, 5), 0), WriteResult::ok);
    EXPECT_EQ(headerOf(4).dataOffset, 160 + 140);
}

TEST_F(WriteStation, AMovedStationTakesTheInventoryAlong)
{
    ASSERT_EQ(sample.put(profile(2, 4), 0, "A", "1"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(2, 4), 0, "A", "2"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(2, 4), 0, "B", "3"), WriteResult::ok);
    ASSERT_EQ(collection.readInventory(true, sample.user), 2);
    ASSERT_EQ(sample.put(profile(3, 4), 1, "A", "1"), WriteResult::ok);
    EXPECT_EQ(collection.cruises[0].firstNumber, 1);
    EXPECT_EQ(collection.cruises[0].lastNumber, 3);
    EXPECT_EQ(collection.cruises[1].firstNumber, 2);
    EXPECT_EQ(collection.cruises[1].lastNumber, 2);
}

TEST_F(WriteStation, AMoveThroughManyRecords)
{
    // More records than are moved at once.
    constexpr int count = 10000;
    for (int i = 1; i <= count; ++i) {
        ASSERT_EQ(sample.put({{static_cast<float>(i)}, {}, {}, {}}, 0, "A", std::to_string(i)),
                  WriteResult::ok);
    }
    ASSERT_EQ(sample.put(profile(2, 4), 2, "A", "moved"), WriteResult::ok);
    EXPECT_STREQ(headerOf(1).station, "1");
    for (int n = 2; n < count; ++n) ASSERT_EQ(headerOf(n).station, std::to_string(n + 1));
    EXPECT_STREQ(headerOf(count).station, "moved");
}

TEST_F(WriteStation, ValueCountIsTheLevelsWhereOnlyThePrimaryVariableHasValues)
{
    ASSERT_EQ(sample.put({{1, 2, 3}, {missing, missing, missing}, {missing, missing, missing}, {}}),
              WriteResult::ok);
    EXPECT_EQ(station.header.valueCount, 3);
    EXPECT_EQ(station.offset[2], -1);
    EXPECT_EQ(station.offset[3], -1);
    EXPECT_EQ(sample.bytes(".dob").size(), 15U);
}

TEST_F(WriteStation, EmptyVariablesLoseTheirBlocksAndLaterOnesMoveDown)
{
    ASSERT_EQ(sample.put({{1, 2}, {missing, missing}, {7, missing}, {missing, 8}}), WriteResult::ok);
    EXPECT_EQ(station.header.valueCount, 6);
    EXPECT_EQ(station.offset[3], 2);
    EXPECT_EQ(station.offset[4], 4);
    EXPECT_EQ(station.levelCount[2], 0);
    EXPECT_EQ(station.levelCount[3], 1);
    ASSERT_EQ(collection.loadStation(1, station, false), LoadResult::ok);
    EXPECT_EQ(valueAt(station, 3, 0, -9), 7);
    EXPECT_EQ(valueAt(station, 4, 1, -9), 8);
    EXPECT_EQ(valueAt(station, 2, 0, -9), -9);
}

TEST_F(WriteStation, BlocksMayStandInAnyOrder)
{
    fillStation(station, {{1, 2}, {3, 4}, {5, 6}});
    std::swap(station.offset[2], station.offset[3]);
    place(station, 1, 1);
    ASSERT_EQ(collection.writeStation(0, station, false), WriteResult::ok);
    ASSERT_EQ(collection.loadStation(1, station, false), LoadResult::ok);
    EXPECT_EQ(valueAt(station, 2, 0, -9), 5);
    EXPECT_EQ(valueAt(station, 3, 0, -9), 3);
}

TEST_F(WriteStation, DerivedVariablesAreNotStored)
{
    collection.totalVariableCount = 5;
    ASSERT_EQ(sample.put(profile(3, 5)), WriteResult::ok);
    EXPECT_EQ(station.header.valueCount, 12);
    EXPECT_EQ(sample.bytes(".dob").size(), 60U);
    EXPECT_EQ(valueAt(station, 5, 0, -9), 401); // still there in memory
}

TEST_F(WriteStation, ValuesThatAreNoNumbersAreStoredAsMissing)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    ASSERT_EQ(sample.put({{1, 2}, {nan, inf}, {nan, 4}, {}}), WriteResult::ok);
    EXPECT_EQ(station.levelCount[2], 0);
    EXPECT_EQ(station.levelCount[3], 1);
    ASSERT_EQ(collection.loadStation(1, station, false), LoadResult::ok);
    EXPECT_EQ(valueAt(station, 3, 0, -9), missing);
}

TEST_F(WriteStation, TypeFollowsTheLevelsWhereItIsOpen)
{
    ASSERT_EQ(sample.put(profile(250, 2), 0, "A", "1", "*"), WriteResult::ok);
    EXPECT_STREQ(headerOf(1).type, "B");
    ASSERT_EQ(sample.put(profile(251, 2), 0, "A", "1", "*"), WriteResult::ok);
    EXPECT_STREQ(headerOf(2).type, "C");
    ASSERT_EQ(sample.put(profile(251, 2), 0, "A", "1", ""), WriteResult::ok);
    EXPECT_STREQ(headerOf(3).type, "C");
    ASSERT_EQ(sample.put(profile(251, 2), 0, "A", "1", "X"), WriteResult::ok);
    EXPECT_STREQ(headerOf(4).type, "X");
}

TEST_F(WriteStation, SortOrdersTheLevelsOfAllVariablesAlike)
{
    fillStation(station, {{30, 10, 20, 10}, {3, 1, 2, 11}, {}, {missing, 5, missing, 6}});
    for (std::size_t i = 0; i < 12; ++i) station.flags[i] = static_cast<std::uint8_t>(i);
    place(station, 1, 1);
    ASSERT_EQ(collection.writeStation(0, station, true), WriteResult::ok);
    ASSERT_EQ(collection.loadStation(1, station, false), LoadResult::ok);
    const float depths[] = {10, 10, 20, 30}, values[] = {1, 11, 2, 3}, oxygen[] = {5, 6, missing, missing};
    const int flags[] = {1, 3, 2, 0};
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(valueAt(station, 1, k, -9), depths[k]);
        EXPECT_EQ(valueAt(station, 2, k, -9), values[k]);
        EXPECT_EQ(valueAt(station, 4, k, -9), oxygen[k]);
        EXPECT_EQ(flagAt(station, 1, k), flags[k]);
        EXPECT_EQ(flagAt(station, 4, k), 8 + flags[k]);
    }
    EXPECT_EQ(station.header.lastSampleDepth, 30);
}

TEST_F(WriteStation, AMissingPrimaryValueIsSortedToTheFront)
{
    fillStation(station, {{30, missing, 20}, {3, 1, 2}});
    place(station, 1, 1);
    ASSERT_EQ(collection.writeStation(0, station, true), WriteResult::ok);
    EXPECT_EQ(valueAt(station, 1, 0, 0), missing);
    EXPECT_EQ(valueAt(station, 2, 0, 0), 1);
}

TEST_F(WriteStation, MoreThan20001LevelsAreSorted)
{
    std::vector<float> depths, values;
    for (int k = 0; k < 30000; ++k) {
        depths.push_back(static_cast<float>(30000 - k));
        values.push_back(static_cast<float>(k));
    }
    fillStation(station, {depths, values, values}, 4);
    place(station, 1, 1);
    ASSERT_EQ(collection.writeStation(0, station, true), WriteResult::ok);
    ASSERT_EQ(collection.loadStation(1, station, false), LoadResult::ok);
    for (int k = 0; k < 30000; ++k) {
        ASSERT_EQ(valueAt(station, 1, k, 0), static_cast<float>(k + 1));
        ASSERT_EQ(valueAt(station, 3, k, 0), static_cast<float>(29999 - k));
        ASSERT_EQ(flagAt(station, 2, k), 4);
    }
}

TEST_F(WriteStation, DeepestSampleIsKeptForHydrographicCollectionsOnly)
{
    ASSERT_EQ(sample.put({{5, 15}, {}, {}, {}}), WriteResult::ok);
    EXPECT_EQ(headerOf(1).lastSampleDepth, 15);
    ASSERT_EQ(sample.put({{5, missing}, {}, {}, {}}), WriteResult::ok);
    EXPECT_EQ(headerOf(2).lastSampleDepth, 0);
    collection.type = "TS";
    fillStation(station, {{5, 15}});
    station.header.lastSampleDepth = 77;
    ASSERT_EQ(collection.writeStation(0, station, false), WriteResult::ok);
    EXPECT_EQ(headerOf(3).lastSampleDepth, 77);
}

TEST_F(WriteStation, LongitudeBelow0IsStoredWith360Added)
{
    fillStation(station, {{5, 15}});
    place(station, -30, 10);
    ASSERT_EQ(collection.writeStation(0, station, false), WriteResult::ok);
    EXPECT_EQ(headerOf(1).longitude, 330);
}

TEST_F(WriteStation, NoLevelsOrNoValuesGive7)
{
    fillStation(station, {{}});
    station.header.valueCount = 5;
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::noLevels);
    fillStation(station, {{1, 2}});
    station.header.valueCount = 0;
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::noLevels);
    EXPECT_EQ(collection.stationCount, 0);
}

TEST_F(WriteStation, MoreLevelsThanTheCountsHoldAreRefused)
{
    fillStation(station, {std::vector<float>(40000, 1.0f)}); // the count turns negative
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::tooLarge);
    fillStation(station, {std::vector<float>(32767, 1.0f)});
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::ok);
    EXPECT_EQ(collection.stationCount, 1);
}

TEST_F(WriteStation, BlocksThatDontFitTheRecordAreRefused)
{
    fillStation(station, {std::vector<float>(30000, 1.0f), std::vector<float>(30000, 2.0f)});
    station.offset[3] = station.offset[4] = station.offset[2]; // four blocks of 30000
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::tooLarge);
    fillStation(station, {{1, 2}, {3, 4}});
    station.offset[2] = 99999;
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::tooLarge);
    station.offset[2] = 1;
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::tooLarge);
}

TEST_F(WriteStation, APositionThatIsNoNumberIsRefused)
{
    fillStation(station, {{1, 2}});
    place(station, std::numeric_limits<float>::quiet_NaN(), 0);
    EXPECT_EQ(collection.writeStation(0, station, false), WriteResult::badHeader);
    EXPECT_EQ(sample.bytes(".dob"), "");
}

TEST_F(WriteStation, ClosedOrReadOnlyCollectionGives1)
{
    collection.writable = false;
    EXPECT_EQ(sample.put(profile(2, 4)), WriteResult::notOpen);
    collection.writable = true;
    collection.closeStationFiles();
    EXPECT_EQ(sample.put(profile(2, 4)), WriteResult::notOpen);
}

TEST_F(WriteStation, AFullCollectionIsRefusedBeforeAnythingIsTouched)
{
    putThree();
    // The last block ends beyond what an offset can hold; the hole in the file takes no room.
    STATIONHDR header = headerOf(3);
    header.dataOffset = std::numeric_limits<std::int32_t>::max() - 10;
    std::filesystem::resize_file(collection.path + ".dob", std::uintmax_t{1} << 32);
    ASSERT_TRUE(collection.writeStationHeader(3, header, nullptr));
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    const std::string hob = sample.bytes(".hob");
    EXPECT_EQ(sample.put(profile(2, 4)), WriteResult::full);
    EXPECT_EQ(sample.put(profile(9, 4), 1), WriteResult::full);
    EXPECT_TRUE(sample.bytes(".hob") == hob);
    EXPECT_EQ(collection.stationCount, 3);
    EXPECT_EQ(common::fileSize(collection.path + ".dob"), std::int64_t{1} << 32);
}

TEST_F(WriteStation, ADamagedNeighbourGives3)
{
    putThree();
    std::string hob = sample.bytes(".hob");
    hob[6 + 2 * 88 + 79] = '\x7f'; // the value count of station 3
    sample.setBytes(".hob", hob);
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    EXPECT_EQ(sample.put(profile(2, 4)), WriteResult::badHeader);
    EXPECT_EQ(sample.put(profile(2, 4), 3), WriteResult::badHeader);
    EXPECT_EQ(sample.put(profile(2, 4), 2), WriteResult::ok);
    EXPECT_EQ(collection.stationCount, 3);
}

// --- a disk that becomes full

TEST_F(WriteStation, AppendOnAFullDiskLeavesTheCollectionAsItWas)
{
    putThree();
    const std::string hob = sample.bytes(".hob");
    {
        const RFileSizeLimit full(290); // the data file has 240 bytes
        EXPECT_EQ(sample.put(profile(8, 4, 9)), WriteResult::dataNotWritten);
    }
    EXPECT_EQ(collection.stationCount, 3);
    EXPECT_TRUE(sample.bytes(".hob") == hob);
    EXPECT_EQ(sample.bytes(".dob").size(), 240U);
    ASSERT_EQ(sample.put(profile(8, 4, 9), 0, "A", "d"), WriteResult::ok);
    EXPECT_EQ(labels(), "abcd");
    expectProfile(4, 8, 9);
}

TEST_F(WriteStation, GrowthOnAFullDiskLeavesTheOldStation)
{
    putThree();
    const std::string hob = sample.bytes(".hob");
    const RFileSizeLimit full(290);
    for (const int number : {1, 3}) {
        EXPECT_EQ(sample.put(profile(8, 4, 9), number), WriteResult::dataNotWritten);
        EXPECT_TRUE(sample.bytes(".hob") == hob);
        for (int n = 1; n <= 3; ++n) expectProfile(n, 4, static_cast<float>(n));
    }
}

// Many variables and one value a station: the header table outgrows the data file.
class WideRecords : public testing::Test {
protected:
    WideRecords() : sample(50)
    {
        for (int i = 1; i <= 3; ++i) {
            EXPECT_EQ(sample.put({{static_cast<float>(i)}}, 0, "A", std::to_string(i)), WriteResult::ok);
        }
    }
    RSampleCollection sample;
};

TEST_F(WideRecords, HeaderOnAFullDiskGives4AndNothingChanged)
{
    const std::string hob = sample.bytes(".hob");
    {
        const RFileSizeLimit full(6 + 3 * 180 + 100);
        EXPECT_EQ(sample.put({{4}}), WriteResult::headerNotWritten);
        EXPECT_EQ(sample.collection.stationCount, 3);
        EXPECT_EQ(sample.put({{4, 5}}, 1), WriteResult::dataNotWritten); // there is no room for a journal
    }
    EXPECT_TRUE(sample.bytes(".hob") == hob);
    EXPECT_EQ(sample.collection.stationCount, 3);
    for (int n = 1; n <= 3; ++n) {
        ASSERT_EQ(sample.collection.loadStation(n, sample.station, false), LoadResult::ok);
        EXPECT_EQ(valueAt(sample.station, 1, 0, -9), static_cast<float>(n));
    }
    ASSERT_EQ(sample.put({{4}}, 0, "A", "4"), WriteResult::ok);
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    ASSERT_EQ(sample.collection.loadStation(4, sample.station, false), LoadResult::ok);
    EXPECT_STREQ(sample.station.header.station, "4");
}

TEST_F(WriteStation, HeaderEditKeepsTheData)
{
    putThree();
    STATIONHDR header{};
    LEVELCOUNTS counts{};
    ASSERT_TRUE(collection.readStationHeader(2, header, &counts));
    header.longitude = -20;
    common::copyText(header.station, "edited");
    ASSERT_TRUE(collection.writeStationHeader(2, header, &counts));
    EXPECT_EQ(headerOf(2).longitude, 340);
    EXPECT_EQ(labels(), "aeditedc");
    expectProfile(2, 4, 2);
    EXPECT_FALSE(collection.writeStationHeader(0, header, &counts));
    EXPECT_FALSE(collection.writeStationHeader(4, header, &counts));
    collection.writable = false;
    EXPECT_FALSE(collection.writeStationHeader(2, header, &counts));
}

TEST_F(WriteStation, AHeaderEditThatCouldntBeReadAgainIsRefused)
{
    putThree();
    STATIONHDR header{};
    ASSERT_TRUE(collection.readStationHeader(2, header, nullptr));
    for (float STATIONHDR::*const field : {&STATIONHDR::longitude, &STATIONHDR::latitude,
                                           &STATIONHDR::bottomDepth, &STATIONHDR::lastSampleDepth}) {
        STATIONHDR edited = header;
        edited.*field = std::numeric_limits<float>::quiet_NaN();
        EXPECT_FALSE(collection.writeStationHeader(2, edited, nullptr));
    }
    expectProfile(2, 4, 2);
}

TEST_F(WriteStation, FlushedStationsAreThere)
{
    putThree();
    EXPECT_TRUE(collection.flushStationFiles());
}

// What a collection should hold after many changes, as a list of (seed, levels) in the order of numbers.
TEST_F(WriteStation, AnyMixOfWritesAgreesWithAModel)
{
    constexpr unsigned seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<std::pair<float, int>> model;
    std::vector<int> room; // cells of each station's block
    for (int i = 0; i < 400; ++i) {
        const int levels = 1 + static_cast<int>(random() % 12);
        const auto value = static_cast<float>(i);
        const int number = static_cast<int>(random() % (model.size() + 3));
        ASSERT_EQ(sample.put(profile(levels, 4, value), number), WriteResult::ok);
        const bool isNew = number < 1 || number > static_cast<int>(model.size());
        const auto at = static_cast<std::size_t>(number - 1);
        if (isNew) {
            model.emplace_back(value, levels);
        } else if (number < static_cast<int>(model.size()) && levels > model[at].second) {
            model.erase(model.begin() + number - 1);
            model.emplace_back(value, levels);
        } else {
            model[at] = {value, levels};
        }
        ASSERT_EQ(collection.stationCount, static_cast<int>(model.size()));
    }
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    for (std::size_t n = 0; n < model.size(); ++n) {
        expectProfile(static_cast<int>(n) + 1, model[n].second, model[n].first);
    }
}

} // namespace
} // namespace collection
