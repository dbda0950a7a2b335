#include "graphics/tics.h"

#include <cfloat>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace graphics {
namespace {

void expectTics(const TICS& t, float lo, float hi, float start, float minor, float major)
{
    EXPECT_FLOAT_EQ(t.lo, lo);
    EXPECT_FLOAT_EQ(t.hi, hi);
    EXPECT_FLOAT_EQ(t.start, start);
    EXPECT_FLOAT_EQ(t.minor, minor);
    EXPECT_FLOAT_EQ(t.major, major);
}

TEST(ChooseTics, EqualLimitsGiveOneUnitToEitherSideWithTicsEveryHalf)
{
    expectTics(ChooseTics(7, 7), 6, 8, 6, 0.1f, 0.5f);
    expectTics(ChooseTics(0, 0), -1, 1, -1, 0.1f, 0.5f);
}

TEST(ChooseTics, EqualLimitsTooLargeForOneUnitStillGiveARange)
{
    for (const float a : {1e8f, -3e7f, 1e20f, FLT_MAX, -FLT_MAX}) {
        const TICS t = ChooseTics(a, a);
        EXPECT_LT(t.lo, t.hi) << a;
        EXPECT_GT(t.minor, 0) << a;
    }
}

TEST(ChooseTics, ZeroToThousandGivesMajor200AndMinor100)
{
    expectTics(ChooseTics(0, 1000), 0, 1000, 0, 100, 200);
}

TEST(ChooseTics, ReversedLimitsGiveNegativeSteps)
{
    expectTics(ChooseTics(1000, 0), 1000, 0, 1000, -100, -200);
    expectTics(ChooseTics(5430, -20), 5500, -500, 5000, -500, -1000);
}

TEST(ChooseTics, StepFollowsTheNumberOfUnitsInTheRange)
{
    EXPECT_FLOAT_EQ(ChooseTics(0, 3.2f).major, 1);      // 3 units of 1
    EXPECT_FLOAT_EQ(ChooseTics(0, 3.1f).major, 0.5f);   // 31 units of 0.1
    EXPECT_FLOAT_EQ(ChooseTics(0, 4).major, 1);         // 4 units of 1
    EXPECT_FLOAT_EQ(ChooseTics(0, 6.9f).major, 1);      // 6
    EXPECT_FLOAT_EQ(ChooseTics(0, 7).major, 2);         // 7
    EXPECT_FLOAT_EQ(ChooseTics(0, 12.9f).major, 2);     // 12
    EXPECT_FLOAT_EQ(ChooseTics(0, 13).major, 5);        // 13
    EXPECT_FLOAT_EQ(ChooseTics(0, 0.07f).major, 0.02f); // 7 units of 0.01 but for the float's rounding
}

TEST(ChooseTics, AQuotientThatIsAnIntegerButForRoundingIsThatInteger)
{
    expectTics(ChooseTics(34.6f, 34.9f), 34.6f, 34.9f, 34.6f, 0.025f, 0.05f);
    expectTics(ChooseTics(0.1f, 0.7f), 0.1f, 0.7f, 0.1f, 0.05f, 0.1f);
    expectTics(ChooseTics(0.7f, 0.1f), 0.7f, 0.1f, 0.7f, -0.05f, -0.1f);
    EXPECT_FLOAT_EQ(ChooseTics(0, 1000.00006f).hi, 1000);
    EXPECT_FLOAT_EQ(ChooseTics(0, 1000.01f).hi, 1100);
}

TEST(ChooseTics, ZeroHasNoSign)
{
    EXPECT_FALSE(std::signbit(ChooseTics(-2, 30).start));
    EXPECT_FALSE(std::signbit(ChooseTics(-0.1f, -30).lo));
    EXPECT_FALSE(std::signbit(ChooseMapTics(-1, 30, false).start));
}

TEST(ChooseTics, LimitsThatAreNotFiniteCountAsZero)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    expectTics(ChooseTics(nan, nan), -1, 1, -1, 0.1f, 0.5f);
    expectTics(ChooseTics(-infinite, 1000), 0, 1000, 0, 100, 200);
    expectTics(ChooseTics(nan, infinite), -1, 1, -1, 0.1f, 0.5f);
}

