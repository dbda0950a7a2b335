#include "variables/seawater/neutralstate.h"

#include <gtest/gtest.h>

#include "variables/seawater/adiabat.h"

namespace {

using namespace seawater;

TEST(NeutralState, AgreesWithThePublishedCheckValues)
{
    EXPECT_NEAR(temperatureAt({40, 40, 10000}, 0), 36.89073, 5e-6);
    EXPECT_NEAR(sigmaOf({40, 40, 10000}), 59.82037, 5e-6);
    EXPECT_NEAR(sigmaOf({35, 0, 0}), 28.106331, 1e-6);
}

TEST(NeutralState, AMoveToTheOwnPressureChangesNothing)
{
    const WATER water{34.7, 2.5, 3000};
    EXPECT_EQ(temperatureAt(water, 3000), 2.5);
    EXPECT_EQ(sigmaAt(water, 3000), sigmaOf(water));
}

// The slope of a short move is the lapse rate.
TEST(NeutralState, WarmsByTheLapseRate)
{
    for (const float pressure : {0.0f, 500.0f, 4000.0f, 9000.0f}) {
        for (const float temperature : {-1.0f, 10.0f, 30.0f}) {
            const double change =
                temperatureAt({36, temperature, pressure}, pressure + 1.0) - static_cast<double>(temperature);
            EXPECT_NEAR(change, adiabaticLapseRatePerDb(36, temperature, pressure + 0.5f), 1e-9);
        }
    }
}

TEST(NeutralState, ThereAndBackIsWhereItWas)
{
    for (double pressure = 0; pressure <= 6000; pressure += 500) {
        const WATER water{34.9, 4.0, pressure};
        EXPECT_NEAR(temperatureAt({34.9, temperatureAt(water, 0), 0}, pressure), 4.0, 2e-5);
    }
}

} // namespace
