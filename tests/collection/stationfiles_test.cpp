#include <bit>
#include <cstring>
#include <filesystem>
#include <limits>

#include <gtest/gtest.h>

#include "bigendian.h"
#include "collection/stationrecord.h"
#include "common/byteorder.h"
#include "samplecollection.h"

namespace collection {
namespace {

using testing_support::bigEndianDob;
using testing_support::bigEndianHob;
using testing_support::missing;
using testing_support::profile;
using testing_support::RSampleCollection;

class BigEndian : public testing::Test {
protected:
    BigEndian() : sample(2, "big")
    {
        EXPECT_EQ(sample.put(profile(2, 2)), WriteResult::ok);
        EXPECT_EQ(sample.reopen(), OpenFilesResult::ok);
        sample.collection.closeStationFiles();
        sample.setBytes(".hob", bigEndianHob());
        sample.setBytes(".dob", bigEndianDob());
        EXPECT_EQ(sample.collection.openStationFiles(sample.collection.path, sample.user),
                  OpenFilesResult::ok);
    }
    RSampleCollection sample;
};

TEST_F(BigEndian, ShowsTheSameDatesAsOnABigEndianHost)
{
    if (!common::hostIsLittleEndian) GTEST_SKIP() << "the host is big-endian";
    EXPECT_TRUE(sample.collection.swapBytes);
    EXPECT_TRUE(sample.collection.foreignTimeOrder);
    STATIONHDR header;
    LEVELCOUNTS counts{};
    ASSERT_TRUE(sample.collection.readStationHeader(1, header, &counts));
    EXPECT_STREQ(header.cruise, "BIG");
    EXPECT_EQ(header.longitude, 350.5f);
    EXPECT_EQ(header.latitude, -12.25f);
    EXPECT_EQ(header.day, 3);
    EXPECT_EQ(header.minute, 25);
    EXPECT_EQ(header.month, 7);
    EXPECT_EQ(header.hour, 14);
    EXPECT_EQ(header.year, 1995);
    EXPECT_EQ(header.reserved, 99);
    EXPECT_EQ(counts[1], 2);
    EXPECT_EQ(counts[2], 1);
}

TEST_F(BigEndian, ValuesAndFlagsComeOut)
{
    STATIONDATA station;
    ASSERT_EQ(sample.collection.loadStation(1, station, false), LoadResult::ok);
    EXPECT_EQ(valueAt(station, 1, 1, 0), 20.0f);
    EXPECT_EQ(valueAt(station, 2, 0, 0), 3.5f);
    EXPECT_EQ(valueAt(station, 2, 1, 0), missing);
    EXPECT_EQ(flagAt(station, 1, 1), 1);
    EXPECT_EQ(flagAt(station, 2, 0), 4);
}

TEST_F(BigEndian, AFileKeepsItsVariantWhenItIsWritten)
{
    STATIONDATA station;
    ASSERT_EQ(sample.collection.loadStation(1, station, false), LoadResult::ok);
    ASSERT_EQ(sample.collection.writeStation(1, station, false), WriteResult::ok);
    EXPECT_EQ(sample.bytes(".hob"), bigEndianHob());
    EXPECT_EQ(sample.bytes(".dob"), bigEndianDob());
    ASSERT_EQ(sample.collection.writeStation(0, station, false), WriteResult::ok);
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    STATIONDATA again;
    ASSERT_EQ(sample.collection.loadStation(2, again, false), LoadResult::ok);
    EXPECT_EQ(again.header.year, 1995);
    EXPECT_EQ(valueAt(again, 2, 0, 0), 3.5f);
    EXPECT_EQ(again.header.dataOffset, 20);
}

// --- records

RECORDFORM smallForm()
{
    return {.variableCount = 3, .dataSize = 1000};
}

STATIONHDR goodHeader(int valueCount = 8)
{
    STATIONHDR header{};
    header.longitude = 10;
    header.month = 1;
    header.valueCount = valueCount;
    return header;
}

LEVELCOUNTS countsOf(std::initializer_list<int> values)
{
    LEVELCOUNTS counts{};
    std::size_t v = 1;
    for (const int value : values) counts.at(v++) = static_cast<std::int16_t>(value);
    return counts;
}

bool survives(const STATIONHDR& header, const LEVELCOUNTS& counts, const RECORDFORM& form = smallForm())
{
    std::array<std::byte, 200> record{};
    EXPECT_EQ(packRecord(header, &counts, form, record.data()), static_cast<std::size_t>(form.recordSize()));
    STATIONHDR readHeader;
    LEVELCOUNTS readCounts{};
    if (!unpackRecord(record.data(), form, readHeader, readCounts)) return false;
    EXPECT_EQ(std::memcmp(&readHeader, &header, sizeof header), 0);
    EXPECT_EQ(readCounts, counts);
    return true;
}

TEST(StationRecord, ComesBackInEveryVariant)
{
    for (const bool swap : {false, true}) {
        for (const bool exchange : {false, true}) {
            RECORDFORM form = smallForm();
            form.swapBytes = swap;
            form.foreignTimeOrder = exchange;
            EXPECT_TRUE(survives(goodHeader(), countsOf({4, 2, 0}), form)) << swap << exchange;
        }
    }
}

TEST(StationRecord, CountsThatContradictEachOtherAreRefused)
{
    EXPECT_TRUE(survives(goodHeader(4), countsOf({4, 0, 0})));
    EXPECT_TRUE(survives(goodHeader(12), countsOf({4, 4, 1})));
    EXPECT_FALSE(survives(goodHeader(7), countsOf({4, 2, 0})));
    EXPECT_FALSE(survives(goodHeader(12), countsOf({4, 2, 0})));
    EXPECT_FALSE(survives(goodHeader(8), countsOf({4, 5, 0})));
    EXPECT_FALSE(survives(goodHeader(8), countsOf({4, -2, 0})));
    EXPECT_FALSE(survives(goodHeader(-8), countsOf({-4, 0, 0})));
    EXPECT_FALSE(survives(goodHeader(0), countsOf({0, 0, 0})));
}

TEST(StationRecord, BlockBeyondTheDataIsRefused)
{
    STATIONHDR header = goodHeader();
    header.dataOffset = 960;
    EXPECT_TRUE(survives(header, countsOf({4, 2, 0})));
    header.dataOffset = 961;
    EXPECT_FALSE(survives(header, countsOf({4, 2, 0})));
    header.dataOffset = -1;
    EXPECT_FALSE(survives(header, countsOf({4, 2, 0})));
    header.dataOffset = std::numeric_limits<std::int32_t>::max();
    EXPECT_FALSE(survives(header, countsOf({4, 2, 0})));
}

TEST(StationRecord, MoreCellsThanAStationHoldsAreRefused)
{
    RECORDFORM form{.variableCount = 4, .dataSize = 1 << 30};
    EXPECT_TRUE(survives(goodHeader(100000), countsOf({25000, 1, 1, 1}), form));
    EXPECT_FALSE(survives(goodHeader(100004), countsOf({25001, 1, 1, 1}), form));
}

TEST(StationRecord, PositionsThatAreNoNumbersAreRefused)
{
    for (float STATIONHDR::*const field : {&STATIONHDR::longitude, &STATIONHDR::latitude,
                                           &STATIONHDR::bottomDepth, &STATIONHDR::lastSampleDepth}) {
        STATIONHDR header = goodHeader();
        header.*field = std::numeric_limits<float>::quiet_NaN();
        EXPECT_FALSE(survives(header, countsOf({4, 2, 0})));
        header.*field = std::numeric_limits<float>::infinity();
        EXPECT_FALSE(survives(header, countsOf({4, 2, 0})));
    }
}

TEST(StationRecord, LabelsEndWhateverTheFileSays)
{
    std::array<std::byte, 200> record{};
    const LEVELCOUNTS counts = countsOf({4, 2, 0});
    packRecord(goodHeader(), &counts, smallForm(), record.data());
    std::fill_n(record.begin(), 44, std::byte{'x'});
    STATIONHDR header;
    LEVELCOUNTS read{};
    ASSERT_TRUE(unpackRecord(record.data(), smallForm(), header, read));
    EXPECT_EQ(std::strlen(header.cruise), 20U);
    EXPECT_EQ(std::strlen(header.station), 20U);
    EXPECT_EQ(std::strlen(header.type), 1U);
}

TEST(StationRecord, NegativeLongitudeIsStoredWith360Added)
{
    std::array<std::byte, 200> record{};
    const LEVELCOUNTS counts = countsOf({4, 2, 0});
    STATIONHDR header = goodHeader(), read;
    LEVELCOUNTS readCounts{};
    for (const auto& [given, stored] : {std::pair{-30.0f, 330.0f}, {-1e-9f, 0.0f}, {359.5f, 359.5f}}) {
        header.longitude = given;
        packRecord(header, &counts, smallForm(), record.data());
        ASSERT_TRUE(unpackRecord(record.data(), smallForm(), read, readCounts));
        EXPECT_EQ(read.longitude, stored);
        EXPECT_EQ(header.longitude, given);
    }
}

TEST(UnpackCells, ValuesThatAreNoNumbersBecomeMissing)
{
    const float given[] = {1, std::numeric_limits<float>::quiet_NaN(),
                           -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::max(),
                           -std::numeric_limits<float>::max()};
    std::array<std::byte, 25> block{};
    std::memcpy(block.data(), given, sizeof given);
    block[20] = std::byte{8};
    float values[5];
    std::uint8_t flags[5];
    unpackCells(block.data(), 5, false, values, flags);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], missing);
    EXPECT_EQ(values[2], missing);
    EXPECT_EQ(values[3], given[3]);
    EXPECT_EQ(values[4], given[4]);
    EXPECT_EQ(flags[0], 8);
}

