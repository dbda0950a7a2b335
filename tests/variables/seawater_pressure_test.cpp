#include <gtest/gtest.h>

#include <cmath>

#include "checktable.h"
#include "variables/seawater/pressure.h"

namespace {

using namespace seawater;
using testing_support::CHECK;

class PressureFromDepthTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK pressureFromDepthChecks[] = {{{5000, -60}, 5108.014189, 0.00511},
                                             {{5429, -25.73f}, 5534.947252, 0.00553},
                                             {{1084.4f, -89.66f}, 1099.350296, 0.0011},
                                             {{6580.1f, 28.63f}, 6728.078771, 0.00673}};

TEST_P(PressureFromDepthTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(pressureFromDepth(in[0], in[1]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, PressureFromDepthTable, testing::ValuesIn(pressureFromDepthChecks));

TEST(PressureFromDepth, AgreesWithTheCheckValue)
{
    EXPECT_NEAR(pressureFromDepth(10000, 30), 10309.45, 0.01);
    // Published values differ in the last digit: 7500.004 and 7500.006.
    EXPECT_NEAR(pressureFromDepth(7321.45f, 30), 7500.005, 0.0011);
}

TEST(PressureFromDepth, IsZeroAtTheSurfaceOnEveryLatitude)
{
    for (const float latitude : {-90.0f, -30.0f, 0.0f, 45.5f, 90.0f})
        EXPECT_NEAR(pressureFromDepth(0, latitude), 0.0, 1e-9);
}

TEST(PressureFromDepth, TakesNoHeedOfTheSignOfTheLatitude)
{
    EXPECT_EQ(pressureFromDepth(4321, -60), pressureFromDepth(4321, 60));
}

TEST(PressureFromDepth, IsTheSameToTheLastBitForManyDepthsOfOneLatitude)
{
    for (const float latitude : {-89.66f, -30.0f, 0.0f, 12.34f}) {
        const RPressureAtLatitude pressures(latitude);
        for (float depth = 0; depth <= 15000; depth += 123.4f)
            EXPECT_EQ(pressures.pressure(depth), pressureFromDepth(depth, latitude));
    }
}

TEST(PressureFromDepth, IsNoNumberBeyondTheValidityOfTheRoot)
{
    EXPECT_TRUE(std::isnan(pressureFromDepth(150000, 30)));
}

class DepthFromPressureTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK depthFromPressureChecks[] = {
    {{10000, 30}, 9712.653072, 0.00971},       {{0, 10}, 0, 1e-05},
    {{500, 0}, 496.6529924, 0.000497},         {{5000, 45}, 4902.080752, 0.0049},
    {{10000, 90}, 9674.231441, 0.00967},       {{2848.5f, -1.03f}, 2813.802006, 0.00281},
    {{9736.8f, 27.09f}, 9464.269488, 0.00946}, {{3379.7f, -10.4f}, 3333.885646, 0.00333}};

TEST_P(DepthFromPressureTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(depthFromPressure(in[0], in[1]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, DepthFromPressureTable, testing::ValuesIn(depthFromPressureChecks));

// Depths at latitudes 0, 30, 45, 60 and 90.
struct DEPTHROW {
    float pressure;
    std::array<double, 5> expected;
};

std::ostream& operator<<(std::ostream& out, const DEPTHROW& row)
{
    return out << "p " << row.pressure;
}

class DepthByLatitude : public testing::TestWithParam<DEPTHROW> {};

constexpr DEPTHROW depthRows[] = {{500, {496.65, 496.00, 495.34, 494.69, 494.03}},
                                  {1000, {992.12, 990.81, 989.50, 988.19, 986.88}},
                                  {2000, {1979.55, 1976.94, 1974.33, 1971.72, 1969.11}},
                                  {3000, {2962.43, 2958.52, 2954.61, 2950.71, 2946.81}},
                                  {4000, {3940.88, 3935.68, 3930.49, 3925.30, 3920.10}},
                                  {5000, {4915.04, 4908.56, 4902.08, 4895.60, 4889.13}},
                                  {6000, {5885.03, 5877.27, 5869.51, 5861.76, 5854.01}},
                                  {7000, {6850.95, 6841.92, 6832.89, 6823.86, 6814.84}},
                                  {8000, {7812.93, 7802.63, 7792.33, 7782.04, 7771.76}},
                                  {9000, {8771.07, 8759.51, 8747.95, 8736.40, 8724.85}},
                                  {10000, {9725.47, 9712.65, 9699.84, 9687.03, 9674.23}}};

TEST_P(DepthByLatitude, AgreesWithTheReference)
{
    constexpr std::array<float, 5> latitudes = {0, 30, 45, 60, 90};
    const auto& [pressure, expected] = GetParam();
    for (std::size_t i = 0; i < latitudes.size(); ++i)
        EXPECT_NEAR(depthFromPressure(pressure, latitudes.at(i)), expected.at(i), 0.0051) << latitudes.at(i);
}
INSTANTIATE_TEST_SUITE_P(Reference, DepthByLatitude, testing::ValuesIn(depthRows));

TEST(DepthFromPressure, AgreesWithThePublishedValue)
{
    EXPECT_NEAR(depthFromPressure(10000, 30), 9712.653, 0.001);
}

// Two independent fits: they part by metres in the deep trenches only.
TEST(DepthFromPressure, AgreesWithPressureFromDepthInTheOpenOcean)
{
    for (float depth = 0; depth <= 5500; depth += 500) {
        for (const float latitude : {0.0f, 30.0f, 60.0f}) {
            const auto pressure = static_cast<float>(pressureFromDepth(depth, latitude));
            EXPECT_NEAR(depthFromPressure(pressure, latitude), depth, 0.5);
        }
    }
}

TEST(DepthFromPressure, IsTheSameToTheLastBitForManyPressuresOfOneLatitude)
{
    for (const float latitude : {-89.66f, -30.0f, 0.0f, 12.34f}) {
        const RDepthAtLatitude depths(latitude);
        for (float pressure = 0; pressure <= 15000; pressure += 123.4f)
            EXPECT_EQ(depths.depth(pressure), depthFromPressure(pressure, latitude));
    }
}

class GravityTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK gravityChecks[] = {{{0}, 9.780318, 1e-06},         {{90}, 9.832177158, 1e-06},
                                   {{-90}, 9.832177158, 1e-06},    {{45}, 9.806189875, 1e-06},
                                   {{-45}, 9.806189875, 1e-06},    {{-9.18f}, 9.78163219, 1e-06},
                                   {{-6.49f}, 9.780977628, 1e-06}, {{84.95f}, 9.831773557, 1e-06}};

TEST_P(GravityTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(gravity(in[0]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, GravityTable, testing::ValuesIn(gravityChecks));

TEST(Gravity, TakesNoHeedOfTheSignOfTheLatitude)
{
    EXPECT_EQ(gravity(-33.3f), gravity(33.3f));
}

} // namespace
