#include <random>

#include <gtest/gtest.h>

#include "graphics/gridpath.h"
#include "graphics/sincos.h"
#include "mapsupport.h"

using namespace graphics;
using namespace testing_support;

namespace {

RGridPath pathOf(const std::vector<GRIDPOINT>& points)
{
    RGridPath path;
    for (const GRIDPOINT& w : points) path.add(w);
    return path;
}

std::string text(const RGridPath& path, bool fill)
{
    const RTemporaryDirectory folder;
    std::FILE* ps = std::fopen(folder.file("a").c_str(), "wb");
    {
        RGridPathWriter writer(ps);
        if (fill) {
            writer.fill(path);
        } else {
            writer.stroke(path);
        }
    }
    std::fclose(ps);
    return readBytes(folder.file("a"));
}

} // namespace

TEST(GridPath, StepsOfNothingAndStationsOnTheWayAreLeftOut)
{
    const RGridPath path = pathOf({{0, 0}, {0, 0}, {1, 1}, {3, 3}, {3, 3}, {3, 9}, {3, 4}});
    const std::vector<GRIDPOINT> expected{{0, 0}, {3, 3}, {3, 9}, {3, 4}}; // the way back is a way of its own
    EXPECT_EQ(path.points(), expected);
}

TEST(GridPath, ClosedRingLosesItsLastPoint)
{
    RGridPath path = pathOf({{0, 0}, {4, 0}, {4, 4}, {0, 0}});
    path.close();
    EXPECT_EQ(path.points().size(), 3U);
    EXPECT_FALSE(path.isFlat());
    RGridPath dot = pathOf({{2, 2}, {2, 2}});
    dot.close();
    EXPECT_EQ(dot.points().size(), 1U);
    EXPECT_TRUE(dot.isFlat());
}

TEST(GridPath, SimplifiedPathStaysWithinTheTolerance)
{
    std::mt19937 random(1);
    for (int k = 0; k < 100; ++k) {
        std::vector<GRIDPOINT> points{{0, 0}};
        for (int i = 0; i < 200; ++i)
            points.push_back(
                {points.back().x + int(random() % 5) - 1, points.back().y + int(random() % 5) - 2});
        RGridPath path = pathOf(points);
        const auto all = path.points();
        path.simplify(0.75, false);
        const auto& kept = path.points();
        EXPECT_LE(kept.size(), all.size());
        EXPECT_EQ(kept.front(), all.front());
        EXPECT_EQ(kept.back(), all.back());
        std::size_t part = 0;
        for (const GRIDPOINT& w : all) {
            if (part + 1 < kept.size() && w == kept[part + 1]) ++part;
            const std::size_t next = std::min(part + 1, kept.size() - 1);
            const double dx = kept[next].x - kept[part].x, dy = kept[next].y - kept[part].y;
            const double length = std::max(std::hypot(dx, dy), 1e-9);
            EXPECT_LE(std::abs(dx * (w.y - kept[part].y) - dy * (w.x - kept[part].x)) / length, 0.75 + 1e-9);
        }
    }
}

TEST(GridPath, SmallRingKeepsItsShape)
{
    RGridPath path = pathOf({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    path.simplify(0.75, true);
    EXPECT_GE(path.points().size(), 3U);
}

TEST(GridPathWriter, WritesRelativeSteps)
{
    EXPECT_EQ(text(pathOf({{10, 20}, {15, 20}, {15, 18}}), true), "\nnp\n10 20 M\n5 0 R\n0 -2 R\nFill\n");
    EXPECT_EQ(text(pathOf({{10, 20}, {15, 20}}), false), "\nnp\n10 20 M\n5 0 R\nstroke\n");
}

TEST(GridPathWriter, IslandBelowAStepIsADotOfTheCoastAndNoFill)
{
    EXPECT_EQ(text(pathOf({{10, 20}}), true), "");
    EXPECT_EQ(text(pathOf({{10, 20}}), false), "\nnp\n10 20 M\n1 0 R\nstroke\n");
    EXPECT_EQ(text(pathOf({}), false), "");
}

TEST(SinCosDegrees, IsThatOfTheLibrary)
{
    constexpr double degree = std::numbers::pi / 180;
    std::mt19937 random(2);
    std::uniform_real_distribution<double> angle(-800, 800);
    for (int i = 0; i < 100000; ++i) {
        const double a = angle(random);
        const SINCOS w = sinCosDegrees(a);
        ASSERT_NEAR(w.sine, std::sin(a * degree), 2e-15 * std::max(1.0, std::abs(a) / 90));
        ASSERT_NEAR(w.cosine, std::cos(a * degree), 2e-15 * std::max(1.0, std::abs(a) / 90));
    }
    EXPECT_EQ(sinCosDegrees(0).sine, 0);
    EXPECT_EQ(sinCosDegrees(0).cosine, 1);
    EXPECT_TRUE(std::isnan(sinCosDegrees(std::nan("")).sine));
    EXPECT_LE(std::abs(sinCosDegrees(1e12).sine), 1);
}
