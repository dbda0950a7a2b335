#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <ostream>

#include "variables/seawater/solubility.h"

namespace {

using namespace seawater;

struct SOLUBILITYCHECK {
    Gas gas;
    float potentialTemperature, salinity;
    double mixingRatio, expected, tolerance;
};

std::ostream& operator<<(std::ostream& out, const SOLUBILITYCHECK& check)
{
    return out << "gas " << check.gas << " t " << check.potentialTemperature << " S " << check.salinity;
}

class SolubilityTable : public testing::TestWithParam<SOLUBILITYCHECK> {};

constexpr SOLUBILITYCHECK solubilityChecks[] = {
    {gasCfc11, 0, 35, 1, 0.02647054773, 2.65e-08},  {gasCfc11, 20, 35, 1, 0.008814458242, 8.81e-09},
    {gasCfc12, 0, 35, 1, 0.006462650514, 6.46e-09}, {gasCfc12, 20, 35, 1, 0.002446152066, 2.45e-09},
    {gasCfc10, 20, 35, 1, 0.02890680047, 2.89e-08}, {gasCfc113, 20, 35, 1, 0.002613816738, 2.61e-09},
    {gasCh4, 0, 35, 1, 0.04447963454, 4.45e-08},    {gasCh4, 20, 35, 1, 0.02782145763, 2.78e-08}};

TEST_P(SolubilityTable, AgreesWithTheReference)
{
    const auto& [gas, t, salinity, mixingRatio, expected, tolerance] = GetParam();
    EXPECT_NEAR(solubility(t, salinity, mixingRatio, gas), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, SolubilityTable, testing::ValuesIn(solubilityChecks));

// By gas in the order of their numbers, to six digits.
struct GASROW {
    float potentialTemperature, salinity;
    std::array<double, gasCount> expected;
};

std::ostream& operator<<(std::ostream& out, const GASROW& row)
{
    return out << "t " << row.potentialTemperature << " S " << row.salinity;
}

class SolubilityRow : public testing::TestWithParam<GASROW> {};

constexpr GASROW gasRows[] = {{0, 35, {0.0264705, 0.00646265, 0.0939778, 0.00852650, 0.0444796}},
                              {10, 35, {0.0145659, 0.00381230, 0.0497820, 0.00447150, 0.0343289}},
                              {20, 35, {0.00881446, 0.00244615, 0.0289068, 0.00261382, 0.0278215}},
                              {20, 0, {0.0125854, 0.00344567, 0.0379359, 0.00368767, 0.0346396}}};

TEST_P(SolubilityRow, AgreesWithTheReference)
{
    const auto& [t, salinity, expected] = GetParam();
    for (int gas = 0; gas < gasCount; ++gas) {
        const double wanted = expected.at(static_cast<std::size_t>(gas));
        EXPECT_NEAR(solubility(t, salinity, 1, Gas(gas)), wanted, 5e-6 * wanted) << gas;
    }
}
INSTANTIATE_TEST_SUITE_P(Reference, SolubilityRow, testing::ValuesIn(gasRows));

TEST(Solubility, GrowsWithTheMixingRatio)
{
    EXPECT_DOUBLE_EQ(solubility(10, 35, 250, gasCfc11), 250 * solubility(10, 35, 1, gasCfc11));
    EXPECT_EQ(solubility(10, 35, 0, gasCfc11), 0);
}

TEST(Solubility, OfAGasThatIsNoneIsNoNumber)
{
    EXPECT_TRUE(std::isnan(solubility(10, 35, 1, Gas(-1))));
    EXPECT_TRUE(std::isnan(solubility(10, 35, 1, gasCount)));
}

} // namespace
