#include "geos.h"

#include <gtest/gtest.h>

#include "shapes.h"

namespace {

using namespace tools;
using namespace testing_support;

double totalArea(const std::vector<POLYGON>& polygons)
{
    double area = 0;
    for (const POLYGON& polygon : polygons) area += areaOf(polygon);
    return area;
}

TEST(Geos, ValidPolygonComesBackUnchanged)
{
    const RGeos geos;
    const POLYGON polygon = box(0, 0, 2, 2);
    const auto out = geos.repaired(polygon);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].outer, polygon.outer);
}

TEST(Geos, FigureOfEightIsRepairedIntoTwo)
{
    const RGeos geos;
    const auto out = geos.repaired({{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {0, 0}}, {}});
    EXPECT_EQ(out.size(), 2u);
    EXPECT_NEAR(totalArea(out), 2, 1e-12);
    EXPECT_FALSE(geos.failed());
}

TEST(Geos, ClipLeavesContactOut)
{
    const RGeos geos;
    EXPECT_TRUE(geos.clipped(box(0, 0, 2, 2), {2, 0, 4, 2}).empty()); // they share an edge only
    EXPECT_NEAR(totalArea(geos.clipped(box(0, 0, 2, 2), {1, 1, 4, 4})), 1, 1e-12);
    EXPECT_FALSE(geos.failed());
}

TEST(Geos, ClipRepairsWhatItMust)
{
    const RGeos geos;
    const POLYGON bow{{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {0, 0}}, {}};
    EXPECT_NEAR(totalArea(geos.clipped(bow, {-1, -1, 1, 3})), 1, 1e-12);
    EXPECT_FALSE(geos.failed());
}

TEST(Geos, UnionJoinsAtACommonEdge)
{
    const RGeos geos;
    const std::vector<POLYGON> halves = {box(179, 0, 180, 1), box(180, 0, 181, 1)};
    const auto out = geos.united(halves);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_NEAR(areaOf(out[0]), 2, 1e-12);
}

TEST(Geos, NestedRingsBecomeHolesAndIslands)
{
    const RGeos geos;
    const std::vector<RING> rings = {circle(0, 0, 3, 40), circle(0, 0, 2, 40), circle(0, 0, 1, 40)};
    const auto out = geos.enclosed(rings);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0].holes.size() + out[1].holes.size(), 1u);
}

TEST(Geos, SimplifiedChainsKeepTheirEnds)
{
    const RGeos geos;
    CHAIN chain;
    for (int i = 0; i <= 100; ++i) chain.push_back({i * 0.1, i % 2 ? 0.001 : 0.0});
    const auto out = geos.simplified(std::vector<CHAIN>{chain}, 0.01);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].front(), chain.front());
    EXPECT_EQ(out[0].back(), chain.back());
    EXPECT_EQ(out[0].size(), 2u);
}

TEST(Geos, RefusedGeometryIsRemembered)
{
    const RGeos geos;
    EXPECT_TRUE(geos.repaired({{{0, 0}, {1, 1}, {2, 0}}, {}}).empty()); // an open ring
    EXPECT_TRUE(geos.failed());
    EXPECT_FALSE(geos.message().empty());
}

} // namespace
