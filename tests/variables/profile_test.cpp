#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "common/limits.h"
#include "variables/seawater/profile.h"

namespace {

using namespace seawater;

using FLOATS = std::vector<float>;
constexpr float missing = common::MISSING_VALUE, far = 1.0e10f;

struct RESULT {
    INTERPOLATION range;
    FLOATS out, proximity;
};

RESULT interpolated(const FLOATS& x, const FLOATS& y, const FLOATS& t)
{
    RESULT result{{}, FLOATS(t.size()), FLOATS(t.size())};
    result.range = interpolateProfile(x, y, missing, t, result.out, result.proximity.data());
    return result;
}

struct ROW {
    FLOATS x, y, t;
    int status;
    FLOATS out, proximity;
    float xMin, xMax;
    int firstInside, lastInside;
    double tolerance;
};

TEST(InterpolateProfile, GivesTheCheckValues)
{
    const ROW rows[] = {
        {{0.0f, 10.0f, 20.0f, 30.0f},
         {1.0f, 2.0f, 4.0f, 8.0f},
         {5.0f},
         0,
         {1.5f},
         {5.0f},
         0.0f,
         30.0f,
         0,
         0,
         3e-06}, // one target: the bracketing pair
        {{0.0f, 10.0f, 10.0f, 20.0f},
         {1.0f, 2.0f, 4.0f, 5.0f},
         {10.0f},
         0,
         {3.0f},
         {0.0f},
         0.0f,
         20.0f,
         0,
         0,
         6e-06}, // two samples at one depth
        {{0.0f, 10.0f, 10.0f, 10.0f, 20.0f},
         {0.0f, 2.0f, 4.0f, 9.0f, 20.0f},
         {10.0f},
         0,
         {6.0f},
         {0.0f},
         0.0f,
         20.0f,
         0,
         0,
         1.2e-05}, // three at one depth: running mean 6
        {{10.0f, 10.0f}, {1.0f, 3.0f}, {10.0f}, 1, {missing}, {far}, 0.0f, 0.0f, -1, -2, 2e-06}, // one point
                                                                                                 // left
        {{10.0f}, {1.0f}, {10.0f}, 1, {missing}, {far}, 0.0f, 0.0f, -1, -2, 2e-06},              // one point
        {{0.0f, 364.0f, 688.3f, 1213.7f, 1737.5f, 2692.0f, 3562.4f, 4402.3f, 5499.9f},
         {20.767f, 12.07f, 7.579f, 4.031f, 2.591f, 1.765f, 1.505f, 1.52f, 1.493f},
         {5278.3f},
         0,
         {1.498451233f},
         {221.6000977f},
         0.0f,
         5499.899902f,
         0,
         0,
         3e-06},
        {{5.0f, 89.6f, 157.6f, 282.9f, 436.0f, 602.1f, 780.8f, 999.9f},
         {24.109f, 21.152f, 19.053f, missing, 12.522f, 9.817f, 7.696f, 5.853f},
         {811.9f, 946.3f, 953.6f},
         0,
         {7.434396267f, 6.303866863f, 6.242461681f},
         {0.1156995744f, 0.3782643378f, 3.171241522f},
         5.0f,
         999.9000244f,
         0,
         2,
         1.49e-05},
        {{2.0f, 30.5f, 54.6f, 83.3f, 138.9f, 197.2f, 266.8f, 330.6f, 400.1f},
         {21.591f, 20.759f, missing, missing, 17.549f, 16.058f, 14.385f, 13.169f, 11.916f},
         {48.7f, 211.3f, 283.0f},
         0,
         {20.23132706f, 15.74193764f, 14.07623482f},
         {0.05596556142f, 0.06017928198f, 0.1129707992f},
         2.0f,
         400.1000061f,
         0,
         2,
         4.05e-05},
    };
    for (const ROW& row : rows) {
        const RESULT result = interpolated(row.x, row.y, row.t);
        EXPECT_EQ(result.range.status, row.status);
        EXPECT_EQ(result.range.firstInside, row.firstInside);
        EXPECT_EQ(result.range.lastInside, row.lastInside);
        if (row.status == 0) {
            EXPECT_EQ(result.range.xMin, row.xMin);
            EXPECT_EQ(result.range.xMax, row.xMax);
        }
        for (std::size_t j = 0; j < row.t.size(); ++j) {
            EXPECT_NEAR(result.out[j], row.out[j], row.tolerance) << row.t[j];
            EXPECT_NEAR(result.proximity[j], row.proximity[j],
                        std::max(row.tolerance, 1e-6 * row.proximity[j]))
                << row.t[j];
        }
    }
}

TEST(InterpolateProfile, TwoSamplesAtTheSameDepthEnterAsOneWithTheirMean)
{
    const RESULT result = interpolated({0, 10, 10, 20}, {1, 2, 4, 5}, {10});
    EXPECT_FLOAT_EQ(result.out[0], 3);
}

TEST(InterpolateProfile, PointsOfEqualXAreMergedInTheirOrder)
{
    // The running mean depends on the order: ((2 + 4) / 2 + 9) / 2.
    EXPECT_FLOAT_EQ(interpolated({20, 10, 0, 10, 10}, {20, 2, 0, 4, 9}, {10}).out[0], 6);
}

TEST(InterpolateProfile, PairsWithAMissingValueAreLeftOut)
{
    const RESULT result = interpolated({0, 5, missing, 10}, {1, missing, 7, 3}, {5});
    EXPECT_FLOAT_EQ(result.out[0], 2);
    EXPECT_FLOAT_EQ(interpolated({0, 5, 10}, {1, NAN, 3}, {5}).out[0], 2);
}

TEST(InterpolateProfile, AMissingTargetStaysMissing)
{
    const RESULT result = interpolated({0, 10}, {1, 3}, {missing, 5, NAN});
    EXPECT_EQ(result.out[0], missing);
    EXPECT_EQ(result.out[2], missing);
    EXPECT_EQ(result.range.firstInside, 1);
    EXPECT_EQ(result.range.lastInside, 1);
}

TEST(InterpolateProfile, AWindowWithoutWidthUsesThePointsAtHand)
{
    const RESULT result = interpolated({0, 10, 20}, {1, 3, 7}, {10, 10, 10});
    for (std::size_t j = 0; j < 3; ++j) {
        EXPECT_FLOAT_EQ(result.out[j], 3);
        EXPECT_EQ(result.proximity[j], 0);
    }
    const RESULT between = interpolated({0, 10, 20}, {1, 3, 7}, {15, 15});
    EXPECT_FLOAT_EQ(between.out[0], 5);
    EXPECT_EQ(between.proximity[0], far); // no width to measure in
}

TEST(InterpolateProfile, ALimitOfTheWindowTakesPointsThatRoundingPutsBeyondIt)
{
    // The window of the middle target is 0.1 to 0.3, of which single precision makes other numbers.
    const RESULT result = interpolated({0.1f, 0.2f, 0.3f}, {0, 1, 0}, {0.1f, 0.2f, 0.3f});
    EXPECT_NEAR(result.out[1], 1.0 / 3, 1e-6); // all three points
}

TEST(InterpolateProfile, PointsTooCloseTogetherForTheWindowGiveNothing)
{
    const RESULT result = interpolated({0, 1}, {1, 2}, {0, 100});
    EXPECT_EQ(result.out[0], missing);
    EXPECT_EQ(result.proximity[0], far);
    EXPECT_EQ(interpolated({0, 0.2f}, {1, 2}, {0.1f}).out[0], missing);             // one target: width 1
    EXPECT_FLOAT_EQ(interpolated({0, 0.2f, 0.4f}, {1, 2, 3}, {0.1f}).out[0], 1.5f); // widened
}

TEST(InterpolateProfile, TargetsBeyondTheDataFollowTheLineAtTheEnd)
{
    const RESULT result = interpolated({0, 10, 20, 30}, {0, 10, 20, 30}, {-20, -10, 40, 50});
    EXPECT_NEAR(result.out[0], -20, 1e-4);
    EXPECT_NEAR(result.out[3], 50, 1e-4);
    EXPECT_EQ(result.range.firstInside, 2); // first target not below the smallest x
    EXPECT_EQ(result.range.lastInside, 1);
}

// The definition, word by word, with all sums over the window.
float fitted(const FLOATS& x, const FLOATS& y, const FLOATS& t, std::size_t j)
{
    const std::size_t m = t.size(), n = x.size();
    const double f = j == 0       ? std::abs(double{t[1]} - t[0])
                     : j == m - 1 ? std::abs(double{t[m - 1]} - t[m - 2])
                                  : std::abs(double{t[j + 1]} - t[j - 1]) / 2;
    double low = t[j] - f, high = t[j] + f;
    if (t[j] > x.back()) low = x.back() - 2 * f, high = x.back();
    if (t[j] < x.front()) low = x.front(), high = x.front() + 2 * f;
    long first = -1, last = -1;
    for (std::size_t i = 0; i < n; ++i) {
        if (x[i] < low - 2e-5 * f || x[i] > high + 2e-5 * f) continue;
        if (first < 0) first = static_cast<long>(i);
        last = static_cast<long>(i);
    }
    if (first == last) {
        last = static_cast<long>(std::upper_bound(x.begin(), x.end(), t[j]) - x.begin());
        last = std::clamp<long>(last, 1, static_cast<long>(n) - 1);
        first = last - 1;
    }
    const auto at = [&](const FLOATS& v, long i) {
        return static_cast<double>(v[static_cast<std::size_t>(i)]);
    };
    while (at(x, last) - at(x, first) < 0.3 * (high - low)) {
        if (first == 0 && last == static_cast<long>(n) - 1) return missing;
        first = std::max(first - 1, 0L);
        last = std::min(last + 1, static_cast<long>(n) - 1);
    }
    double sx = 0, sy = 0, sxx = 0, sxy = 0;
    for (long i = first; i <= last; ++i) sx += at(x, i), sy += at(y, i);
    const double count = static_cast<double>(last - first + 1), mx = sx / count, my = sy / count;
    for (long i = first; i <= last; ++i) {
        sxx += (at(x, i) - mx) * (at(x, i) - mx);
        sxy += (at(x, i) - mx) * (at(y, i) - my);
    }
    return static_cast<float>(my + sxy / sxx * (t[j] - mx));
}

void expectDirectFits(const FLOATS& x, const FLOATS& y, const FLOATS& t)
{
    const RESULT result = interpolated(x, y, t);
    for (std::size_t j = 0; j < t.size(); ++j)
        ASSERT_NEAR(result.out[j], fitted(x, y, t, j), 2e-6 * (1 + std::abs(fitted(x, y, t, j)))) << t[j];
}

TEST(InterpolateProfile, ManyPointsInAWindowGiveTheDirectFit)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> step(0.01f, 0.5f), noise(-1, 1);
    for (const std::size_t n : {100u, 129u, 1000u, 5000u}) {
        FLOATS x, y;
        float depth = 3;
        for (std::size_t i = 0; i < n; ++i) {
            x.push_back(depth += step(random));
            y.push_back(20 - 0.01f * depth + noise(random));
        }
        FLOATS few, shuffled;
        for (int j = 0; j < 62; ++j) few.push_back(-10 + static_cast<float>(j) * (x.back() + 20) / 61);
        shuffled = few;
        std::shuffle(shuffled.begin(), shuffled.end(), random);
        expectDirectFits(x, y, few);
        expectDirectFits(x, y, shuffled);
        expectDirectFits(x, y, {0, x.back() * 0.9f, x.back() + 1, x.back() + 5});
        expectDirectFits(x, y, {x.back(), x.front()});
    }
}