TEST(UnpackCells, NoNumberIsMissedAtAnyPlace)
{
    for (std::size_t cells = 1; cells <= 9; ++cells) {
        for (std::size_t at = 0; at < cells; ++at) {
            for (const float bad :
                 {std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::quiet_NaN(),
                  std::numeric_limits<float>::infinity()}) {
                std::array<float, 9> given;
                given.fill(-1.5f);
                given.at(at) = bad;
                std::array<std::byte, 45> block{};
                std::memcpy(block.data(), given.data(), cells * sizeof(float));
                std::array<float, 9> values{};
                std::array<std::uint8_t, 9> flags{};
                unpackCells(block.data(), cells, false, values.data(), flags.data());
                for (std::size_t i = 0; i < cells; ++i) EXPECT_EQ(values.at(i), i == at ? missing : -1.5f);
            }
        }
    }
}

// --- opening

TEST(OpenStationFiles, EmptyWritableCollectionGetsTheMagic)
{
    RSampleCollection sample;
    EXPECT_EQ(sample.bytes(".hob"), "NVQ4.0");
    EXPECT_EQ(sample.bytes(".dob"), "");
    EXPECT_TRUE(sample.collection.isOpen);
    EXPECT_EQ(sample.collection.kind, 1);
    EXPECT_FALSE(sample.collection.swapBytes);
}

