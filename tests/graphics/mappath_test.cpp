#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "graphics/mappath.h"
#include "mapsupport.h"

using namespace graphics;
using namespace testing_support;

namespace {

MAPGEOMETRY setUp(int id, double lon0, double lat0)
{
    MAPGEOMETRY m{.lonMin = -180, .lonMax = 180, .lon0 = lon0, .lat0 = lat0, .id = id};
    SetupMapWindow(m, {10, 0, 10, 0});
    return m;
}

std::vector<PATH2D> rings(const MAPGEOMETRY& m, const SHAPE& s)
{
    std::vector<PATH2D> out;
    RMapPaths(m).addRing(
        s.lon, s.lat, [&out](std::span<const POINT2D> ring) { out.emplace_back(ring.begin(), ring.end()); });
    return out;
}

std::vector<PATH2D> lines(const MAPGEOMETRY& m, const SHAPE& s)
{
    std::vector<PATH2D> out;
    RMapPaths(m).addLine(
        s.lon, s.lat, [&out](std::span<const POINT2D> line) { out.emplace_back(line.begin(), line.end()); });
    return out;
}

double longestStep(const std::vector<PATH2D>& paths, bool closed)
{
    double longest = 0;
    for (const PATH2D& path : paths)
        for (std::size_t i = closed ? 0 : 1; i < path.size(); ++i) {
            const POINT2D& before = path[i == 0 ? path.size() - 1 : i - 1];
            longest = std::max(longest, std::hypot(path[i].x - before.x, path[i].y - before.y));
        }
    return longest;
}

} // namespace

TEST(MapPaths, NothingStreaksAcrossTheGlobe)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<double> lon(-180, 180), lat(-89, 89);
    for (int k = 0; k < 60; ++k) {
        const MAPGEOMETRY m = setUp(5, lon(random), lat(random));
        for (const SHAPE& s : smallWorld()) {
            const auto filled = rings(m, s);
            EXPECT_LT(longestStep(filled, true), 0.06) << m.lon0 << " " << m.lat0;
            EXPECT_LT(longestStep(lines(m, s), false), 0.06) << m.lon0 << " " << m.lat0;
            for (const PATH2D& ring : filled)
                for (const POINT2D& w : ring) EXPECT_LE(std::hypot(w.x, w.y), 1 + 1e-6);
        }
    }
}

TEST(MapPaths, NothingStreaksAcrossTheEllipse)
{
    for (int id : {4, 6})
        for (double lon0 = -180; lon0 < 180; lon0 += 23) {
            const MAPGEOMETRY m = setUp(id, lon0, 0);
            for (const SHAPE& s : smallWorld()) {
                EXPECT_LT(longestStep(lines(m, s), false), 0.2) << id << " " << lon0;
                EXPECT_LT(longestStep(rings(m, s), true), 0.2) << id << " " << lon0;
            }
        }
}

TEST(MapPaths, LineOverTheEdgeOfAMapIsTakenApart)
{
    const SHAPE line{{170, 175, 185, 190}, {10, 10, 10, 10}, -1};
    const MAPGEOMETRY m = setUp(4, 0, 0);
    const auto parts = lines(m, line);
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_LT(parts[0][0].x * parts[1][0].x, 0); // one at each end
}

TEST(MapPaths, LineBehindTheGlobeEndsAtTheHorizon)
{
    const MAPGEOMETRY m = setUp(5, 0, 0);
    const auto parts = lines(m, {{60, 120}, {0, 0}, -1});
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_NEAR(parts[0].back().x, 1, 1e-6);
    EXPECT_TRUE(lines(m, {{100, 140}, {0, 0}, -1}).empty());
    EXPECT_EQ(lines(m, {{0, 0, 0, 0}, {80, 100, -100, -80}, -1}).size(),
              3U); // beyond the poles there is nothing
}

TEST(MapPaths, LongSidesFollowTheCurves)
{
    const MAPGEOMETRY m = setUp(5, 0, 90); // becomes polar
    const auto parts = rings(m, box(0, 90, 30, 60));
    ASSERT_EQ(parts.size(), 1U);
    for (const POINT2D& w : parts[0]) {
        const double r = std::hypot(w.x, w.y);
        EXPECT_GE(r, std::cos(60 * std::numbers::pi / 180) - 1e-4);
        EXPECT_LE(r, std::cos(30 * std::numbers::pi / 180) + 1e-9);
    }
}

TEST(MapPaths, StrangePolygonsAreSurvived)
{
    std::mt19937 random(9);
    std::uniform_real_distribution<float> place(-1e4f, 1e4f), degrees(-400, 400);
    for (int id = 0; id <= 6; ++id) {
        const MAPGEOMETRY m = setUp(id, 20, 30);
        for (int k = 0; k < 100; ++k) {
            SHAPE s;
            const int n = 1 + int(random() % 9);
            for (int i = 0; i < n; ++i) {
                s.lon.push_back(k % 2 ? place(random) : degrees(random));
                s.lat.push_back(k % 2 ? place(random) : degrees(random));
            }
            for (const PATH2D& path : rings(m, s))
                for (const POINT2D& w : path) ASSERT_TRUE(std::isfinite(w.x) && std::isfinite(w.y));
            for (const PATH2D& path : lines(m, s))
                for (const POINT2D& w : path) ASSERT_TRUE(std::isfinite(w.x) && std::isfinite(w.y));
        }
    }
}
