#include <gtest/gtest.h>

#include <limits>
#include <ostream>

#include "derivedfixture.h"
#include "variables/registry.h"
#include "variables/seawater/adiabat.h"
#include "variables/seawater/pressure.h"
#include "variables/seawater/properties.h"
#include "variables/seawater/state.h"

namespace {

using namespace variables;
using testing_support::missing;
using testing_support::RDerivedStation;

// Depth, temperature, salinity and oxygen of one level.
struct SAMPLE {
    float depth, temperature, salinity, oxygen, latitude;
};

RDerivedStation stationOf(const SAMPLE& sample)
{
    return RDerivedStation({{sample.depth}, {sample.temperature}, {sample.salinity}, {sample.oxygen}},
                           sample.latitude);
}

struct WATERCHECK {
    CalculatorId id;
    SAMPLE sample;
    float param;
    double expected, tolerance;
};

std::ostream& operator<<(std::ostream& out, const WATERCHECK& check)
{
    return out << "id " << check.id << " at " << check.sample.depth << " m";
}

class WaterCalculatorTable : public testing::TestWithParam<WATERCHECK> {};

constexpr WATERCHECK waterChecks[] = {
    {idPotentialTemperature, {15000, 5, 35, missing, 30}, 0, 2.494086266, 0.0001},
    {idPotentialTemperature, {15000.5f, 5, 35, missing, 30}, 0, missing, 0},
    {idPotentialDensity, {1000, -5.01f, 35, missing, 30}, 0, missing, 0},
    {idPressure, {-1, 10, 35, missing, 30}, 0, missing, 0},
    {idSoundSpeed, {1000, 10, 100.1f, missing, 30}, 0, missing, 0},
    {idPotentialDensity, {1399.2f, 7.362f, 34.462f, 305.8f, 26.2f}, 0, 26.96515274, 0.0001},
    {idSoundSpeed, {2278.5f, 8.804f, 35.619f, 16.5f, -35.61f}, 0, 1524.519653, 0.002},
    {idSoundSpeed, {3240.2f, 14.995f, 24.455f, 216.9f, -21.69f}, 0, 1549.000854, 0.002}};

TEST_P(WaterCalculatorTable, AgreesWithTheReference)
{
    const auto& [id, sample, param, expected, tolerance] = GetParam();
    RDerivedStation station = stationOf(sample);
    const int number = station.add(id, {1, 2, 3}, param);
    station.compute();
    EXPECT_NEAR(station.value(number), expected, tolerance);
    EXPECT_EQ(station.count(number), expected == missing ? 0 : 1);
}
INSTANTIATE_TEST_SUITE_P(Reference, WaterCalculatorTable, testing::ValuesIn(waterChecks));

struct RATIOCHECK {
    float numerator, denominator, param;
    double expected, tolerance;
};

std::ostream& operator<<(std::ostream& out, const RATIOCHECK& check)
{
    return out << check.numerator << " / " << check.denominator << " limit " << check.param;
}

class RatioTable : public testing::TestWithParam<RATIOCHECK> {};

constexpr RATIOCHECK ratioChecks[] = {
    {1, 0, 0, missing, 0},
    {1, -0.05f, 0.1f, missing, 0},
    {1, 0.1f, 0.1f, missing, 0},
    {1, -0.05f, 0, -20, 2e-5},
    {missing, 1, 0, missing, 0},
    {6.877f, -0.36f, 0.1f, -19.10277748, 1.91e-5},
    {26.883f, 0.08f, 0, 336.0375061, 0.000336},
    {6.706f, 0.04f, 0.1f, missing, 0},
};

// A level with a plain ratio stands beside it, so that both variables have values.
TEST_P(RatioTable, AgreesWithTheReference)
{
    const auto& [numerator, denominator, param, expected, tolerance] = GetParam();
    RDerivedStation station({{0, 10}, {numerator, 6}, {denominator, 3}});
    const int number = station.add(idRatio, {2, 3}, param);
    station.compute();
    EXPECT_NEAR(station.value(number, 0), expected, tolerance);
    EXPECT_EQ(station.value(number, 1), 2);
    EXPECT_EQ(station.count(number), expected == missing ? 1 : 2);
}
INSTANTIATE_TEST_SUITE_P(Reference, RatioTable, testing::ValuesIn(ratioChecks));

// --- each row against the function it stands for

TEST(LevelCalculators, TakeThePressureAtTheLatitudeOfTheStation)
{
    RDerivedStation station({{0, 1000, 5000}}, -60);
    const int number = station.add(idPressure, {1});
    station.compute();
    const float expected[] = {0, float(seawater::pressureFromDepth(1000, 60)), 5108.0142f};
    for (int k = 0; k < 3; ++k) EXPECT_FLOAT_EQ(station.value(number, k), expected[k]);
}

TEST(LevelCalculators, ReadThePressureWhereTheyGiveTheDepth)
{
    RDerivedStation station({{500, 15000, 15001, -1, missing}}, 0);
    const int number = station.add(idDepth, {1});
    station.compute();
    EXPECT_NEAR(station.value(number, 0), 496.653, 0.001);
    EXPECT_FLOAT_EQ(station.value(number, 1), float(seawater::depthFromPressure(15000, 0)));
    for (int k = 2; k < 5; ++k) EXPECT_EQ(station.value(number, k), missing);
    EXPECT_EQ(station.count(number), 2);
}

TEST(LevelCalculators, ReferPotentialTemperatureAndDensityToTheirParameter)
{
    RDerivedStation station = stationOf({3000, 4, 34.9f, missing, 30});
    const int theta = station.add(idPotentialTemperature, {1, 2, 3}, 2000);
    const int sigma = station.add(idPotentialDensity, {1, 2, 3}, 2000);
    station.compute();
    const auto p = static_cast<float>(seawater::pressureFromDepth(3000, 30));
    const auto expected = static_cast<float>(seawater::potentialTemperature(p, 4, 34.9f, 2000));
    EXPECT_EQ(station.value(theta), expected);
    EXPECT_EQ(station.value(sigma), float(seawater::sigmaFromVolume(2000, expected, 34.9f)));
}

TEST(LevelCalculators, ComputePropertiesAtThePressureOfTheLevel)
{
    RDerivedStation station = stationOf({3000, 4, 34.9f, missing, 30});
    const int speed = station.add(idSoundSpeed, {1, 2, 3});
    const int heat = station.add(idSpecificHeat, {1, 2, 3});
    const int freezing = station.add(idFreezingTemperature, {1, 0, 3});
    station.compute();
    const auto p = static_cast<float>(seawater::pressureFromDepth(3000, 30));
    EXPECT_EQ(station.value(speed), float(seawater::soundSpeed(p, 4, 34.9f)));
    EXPECT_EQ(station.value(heat), float(seawater::specificHeat(p, 4, 34.9f)));
    EXPECT_EQ(station.value(freezing), float(seawater::freezingPoint(p, 34.9f)));
}

TEST(LevelCalculators, GiveTheFreezingTemperatureWithoutATemperature)
{
    RDerivedStation station({{0, 10}, {}, {35, 101}});
    const int number = station.add(idFreezingTemperature, {1, 0, 3});
    station.compute();
    EXPECT_NEAR(station.value(number, 0), -1.922, 0.0005);
    EXPECT_EQ(station.value(number, 1), missing);
}

// --- oxygen saturation

TEST(OxygenSaturation, UsesPotentialTemperatureAtTheSurface)
{
    RDerivedStation station = stationOf({4000, 2.5f, 34.7f, 230, 30});
    const int theta = station.add(idPotentialTemperature, {1, 2, 3}, 0);
    const int saturation = station.add(idOxygenSaturation, {1, 2, 3, 4});
    station.compute();
    const double expected = 23000 / seawater::oxygenSolubility(station.value(theta), 34.7f);
    EXPECT_FLOAT_EQ(station.value(saturation), float(expected));
    EXPECT_GT(std::abs(expected - 23000 / seawater::oxygenSolubility(2.5f, 34.7f)), 0.1);
}

TEST(OxygenSaturation, WantsOxygenWithinItsWindow)
{
    RDerivedStation station({{0, 1, 2, 3}, {5, 5, 5, 5}, {35, 35, 35, 35}, {0, 1000, -0.1f, 1000.1f}});
    const int number = station.add(idOxygenSaturation, {1, 2, 3, 4});
    station.compute();
    EXPECT_EQ(station.value(number, 0), 0);
    EXPECT_GT(station.value(number, 1), 300);
    EXPECT_EQ(station.value(number, 2), missing);
    EXPECT_EQ(station.value(number, 3), missing);
    EXPECT_EQ(station.count(number), 2);
}

// A computed variable may have a block in which nothing counts.
TEST(OxygenSaturation, WithoutAnyOxygenIsAbsent)
{
    RDerivedStation station({{0, 1}, {5, 5}, {35, 35}, {1, 1}, {0, 0}});
    const int oxygen = station.add(idRatio, {4, 5});
    const int number = station.add(idOxygenSaturation, {1, 2, 3, oxygen});
    station.compute();
    EXPECT_FALSE(station.isAbsent(oxygen));
    EXPECT_EQ(station.count(oxygen), 0);
    EXPECT_TRUE(station.isAbsent(number));
}

// --- temperature in situ

TEST(InSituTemperature, UndoesThePotentialTemperatureThatWasChosen)
{
    RDerivedStation station = stationOf({4000, 2.5f, 34.7f, missing, 30});
    const int theta = station.add(idPotentialTemperature, {1, 2, 3}, 2000);
    const int number = station.add(idInSituTemperature, {1, theta, 3});
    station.compute();
    EXPECT_LT(station.value(theta), 2.4f);
    EXPECT_NEAR(station.value(number), 2.5, 1e-4);
}

TEST(InSituTemperature, OfAStoredPotentialTemperatureStartsAtTheSurface)
{
    RDerivedStation station = stationOf({4000, 2.5f, 34.7f, missing, 30});
    station.collection.variables[2].param = 2000; // says nothing for a stored variable
    const int number = station.add(idInSituTemperature, {1, 2, 3});
    station.compute();
    const auto p = static_cast<float>(seawater::pressureFromDepth(4000, 30));
    EXPECT_EQ(station.value(number), float(seawater::potentialTemperature(0, 2.5f, 34.7f, p)));
}

// --- ratio

TEST(Ratio, WithLimitZeroRefusesADenominatorOfExactlyZero)
{
    RDerivedStation station({{0, 10}, {1, 1}, {0, 1e-6f}});
    const int number = station.add(idRatio, {2, 3}, 0);
    station.compute();
    EXPECT_EQ(station.value(number, 0), missing);
    EXPECT_FLOAT_EQ(station.value(number, 1), 1e6f);
}

TEST(Ratio, WithALimitRefusesSmallNegativeDenominatorsToo)
{
    RDerivedStation station({{0, 10}, {1, 1}, {-0.05f, -0.2f}});
    const int number = station.add(idRatio, {2, 3}, 0.1f);
    station.compute();
    EXPECT_EQ(station.value(number, 0), missing);
    EXPECT_FLOAT_EQ(station.value(number, 1), -5);
}

TEST(Ratio, TakesANegativeLimitForZero)
{
    RDerivedStation station({{0, 10}, {1, 1}, {0, 0.5f}});
    const int number = station.add(idRatio, {2, 3}, -3);
    station.compute();
    EXPECT_EQ(station.values(number), (std::vector<float>{missing, 2}));
}

TEST(Ratio, ThatIsNotFiniteIsMissing)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    RDerivedStation station({{0, 10, 20}, {1e38f, nan, 1}, {1e-10f, 1, nan}});
    const int number = station.add(idRatio, {2, 3});
    station.compute();
    EXPECT_EQ(station.values(number), std::vector<float>(3, missing));
    EXPECT_EQ(station.count(number), 0);
}

