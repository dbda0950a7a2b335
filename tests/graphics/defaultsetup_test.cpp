#include <gtest/gtest.h>

#include "common/text.h"
#include "graphics/plotfixture.h"

namespace {

using namespace graphics;
using testing_support::RPlotFixture;

struct DEFAULTS {
    explicit DEFAULTS(const std::vector<std::string>& labels, int kind = 1)
    {
        collection.kind = kind;
        collection.variableCount = collection.totalVariableCount = static_cast<int>(labels.size());
        for (std::size_t v = 1; v <= labels.size(); ++v) {
            collection::setLabel(collection.variables.at(v), labels[v - 1]);
        }
        setDefaultSetup(setup, collection, installation);
    }
    collection::RCollection collection;
    common::INSTALLATION installation;
    GRAPHICSSETUP setup;
};

TEST(DefaultSetup, BeginsInStationModeWithSixWindowsAndTheWholeGlobe)
{
    const DEFAULTS d({"Depth [m]", "Temperature [C]", "Salinity [psu]", "Oxygen [ml/l]"});
    EXPECT_EQ(d.setup.mode, modeStation);
    EXPECT_EQ(d.setup.windowCount[modeStation], 6);
    EXPECT_EQ(d.setup.windowCount[modeScatter], 6);
    EXPECT_EQ(d.setup.windowCount[modeSection], 6);
    EXPECT_EQ(d.setup.windowCount[modeSurface], 4);
    const MAPGEOMETRY& map = d.setup.map.geometry;
    EXPECT_DOUBLE_EQ(map.lonMin, 0);
    EXPECT_DOUBLE_EQ(map.lonMax, 360);
    EXPECT_DOUBLE_EQ(map.latMin, -90);
    EXPECT_DOUBLE_EQ(map.latMax, 90);
    EXPECT_EQ(map.id, projectionDefault);
}

TEST(DefaultSetup, ANetcdfCollectionBeginsWithTwoWindows)
{
    const DEFAULTS d({"Depth [m]", "Temperature [C]"}, 2);
    EXPECT_EQ(d.setup.windowCount[modeStation], 2);
}

TEST(DefaultSetup, StationWindowsAreProfilesWithDepthDownwardThenTemperatureAgainstSalinity)
{
    DEFAULTS d({"Depth [m]", "Temperature [C]", "Salinity [psu]", "Oxygen [ml/l]"});
    for (int n = 1; n <= 3; ++n) {
        EXPECT_EQ(d.setup.window(n).xVar, n + 1);
        EXPECT_EQ(d.setup.window(n).yVar, -1);
        EXPECT_EQ(d.setup.window(n).exists, 1);
    }
    EXPECT_EQ(d.setup.window(4).xVar, 3);
    EXPECT_EQ(d.setup.window(4).yVar, 2);
    EXPECT_FLOAT_EQ(d.setup.window(1).symbolSize, 2.3f);
}

TEST(DefaultSetup, SurplusWindowsDontExist)
{
    DEFAULTS d({"Depth [m]", "Temperature [C]", "Salinity [psu]", "Oxygen [ml/l]"});
    EXPECT_EQ(d.setup.window(5).exists, 0);
    EXPECT_EQ(d.setup.window(6).exists, 0);
    DEFAULTS one({"Depth [m]"});
    for (int n = 1; n <= 6; ++n) EXPECT_EQ(one.setup.window(n).exists, 0);
}

TEST(DefaultSetup, ScatterBeginsWithTemperatureAgainstSalinity)
{
    DEFAULTS d({"Pressure [dbar]", "Oxygen [ml/l]", "Tpot-0 [C]", "Sal"});
    switchMode(d.setup, modeScatter);
    EXPECT_EQ(d.setup.window(1).xVar, 4);
    EXPECT_EQ(d.setup.window(1).yVar, 3);
    EXPECT_EQ(d.setup.window(1).zVar, 0);
    EXPECT_EQ(d.setup.window(2).xVar, 2);
    EXPECT_EQ(d.setup.window(2).yVar, -1);
}

TEST(DefaultSetup, WithoutTemperatureThereIsNoDiagram)
{
    DEFAULTS d({"Depth [m]", "Iron [nM]", "Zinc [nM]"});
    switchMode(d.setup, modeScatter);
    EXPECT_EQ(d.setup.window(1).xVar, 2);
    EXPECT_EQ(d.setup.window(1).yVar, -1);
    EXPECT_EQ(d.setup.window(3).exists, 0);
}

TEST(DefaultSetup, ATimeSeriesRunsToTheRight)
{
    DEFAULTS d({"Time [yr]", "Sea level [mm]"});
    EXPECT_EQ(d.setup.window(1).xVar, 1);
    EXPECT_EQ(d.setup.window(1).yVar, 2);
}

TEST(DefaultSetup, TheUsersPostScriptSettingsStay)
{
    DEFAULTS d({"Depth [m]", "Temperature [C]"});
    d.setup.postScript.landscape = false;
    d.setup.map.dotSize = 3;
    setDefaultSetup(d.setup, d.collection, d.installation);
    EXPECT_FALSE(d.setup.postScript.landscape);
    EXPECT_FLOAT_EQ(d.setup.map.dotSize, 0.7f);
}

TEST(DefaultSetup, FiftyVariablesFillTheWindowsThatThereAre)
{
    std::vector<std::string> labels = {"Depth [m]"};
    for (int v = 2; v <= 50; ++v) labels.push_back("Tracer " + std::to_string(v));
    DEFAULTS d(labels);
    EXPECT_EQ(d.setup.windows[modeStation][19].xVar, 21);
    EXPECT_EQ(d.setup.count(), 6);
}

} // namespace
