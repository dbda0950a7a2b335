#include <cmath>

#include <random>

#include <gtest/gtest.h>

#include "import/headercheck.h"
#include "import/merge.h"

namespace {

using collection::STATIONDATA;
using importing::ImportMode;
using importing::mergeStation;

constexpr float missing = common::MISSING_VALUE;

// Columns of equal length; an empty one is a variable without data.
void fill(STATIONDATA& station, const std::vector<std::vector<float>>& columns, std::uint8_t flag)
{
    station.clear();
    std::size_t cell = 0;
    for (std::size_t v = 0; v < columns.size(); ++v) {
        if (columns[v].empty()) continue;
        station.offset[v + 1] = static_cast<int>(cell);
        for (const float value : columns[v]) {
            station.values[cell] = value;
            station.flags[cell++] = flag;
        }
    }
    station.levelCount[1] = static_cast<std::int16_t>(columns[0].size());
    station.header.valueCount = static_cast<int>(cell);
}

struct MERGED {
    STATIONDATA fresh, stored;
    bool done = false;
    importing::MERGECOUNTS counts;

    MERGED(const std::vector<std::vector<float>>& newColumns,
           const std::vector<std::vector<float>>& oldColumns, ImportMode mode = ImportMode::merge)
    {
        fill(fresh, newColumns, 4);
        fill(stored, oldColumns, 0);
        const auto result = mergeStation(fresh, stored, mode, static_cast<int>(newColumns.size()));
        done = result.has_value();
        counts = result.value_or(importing::MERGECOUNTS{});
    }
    [[nodiscard]] std::vector<float> column(std::size_t v) const
    {
        if (stored.offset[v] < 0) return {};
        const float* const first = stored.values.get() + stored.offset[v];
        return {first, first + stored.levels()};
    }
    [[nodiscard]] std::vector<int> flags(std::size_t v) const
    {
        const std::uint8_t* const first = stored.flags.get() + stored.offset[v];
        return {first, first + stored.levels()};
    }
};

using Column = std::vector<float>;

TEST(MergeStation, LevelsWithinTheToleranceAreOne)
{
    const MERGED m({{1000}, {4}}, {{1015}, {2}});
    EXPECT_EQ(m.column(1), Column{1015});
    EXPECT_EQ(m.column(2), Column{3});
}

TEST(MergeStation, LevelsBeyondTheToleranceAreAppended)
{
    const MERGED m({{4}, {7}}, {{15}, {2}});
    EXPECT_EQ(m.column(1), (Column{15, 4}));
    EXPECT_EQ(m.column(2), (Column{2, 7}));
    EXPECT_EQ(m.flags(1), (std::vector<int>{0, 4}));
}

TEST(MergeStation, TheToleranceItselfIsTooFar)
{
    EXPECT_EQ(MERGED({{110}, {1}}, {{100}, {2}}).column(1), (Column{100, 110}));
    EXPECT_EQ(MERGED({{109.5f}, {1}}, {{100}, {2}}).column(1), (Column{100}));
}

TEST(MergeStation, ALevelWithOnlyItsDepthIsDropped)
{
    for (const ImportMode mode : {ImportMode::merge, ImportMode::update}) {
        const MERGED m({{500, 900}, {missing, 1}}, {{100}, {2}}, mode);
        EXPECT_EQ(m.column(1), (Column{100, 900}));
    }
}

TEST(MergeStation, TwoValuesBecomeTheirMeanWithTheWorseFlag)
{
    const MERGED m({{100}, {4}}, {{100}, {2}});
    EXPECT_EQ(m.column(2), Column{3});
    EXPECT_EQ(m.flags(2), std::vector<int>{4});
    EXPECT_EQ(m.flags(1), std::vector<int>{0});
}

TEST(MergeStation, TheSameDataTwiceStayAsTheyAre)
{
    const std::vector<std::vector<float>> columns = {{0, 100, 200}, {1, 2, missing}, {missing, 5, 6}};
    const MERGED m(columns, columns);
    for (std::size_t v = 1; v <= 3; ++v) EXPECT_EQ(m.column(v), columns[v - 1]);
}

TEST(MergeStation, SeveralSamplesOfOneDepthTwiceStayAsTheyAre)
{
    const std::vector<std::vector<float>> data = {{10, 10, 10, 200}, {5, 7, missing, 2}};
    const MERGED merged(data, data);
    EXPECT_EQ(merged.column(1), data[0]);
    EXPECT_EQ(merged.column(2), data[1]);
    const MERGED more({{10, 10}, {5, 7}}, {{10}, {1}}); // those too many go to the first
    EXPECT_EQ(more.column(1), std::vector<float>{10});
}

TEST(MergeStation, LevelsWithoutADepthMeetOnlyTheirLike)
{
    const std::vector<std::vector<float>> data = {{missing, 10, missing}, {5, 6, 7}};
    for (const ImportMode mode : {ImportMode::merge, ImportMode::update}) {
        const MERGED merged(data, data, mode);
        EXPECT_EQ(merged.column(1), data[0]);
        EXPECT_EQ(merged.column(2), data[1]);
    }
    const MERGED appended({{missing, missing}, {5, 7}}, {{10}, {1}});
    EXPECT_EQ(appended.column(2), (std::vector<float>{1, 5, 7}));
}

TEST(MergeStation, NewVariablesAreAddedWithUnknownFlagsWhereTheyHaveNoValue)
{
    const MERGED m({{100}, {}, {7}}, {{100, 300}, {1, 2}, {}});
    EXPECT_EQ(m.column(2), (Column{1, 2}));
    EXPECT_EQ(m.column(3), (Column{7, missing}));
    EXPECT_EQ(m.flags(3), (std::vector<int>{4, 1}));
}

TEST(MergeStation, UpdateReplacesTheVariablesThatTheNewStationHas)
{
    const MERGED m({{100}, {9}, {}}, {{100, 300}, {1, 2}, {5, 6}}, ImportMode::update);
    EXPECT_EQ(m.column(2), (Column{9, missing}));
    EXPECT_EQ(m.column(3), (Column{5, 6}));
    EXPECT_EQ(m.flags(2), (std::vector<int>{4, 1}));
}

TEST(MergeStation, AVariableWithoutAnyValueReplacesNothing)
{
    const MERGED update({{0, 50}, {missing, missing}, {1, 2}}, {{0, 50}, {5, 6}, {}}, ImportMode::update);
    EXPECT_EQ(update.column(2), (std::vector<float>{5, 6}));
    EXPECT_EQ(update.column(3), (std::vector<float>{1, 2}));
    const MERGED absent({{0, 50}, {missing, missing}, {1, 2}}, {{0, 50}, {}, {}});
    EXPECT_TRUE(absent.column(2).empty());
}

TEST(MergeStation, AVariableThatNeitherHasStaysAbsent)
{
    const MERGED m({{100}, {9}, {}}, {{100}, {1}, {}});
    EXPECT_EQ(m.stored.offset[3], -1);
    EXPECT_EQ(m.stored.header.valueCount, 2);
}

TEST(MergeStation, TheNearestOldLevelIsFoundWhateverTheOrder)
{
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        Column old, fresh;
        for (int i = 0; i < 20; ++i) old.push_back(static_cast<float>(random() % 60) * 2);
        for (int i = 0; i < 20; ++i) fresh.push_back(static_cast<float>(random() % 130));
        Column oldValues(20, missing), freshValues;
        for (int i = 0; i < 20; ++i) freshValues.push_back(static_cast<float>(i + 1));
        oldValues[0] = 0.5f;
        const MERGED m({fresh, freshValues}, {old, oldValues}, ImportMode::update);
        // The same with a plain walk over the old levels, the first one among equals; new levels of a depth
        // meet old ones of exactly that depth one by one.
        Column expected(20, missing), depths = old;
        for (std::size_t k = 0; k < 20; ++k) {
            std::size_t best = 0;
            for (std::size_t i = 1; i < 20; ++i)
                if (std::abs(fresh[k] - old[i]) < std::abs(fresh[k] - old[best])) best = i;
            auto before = std::count(fresh.begin(), fresh.begin() + static_cast<std::ptrdiff_t>(k), fresh[k]);
            for (std::size_t i = 0; i < 20; ++i)
                if (old[i] == fresh[k] && before-- == 0) best = i;
            if (std::abs(fresh[k] - old[best]) < std::max(10.0f, std::abs(0.02f * old[best]))) {
                expected[best] = freshValues[k];
            } else {
                depths.push_back(fresh[k]);
                expected.push_back(freshValues[k]);
            }
        }
        ASSERT_EQ(m.column(1), depths) << round;
        ASSERT_EQ(m.column(2), expected) << round;
    }
}