TEST(Ratio, OfAVariableWithoutDataIsAbsent)
{
    RDerivedStation station({{0, 10}, {1, 1}, {}});
    const int number = station.add(idRatio, {2, 3});
    const int inverse = station.add(idRatio, {3, 2});
    station.compute();
    EXPECT_TRUE(station.isAbsent(number));
    EXPECT_TRUE(station.isAbsent(inverse));
}

// --- windows

struct WINDOWCHECK {
    int variable; // 1 depth, 2 temperature, 3 salinity
    float value;
    bool isUsable;
};

std::ostream& operator<<(std::ostream& out, const WINDOWCHECK& check)
{
    return out << "variable " << check.variable << " = " << check.value;
}

class LevelWindows : public testing::TestWithParam<WINDOWCHECK> {};

constexpr WINDOWCHECK windowChecks[] = {
    {1, 0, true},        {1, 15000, true},
    {1, -0.5f, false},   {1, 15000.5f, false},
    {1, missing, false}, {2, -5, true},
    {2, 100, true},      {2, -5.01f, false},
    {2, 100.1f, false},  {2, missing, false},
    {3, 0, true},        {3, 100, true},
    {3, -0.01f, false},  {3, 100.1f, false},
    {3, missing, false}, {2, std::numeric_limits<float>::quiet_NaN(), false}};