TEST(ChooseTics, ExtremeRangesStayFinite)
{
    for (const auto& [a, b] : {std::pair{-FLT_MAX, FLT_MAX},
                               {0.0f, FLT_MAX},
                               {0.0f, FLT_TRUE_MIN},
                               {FLT_MIN, 0.0f},
                               {1e30f, 1.0001e30f},
                               {16777216.0f, 16777218.0f}}) {
        const TICS t = ChooseTics(a, b);
        for (const float v : {t.lo, t.hi, t.start, t.minor, t.major})
            EXPECT_TRUE(std::isfinite(v)) << a << ' ' << b;
        EXPECT_NE(t.lo, t.hi) << a << ' ' << b;
        EXPECT_NE(t.minor, 0) << a << ' ' << b;
        EXPECT_LT(ticValues(t.start, t.minor, t.lo, t.hi).size(), 100u) << a << ' ' << b;
    }
}

TEST(ChooseTics, RandomRangesGiveConsistentTics)
{
    constexpr unsigned seed = 20240611;
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> mantissa(-10, 10), exponent(-6, 8);
    for (int i = 0; i < 20000; ++i) {
        const float scale = std::pow(10.0f, exponent(random));
        const float a = mantissa(random) * scale, b = mantissa(random) * scale;
        if (std::abs(a - b) < 1e-3f * scale) continue;
        const TICS t = ChooseTics(a, b);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << a << " to " << b);
        const double step = std::abs(t.major), slack = 1e-3 * step;
        EXPECT_EQ(t.major<0, a> b);
        EXPECT_NEAR(t.major, 2.0 * t.minor, 1e-6 * step);
        EXPECT_LE(std::min(t.lo, t.hi), std::min(a, b) + slack);
        EXPECT_GE(std::max(t.lo, t.hi), std::max(a, b) - slack);
        EXPECT_LE(std::abs(double{t.hi} - t.lo), std::abs(double{a} - b) + step + slack);
        // The first major tic is the first whole step within the range.
        EXPECT_NEAR(t.start / step, std::round(t.start / step), 2e-3);
        EXPECT_LT(std::abs(double{t.start} - a), step + slack);
        EXPECT_GE((double{t.start} - a) / t.major, -1e-3);
        const std::size_t n = ticValues(t.start, t.major, a, b).size();
        EXPECT_GE(n, 2u);
        EXPECT_LE(n, 8u);
    }
}

TEST(ChooseMapTics, WholeGlobeHas90DegreeLongitudesAndNoPole)
{
    const MAPTICS lon = ChooseMapTics(0, 360, false);
    EXPECT_EQ(lon.minor, 30);
    EXPECT_EQ(lon.major, 90);
    EXPECT_EQ(lon.start, 0);
    EXPECT_EQ(lon.first, 0);
    EXPECT_EQ(lon.last, 4);
    const MAPTICS lat = ChooseMapTics(-90, 90, true);
    EXPECT_EQ(lat.minor, 10);
    EXPECT_EQ(lat.major, 30);
    EXPECT_EQ(lat.start, -90);
    EXPECT_EQ(lat.first, 1);
    EXPECT_EQ(lat.last, 5);
}

TEST(ChooseMapTics, LongitudeStepsFollowTheSpan)
{
    EXPECT_EQ(ChooseMapTics(-60, 59, false).major, 20);
    EXPECT_EQ(ChooseMapTics(-60, 60, false).major, 30);
    EXPECT_EQ(ChooseMapTics(-60, 60, false).minor, 10);
    EXPECT_EQ(ChooseMapTics(0, 269, false).major, 30);
    EXPECT_EQ(ChooseMapTics(0, 270, false).major, 90);
}

