#include "simplify.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "shapes.h"

namespace {

using namespace tools;
using namespace testing_support;

bool has(const RING& ring, POINT point)
{
    return std::find(ring.begin(), ring.end(), point) != ring.end();
}

TEST(Simplify, ThinsAndKeepsTheArea)
{
    const RGeos geos;
    const std::vector<POLYGON> polygons = {{circle(100, 0, 5, 2000), {circle(100, 0, 2, 1000)}}};
    const auto thin = simplify(geos, polygons, 0.02);
    ASSERT_EQ(thin.size(), 1u);
    EXPECT_LT(pointCount(thin[0]), 300u);
    EXPECT_NEAR(areaOf(thin[0]), areaOf(polygons[0]), 0.01 * areaOf(polygons[0]));
}

TEST(Simplify, ZeroToleranceLeavesPolygonsAlone)
{
    const RGeos geos;
    const std::vector<POLYGON> polygons = {{circle(100, 0, 5, 50), {}}};
    EXPECT_EQ(simplify(geos, polygons, 0)[0].outer, polygons[0].outer);
}

TEST(Simplify, CornersOnTheCutMeridianStay)
{
    const RGeos geos;
    // Corners that the tolerance alone would take.
    const std::vector<POLYGON> polygons = {
        {{{0, 10}, {0.001, 9.999}, {5, 9.9}, {5, 20}, {0.001, 20.001}, {0, 20}, {0, 10}}, {}}};
    const auto thin = simplify(geos, polygons, 0.5);
    ASSERT_EQ(thin.size(), 1u);
    EXPECT_TRUE(has(thin[0].outer, {0, 10}));
    EXPECT_TRUE(has(thin[0].outer, {0, 20}));
}

TEST(Simplify, IslandBelowTheToleranceStaysAnIsland)
{
    const RGeos geos;
    const std::vector<POLYGON> polygons = {{circle(50, 10, 0.004, 30), {}}};
    const auto thin = simplify(geos, polygons, 0.02);
    ASSERT_EQ(thin.size(), 1u);
    EXPECT_GT(areaOf(thin[0]), 0);
}

} // namespace