TEST_P(LevelWindows, DecideWhetherALevelHasAResult)
{
    const auto& [variable, value, isUsable] = GetParam();
    std::vector<std::vector<float>> columns = {{100, 200}, {10, 10}, {35, 35}};
    columns.at(static_cast<std::size_t>(variable - 1))[0] = value;
    RDerivedStation station(columns);
    std::vector<int> numbers;
    for (const int id : {idPotentialTemperature, idPotentialDensity, idSoundSpeed, idSpecificHeat})
        numbers.push_back(station.add(id, {1, 2, 3}));
    numbers.push_back(station.add(idInSituTemperature, {1, 2, 3}));
    station.compute();
    for (const int number : numbers) {
        EXPECT_EQ(station.value(number, 0) != missing, isUsable) << number;
        EXPECT_NE(station.value(number, 1), missing) << number;
        EXPECT_EQ(station.count(number), isUsable ? 2 : 1) << number;
    }
}
INSTANTIATE_TEST_SUITE_P(All, LevelWindows, testing::ValuesIn(windowChecks));

// --- flags

TEST(LevelFlags, AreTheLargestOfDepthTemperatureAndSalinity)
{
    RDerivedStation station({{0, 10, 20}, {5, 5, 5}, {35, 35, 35}});
    station.setFlags(1, {8, 0, 0});
    station.setFlags(2, {1, 4, 0});
    station.setFlags(3, {4, 1, 1});
    std::vector<int> numbers;
    for (const int id : {idPotentialTemperature, idPotentialDensity, idSoundSpeed, idSpecificHeat})
        numbers.push_back(station.add(id, {1, 2, 3}));
    numbers.push_back(station.add(idInSituTemperature, {1, 2, 3}));
    station.compute();
    for (const int number : numbers) EXPECT_EQ(station.flags(number), (std::vector<int>{8, 4, 1}));
}