TEST(ChooseMapTics, SmallDomainKeepsTheGeneralRule)
{
    const MAPTICS lat = ChooseMapTics(41.2f, 45.7f, true);
    EXPECT_EQ(lat.major, 1);
    EXPECT_EQ(lat.minor, 0.5f);
    EXPECT_EQ(lat.start, 42);
    EXPECT_EQ(lat.first, 0);
    EXPECT_EQ(lat.last, 3);
}

TEST(ChooseMapTics, AnyOrderOfLimits)
{
    const MAPTICS up = ChooseMapTics(-30, 20, false), down = ChooseMapTics(20, -30, false);
    EXPECT_EQ(up.start, down.start);
    EXPECT_EQ(up.major, down.major);
    EXPECT_EQ(up.last, down.last);
}

TEST(ChooseMapTics, RangeBetweenTwoTicsHasNone)
{
    const MAPTICS lat = ChooseMapTics(89.5f, 90, true);
    for (int i = lat.first; i <= lat.last; ++i) EXPECT_LT(lat.start + i * lat.major, 90);
    const MAPTICS equal = ChooseMapTics(12.3f, 12.3f, false);
    EXPECT_LT(equal.last - equal.first, 3);
}

TEST(FitLabels, OneLabelACentimetreAtMost)
{
    int first = 0, last = 12;
    float major = 30;
    FitLabels(first, last, major, 0, 0, 360, 5);
    EXPECT_EQ(major, 90);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 4);
    FitLabels(first, last, major, 0, 0, 360, 20);
    EXPECT_EQ(major, 90);
}

TEST(FitLabels, RunsTwiceAtMost)
{
    int first = 0, last = 10;
    float major = 1;
    FitLabels(first, last, major, 0, 0, 10, 1); // 11, then 1
    EXPECT_EQ(major, 22);                       // the single label left counts as two in the second pass
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 0);
}

TEST(FitLabels, WhatIsLeftIsPartOfWhatWas)
{
    int first = 1, last = 5; // -60 to 60 from -90 in steps of 30
    float major = 30;
    FitLabels(first, last, major, -90, -90, 90, 3.2f);
    EXPECT_EQ(major, 60);
    EXPECT_EQ(-90 + first * major, -30);
    EXPECT_EQ(-90 + last * major, 30);
}

TEST(FitLabels, NonsenseLeavesThemBounded)
{
    int first = 0, last = 3;
    float major = 0;
    FitLabels(first, last, major, 0, 0, 10, 5);
    EXPECT_EQ(major, 0);
    major = 1e-30f;
    FitLabels(first, last, major, 0, -1e30f, 1e30f, -1);
    EXPECT_TRUE(std::isfinite(major));
}

TEST(TicValues, GoesBothWaysFromTheStart)
{
    EXPECT_EQ(ticValues(100, 50, 0, 200), (std::vector<double>{0, 50, 100, 150, 200}));
    EXPECT_EQ(ticValues(1000, -500, 1200, -100), (std::vector<double>{1000, 500, 0}));
}

TEST(TicValues, EndsCountAsWithinButForRounding)
{
    EXPECT_EQ(ticValues(0, 0.1, 0, 0.3).size(), 4u);
    EXPECT_EQ(ticValues(0, 0.1, 0, 0.2999).size(), 3u);
}

TEST(TicValues, TooManyOrImpossibleOnesAreNone)
{
    EXPECT_TRUE(ticValues(0, 0, 0, 1).empty());
    EXPECT_TRUE(ticValues(0, 1e-9, 0, 1).empty());
    EXPECT_TRUE(ticValues(0, std::nan(""), 0, 1).empty());
    EXPECT_TRUE(ticValues(0, 1, 0, std::numeric_limits<double>::infinity()).empty());
}

} // namespace
} // namespace graphics
