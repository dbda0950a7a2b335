#include <gtest/gtest.h>

#include "variables/seawater/neutral.h"

namespace {

using seawater::oceanPathsConnected;

enum Ocean : int { northPacific = 1, southPacific, northIndian, southIndian, northAtlantic, southAtlantic };

TEST(OceanPaths, TheSameOceanIsConnectedEverywhere)
{
    EXPECT_TRUE(oceanPathsConnected(10, -65, southAtlantic, 200, -65, southAtlantic, 0));
    EXPECT_TRUE(oceanPathsConnected(135, 40, northPacific, 145, 40, northPacific, 3000)); // Japan between
}

TEST(OceanPaths, BothHalvesOfABasinAreConnected)
{
    EXPECT_TRUE(oceanPathsConnected(200, 2, northPacific, 200, -2, southPacific, 3000));
    EXPECT_TRUE(oceanPathsConnected(80, 2, northIndian, 80, -2, southIndian, 3000));
    EXPECT_TRUE(oceanPathsConnected(330, 2, northAtlantic, 330, -2, southAtlantic, 3000));
}

TEST(OceanPaths, DifferentBasinsAreConnectedSouthOf20SouthOnly)
{
    EXPECT_TRUE(oceanPathsConnected(20, -20, southAtlantic, 24, -20, southIndian, 0));
    EXPECT_TRUE(oceanPathsConnected(20, -24, southAtlantic, 24, -16, southIndian, 0)); // the mean counts
    EXPECT_FALSE(oceanPathsConnected(20, -20, southAtlantic, 24, -19, southIndian, 0));
    EXPECT_FALSE(oceanPathsConnected(270, 12, northPacific, 274, 12, northAtlantic, 0));
}

TEST(OceanPaths, SouthAmericaAndTheAntarcticPeninsulaPartPacificAndAtlantic)
{
    const auto connected = [](double latitude) {
        return oceanPathsConnected(288, latitude, southPacific, 292, latitude, southAtlantic, 0);
    };
    EXPECT_FALSE(connected(-20));
    EXPECT_FALSE(connected(-48));
    EXPECT_TRUE(connected(-48.01));
    EXPECT_TRUE(connected(-60));
    EXPECT_FALSE(connected(-60.01));
    EXPECT_FALSE(connected(-19));
}

TEST(OceanPaths, TheIndonesianPassageIsOpenDownTo1200Decibars)
{
    const auto connected = [](double lon1, double lon2, double pressure) {
        return oceanPathsConnected(lon1, -8, southIndian, lon2, -8, southPacific, pressure);
    };
    EXPECT_TRUE(connected(124, 132, 1200));
    EXPECT_TRUE(connected(132, 124, 0));
    EXPECT_FALSE(connected(124, 132, 1200.1));
    EXPECT_FALSE(connected(123.9, 132, 0));
    EXPECT_FALSE(connected(124, 132.1, 0));
    EXPECT_FALSE(oceanPathsConnected(126, 8, northIndian, 130, 8, northPacific, 0));
}

TEST(OceanPaths, TheSeaOfJapanIsConnectedWithItselfOnly)
{
    // 135 E, 40 N lies behind both lines, 141 E, 34 N in front of them.
    EXPECT_TRUE(oceanPathsConnected(135, 40, northPacific, 134, 41, southPacific, 0));
    EXPECT_FALSE(oceanPathsConnected(135, 40, northPacific, 141, 34, southPacific, 0));
    EXPECT_FALSE(oceanPathsConnected(141, 34, northPacific, 135, 40, southPacific, 0));
    EXPECT_TRUE(oceanPathsConnected(141, 34, northPacific, 142, 33, southPacific, 0));
}

} // namespace