TEST(LevelFlags, OfFreezingTemperatureAreThoseOfDepthAndSalinity)
{
    RDerivedStation station({{0, 10}, {}, {35, 35}});
    station.setFlags(1, {4, 1});
    station.setFlags(3, {1, 8});
    const int number = station.add(idFreezingTemperature, {1, 0, 3});
    station.compute();
    EXPECT_EQ(station.flags(number), (std::vector<int>{4, 8}));
}

TEST(LevelFlags, OfPressureAndDepthAreThoseOfTheFirstVariable)
{
    RDerivedStation station({{0, 10}, {0, 10}});
    station.setFlags(1, {4, 1});
    station.setFlags(2, {8, 8});
    const int pressure = station.add(idPressure, {2});
    const int depth = station.add(idDepth, {2});
    station.compute();
    EXPECT_EQ(station.flags(pressure), (std::vector<int>{4, 1}));
    EXPECT_EQ(station.flags(depth), (std::vector<int>{4, 1}));
}

TEST(LevelFlags, OfOxygenSaturationAndRatioAreTheLargestOfAllTheirSources)
{
    RDerivedStation station({{0, 10}, {5, 5}, {35, 35}, {200, 200}});
    station.setFlags(3, {4, 1});
    station.setFlags(4, {1, 8});
    const int saturation = station.add(idOxygenSaturation, {1, 2, 3, 4});
    const int ratio = station.add(idRatio, {3, 4});
    station.compute();
    EXPECT_EQ(station.flags(saturation), (std::vector<int>{4, 8}));
    EXPECT_EQ(station.flags(ratio), (std::vector<int>{4, 8}));
}

// --- absence

TEST(LevelCalculators, WithoutSalinityAreAbsent)
{
    RDerivedStation station({{0, 10}, {5, 5}, {}, {200, 200}});
    std::vector<int> numbers;
    for (const int id : {idPotentialTemperature, idPotentialDensity, idSoundSpeed, idSpecificHeat,
                         idInSituTemperature, idFreezingTemperature})
        numbers.push_back(station.add(id, {1, 2, 3}));
    numbers.push_back(station.add(idOxygenSaturation, {1, 2, 3, 4}));
    const int pressure = station.add(idPressure, {1});
    station.compute();
    for (const int number : numbers) {
        EXPECT_TRUE(station.isAbsent(number)) << number;
        EXPECT_EQ(station.count(number), 0) << number;
    }
    EXPECT_EQ(station.count(pressure), 2);
}

TEST(LevelCalculators, ThatAreNotNeededAreAbsent)
{
    RDerivedStation station({{0, 10}, {5, 5}, {35, 35}});
    const int number = station.add(idPotentialTemperature, {1, 2, 3});
    station.collection.neededMask.fill(0);
    station.compute();
    EXPECT_TRUE(station.isAbsent(number));
}

} // namespace