TEST(InterpolateProfile, FarFromZeroTheFitIsAsGood)
{
    FLOATS x, y;
    for (int i = 0; i < 3000; ++i) {
        x.push_back(1.0e6f + static_cast<float>(i) * 0.125f);
        y.push_back(35 + 1e-3f * static_cast<float>(i % 7));
    }
    expectDirectFits(x, y, {1.0e6f, 1.0e6f + 100, 1.0e6f + 200, 1.0e6f + 370});
}

TEST(InterpolateProfile, NumbersThatAreNoneDoNoHarm)
{
    const FLOATS odd{0, -INFINITY, 1e38f, NAN, -1e38f, INFINITY, missing, 5, 5, 3.4e38f};
    const RESULT result = interpolated(odd, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, odd);
    EXPECT_EQ(result.range.status, 0);
    for (const float value : result.out) EXPECT_TRUE(std::isfinite(value));
    for (const float value : interpolated({0, 1, 2}, {3.4e38f, -3.4e38f, 3.4e38f}, {0, 0.7f, 100, 101}).out)
        EXPECT_TRUE(std::isfinite(value));
}

struct GRIDROW {
    float lowest, highest;
    std::array<float, 6> at; // points 0, 1, 2, 30, 60, 61
    double tolerance;
};

TEST(StretchedGrid, GivesTheCheckValues)
{
    const GRIDROW rows[] = {
        {0.0f, 5000.0f, {-250.0f, -227.8680878f, -204.8509064f, 991.2661133f, 5017.181152f, 5250.0f}, 0.01},
        {0.0f,
         0.0f,
         {-0.05000000075f, -0.04557361826f, -0.04097018018f, 0.1982532144f, 1.003436208f, 1.049999952f},
         1e-05},
        {10.0f,
         10.5f,
         {9.949999809f, 9.954426765f, 9.959030151f, 10.19825363f, 11.00343609f, 11.05000019f},
         1e-05},
        {5.0f,
         1000.0f,
         {-44.75f, -40.3457489f, -35.76532745f, 202.2619476f, 1003.419006f, 1049.75f},
         0.00199},
        {-2.0f,
         100.0f,
         {-7.099999905f, -6.648509026f, -6.178958416f, 18.22182846f, 100.3504944f, 105.0999985f},
         0.000204},
        {43.5f,
         4448.2f,
         {-176.7350159f, -157.2381287f, -136.9613647f, 916.7459717f, 4463.335449f, 4668.435059f},
         0.00881},
        {42.7f,
         4897.0f,
         {-200.0149994f, -178.5280151f, -156.1815491f, 1005.080627f, 4913.680176f, 5139.714844f},
         0.00971},
        {4.4f,
         2674.9f,
         {-129.125f, -117.3043442f, -105.0108643f, 533.8352051f, 2684.076416f, 2808.424805f},
         0.00534},
    };
    for (const GRIDROW& row : rows) {
        std::array<float, stretchedPoints> points{};
        stretchedGrid(points, row.lowest, row.highest, stretchFactor);
        constexpr std::size_t places[] = {0, 1, 2, 30, 60, 61};
        for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(points[places[i]], row.at[i], row.tolerance) << i;
    }
}

TEST(StretchedGrid, GrowsCoarserWithDepth)
{
    std::array<float, stretchedPoints> points{};
    stretchedGrid(points, 0, 5000, stretchFactor);
    for (std::size_t i = 2; i < points.size(); ++i)
        EXPECT_GT(points[i] - points[i - 1], points[i - 1] - points[i - 2]);
}

} // namespace
