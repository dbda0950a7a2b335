#include "selection/selectedlist.h"

#include <gtest/gtest.h>

#include "common/text.h"
#include "filesizelimit.h"
#include "samplecollection.h"

namespace selection {
namespace {

using collection::WriteResult;

class SelectedList : public testing::Test {
protected:
    SelectedList() { EXPECT_TRUE(collection.openTemporaryFiles()); }
    void put(float longitude, const std::string& cruise = "A", float latitude = 10)
    {
        testing_support::fillStation(station, {{1, 2}});
        testing_support::label(station, cruise, "1");
        testing_support::place(station, longitude, latitude);
        ASSERT_EQ(collection.writeStation(0, station, false), WriteResult::ok);
    }
    int build(const LISTBUILD& settings = {})
    {
        return buildSelectedList(collection, settings, "Title", user);
    }
    std::string numbers()
    {
        std::string text;
        for (const SELECTEDSTATION& record : readSelectedList(collection)) {
            text += std::to_string(record.number) + ' ';
        }
        return text;
    }
    testing_support::RSampleCollection sample;
    collection::RCollection& collection = sample.collection;
    collection::STATIONDATA& station = sample.station;
    testing_support::RScriptedUser& user = sample.user;
};

TEST_F(SelectedList, DefaultCriteriaSelectEveryStationInOrder)
{
    for (const float longitude : {0.0f, 359.0f, 180.0f}) put(longitude);
    EXPECT_EQ(build(), 3);
    EXPECT_EQ(collection.selectedStationCount, 3);
    EXPECT_EQ(numbers(), "1 2 3 ");
    SELECTEDSTATION record{};
    ASSERT_TRUE(readSelected(collection, 2, record));
    EXPECT_EQ(record.number, 2);
    EXPECT_EQ(record.longitude, 359);
    EXPECT_EQ(record.latitude, 10);
    EXPECT_FALSE(readSelected(collection, 0, record));
    EXPECT_FALSE(readSelected(collection, 4, record));
}

TEST_F(SelectedList, RecordsHoldTheLongitudeOfTheMap)
{
    put(350);
    put(25);
    put(10);
    collection.criteria.lonMin = -30;
    collection.criteria.lonMax = 20;
    EXPECT_EQ(build({.domain = {-30, 20, -90, 90}, .place = {}, .group = {}}), 2);
    EXPECT_EQ(numbers(), "1 3 ");
    EXPECT_EQ(readSelectedList(collection)[0].longitude, -10);
}

TEST_F(SelectedList, AStationMustLieInTheMapToo)
{
    put(10, "A", 10);
    put(10, "A", 70);
    put(200, "A", 10);
    EXPECT_EQ(build({.domain = {0, 100, 0, 60}, .place = {}, .group = {}}), 1);
    // Criteria across 0, a map from 0 to 360.
    put(350);
    collection.criteria.lonMin = -30;
    collection.criteria.lonMax = 20;
    EXPECT_EQ(build(), 3);
    EXPECT_EQ(readSelectedList(collection).back().longitude, 350);
}

TEST_F(SelectedList, PlaceSetsPixelsAndMayHideAStation)
{
    put(10);
    put(20);
    LISTBUILD settings;
    settings.place = [](SELECTEDSTATION& record) {
        record.pixelX = static_cast<std::int16_t>(record.number * 100);
        return record.number != 1;
    };
    EXPECT_EQ(build(settings), 1);
    EXPECT_EQ(readSelectedList(collection)[0].pixelX, 200);
}

TEST_F(SelectedList, CruisePatternSelectsByLabel)
{
    for (const char* const cruise : {"A20", "B1", "A22", "B1", "A20"}) put(10, cruise);
    common::copyText(collection.criteria.cruisePattern, "A2*");
    EXPECT_EQ(build(), 3);
    EXPECT_EQ(numbers(), "1 3 5 ");
    common::copyText(collection.criteria.cruisePattern, "none");
    EXPECT_EQ(build(), 0);
    EXPECT_TRUE(readSelectedList(collection).empty());
}

TEST_F(SelectedList, ANewListReplacesTheOldOne)
{
    for (int i = 0; i < 5; ++i) put(10.0f * static_cast<float>(i));
    EXPECT_EQ(build(), 5);
    collection.criteria.internalMin = 4;
    EXPECT_EQ(build(), 2);
    EXPECT_EQ(numbers(), "4 5 ");
    EXPECT_EQ(common::fileSize(collection.valFile.get()), 32);
}

TEST_F(SelectedList, GroupsComeInOrderAndHoldEveryStationOnce)
{
    for (int i = 0; i < 250; ++i) put(1);
    std::vector<int> seen;
    int groups = 0;
    LISTBUILD settings;
    settings.group = [&](std::span<const SELECTEDSTATION> group) {
        ++groups;
        for (const SELECTEDSTATION& record : group) seen.push_back(record.number);
    };
    EXPECT_EQ(build(settings), 250);
    EXPECT_EQ(groups, 3);
    ASSERT_EQ(seen.size(), 250U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TEST_F(SelectedList, AnAbortKeepsTheListAsFarAsItGot)
{
    for (int i = 0; i < 350; ++i) put(1);
    user.abortAfter = 2;
    user.answers = {common::Answer::yes};
    EXPECT_EQ(build(), 200);
    EXPECT_EQ(collection.selectedStationCount, 200);
    EXPECT_EQ(user.messages.at(0), "Title: Really Want to Abort?");
}

TEST_F(SelectedList, AnAbortThatIsTakenBackGoesOn)
{
    for (int i = 0; i < 350; ++i) put(1);
    user.abortAfter = 1;
    user.answers = {common::Answer::no};
    EXPECT_EQ(build(), 350);
    EXPECT_FALSE(user.abort);
}

TEST_F(SelectedList, DamagedHeadersAreNotSelectedAndToldOnce)
{
    for (int i = 0; i < 4; ++i) put(1);
    std::string hob = sample.bytes(".hob");
    for (const std::size_t n : {2U, 4U}) hob[6 + (n - 1) * 88 + 79] = '\x7f';
    sample.setBytes(".hob", hob);
    EXPECT_EQ(build(), 2);
    EXPECT_EQ(numbers(), "1 3 ");
    ASSERT_EQ(user.notes.size(), 1U);
    EXPECT_NE(user.notes[0].find("stations 2, 4"), std::string::npos);
}

TEST_F(SelectedList, AFullDiskIsToldAndNoHalfListStands)
{
    for (int i = 0; i < 3; ++i) put(10);
    {
        const testing_support::RFileSizeLimit full(2 * sizeof(SELECTEDSTATION));
        EXPECT_EQ(build(), 0);
    }
    ASSERT_EQ(user.notes.size(), 1U);
    EXPECT_NE(user.notes[0].find(collection.tempId + ".val"), std::string::npos);
    EXPECT_EQ(numbers(), "");
    EXPECT_EQ(build(), 3);
    EXPECT_EQ(numbers(), "1 2 3 ");
    EXPECT_EQ(user.notes.size(), 1U);
}

TEST_F(SelectedList, WithoutItsFileTheListIsEmpty)
{
    put(1);
    collection.closeTemporaryFiles();
    EXPECT_EQ(build(), 0);
    EXPECT_TRUE(readSelectedList(collection).empty());
}

TEST_F(SelectedList, PlottedStationsAreAppendedReadAndEmptied)
{
    EXPECT_TRUE(readPlottedList(collection).empty());
    for (const int number : {7, 3, 7}) {
        EXPECT_TRUE(appendPlotted(collection, {number, 1, 2, 3, 4}));
    }
    ASSERT_EQ(collection.plottedStationCount, 3);
    const auto plotted = readPlottedList(collection);
    ASSERT_EQ(plotted.size(), 3U);
    EXPECT_EQ(plotted[1].number, 3);
    EXPECT_EQ(plotted[2].latitude, 4);
    clearPlotted(collection);
    EXPECT_TRUE(readPlottedList(collection).empty());
    EXPECT_TRUE(appendPlotted(collection, {9, 0, 0, 0, 0}));
    EXPECT_EQ(readPlottedList(collection).at(0).number, 9);
    collection.closeTemporaryFiles();
    EXPECT_FALSE(appendPlotted(collection, {9, 0, 0, 0, 0}));
}

} // namespace
} // namespace selection