TEST(OpenStationFiles, EmptyCollectionIsOpenedAgainForWriting)
{
    RSampleCollection sample;
    EXPECT_EQ(sample.reopen(), OpenFilesResult::ok);
    EXPECT_EQ(sample.put(profile(3, 4)), WriteResult::ok);
}

TEST(OpenStationFiles, ReadOnlyEmptyCollectionFails)
{
    RSampleCollection sample;
    sample.collection.writable = false;
    EXPECT_EQ(sample.collection.openStationFiles(sample.collection.path, sample.user),
              OpenFilesResult::noHeaderFile);
    EXPECT_FALSE(sample.collection.isOpen);
    EXPECT_EQ(sample.collection.kind, 0);
}

TEST(OpenStationFiles, ACountOf0BesideStoredStationsIsRefusedAndNothingTouched)
{
    RSampleCollection sample;
    ASSERT_EQ(sample.put(profile(3, 4)), WriteResult::ok); // the description still says 0
    const std::string hob = sample.bytes(".hob"), dob = sample.bytes(".dob");
    EXPECT_EQ(sample.collection.openStationFiles(sample.collection.path, sample.user),
              OpenFilesResult::noHeaderFile);
    EXPECT_TRUE(sample.bytes(".hob") == hob);
    EXPECT_TRUE(sample.bytes(".dob") == dob);
    ASSERT_EQ(sample.user.messages.size(), 1U);
    EXPECT_NE(sample.user.messages[0].find(sample.collection.path + ".var:4"), std::string::npos);
    std::filesystem::remove(sample.collection.path + ".hob"); // data without a header table
    EXPECT_EQ(sample.collection.openStationFiles(sample.collection.path, sample.user),
              OpenFilesResult::noHeaderFile);
    EXPECT_TRUE(sample.bytes(".dob") == dob);
}

