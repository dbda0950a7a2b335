#include <algorithm>

#include "memorycast.h"
#include "variables/atmosphere.h"
#include "variables/registry.h"
#include "variables/seawater/adiabat.h"
#include "variables/seawater/pressure.h"

namespace variables {
namespace {

using testing_support::missing;
using testing_support::RMemoryCast;
using FLOATS = std::vector<float>;

ATMHISTORY historyOf(const FLOATS& years, const FLOATS& northern, const FLOATS& southern)
{
    ATMHISTORY history;
    history.n = static_cast<int>(years.size());
    std::copy(years.begin(), years.end(), history.years.begin());
    std::copy(northern.begin(), northern.end(), history.northern.begin());
    std::copy(southern.begin(), southern.end(), history.southern.begin());
    return history;
}

ATMHISTORY sampleHistory()
{
    return historyOf({1940, 1950, 1960, 1970, 1980, 1985, 1990, 1995, 2000, 2005},
                     {0, 0.7f, 11.1f, 62.5f, 172.2f, 215.3f, 265, 268.4f, 262.1f, 252.6f},
                     {0, 0.4f, 9.2f, 54.1f, 158.3f, 201.8f, 250.9f, 265, 260, 250.4f});
}

collection::STATIONHDR headerAt(int year, int month, int day, float latitude)
{
    collection::STATIONHDR header{};
    header.year = static_cast<std::int16_t>(year);
    header.month = static_cast<std::int16_t>(month);
    header.day = static_cast<std::int16_t>(day);
    header.latitude = latitude;
    return header;
}

TEST(Atmosphere, GivesTheCheckValues)
{
    struct ROW {
        int year, month, day;
        float latitude;
        std::optional<double> expected;
        double tolerance;
    };
    const ROW rows[] = {
        {1930, 6, 15, 0.0f, std::nullopt, 0},      // before the history: absent
        {2006, 1, 1, 0.0f, std::nullopt, 0},       // after the history: absent
        {2005, 12, 31, 40.0f, 250.696991, 0.0251}, // after the last year but within it: extrapolated
        {1985, 1, 1, 0.0f, 208.5765308, 0.0209},   // equal weights
        {1985, 1, 1, 30.0f, 215.3266907, 0.0215},  // northern
        {1981, 6, 16, -49.9f, 171.0059052, 0.02},  {1967, 5, 21, -71.0f, 42.38500214, 0.02},
        {1997, 7, 2, 6.7f, 264.1757129, 0.0264},
    };
    for (const ROW& row : rows) {
        const auto value =
            atmosphereOver(headerAt(row.year, row.month, row.day, row.latitude), sampleHistory());
        ASSERT_EQ(value.has_value(), row.expected.has_value()) << row.year;
        if (value) {
            EXPECT_NEAR(*value, *row.expected, row.tolerance) << row.year;
        }
    }
}

TEST(Atmosphere, AtTheEquatorBothHemispheresWeighTheSame)
{
    const ATMHISTORY history = historyOf({1950, 2000}, {100, 100}, {60, 60});
    EXPECT_NEAR(atmosphereOver(headerAt(1980, 1, 1, 0), history).value(), 80, 1e-5);
    EXPECT_NEAR(atmosphereOver(headerAt(1980, 1, 1, 30), history).value(), 100, 1e-5);
    EXPECT_NEAR(atmosphereOver(headerAt(1980, 1, 1, -30), history).value(), 60, 1e-5);
    EXPECT_NEAR(atmosphereOver(headerAt(1980, 1, 1, 90), history).value(), 100, 1e-5);
    EXPECT_NEAR(atmosphereOver(headerAt(1980, 1, 1, -90), history).value(), 60, 1e-5);
}

TEST(Atmosphere, AHistoryOfLessThanTwoRowsGivesNothing)
{
    EXPECT_FALSE(atmosphereOver(headerAt(1980, 1, 1, 0), {}).has_value());
    EXPECT_FALSE(atmosphereOver(headerAt(1980, 1, 1, 0), historyOf({1980}, {100}, {100})).has_value());
}

class Tracers : public testing::Test {
protected:
    Tracers()
    {
        cast.with.histories.fill(sampleHistory());
        cast.station.header = headerAt(1985, 1, 1, 0);
        cast.store({{0, 4000}, {10, 10}, {35, 35}, {3, 3}});
    }
    RMemoryCast cast;
};

TEST_F(Tracers, SaturationAndPartialPressureAreTheSameComparison)
{
    const double atmosphere = atmosphereOver(cast.station.header, sampleHistory()).value();
    const int saturations[] = {7, 8, 24, 25, 26}, pressures[] = {27, 28, 29, 30, 31};
    for (int gas = 0; gas < seawater::gasCount; ++gas) {
        const double inEquilibrium =
            seawater::solubility(10, 35, atmosphere, static_cast<seawater::Gas>(gas));
        const auto saturation = cast.derived(saturations[gas], {1, 2, 3, 4});
        const auto pressure = cast.derived(pressures[gas], {1, 2, 3, 4});
        ASSERT_TRUE(saturation && pressure) << gas;
        EXPECT_NEAR(saturation->front(), 300 / inEquilibrium, 300 / inEquilibrium * 1e-5) << gas;
        EXPECT_NEAR(pressure->front(), saturation->front() / 100 * atmosphere, 1e-3 * pressure->front())
            << gas;
    }
}

TEST_F(Tracers, WaterInEquilibriumIsSaturated)
{
    const double atmosphere = atmosphereOver(cast.station.header, sampleHistory()).value();
    const auto c = static_cast<float>(seawater::solubility(10, 35, atmosphere, seawater::gasCfc11));
    cast.store({{0}, {10}, {35}, {c}});
    EXPECT_NEAR(cast.derived(idFirstSaturation, {1, 2, 3, 4}).value().front(), 100, 1e-3);
    EXPECT_NEAR(cast.derived(idFirstPartialPressure, {1, 2, 3, 4}).value().front(), atmosphere, 1e-2);
}

TEST_F(Tracers, PotentialTemperatureAtTheSurfaceCountsNeverThatInSitu)
{
    const double atmosphere = atmosphereOver(cast.station.header, sampleHistory()).value();
    const auto p = static_cast<float>(seawater::pressureFromDepth(4000, 0));
    const auto theta = static_cast<float>(seawater::potentialTemperature(p, 10, 35, 0));
    const double expected = 300 / seawater::solubility(theta, 35, atmosphere, seawater::gasCfc11);
    const auto values = cast.derived(idFirstSaturation, {1, 2, 3, 4});
    ASSERT_TRUE(values.has_value());
    EXPECT_NEAR((*values)[1], expected, expected * 1e-5);
    EXPECT_LT((*values)[1], (*values)[0] * 0.99f);
}

TEST_F(Tracers, ASampleOfBeforeTheHistoryIsAbsent)
{
    cast.station.header.year = 1930;
    EXPECT_FALSE(cast.derived(idFirstSaturation, {1, 2, 3, 4}).has_value());
    EXPECT_FALSE(cast.derived(idFirstPartialPressure, {1, 2, 3, 4}).has_value());
    cast.station.header.year = 2006;
    EXPECT_FALSE(cast.derived(idFirstSaturation, {1, 2, 3, 4}).has_value());
}

TEST_F(Tracers, WithoutGasInTheAtmosphereSaturationIsMissing)
{
    cast.with.histories.fill(historyOf({1940, 1990}, {0, 0}, {0, 0}));
    const int number = cast.add(idFirstSaturation, {1, 2, 3, 4});
    cast.compute();
    EXPECT_EQ(cast.present(number), (FLOATS{missing, missing}));
    EXPECT_EQ(cast.count(number), 0);
}

TEST_F(Tracers, ValuesOutsideTheirWindowsAreMissingAndDontCount)
{
    cast.store({{0, -1, 10, 20, 30, 40, 50},
                {10, 10, -6, 10, 10, 10, missing},
                {35, 35, 35, 101, 35, 35, 35},
                {3, 3, 3, 3, -0.2f, 101, 3}});
    const int number = cast.add(idFirstSaturation, {1, 2, 3, 4});
    cast.compute();
    const auto values = cast.present(number);
    ASSERT_TRUE(values.has_value());
    EXPECT_NE(values->front(), missing);
    EXPECT_EQ(std::count(values->begin(), values->end(), missing), 6);
    EXPECT_EQ(cast.count(number), 1);
}

TEST_F(Tracers, AreAbsentWithoutOneOfTheirSources)
{
    cast.store({{0, 10}, {10, 10}, {}, {3, 3}});
    EXPECT_FALSE(cast.derived(idFirstSaturation, {1, 2, 3, 4}).has_value());
    cast.store({{0, 10}, {10, 10}, {35, 35}, {missing, missing}}); // a block without a value
    EXPECT_FALSE(cast.derived(idFirstSaturation, {1, 2, 3, 4}).has_value());
}

TEST_F(Tracers, TheFlagIsTheLargestOfTheSources)
{
    cast.station.flags[static_cast<std::size_t>(cast.station.offset[4])] = 4;
    const int number = cast.add(idFirstSaturation, {1, 2, 3, 4});
    cast.compute();
    EXPECT_EQ(cast.flag(number, 0), 4);
    EXPECT_EQ(cast.flag(number, 1), 0);
}

} // namespace
} // namespace variables
