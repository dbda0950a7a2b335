#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>

#include "variables/seawater/carbonate.h"

namespace {

using namespace seawater;

constexpr double missing = -1.0e10;

struct SYSTEMCHECK {
    float temperature, salinity, carbon, alkalinity;
    CARBONATE expected;
};

std::ostream& operator<<(std::ostream& out, const SYSTEMCHECK& check)
{
    return out << "t " << check.temperature << " S " << check.salinity << " TCO2 " << check.carbon << " TALK "
               << check.alkalinity;
}

CARBONATE resultOf(const SYSTEMCHECK& check)
{
    return carbonateSystem(check.temperature, check.salinity, check.carbon, check.alkalinity, missing);
}

void expectMissing(const CARBONATE& result)
{
    for (const double value : {result.pH, result.pCO2, result.CO2, result.HCO3, result.CO3})
        EXPECT_EQ(value, missing);
}

class CarbonateSystemTable : public testing::TestWithParam<SYSTEMCHECK> {};

constexpr SYSTEMCHECK systemChecks[] = {
    {20, 35, 2050, 2300, {8.016645083, 430.1166806, 13.9389824, 1850.770067, 185.2909504}},
    {2, 34.7f, 2250, 2360, {7.974533174, 472.9786748, 27.58777782, 2128.55352, 93.85870193}},
    {45, 42, 2000, 2300, {7.660588069, 920.8673073, 16.74739513, 1763.728218, 219.5243869}},
    {16.94f, 23.19f, 1936, 1970.8f, {7.65980081, 1014.149939, 38.27530271, 1844.673877, 53.05082017}},
    {20.39f, 15.24f, 1518, 1948.7f, {8.755743971, 58.32600462, 2.080281601, 1180.577401, 335.3423173}},
    {16.45f, 27.21f, 2442.2f, 2269.9f, {7.020028914, 5194.96664, 194.5659229, 2231.240337, 16.39369092}}};

TEST_P(CarbonateSystemTable, AgreesWithTheReference)
{
    const CARBONATE& expected = GetParam().expected;
    const CARBONATE result = resultOf(GetParam());
    EXPECT_NEAR(result.pH, expected.pH, 1e-6);
    EXPECT_NEAR(result.pCO2, expected.pCO2, 1e-5 * expected.pCO2);
    EXPECT_NEAR(result.CO2, expected.CO2, 1e-5 * expected.CO2);
    EXPECT_NEAR(result.HCO3, expected.HCO3, 1e-5 * expected.HCO3);
    EXPECT_NEAR(result.CO3, expected.CO3, 1e-5 * expected.CO3);
}
INSTANTIATE_TEST_SUITE_P(Reference, CarbonateSystemTable, testing::ValuesIn(systemChecks));

class CarbonateSystemRow : public testing::TestWithParam<SYSTEMCHECK> {};

constexpr SYSTEMCHECK systemRows[] = {{25, 35, 2000, 2300, {8.02978, 407.328, 11.5648, 1768.648, 219.787}},
                                      {2, 34.7f, 2250, 2360, {7.97453, 472.979, 27.5878, 2128.554, 93.859}},
                                      {20, 35, 2100, 2300, {7.91695, 563.760, 18.2700, 1928.275, 153.455}},
                                      {10, 30, 1900, 2050, {8.04233, 367.554, 16.5988, 1768.480, 114.921}},
                                      {28, 36, 1950, 2380, {8.15571, 283.042, 7.4280, 1633.621, 308.951}},
                                      {4, 34, 2350, 2300, {7.43725, 1742.164, 94.7307, 2224.693, 30.577}}};

// To the digits of the table.
TEST_P(CarbonateSystemRow, AgreesWithTheReference)
{
    const CARBONATE& expected = GetParam().expected;
    const CARBONATE result = resultOf(GetParam());
    EXPECT_NEAR(result.pH, expected.pH, 5.1e-6);
    EXPECT_NEAR(result.pCO2, expected.pCO2, 5.1e-4);
    EXPECT_NEAR(result.CO2, expected.CO2, 5.1e-5);
    EXPECT_NEAR(result.HCO3, expected.HCO3, 5.1e-4);
    EXPECT_NEAR(result.CO3, expected.CO3, 5.1e-4);
}
INSTANTIATE_TEST_SUITE_P(Reference, CarbonateSystemRow, testing::ValuesIn(systemRows));

struct CONSTANTSROW {
    float temperature, salinity;
    double pk1, pk2, pkWater, pkBoric, logSolubility;
};

std::ostream& operator<<(std::ostream& out, const CONSTANTSROW& row)
{
    return out << "t " << row.temperature << " S " << row.salinity;
}

class CarbonateConstants : public testing::TestWithParam<CONSTANTSROW> {};

constexpr CONSTANTSROW constantsRows[] = {{0, 30, 6.12778, 9.40630, 14.32279, 8.95423, -2.73666},
                                          {0, 35, 6.10961, 9.36481, 14.28148, 8.92674, -2.76668},
                                          {10, 30, 6.01480, 9.22953, 13.87789, 8.82099, -3.09754},
                                          {10, 35, 5.99669, 9.18506, 13.83657, 8.79350, -3.12631},
                                          {25, 30, 5.86625, 8.98656, 13.26649, 8.63789, -3.53564},
                                          {25, 35, 5.84527, 8.93542, 13.22517, 8.61040, -3.56165}};

TEST_P(CarbonateConstants, RelateTheSpecies)
{
    const CONSTANTSROW& row = GetParam();
    const CARBONATE result = carbonateSystem(row.temperature, row.salinity, 2000, 2300, missing);
    EXPECT_NEAR(result.pH - std::log10(result.HCO3 / result.CO2), row.pk1, 5.1e-6);
    EXPECT_NEAR(result.pH - std::log10(result.CO3 / result.HCO3), row.pk2, 5.1e-6);
    EXPECT_NEAR(std::log(result.CO2 / result.pCO2), row.logSolubility, 5.1e-6);
}

// Without carbon, boric acid carries a small alkalinity and water a large one.
TEST_P(CarbonateConstants, BalanceTheAlkalinity)
{
    const CONSTANTSROW& row = GetParam();
    for (const float alkalinity : {200.0f, 3000.0f}) {
        const double h =
            std::pow(10, -carbonateSystem(row.temperature, row.salinity, 0, alkalinity, missing).pH);
        const double borate = 1.17314285e-05 * row.salinity / (1 + h * std::pow(10, row.pkBoric));
        const double hydroxide = std::pow(10, -row.pkWater) / h;
        EXPECT_NEAR(1e6 * (borate + hydroxide - h), alkalinity, 3e-5 * alkalinity);
    }
}
INSTANTIATE_TEST_SUITE_P(Reference, CarbonateConstants, testing::ValuesIn(constantsRows));

TEST(CarbonateSystem, OutsideOfItsLimitsIsMissing)
{
    expectMissing(carbonateSystem(-2.6f, 35, 2050, 2300, missing));
    expectMissing(carbonateSystem(10, 42.1f, 2000, 2300, missing));
    expectMissing(carbonateSystem(45.1f, 35, 2050, 2300, missing));
    expectMissing(carbonateSystem(20, -0.1f, 2050, 2300, missing));
    expectMissing(carbonateSystem(20, 35, 4000.5f, 2300, missing));
    expectMissing(carbonateSystem(20, 35, 2050, 4000.5f, missing));
    expectMissing(carbonateSystem(20, 35, -1, 2300, missing));
    expectMissing(carbonateSystem(20, 35, 2050, -1, missing));
    expectMissing(carbonateSystem(std::numeric_limits<float>::quiet_NaN(), 35, 2050, 2300, missing));
}

TEST(CarbonateSystem, TakesItsLimitsThemselves)
{
    for (const float t : {-2.5f, 45.0f}) {
        for (const float s : {0.0f, 42.0f}) {
            for (const float carbon : {0.0f, 4000.0f}) {
                for (const float alkalinity : {0.0f, 4000.0f})
                    EXPECT_NE(carbonateSystem(t, s, carbon, alkalinity, missing).pH, missing);
            }
        }
    }
}

// Far beyond the interval in which the search begins, on both sides: the species add up to the carbon.
TEST(CarbonateSystem, HasASolutionAtEveryRatioOfCarbonAndAlkalinity)
{
    double lowest = 99, highest = 0;
    for (float carbon = 0; carbon <= 4000; carbon += 125) {
        for (float alkalinity = 0; alkalinity <= 4000; alkalinity += 125) {
            const CARBONATE result = carbonateSystem(5, 34, carbon, alkalinity, missing);
            ASSERT_NE(result.pH, missing) << carbon << ' ' << alkalinity;
            EXPECT_NEAR(result.CO2 + result.HCO3 + result.CO3, carbon, 1e-9 * carbon);
            lowest = std::min(lowest, result.pH);
            highest = std::max(highest, result.pH);
        }
    }
    EXPECT_LT(lowest, 6);
    EXPECT_GT(highest, 10);
}

TEST(CarbonateSystem, WithoutCarbonHasAPHAllTheSame)
{
    const CARBONATE result = carbonateSystem(20, 0, 0, 0, missing);
    EXPECT_NEAR(result.pH, 0.5 * (3441 / 293.15 + 2.241), 1e-9); // neutral water
    EXPECT_EQ(result.CO2, 0);
    EXPECT_EQ(result.pCO2, 0);
}

} // namespace
