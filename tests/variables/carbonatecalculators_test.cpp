#include <gtest/gtest.h>

#include "derivedfixture.h"
#include "variables/registry.h"
#include "variables/seawater/adiabat.h"
#include "variables/seawater/carbonate.h"
#include "variables/seawater/pressure.h"

namespace {

using namespace variables;
using testing_support::missing;
using testing_support::RDerivedStation;

constexpr CalculatorId carbonateIds[] = {idPH, idPCO2, idCO2, idHCO3, idCO3};

// Levels of depth, temperature, salinity, total carbon and alkalinity, with one variable for each id.
struct RCarbonateStation : RDerivedStation {
    explicit RCarbonateStation(const std::vector<std::vector<float>>& columns) : RDerivedStation(columns)
    {
        for (const int id : carbonateIds) add(id, {1, 2, 3, 4, 5});
        compute();
    }
};

constexpr int firstNumber = 6; // of the derived variables

TEST(CarbonateCalculators, PickTheirResultAtThePotentialTemperature)
{
    const RCarbonateStation station({{4000}, {2.5f}, {34.7f}, {2250}, {2360}});
    const auto p = static_cast<float>(seawater::pressureFromDepth(4000, 30));
    const auto theta = static_cast<float>(seawater::potentialTemperature(p, 2.5f, 34.7f, 0));
    const seawater::CARBONATE expected = seawater::carbonateSystem(theta, 34.7f, 2250, 2360, missing);
    EXPECT_EQ(station.value(firstNumber), float(expected.pH));
    EXPECT_EQ(station.value(firstNumber + 1), float(expected.pCO2));
    EXPECT_EQ(station.value(firstNumber + 2), float(expected.CO2));
    EXPECT_EQ(station.value(firstNumber + 3), float(expected.HCO3));
    EXPECT_EQ(station.value(firstNumber + 4), float(expected.CO3));
    EXPECT_NE(expected.pH, seawater::carbonateSystem(2.5f, 34.7f, 2250, 2360, missing).pH);
}

TEST(CarbonateCalculators, AgreeWithTheReferenceAtTheSurface)
{
    const RCarbonateStation station({{0}, {25}, {35}, {2000}, {2300}});
    EXPECT_NEAR(station.value(firstNumber), 8.02978, 1e-5);
    EXPECT_NEAR(station.value(firstNumber + 1), 407.328, 0.005);
    EXPECT_NEAR(station.value(firstNumber + 2), 11.5648, 0.0002);
    EXPECT_NEAR(station.value(firstNumber + 3), 1768.648, 0.002);
    EXPECT_NEAR(station.value(firstNumber + 4), 219.787, 0.002);
}

TEST(CarbonateCalculators, RefuseTotalCarbonOf6000)
{
    const RCarbonateStation station({{0, 0}, {25, 25}, {35, 35}, {6000, 2000}, {2300, 2300}});
    for (int number = firstNumber; number < firstNumber + 5; ++number) {
        EXPECT_EQ(station.value(number, 0), missing);
        EXPECT_EQ(station.count(number), 1);
    }
}

TEST(CarbonateCalculators, CountTotalCarbonOf4500ThoughItHasNoSolution)
{
    const RCarbonateStation station({{0, 0}, {25, 25}, {35, 35}, {4500, 2000}, {2300, 2300}});
    for (int number = firstNumber; number < firstNumber + 5; ++number) {
        EXPECT_EQ(station.value(number, 0), missing);
        EXPECT_NE(station.value(number, 1), missing);
        EXPECT_EQ(station.count(number), 2);
    }
}

TEST(CarbonateCalculators, LeaveOutWhatIsOutsideOfTheWindows)
{
    const std::vector<float> good = {100, 10, 35, 2000, 2300};
    const float bad[] = {-1, 101, 101, -1, 6000};
    for (std::size_t v = 0; v < good.size(); ++v) {
        std::vector<std::vector<float>> columns;
        for (const float value : good) columns.push_back({value, value, value});
        columns[v][0] = bad[v];
        columns[v][1] = missing;
        const RCarbonateStation station(columns);
        EXPECT_EQ(station.value(firstNumber, 0), missing);
        EXPECT_EQ(station.value(firstNumber, 1), missing);
        EXPECT_NE(station.value(firstNumber, 2), missing);
        EXPECT_EQ(station.count(firstNumber), 1);
    }
}

TEST(CarbonateCalculators, FlagCountedCellsAsUnknown)
{
    RCarbonateStation station({{0, 0}, {25, 25}, {35, 35}, {2000, 4500}, {2300, 2300}});
    for (int number = 1; number <= 5; ++number) station.setFlags(number, {8, 0});
    station.station.header.valueCount = 10;
    station.compute();
    for (int number = firstNumber; number < firstNumber + 5; ++number)
        EXPECT_EQ(station.flags(number), (std::vector<int>{1, 1}));
}

TEST(CarbonateCalculators, AreAbsentWhereAnyOfTheFiveHasNoData)
{
    for (std::size_t v = 1; v < 5; ++v) {
        std::vector<std::vector<float>> columns = {{0}, {25}, {35}, {2000}, {2300}};
        columns[v].clear();
        const RCarbonateStation station(columns);
        for (int number = firstNumber; number < firstNumber + 5; ++number)
            EXPECT_TRUE(station.isAbsent(number)) << v;
    }
}

} // namespace
