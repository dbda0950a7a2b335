#include <gtest/gtest.h>

#include <cmath>

#include "checktable.h"
#include "variables/seawater/state.h"

namespace {

using namespace seawater;
using testing_support::CHECK;
using testing_support::expectRow;
using testing_support::ROW;

// Published: density [kg/m3] and specific volume [cm3/g] at salinity, temperature and pressure.
struct DENSITYROW {
    float salinity, temperature, pressure;
    double density, volume;
};

std::ostream& operator<<(std::ostream& out, const DENSITYROW& row)
{
    return out << "S " << row.salinity << " t " << row.temperature << " p " << row.pressure;
}

class PublishedDensity : public testing::TestWithParam<DENSITYROW> {};

constexpr DENSITYROW densityRows[] = {
    {0, 5, 0, 999.96675, 1.000033251},    {0, 5, 10000, 1044.12802, 0.957736964},
    {0, 25, 0, 997.04796, 1.00296078},    {0, 25, 10000, 1037.90204, 0.963482064},
    {35, 5, 0, 1027.67547, 0.973069835},  {35, 5, 10000, 1069.48914, 0.935025857},
    {35, 25, 0, 1023.34306, 0.977189409}, {35, 25, 10000, 1062.53817, 0.941142660}};

TEST_P(PublishedDensity, IsThatOfTheSpecificVolume)
{
    const auto& [salinity, temperature, pressure, density, volume] = GetParam();
    EXPECT_NEAR(1000 / specificVolume(pressure, temperature, salinity), density, 1e-5);
    EXPECT_NEAR(sigmaFromVolume(pressure, temperature, salinity), density - 1000, 1e-5);
    EXPECT_NEAR(specificVolume(pressure, temperature, salinity), volume, 5e-9);
}
INSTANTIATE_TEST_SUITE_P(Unesco44, PublishedDensity, testing::ValuesIn(densityRows));

class SpecificVolumeTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK specificVolumeChecks[] = {{{0, 5, 0}, 1.00003325, 2e-08},
                                          {{10000, 5, 0}, 0.957736968, 2e-08},
                                          {{0, 25, 35}, 0.9771894104, 2e-08},
                                          {{10000, 25, 35}, 0.9411426588, 2e-08},
                                          {{10000, 40, 40}, 0.9435561176, 2e-08},
                                          {{7308.4f, 15.972f, 18.619f}, 0.9579122227, 2e-08},
                                          {{2122.7f, 4.178f, 30.305f}, 0.9673366063, 2e-08},
                                          {{1693.6f, 30.985f, 27.673f}, 0.9774457899, 2e-08}};

TEST_P(SpecificVolumeTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(specificVolume(in[0], in[1], in[2]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, SpecificVolumeTable, testing::ValuesIn(specificVolumeChecks));

class SpecificVolumeStandardTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK specificVolumeStandardChecks[] = {
    {{0}, 0.972662, 2e-08},           {{10000}, 0.9337430624, 2e-08},  {{1}, 0.9726574933, 2e-08},
    {{9123.2f}, 0.9367197283, 2e-08}, {{655.5f}, 0.9697376829, 2e-08}, {{1948.9f}, 0.9641381012, 2e-08},
    {{9827}, 0.9343245603, 2e-08},    {{6819.7f}, 0.9449039138, 2e-08}};

TEST_P(SpecificVolumeStandardTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(specificVolumeStandard(in[0]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, SpecificVolumeStandardTable,
                         testing::ValuesIn(specificVolumeStandardChecks));

class SigmaFromVolumeTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK sigmaFromVolumeChecks[] = {{{10000, 40, 40}, 59.82037676, 2e-05},
                                           {{0, 5, 35}, 27.67546528, 2e-05},
                                           {{10000, 5, 35}, 69.48913798, 2e-05},
                                           {{0, 25, 0}, -2.952042492, 2e-05},
                                           {{3705.1f, 34.966f, 33.528f}, 34.01703272, 2e-05},
                                           {{10229.8f, 2.285f, 18.314f}, 59.02204554, 2e-05},
                                           {{5207.6f, 17.21f, 19.438f}, 35.80476458, 2e-05},
                                           {{2786.1f, 12.561f, 25.478f}, 31.40271216, 2e-05}};

TEST_P(SigmaFromVolumeTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(sigmaFromVolume(in[0], in[1], in[2]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, SigmaFromVolumeTable, testing::ValuesIn(sigmaFromVolumeChecks));

class SigmaFromVolumeRow : public testing::TestWithParam<ROW> {};

constexpr ROW densityAnomalyRows[] = {{0, 0, {-0.157, -0.298, -1.794, -4.349, -7.780}},
                                      {0, 5000, {23.885, 22.364, 19.962, 16.827, 13.058}},
                                      {0, 10000, {45.337, 42.772, 39.652, 36.031, 31.949}},
                                      {25, 0, {20.041, 19.157, 17.154, 14.252, 10.592}},
                                      {25, 5000, {43.011, 40.976, 38.207, 34.815, 30.877}},
                                      {25, 10000, {63.614, 60.698, 57.316, 53.508, 49.306}},
                                      {35, 0, {28.106, 26.952, 24.763, 21.729, 17.973}},
                                      {35, 5000, {50.678, 48.451, 45.547, 42.057, 38.051}},
                                      {35, 10000, {70.958, 67.907, 64.428, 60.551, 56.302}},
                                      {40, 0, {32.147, 30.862, 28.583, 25.483, 21.679}},
                                      {40, 5000, {54.526, 52.206, 49.235, 45.698, 41.656}},
                                      {40, 10000, {74.650, 71.531, 68.004, 64.092, 59.820}}};

TEST_P(SigmaFromVolumeRow, AgreesWithTheReference)
{
    const ROW& row = GetParam();
    expectRow(row, 0.00051, [&](float t) { return sigmaFromVolume(row.pressure, t, row.salinity); });
}
INSTANTIATE_TEST_SUITE_P(Reference, SigmaFromVolumeRow, testing::ValuesIn(densityAnomalyRows));

// In 1e-8 m3/kg. The standard volume is rounded to 1e-8 m3/kg itself.
class VolumeAnomalyRow : public testing::TestWithParam<ROW> {};

constexpr ROW volumeAnomalyRows[] = {{0, 0, {2749.54, 2763.60, 2913.49, 3170.58, 3517.86}},
                                     {0, 5000, {2490.57, 2635.84, 2866.23, 3168.49, 3534.39}},
                                     {0, 10000, {2288.61, 2523.95, 2811.70, 3147.85, 3529.74}},
                                     {25, 0, {769.04, 854.08, 1047.32, 1328.61, 1685.65}},
                                     {25, 5000, {699.64, 887.05, 1143.27, 1459.00, 1828.13}},
                                     {25, 10000, {644.77, 903.24, 1204.78, 1546.67, 1926.80}},
                                     {35, 0, {0.00, 109.29, 317.33, 607.14, 968.21}},
                                     {35, 5000, {0.00, 202.12, 467.08, 787.33, 1157.74}},
                                     {35, 10000, {0.00, 266.80, 572.83, 916.34, 1295.58}},
                                     {40, 0, {-380.79, -260.05, -45.03, 248.83, 611.92}},
                                     {40, 5000, {-347.35, -138.20, 130.88, 453.28, 824.32}},
                                     {40, 10000, {-320.74, -49.90, 258.26, 602.49, 981.30}}};

TEST_P(VolumeAnomalyRow, AgreesWithTheReference)
{
    const ROW& row = GetParam();
    expectRow(row, 0.02, [&](float t) {
        return 1e5 * (specificVolume(row.pressure, t, row.salinity) - specificVolumeStandard(row.pressure));
    });
}
INSTANTIATE_TEST_SUITE_P(Reference, VolumeAnomalyRow, testing::ValuesIn(volumeAnomalyRows));

TEST(SpecificVolume, AgreesWithThePublishedValue)
{
    EXPECT_NEAR(sigmaFromVolume(10000, 40, 40), 59.82037, 1e-5);
    EXPECT_NEAR(1e5 * (specificVolume(10000, 40, 40) - specificVolumeStandard(10000)), 981.302, 0.01);
}

// By the formula of density at the surface, written out.
TEST(SpecificVolume, AtTheSurfaceIsThatOfTheDensityThere)
{
    const auto density = [](double t, double s) {
        return 999.842594 + 6.793952e-2 * t - 9.095290e-3 * t * t + 1.001685e-4 * std::pow(t, 3) -
               1.120083e-6 * std::pow(t, 4) + 6.536332e-9 * std::pow(t, 5) +
               (8.24493e-1 - 4.0899e-3 * t + 7.6438e-5 * t * t - 8.2467e-7 * std::pow(t, 3) +
                5.3875e-9 * std::pow(t, 4)) *
                   s +
               (-5.72466e-3 + 1.0227e-4 * t - 1.6546e-6 * t * t) * std::pow(s, 1.5) + 4.8314e-4 * s * s;
    };
    for (float t = -2; t <= 40; t += 3) {
        for (float s = 0; s <= 42; s += 3)
            EXPECT_NEAR(specificVolume(0, t, s), 1000 / density(t, s), 1e-14) << t << ' ' << s;
    }
}

TEST(SpecificVolume, HasNoTermOfPressureBelowTheSmallestOne)
{
    EXPECT_EQ(specificVolume(0.00009f, 10, 35), specificVolume(0, 10, 35)); // 0.9e-5 bar
    EXPECT_LT(specificVolume(0.00011f, 10, 35), specificVolume(0, 10, 35));
}

TEST(SpecificVolume, OfASlightlyNegativeSalinityIsANumber)
{
    EXPECT_NEAR(specificVolume(1000, 10, -0.01f), specificVolume(1000, 10, 0), 2e-5);
}

} // namespace
