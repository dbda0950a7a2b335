#include <gtest/gtest.h>

#include "graphics/plotfixture.h"
#include "selection/criteria.h"

namespace {

using namespace graphics;
using testing_support::RPlotFixture;

TEST(FullRanges, AreTheTicRulesLimitsAndExchangedOnAReversedAxis)
{
    RPlotFixture f;
    PLOTCONTEXT c = f.context();
    fullRanges(c, 0);
    const DATAWINDOW& w = f.setup.window(1);
    const TICS depth = ChooseTics(0, 5000);
    EXPECT_FLOAT_EQ(w.yMin, depth.hi);
    EXPECT_FLOAT_EQ(w.yMax, depth.lo);
    const collection::VARINFO& temperature = f.collection().variables[2];
    EXPECT_LE(w.xMin, temperature.rangeMin);
    EXPECT_GE(w.xMax, temperature.rangeMax);
    EXPECT_LT(temperature.rangeMin, temperature.rangeMax);
    EXPECT_FLOAT_EQ(f.collection().variables[1].rangeMax, 5000);
}

TEST(FullRanges, OfOneWindowReachItsTwins)
{
    RPlotFixture f;
    PLOTCONTEXT c = f.context();
    fullRanges(c, 1);
    EXPECT_FLOAT_EQ(f.setup.window(2).yMin, f.setup.window(1).yMin); // depth
    EXPECT_FLOAT_EQ(f.setup.window(2).xMin, 0);                      // salinity was not asked for
    EXPECT_FLOAT_EQ(f.setup.window(4).yMax, f.setup.window(1).xMax); // temperature of the diagram
}

TEST(FullRanges, HonourTheQualityLimit)
{
    RPlotFixture f(3);
    selection::RSelectionStages stages;
    f.collection().stages = &stages;
    collection::STATIONDATA& station = f.sample.station;
    ASSERT_EQ(f.collection().loadStation(2, station, false), collection::LoadResult::ok);
    station.values[static_cast<std::size_t>(station.offset[2])] = 99;
    station.flags[static_cast<std::size_t>(station.offset[2])] = collection::flagBad;
    ASSERT_EQ(f.collection().writeStation(2, station, false), collection::WriteResult::ok);
    PLOTCONTEXT c = f.context();
    fullRanges(c, 1);
    EXPECT_FLOAT_EQ(f.collection().variables[2].rangeMax, 99);
    f.collection().qualityLimit = 4;
    fullRanges(c, 1);
    EXPECT_LT(f.collection().variables[2].rangeMax, 40);
    f.collection().stages = nullptr;
}

TEST(FullRanges, OnlyTheSelectedStationsCount)
{
    RPlotFixture f(11);
    f.setup.map.geometry.latMin = 50; // the cold end
    PLOTCONTEXT c = f.context();
    fullRanges(c, 0);
    EXPECT_EQ(f.collection().selectedStationCount, 1);
    EXPECT_LT(f.collection().variables[2].rangeMax, 15);
}

TEST(FullRanges, WithoutDataNothingChanges)
{
    RPlotFixture f(0);
    PLOTCONTEXT c = f.context();
    fullRanges(c, 0);
    EXPECT_FLOAT_EQ(f.setup.window(1).xMin, 0);
    EXPECT_FLOAT_EQ(f.setup.window(1).xMax, 1);
}

TEST(FullRanges, AnAbortChangesNothing)
{
    RPlotFixture f(250, 2);
    PLOTCONTEXT c = f.context();
    refreshSelection(c);
    f.setup.map.toDraw = 0;
    f.user().abortAfter = 1;
    fullRanges(c, 0);
    EXPECT_FLOAT_EQ(f.setup.window(1).xMax, 1);
}

TEST(FullRanges, NeededVariablesAreAsBefore)
{
    RPlotFixture f;
    const auto mask = f.collection().neededMask;
    PLOTCONTEXT c = f.context();
    fullRanges(c, 1);
    EXPECT_EQ(f.collection().neededMask, mask);
}

} // namespace