TEST(OpenStationFiles, DeadSpaceWithoutHeadersIsNoObstacle)
{
    RSampleCollection sample;
    sample.setBytes(".dob", std::string(100, 'x'));
    EXPECT_EQ(sample.collection.openStationFiles(sample.collection.path, sample.user), OpenFilesResult::ok);
    EXPECT_EQ(sample.bytes(".dob"), "");
}

TEST(OpenStationFiles, MissingDescriptionIsSilent)
{
    RCollection collection;
    testing_support::RScriptedUser user;
    EXPECT_EQ(collection.openStationFiles("/nowhere/x.var", user), OpenFilesResult::badDescription);
    EXPECT_TRUE(user.messages.empty());
}

class Stored : public testing::Test {
protected:
    Stored()
    {
        for (int i = 1; i <= 3; ++i) {
            EXPECT_EQ(sample.put(profile(2 + i, 4, static_cast<float>(i)), 0, "A", std::to_string(i)),
                      WriteResult::ok);
        }
        EXPECT_EQ(sample.reopen(), OpenFilesResult::ok);
    }
    OpenFilesResult open() { return collection.openStationFiles(collection.path, sample.user); }
    // Loads all stations and scans; says how many came out of each.
    std::pair<int, int> readable()
    {
        int loaded = 0, scanned = 0;
        for (int n = 1; n <= collection.stationCount; ++n) {
            loaded += collection.loadStation(n, sample.station, true) == LoadResult::ok;
        }
        EXPECT_TRUE(collection.scanHeaders(
            1, collection.stationCount, [&](auto&&...) { return ++scanned > 0; }, [](int) {}));
        return {loaded, scanned};
    }
    RSampleCollection sample;
    RCollection& collection = sample.collection;
};

TEST_F(Stored, MissingDataFileGives2)
{
    std::filesystem::remove(collection.path + ".dob");
    EXPECT_EQ(open(), OpenFilesResult::noDataFile);
    EXPECT_NE(sample.user.messages.at(0).find(".dob"), std::string::npos);
    EXPECT_FALSE(common::fileExists(collection.path + ".dob"));
}

TEST_F(Stored, MissingHeaderFileGives3)
{
    std::filesystem::remove(collection.path + ".hob");
    EXPECT_EQ(open(), OpenFilesResult::noHeaderFile);
    EXPECT_NE(sample.user.messages.at(0).find(".hob"), std::string::npos);
    EXPECT_FALSE(common::fileExists(collection.path + ".hob"));
}

TEST_F(Stored, AnotherMagicGives4)
{
    std::string hob = sample.bytes(".hob");
    hob.replace(0, 6, "NVQ5.0");
    sample.setBytes(".hob", hob);
    EXPECT_EQ(open(), OpenFilesResult::badMagic);
    EXPECT_EQ(sample.user.messages.at(0), collection.path + ".hob: Incompatible collection format!");
    EXPECT_TRUE(sample.bytes(".hob") == hob);
}

TEST_F(Stored, BadDescriptionGives1)
{
    sample.setBytes(".var", "NVQ4.0\nCollection: sample\n      Type: HYD\n     Nstat: 3\n Variables: 51\n");
    EXPECT_EQ(open(), OpenFilesResult::badDescription);
    EXPECT_EQ(sample.user.messages.size(), 1U);
}

TEST_F(Stored, NumbersOutOfRangeGive1AndLeaveThePositionsAlone)
{
    STATIONDATA station;
    ASSERT_EQ(collection.loadStation(1, station, false), LoadResult::ok);
    EXPECT_EQ(collection.loadStation(0, station, false), LoadResult::badNumber);
    EXPECT_EQ(collection.loadStation(4, station, false), LoadResult::badNumber);
    EXPECT_EQ(station.number, 0);
    STATIONHDR header;
    EXPECT_FALSE(collection.readStationHeader(0, header, nullptr));
    EXPECT_FALSE(collection.readStationHeader(4, header, nullptr));
    ASSERT_EQ(collection.loadStation(2, station, false), LoadResult::ok);
    EXPECT_STREQ(station.header.station, "2");
    EXPECT_EQ(valueAt(station, 2, 0, 0), 102);
}

TEST_F(Stored, StationsComeOutInAnyOrder)
{
    STATIONDATA station;
    for (const int number : {3, 1, 2, 2, 3, 1}) {
        ASSERT_EQ(collection.loadStation(number, station, false), LoadResult::ok);
        EXPECT_EQ(station.number, number);
        EXPECT_EQ(station.collection, &collection);
        EXPECT_EQ(station.levels(), 2 + number);
        EXPECT_EQ(station.header.valueCount, 4 * (2 + number));
        EXPECT_EQ(valueAt(station, 4, 1 + number, 0),
                  static_cast<float>(number) + 301 + static_cast<float>(number));
    }
}