TEST(MergeStation, AResultBeyondAStationsRoomIsRefusedAndNothingChanges)
{
    Column shallow, deep, ones(20000, 1);
    for (int i = 0; i < 20000; ++i) {
        shallow.push_back(static_cast<float>(i) * 30);
        deep.push_back(1e6f + static_cast<float>(i) * 100000);
    }
    const MERGED m({deep, ones}, {shallow, ones});
    EXPECT_FALSE(m.done);
    EXPECT_EQ(m.stored.levels(), 20000);
    EXPECT_EQ(m.column(1), shallow);
}

// --- header check

collection::STATIONHDR header(int month, int day, int hour, int minute, float lon = 10, float lat = 20)
{
    collection::STATIONHDR h{};
    h.year = 1995;
    h.month = static_cast<std::int16_t>(month);
    h.day = static_cast<std::int16_t>(day);
    h.hour = static_cast<std::int16_t>(hour);
    h.minute = static_cast<std::int16_t>(minute);
    h.longitude = lon;
    h.latitude = lat;
    return h;
}

std::string faults(collection::STATIONHDR h)
{
    std::string message;
    const bool good = importing::checkHeader(h, message);
    EXPECT_EQ(good, message.empty());
    return message;
}

TEST(CheckHeader, HourTwentyFourIsHourZeroOfTheSameDate)
{
    collection::STATIONHDR h = header(7, 15, 24, 0);
    std::string message;
    EXPECT_TRUE(importing::checkHeader(h, message));
    EXPECT_EQ(h.hour, 0);
    EXPECT_EQ(h.day, 15);
    EXPECT_EQ(faults(header(7, 15, 24, 1)), "Invalid time 24:01 (hh.sMM).\n");
}

TEST(CheckHeader, TellsEachFault)
{
    EXPECT_EQ(faults(header(13, 1, 0, 0)), "Invalid date 13/01/1995 (mm/dd/yyyy).\n");
    EXPECT_EQ(faults(header(1, 32, 0, 0)), "Invalid date 01/32/1995 (mm/dd/yyyy).\n");
    EXPECT_EQ(faults(header(1, 1, 12, 60)), "Invalid time 12:60 (hh.sMM).\n");
    EXPECT_EQ(faults(header(1, 1, 0, 0, 361)), "Invalid location 361/20 (lon/lat).\n");
    EXPECT_EQ(faults(header(1, 1, 0, 0, 10, -90.5f)), "Invalid location 10/-90.5 (lon/lat).\n");
    EXPECT_EQ(faults(header(0, 1, -1, 0, NAN)).find("Invalid location nan"), 67u);
    EXPECT_EQ(faults(header(12, 31, 23, 59, -360, 90)), "");
}

} // namespace
