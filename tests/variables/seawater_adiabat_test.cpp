#include <gtest/gtest.h>

#include "checktable.h"
#include "variables/seawater/adiabat.h"

namespace {

using namespace seawater;
using testing_support::CHECK;
using testing_support::expectRow;
using testing_support::ROW;

class AdiabaticLapseRateTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK adiabaticLapseRateChecks[] = {{{10000, 40, 40}, 0.32559758, 3.26e-07},
                                              {{0, 0, 35}, 0.035803, 3.58e-08},
                                              {{0, 20, 35}, 0.18427324, 1.84e-07},
                                              {{7202.9f, 23.31f, 28.994f}, 0.2453299116, 2.45e-07},
                                              {{272.1f, 29.693f, 31.229f}, 0.2449876365, 2.45e-07},
                                              {{4447.7f, 39.344f, 24.854f}, 0.3125081664, 3.13e-07},
                                              {{5802.2f, 33.696f, 40.953f}, 0.2918573432, 2.92e-07},
                                              {{3620.1f, 35.124f, 4.956f}, 0.2803561812, 2.8e-07}};

TEST_P(AdiabaticLapseRateTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(adiabaticLapseRate(in[0], in[1], in[2]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, AdiabaticLapseRateTable, testing::ValuesIn(adiabaticLapseRateChecks));

class AdiabaticLapseRatePerDbTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK adiabaticLapseRatePerDbChecks[] = {{{40, 40, 10000}, 0.00032559758, 3.26e-10},
                                                   {{35, 0, 0}, 3.5803e-05, 3.58e-11},
                                                   {{35, 20, 0}, 0.00018427324, 1.84e-10},
                                                   {{3.548f, -0.658f, 3537.1f}, 4.451633227e-05, 4.45e-11},
                                                   {{7.829f, 26.179f, 8047.6f}, 0.0002520805464, 2.52e-10},
                                                   {{11.873f, 4.895f, 3977.6f}, 0.0001023883881, 1.02e-10},
                                                   {{11.571f, 38.311f, 6461.3f}, 0.0003077098568, 3.08e-10},
                                                   {{13.098f, 32.051f, 10395.6f}, 0.0002887555472, 2.89e-10}};

TEST_P(AdiabaticLapseRatePerDbTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(adiabaticLapseRatePerDb(in[0], in[1], in[2]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, AdiabaticLapseRatePerDbTable,
                         testing::ValuesIn(adiabaticLapseRatePerDbChecks));

// In 1e-4 degC/dbar.
class AdiabaticLapseRateRow : public testing::TestWithParam<ROW> {};

constexpr ROW lapseRateRows[] = {
    {25, 0, {0.169, 1.002, 1.738, 2.417, 3.079}},     {25, 5000, {1.047, 1.610, 2.135, 2.648, 3.170}},
    {25, 10000, {1.694, 2.069, 2.445, 2.830, 3.230}}, {35, 0, {0.358, 1.149, 1.843, 2.479, 3.098}},
    {35, 5000, {1.180, 1.714, 2.211, 2.695, 3.188}},  {35, 10000, {1.770, 2.130, 2.491, 2.862, 3.247}},
    {40, 0, {0.453, 1.222, 1.895, 2.510, 3.108}},     {40, 5000, {1.246, 1.766, 2.249, 2.718, 3.198}},
    {40, 10000, {1.808, 2.161, 2.515, 2.877, 3.256}}};

TEST_P(AdiabaticLapseRateRow, AgreesWithTheReference)
{
    const ROW& row = GetParam();
    expectRow(row, 0.00051,
              [&](float t) { return 1e4 * adiabaticLapseRatePerDb(row.salinity, t, row.pressure); });
}
INSTANTIATE_TEST_SUITE_P(Reference, AdiabaticLapseRateRow, testing::ValuesIn(lapseRateRows));

TEST(AdiabaticLapseRate, AgreesWithThePublishedValue)
{
    EXPECT_NEAR(adiabaticLapseRatePerDb(40, 40, 10000), 3.255976e-4, 5e-11);
    EXPECT_NEAR(adiabaticLapseRate(10000, 40, 40), 0.3255976, 5e-8);
}

TEST(AdiabaticLapseRate, BothFormsAgreeToRounding)
{
    for (float p = 0; p <= 10000; p += 1000) {
        for (float t = 0; t <= 40; t += 10)
            EXPECT_NEAR(adiabaticLapseRate(p, t, 33), 1000 * adiabaticLapseRatePerDb(33, t, p), 1e-9);
    }
}

class PotentialTemperatureTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK potentialTemperatureChecks[] = {{{10000, 40, 40, 0}, 36.89072646, 2e-05},
                                                {{5000, 0, 35, 0}, -0.3855565012, 2e-05},
                                                {{10000, 10, 25, 0}, 8.468409509, 2e-05},
                                                {{5000, 20, 35, 0}, 18.99845172, 2e-05},
                                                {{3000, 4, 35, 3000}, 4, 2e-05},
                                                {{1647.7f, 33.002f, 38.761f, 1000}, 32.82529873, 2e-05},
                                                {{7696.8f, 28.351f, 40.422f, 0}, 26.39888244, 2e-05},
                                                {{3590, 7.163f, 27.099f, 1000}, 6.871496949, 2e-05}};

TEST_P(PotentialTemperatureTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(potentialTemperature(in[0], in[1], in[2], in[3]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, PotentialTemperatureTable, testing::ValuesIn(potentialTemperatureChecks));

class PotentialTemperatureRow : public testing::TestWithParam<ROW> {};

constexpr ROW potentialTemperatureRows[] = {{25, 5000, {-0.3061, 9.3531, 19.0438, 28.7512, 38.4607}},
                                            {25, 10000, {-0.9667, 8.4684, 17.9427, 27.4353, 36.9254}},
                                            {35, 5000, {-0.3856, 9.2906, 18.9985, 28.7231, 38.4498}},
                                            {35, 10000, {-1.0974, 8.3643, 17.8654, 27.3851, 36.9023}},
                                            {40, 5000, {-0.4253, 9.2594, 18.9758, 28.7091, 38.4444}},
                                            {40, 10000, {-1.1629, 8.3121, 17.8266, 27.3599, 36.8907}}};

TEST_P(PotentialTemperatureRow, AgreesWithTheReference)
{
    const ROW& row = GetParam();
    expectRow(row, 0.000051, [&](float t) { return potentialTemperature(row.pressure, t, row.salinity, 0); });
}
INSTANTIATE_TEST_SUITE_P(Reference, PotentialTemperatureRow, testing::ValuesIn(potentialTemperatureRows));

TEST(PotentialTemperature, AgreesWithThePublishedValue)
{
    EXPECT_NEAR(potentialTemperature(10000, 40, 40, 0), 36.89073, 1e-5);
}

TEST(PotentialTemperature, AtItsOwnPressureIsTheTemperature)
{
    for (float p = 0; p <= 10000; p += 2500)
        EXPECT_FLOAT_EQ(float(potentialTemperature(p, 12.5f, 35, p)), 12.5f);
}

TEST(PotentialTemperature, WithExchangedPressuresGivesTheTemperatureInSitu)
{
    const auto theta = static_cast<float>(potentialTemperature(4000, 2.5f, 34.7f, 0));
    EXPECT_LT(theta, 2.5f);
    EXPECT_NEAR(potentialTemperature(0, theta, 34.7f, 4000), 2.5, 1e-4);
}

} // namespace
