#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "graphics/ringclip.h"

using namespace graphics;

namespace {

double area(const PATH2D& ring)
{
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const POINT2D &a = ring[i], &b = ring[(i + 1) % ring.size()];
        sum += a.x * b.y - b.x * a.y;
    }
    return sum / 2;
}

double area(const std::vector<PATH2D>& rings)
{
    double sum = 0;
    for (const PATH2D& r : rings) sum += area(r);
    return sum;
}

// A star around (0, 0): never crosses itself.
PATH2D star(std::mt19937& random, int points)
{
    std::uniform_real_distribution<double> radius(1, 12);
    PATH2D ring;
    for (int i = 0; i < points; ++i) {
        const double a = 6.283185307179586 * i / points, r = radius(random);
        ring.push_back({r * std::cos(a), r * std::sin(a)});
    }
    return ring;
}

bool isInside(const PATH2D& s, double x, double y)
{
    bool inside = false;
    for (std::size_t i = 0, j = s.size() - 1; i < s.size(); j = i++)
        if ((s[i].y > y) != (s[j].y > y) && x < (s[j].x - s[i].x) * (y - s[i].y) / (s[j].y - s[i].y) + s[i].x)
            inside = !inside;
    return inside;
}

constexpr RECT2D square{-5, 5, -5, 5};

} // namespace

TEST(ClipRing, RingInsideStays)
{
    const PATH2D ring{{0, 0}, {1, 0}, {0, 1}};
    const auto parts = clipRing(ring, square);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts[0].size(), 3U);
}

TEST(ClipRing, RingOutsideVanishes)
{
    EXPECT_TRUE(clipRing({{6, 0}, {8, 0}, {7, 3}}, square).empty());
    EXPECT_TRUE(clipRing({{5, -1}, {8, 0}, {5, 1}}, square).empty());       // touches a side only
    EXPECT_TRUE(clipRing({{-20, 4}, {-4, 20}, {-20, 20}}, square).empty()); // cuts no corner off
}

TEST(ClipRing, RingAroundTheRectangleGivesTheRectangle)
{
    const auto parts = clipRing({{-90, -90}, {90, -90}, {90, 90}, {-90, 90}}, square);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_DOUBLE_EQ(area(parts), 100);
}

TEST(ClipRing, PartsOfAConcaveRingComeOutApart)
{
    // A comb whose back lies beyond the right side.
    const PATH2D comb{{9, -4}, {9, 4}, {0, 4}, {0, 3}, {8, 3}, {8, -3}, {0, -3}, {0, -4}};
    const auto parts = clipRing(comb, square);
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_DOUBLE_EQ(area(parts[0]), 5);
    EXPECT_DOUBLE_EQ(area(parts[1]), 5);
    for (const PATH2D& part : parts)
        for (const POINT2D& w : part) EXPECT_GE(std::abs(w.y), 3) << "a side runs along the border";
}

TEST(ClipRing, RingThatTouchesTheBorderInAPointStaysWhole)
{
    const auto parts = clipRing({{0, -1}, {5, 0}, {0, 1}}, square);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_DOUBLE_EQ(area(parts), 5);
}

TEST(ClipRing, CoversExactlyTheCommonPart)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(-7, 7);
    for (int k = 0; k < 300; ++k) {
        const PATH2D ring = star(random, 5 + int(random() % 40));
        const auto parts = clipRing(ring, square);
        for (const PATH2D& part : parts) {
            EXPECT_GT(area(part), 0);
            for (const POINT2D& w : part) {
                EXPECT_LE(std::abs(w.x), 5 + 1e-9);
                EXPECT_LE(std::abs(w.y), 5 + 1e-9);
            }
        }
        for (int i = 0; i < 50; ++i) {
            const double x = place(random), y = place(random);
            int count = 0;
            for (const PATH2D& part : parts) count += isInside(part, x, y);
            const bool in = std::abs(x) < 5 && std::abs(y) < 5 && isInside(ring, x, y);
            EXPECT_EQ(count, in ? 1 : 0) << k << ": " << x << " " << y;
        }
    }
}

TEST(ClipRing, PointsOnTheBorderDoNoHarm)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(-6, 6);
    for (int k = 0; k < 500; ++k) {
        PATH2D ring = star(random, 4 + int(random() % 12));
        for (POINT2D& w : ring) w = {std::round(w.x), std::round(w.y)}; // many on the sides and corners
        const auto parts = clipRing(ring, square);
        for (int i = 0; i < 50; ++i) {
            const double x = place(random), y = place(random);
            int count = 0;
            for (const PATH2D& part : parts) count += isInside(part, x, y);
            const bool in = std::abs(x) < 5 && std::abs(y) < 5 && isInside(ring, x, y);
            EXPECT_EQ(count % 2, in ? 1 : 0) << k << ": " << x << " " << y;
        }
    }
}

TEST(ClipRing, CrossedRingsAreStillLimited)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(-9, 9);
    for (int k = 0; k < 500; ++k) {
        PATH2D ring(3 + random() % 20);
        for (POINT2D& w : ring) w = {place(random), place(random)};
        for (const PATH2D& part : clipRing(ring, square))
            for (const POINT2D& w : part) {
                EXPECT_LE(std::abs(w.x), 5 + 1e-9);
                EXPECT_LE(std::abs(w.y), 5 + 1e-9);
            }
    }
}

TEST(ClipLine, PiecesInsideComeOut)
{
    std::vector<PATH2D> pieces;
    clipLine({{-9, 0}, {0, 0}, {0, 9}, {2, 9}, {2, 0}, {3, 1}}, square,
             [&pieces](const PATH2D& piece) { pieces.push_back(piece); });
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[0].size(), 3U);
    EXPECT_EQ(pieces[0].front().x, -5);
    EXPECT_EQ(pieces[0].back().y, 5);
    EXPECT_EQ(pieces[1].size(), 3U);
    EXPECT_EQ(pieces[1].back().x, 3);
}

TEST(ClipLine, LineAcrossWithoutAPointInside)
{
    std::vector<PATH2D> pieces;
    clipLine({{-9, -9}, {9, 9}}, square, [&pieces](const PATH2D& piece) { pieces.push_back(piece); });
    ASSERT_EQ(pieces.size(), 1U);
    EXPECT_DOUBLE_EQ(pieces[0].front().x, -5);
    EXPECT_DOUBLE_EQ(pieces[0].back().y, 5);
    pieces.clear();
    clipLine({{-9, 2}, {-6, 9}, {9, 9}}, square, [&pieces](const PATH2D& piece) { pieces.push_back(piece); });
    EXPECT_TRUE(pieces.empty());
}
