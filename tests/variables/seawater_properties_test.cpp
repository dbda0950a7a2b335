#include <gtest/gtest.h>

#include "checktable.h"
#include "variables/seawater/properties.h"

namespace {

using namespace seawater;
using testing_support::CHECK;
using testing_support::expectRow;
using testing_support::ROW;

class SoundSpeedTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK soundSpeedChecks[] = {{{10000, 40, 40}, 1731.995394, 0.001},
                                      {{0, 0, 35}, 1449.138828, 0.001},
                                      {{5000, 20, 25}, 1593.596718, 0.001},
                                      {{0, 10, -0.01f}, 1447.257618, 0.001},
                                      {{0, 0, 0}, 1402.388, 0.001},
                                      {{3929.5f, 20.655f, 40.729f}, 1594.743114, 0.001},
                                      {{4022.4f, 18.503f, 1.012f}, 1545.795289, 0.001},
                                      {{7419.1f, 37.543f, 9.098f}, 1658.502412, 0.001}};

TEST_P(SoundSpeedTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(soundSpeed(in[0], in[1], in[2]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, SoundSpeedTable, testing::ValuesIn(soundSpeedChecks));

class SoundSpeedRow : public testing::TestWithParam<ROW> {};

constexpr ROW soundSpeedRows[] = {{25, 0, {1435.8, 1477.7, 1510.3, 1535.2, 1553.4}},
                                  {25, 5000, {1520.4, 1561.3, 1593.6, 1619.0, 1638.0}},
                                  {25, 10000, {1610.4, 1647.4, 1676.8, 1700.6, 1719.2}},
                                  {35, 0, {1449.1, 1489.8, 1521.5, 1545.6, 1563.2}},
                                  {35, 5000, {1534.0, 1573.4, 1604.5, 1629.0, 1647.3}},
                                  {35, 10000, {1623.2, 1659.0, 1687.2, 1710.1, 1727.8}},
                                  {40, 0, {1455.8, 1495.9, 1527.1, 1550.8, 1568.1}},
                                  {40, 5000, {1540.7, 1579.4, 1609.8, 1633.9, 1651.9}},
                                  {40, 10000, {1629.3, 1664.6, 1692.2, 1714.6, 1732.0}}};

TEST_P(SoundSpeedRow, AgreesWithTheReference)
{
    const ROW& row = GetParam();
    expectRow(row, 0.051, [&](float t) { return soundSpeed(row.pressure, t, row.salinity); });
}
INSTANTIATE_TEST_SUITE_P(Reference, SoundSpeedRow, testing::ValuesIn(soundSpeedRows));

TEST(SoundSpeed, AgreesWithThePublishedValue)
{
    EXPECT_NEAR(soundSpeed(10000, 40, 40), 1731.995, 0.001);
}

class SpecificHeatTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK specificHeatChecks[] = {{{10000, 40, 40}, 3849.499481, 0.005},
                                        {{0, 0, 35}, 3986.53292, 0.005},
                                        {{5000, 20, 25}, 3938.597722, 0.005},
                                        {{0, 0, 0}, 4217.4, 0.005},
                                        {{4119.8f, 32.399f, 6.86f}, 4050.628594, 0.005},
                                        {{139.7f, 28.612f, 11.955f}, 4110.964751, 0.005},
                                        {{7016, 37.289f, 34.46f}, 3895.005096, 0.005},
                                        {{581.5f, 20.215f, 24.043f}, 4035.284642, 0.005}};

TEST_P(SpecificHeatTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(specificHeat(in[0], in[1], in[2]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, SpecificHeatTable, testing::ValuesIn(specificHeatChecks));

class SpecificHeatRow : public testing::TestWithParam<ROW> {};

constexpr ROW specificHeatRows[] = {{25, 0, {4048.4, 4041.8, 4044.8, 4049.1, 4051.2}},
                                    {25, 5000, {3896.3, 3919.6, 3938.6, 3952.0, 3966.1}},
                                    {25, 10000, {3807.7, 3842.3, 3866.7, 3883.0, 3905.9}},
                                    {35, 0, {3986.5, 3986.3, 3993.9, 4000.7, 4003.5}},
                                    {35, 5000, {3849.3, 3874.7, 3895.0, 3909.2, 3923.9}},
                                    {35, 10000, {3769.1, 3804.4, 3828.3, 3844.3, 3868.3}},
                                    {40, 0, {3956.4, 3959.3, 3968.9, 3977.0, 3980.1}},
                                    {40, 5000, {3826.4, 3852.8, 3873.5, 3888.1, 3903.0}},
                                    {40, 10000, {3750.6, 3785.9, 3809.3, 3825.1, 3849.5}}};

TEST_P(SpecificHeatRow, AgreesWithTheReference)
{
    const ROW& row = GetParam();
    expectRow(row, 0.051, [&](float t) { return specificHeat(row.pressure, t, row.salinity); });
}
INSTANTIATE_TEST_SUITE_P(Reference, SpecificHeatRow, testing::ValuesIn(specificHeatRows));

TEST(SpecificHeat, AgreesWithThePublishedValue)
{
    EXPECT_NEAR(specificHeat(10000, 40, 40), 3849.500, 0.001);
}

TEST(SpecificHeat, OfASlightlyNegativeSalinityIsANumber)
{
    EXPECT_NEAR(specificHeat(1000, 10, -0.01f), specificHeat(1000, 10, 0), 0.1);
}

class FreezingPointTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK freezingPointChecks[] = {
    {{500, 40}, -2.588567466, 2e-06},         {{0, 35}, -1.922301341, 2e-06},
    {{500, 5}, -0.6502632615, 2e-06},         {{0, 0}, -0, 2e-06},
    {{0, -0.01f}, 0.0005732679142, 2e-06},    {{1047.8f, 34.279f}, -2.669960779, 2e-06},
    {{288.3f, 25.023f}, -1.576737111, 2e-06}, {{97.5f, 15.189f}, -0.895245549, 2e-06}};

TEST_P(FreezingPointTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(freezingPoint(in[0], in[1]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, FreezingPointTable, testing::ValuesIn(freezingPointChecks));

// At salinities 5, 10 to 40.
struct FREEZINGROW {
    float pressure;
    std::array<double, 8> expected;
};

std::ostream& operator<<(std::ostream& out, const FREEZINGROW& row)
{
    return out << "p " << row.pressure;
}

class FreezingPointRow : public testing::TestWithParam<FREEZINGROW> {};

constexpr FREEZINGROW freezingRows[] = {
    {0, {-0.274, -0.542, -0.812, -1.083, -1.358, -1.638, -1.922, -2.212}},
    {100, {-0.349, -0.618, -0.887, -1.159, -1.434, -1.713, -1.998, -2.287}},
    {200, {-0.424, -0.693, -0.962, -1.234, -1.509, -1.788, -2.073, -2.363}},
    {300, {-0.500, -0.768, -1.038, -1.309, -1.584, -1.864, -2.148, -2.438}},
    {400, {-0.575, -0.844, -1.113, -1.384, -1.660, -1.939, -2.224, -2.513}},
    {500, {-0.650, -0.919, -1.188, -1.460, -1.735, -2.014, -2.299, -2.589}}};

TEST_P(FreezingPointRow, AgreesWithTheReference)
{
    const auto& [pressure, expected] = GetParam();
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(freezingPoint(pressure, 5 * static_cast<float>(i + 1)), expected.at(i), 0.00051);
}
INSTANTIATE_TEST_SUITE_P(Reference, FreezingPointRow, testing::ValuesIn(freezingRows));

TEST(FreezingPoint, AgreesWithThePublishedValue)
{
    EXPECT_NEAR(freezingPoint(500, 40), -2.588567, 1e-6);
}

class OxygenSolubilityTable : public testing::TestWithParam<CHECK> {};

constexpr CHECK oxygenSolubilityChecks[] = {{{20, 35}, 224.8583591, 0.000225},
                                            {{0, 35}, 350.2003613, 0.00035},
                                            {{0, 0}, 444.7909485, 0.000445},
                                            {{30, 40}, 184.3546575, 0.000184},
                                            {{-1.8f, 34}, 370.1990139, 0.00037},
                                            {{22.666f, 26.959f}, 224.4863453, 0.000224},
                                            {{16.484f, 31.49f}, 245.5861776, 0.000246},
                                            {{11.123f, 8.896f}, 316.3811997, 0.000316}};

TEST_P(OxygenSolubilityTable, AgreesWithTheReference)
{
    const auto& [in, expected, tolerance] = GetParam();
    EXPECT_NEAR(oxygenSolubility(in[0], in[1]), expected, tolerance);
}
INSTANTIATE_TEST_SUITE_P(Reference, OxygenSolubilityTable, testing::ValuesIn(oxygenSolubilityChecks));

// In ml/l, at temperatures 0, 5 to 30.
struct OXYGENROW {
    float salinity;
    std::array<double, 7> expected;
};

std::ostream& operator<<(std::ostream& out, const OXYGENROW& row)
{
    return out << "S " << row.salinity;
}

class OxygenSolubilityRow : public testing::TestWithParam<OXYGENROW> {};

constexpr OXYGENROW oxygenRows[] = {{0, {10.218, 8.927, 7.891, 7.048, 6.352, 5.769, 5.276}},
                                    {30, {8.325, 7.327, 6.522, 5.865, 5.320, 4.863, 4.474}},
                                    {34, {8.100, 7.136, 6.359, 5.723, 5.196, 4.754, 4.377}},
                                    {35, {8.045, 7.089, 6.319, 5.688, 5.166, 4.727, 4.353}},
                                    {36, {7.990, 7.043, 6.279, 5.653, 5.135, 4.700, 4.329}}};

TEST_P(OxygenSolubilityRow, AgreesWithTheReference)
{
    const auto& [salinity, expected] = GetParam();
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(oxygenSolubility(5 * static_cast<float>(i), salinity) / 43.53, expected.at(i), 0.00051);
}
INSTANTIATE_TEST_SUITE_P(Reference, OxygenSolubilityRow, testing::ValuesIn(oxygenRows));

} // namespace