TEST_F(Stored, ScanOfAPartStaysInRange)
{
    std::vector<int> seen;
    const auto visit = [&](int number, const STATIONHDR&, const LEVELCOUNTS&) {
        seen.push_back(number);
        return true;
    };
    EXPECT_TRUE(collection.scanHeaders(2, 99, visit, [](int) {}));
    EXPECT_EQ(seen, (std::vector{2, 3}));
    seen.clear();
    EXPECT_TRUE(collection.scanHeaders(-5, 1, visit, [](int) {}));
    EXPECT_EQ(seen, std::vector{1});
    seen.clear();
    EXPECT_TRUE(collection.scanHeaders(3, 2, visit, [](int) {}));
    EXPECT_TRUE(seen.empty());
}

TEST_F(Stored, HeaderTableCutAtEveryLength)
{
    collection.writable = false;
    const std::string hob = sample.bytes(".hob");
    constexpr std::size_t record = 88;
    for (std::size_t length = 0; length <= hob.size(); ++length) {
        sample.setBytes(".hob", std::string_view(hob).substr(0, length));
        sample.user.messages.clear();
        sample.user.notes.clear();
        const OpenFilesResult result = open();
        const auto whole = length < 6 ? 0 : static_cast<int>((length - 6) / record);
        ASSERT_EQ(result, whole == 0 ? OpenFilesResult::noHeaderFile : OpenFilesResult::ok) << length;
        if (whole > 0) {
            EXPECT_EQ(collection.stationCount, whole);
            EXPECT_EQ(readable(), std::pair(whole, whole)) << length;
        }
        EXPECT_EQ(sample.user.messages.size(), whole == 0 ? 1U : 0U) << length;
        EXPECT_EQ(sample.user.notes.size(), whole == 1 || whole == 2 ? 1U : 0U) << length;
        EXPECT_TRUE(sample.bytes(".hob") == hob.substr(0, length));
    }
}

TEST_F(Stored, ACutHeaderTableIsNotWrittenTo)
{
    std::filesystem::resize_file(collection.path + ".hob", 6 + 88 * 2 + 5);
    collection.writable = true;
    ASSERT_EQ(open(), OpenFilesResult::ok);
    EXPECT_FALSE(collection.writable);
    EXPECT_EQ(sample.put(profile(2, 4)), WriteResult::notOpen);
    EXPECT_NE(sample.user.notes.at(0).find("station 2 of 3"), std::string::npos);
}

TEST_F(Stored, AHugeCountBesideAShortTableIsCutToTheTable)
{
    sample.setBytes(".var", common::replaceAll(sample.bytes(".var"), "Nstat: 3", "Nstat: 2147483647"));
    ASSERT_EQ(open(), OpenFilesResult::ok);
    EXPECT_EQ(collection.stationCount, 3);
    EXPECT_EQ(readable(), std::pair(3, 3));
}

TEST_F(Stored, DataFileCutAtEveryLength)
{
    collection.writable = false;
    const std::string dob = sample.bytes(".dob");
    const std::size_t ends[] = {60, 140, 240};
    ASSERT_EQ(dob.size(), 240U);
    for (std::size_t length = 0; length <= dob.size(); ++length) {
        sample.setBytes(".dob", std::string_view(dob).substr(0, length));
        ASSERT_EQ(open(), OpenFilesResult::ok);
        const auto whole = static_cast<int>(
            std::count_if(std::begin(ends), std::end(ends), [&](std::size_t end) { return end <= length; }));
        EXPECT_EQ(readable(), std::pair(whole, whole)) << length;
        EXPECT_TRUE(sample.bytes(".dob") == dob.substr(0, length));
    }
}

TEST_F(Stored, EveryFlippedByteOfTheTableIsSurvived)
{
    collection.writable = false;
    const std::string hob = sample.bytes(".hob"), dob = sample.bytes(".dob");
    for (std::size_t at = 0; at < hob.size(); ++at) {
        for (const int mask : {0x01, 0x80, 0xFF}) {
            std::string broken = hob;
            broken[at] = static_cast<char>(broken[at] ^ mask);
            sample.setBytes(".hob", broken);
            if (open() != OpenFilesResult::ok) continue;
            const auto [loaded, scanned] = readable();
            EXPECT_EQ(loaded, scanned) << at;
            EXPECT_GE(loaded, 2) << at;
            EXPECT_TRUE(sample.bytes(".hob") == broken);
            EXPECT_TRUE(sample.bytes(".dob") == dob);
        }
    }
}

