#include <gtest/gtest.h>

#include "variables/seawater/adiabat.h"
#include "variables/seawater/pressure.h"

namespace {

using namespace seawater;

TEST(PressureFromDepth, AgreesWithTheCheckValue)
{
    EXPECT_NEAR(pressureFromDepth(10000, 30), 10309.45, 0.01);
    EXPECT_NEAR(pressureFromDepth(7321.45f, 30), 7500.00, 0.01);
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

TEST(DepthFromPressure, AgreesWithTheCheckValue)
{
    EXPECT_NEAR(depthFromPressure(10000, 30), 9712.653, 0.001);
    EXPECT_NEAR(depthFromPressure(500, 0), 496.65, 0.01);
    EXPECT_NEAR(depthFromPressure(5000, 60), 4895.60, 0.01);
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

TEST(AdiabaticLapseRate, AgreesWithTheCheckValue)
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

TEST(PotentialTemperature, AgreesWithTheCheckValue)
{
    EXPECT_NEAR(potentialTemperature(10000, 40, 40, 0), 36.89073, 1e-4);
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
