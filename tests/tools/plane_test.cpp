#include "plane.h"

#include <gtest/gtest.h>

#include "shapes.h"

namespace {

using namespace tools;
using namespace testing_support;

TEST(Plane, AreaIsPositiveAnticlockwise)
{
    const RING ring = rectangle({350, 10, 352, 13});
    EXPECT_DOUBLE_EQ(signedArea(ring), 6);
    EXPECT_DOUBLE_EQ(signedArea(RING(ring.rbegin(), ring.rend())), -6);
}

TEST(Plane, HolesAreTakenOffTheArea)
{
    const POLYGON polygon{rectangle({0, 0, 10, 10}), {rectangle({1, 1, 3, 3}), rectangle({5, 5, 6, 8})}};
    EXPECT_DOUBLE_EQ(areaOf(polygon), 93);
    EXPECT_EQ(pointCount(polygon), 15u);
}

TEST(Plane, ContainsFollowsTheEvenOddRule)
{
    const RING ring = circle(5, 5, 2, 24);
    EXPECT_TRUE(contains(ring, {5, 5}));
    EXPECT_FALSE(contains(ring, {5, 7.5}));
    EXPECT_FALSE(contains(ring, {0, 5}));
}

TEST(Plane, BoundsHoldAllPoints)
{
    const BOX bounds = boundsOf(circle(5, -5, 2, 4));
    EXPECT_NEAR(bounds.xmin, 3, 1e-12);
    EXPECT_NEAR(bounds.ymax, -3, 1e-12);
    EXPECT_NEAR(bounds.width(), 4, 1e-12);
}

TEST(Plane, ChartEdgesAreTheCutMeridianAndThePoles)
{
    EXPECT_TRUE(onChartEdge({0, 10}, {0, 20}));
    EXPECT_TRUE(onChartEdge({360, 10}, {360, 20}));
    EXPECT_TRUE(onChartEdge({10, -90}, {20, -90}));
    EXPECT_TRUE(onChartEdge({10, 90}, {20, 90}));
    EXPECT_FALSE(onChartEdge({180, 10}, {180, 20}));
    EXPECT_FALSE(onChartEdge({0, 10}, {360, 10}));
    EXPECT_FALSE(onChartEdge({0, 10}, {0.1, 20}));
}

} // namespace