TEST_F(Stored, AFileThatShrinksWhileOpenGivesAFailedRead)
{
    std::filesystem::resize_file(collection.path + ".dob", 100);
    EXPECT_EQ(collection.loadStation(3, sample.station, false), LoadResult::badData);
    EXPECT_EQ(sample.station.number, 0);
    std::filesystem::resize_file(collection.path + ".hob", 6);
    EXPECT_NE(collection.loadStation(2, sample.station, false), LoadResult::ok);
    EXPECT_FALSE(collection.scanHeaders(
        1, 3, [](auto&&...) { return true; }, [](int) {}));
}

TEST_F(Stored, ClosedCollectionGivesNothing)
{
    collection.closeStationFiles();
    STATIONHDR header;
    EXPECT_FALSE(collection.readStationHeader(1, header, nullptr));
    EXPECT_EQ(collection.loadStation(1, sample.station, false), LoadResult::badHeader);
    EXPECT_FALSE(collection.scanHeaders(
        1, 3, [](auto&&...) { return true; }, [](int) {}));
    EXPECT_FALSE(collection.flushStationFiles());
}

TEST(LoadStation, AVariableWithoutValuesCostsNoCells)
{
    RSampleCollection sample(6);
    auto columns = profile(3, 6);
    columns[4].clear();
    ASSERT_EQ(sample.put(columns), WriteResult::ok);
    STATIONDATA station;
    ASSERT_EQ(sample.collection.loadStation(1, station, false), LoadResult::ok);
    EXPECT_EQ(station.offset[5], -1);
    EXPECT_EQ(station.levelCount[5], 0);
    EXPECT_EQ(station.header.valueCount, 15);
    EXPECT_EQ(station.offset[6], 12);
    EXPECT_EQ(valueAt(station, 5, 0, -9), -9);
}

TEST(LoadStation, NothingOfAnEarlierStationIsLeft)
{
    RSampleCollection sample;
    ASSERT_EQ(sample.put(profile(5, 4)), WriteResult::ok);
    ASSERT_EQ(sample.put({{1, 2}, {}, {3, 4}, {}}), WriteResult::ok);
    STATIONDATA station;
    ASSERT_EQ(sample.collection.loadStation(1, station, false), LoadResult::ok);
    ASSERT_EQ(sample.collection.loadStation(2, station, false), LoadResult::ok);
    EXPECT_EQ(station.offset[2], -1);
    EXPECT_EQ(station.offset[4], -1);
    EXPECT_EQ(station.levelCount[4], 0);
    EXPECT_EQ(station.offset[3], 2);
}

// --- the stages of a load

class RRecordingStages : public RLoadStages {
public:
    std::string calls;
    void applyQualityLimit(STATIONDATA&) override { calls += 'q'; }
    void computeDerived(STATIONDATA&) override { calls += 'd'; }
    void applySampleRange(STATIONDATA&) override { calls += 's'; }
};

TEST(LoadStation, StagesRunInTheirOrderAndOnlyWhereTheyApply)
{
    RSampleCollection sample;
    ASSERT_EQ(sample.put(profile(2, 4)), WriteResult::ok);
    RCollection& collection = sample.collection;
    RRecordingStages stages;
    const auto callsOf = [&](bool derive) {
        stages.calls.clear();
        EXPECT_EQ(collection.loadStation(1, sample.station, derive), LoadResult::ok);
        return stages.calls;
    };
    EXPECT_EQ(callsOf(true), "");
    collection.stages = &stages;
    EXPECT_EQ(callsOf(true), "");
    collection.criteria.sampleVariable = 2;
    EXPECT_EQ(callsOf(true), "s");
    collection.totalVariableCount = 5;
    EXPECT_EQ(callsOf(true), "ds");
    collection.qualityLimit = 1;
    EXPECT_EQ(callsOf(true), "qds");
    EXPECT_EQ(callsOf(false), "");
    collection.criteria.sampleVariable = 6;
    EXPECT_EQ(callsOf(true), "qd");
}

} // namespace
} // namespace collection
