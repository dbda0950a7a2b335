// Neutral density in a little ocean of our own, where the labels follow from how it was made.

#include <algorithm>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "sampleatlas.h"
#include "variables/seawater/neutralcasts.h"

namespace {

using namespace seawater;
using testing_support::castOf;
using testing_support::cellAt;
using testing_support::Quantity;

constexpr double missing = -1e10;

class NeutralSynthetic : public testing::Test {
protected:
    struct LABEL {
        int status = 0;
        double gamma = missing, low = missing, high = missing;
    };
    [[nodiscard]] LABEL labelOf(double longitude, double latitude, const WATER& water) const
    {
        LABEL label;
        const auto s = static_cast<float>(water.salinity), t = static_cast<float>(water.temperature),
                   p = static_cast<float>(water.pressure);
        label.status = neutralDensity(atlas, {&s, 1}, {&t, 1}, {&p, 1}, longitude, latitude,
                                      {&label.gamma, 1}, {&label.low, 1}, {&label.high, 1}, missing);
        return label;
    }
    [[nodiscard]] WATER levelOf(std::size_t k, std::size_t cell = 0)
    {
        return {castOf(atlas, cell, Quantity::salinity)[k], castOf(atlas, cell, Quantity::temperature)[k],
                atlas.pressures[k]};
    }
    [[nodiscard]] float gammaOf(std::size_t k) { return castOf(atlas, 0, Quantity::gamma)[k]; }
    void addToLabels(std::size_t cell, float amount)
    {
        for (float& gamma : castOf(atlas, cell, Quantity::gamma)) gamma += amount;
    }
    GAMMAATLAS atlas = testing_support::sampleAtlas();
};

TEST_F(NeutralSynthetic, WaterOfTheAtlasHasItsLabel)
{
    for (std::size_t k = 0; k < atlasLevels; ++k) {
        const LABEL label = labelOf(101, 21, levelOf(k));
        EXPECT_EQ(label.status, 0);
        EXPECT_NEAR(label.gamma, gammaOf(k), 1e-6) << k;
        EXPECT_NEAR(label.low, 0.0005, 1e-9); // the least that an error can be
        EXPECT_NEAR(label.high, 0.0005, 1e-9);
    }
}

TEST_F(NeutralSynthetic, BetweenTwoLevelsTheLabelFollowsTheQuadratic)
{
    for (const float a : {0.0f, 0.02f, -0.01f}) {
        for (std::size_t cell = 0; cell < atlasCells; ++cell)
            std::ranges::fill(castOf(atlas, cell, Quantity::a), a);
        const NEIGHBOURHOOD around = castsAround(atlas, 101, 21);
        const WATER at = around.casts[0].waterAt(1075, 18); // three quarters of 1000 to 1100
        const double between = 0.25 * gammaOf(18) + 0.75 * gammaOf(19);
        EXPECT_NEAR(labelOf(101, 21, at).gamma, between - 0.25 * 0.75 * a, 1e-5) << a;
    }
}

TEST_F(NeutralSynthetic, FourCastsCountByTheirNearness)
{
    addToLabels(cellAt(104, 20), 0.1f); // the eastern of the south
    addToLabels(cellAt(100, 24), 0.2f); // the western of the north
    const LABEL label = labelOf(101, 22, levelOf(20));
    EXPECT_NEAR(label.gamma, gammaOf(20) + 0.25 * 0.5 * 0.1 + 0.75 * 0.5 * 0.2, 2e-6);
    // What the casts are apart from their mean, by the same weights.
    const double apart = 0.5 * 0.0875 + 0.125 * (0.1 - 0.0875) + 0.375 * (0.2 - 0.0875);
    EXPECT_NEAR(label.low, apart, 2e-6);
    EXPECT_NEAR(label.high, apart, 2e-6);
}

TEST_F(NeutralSynthetic, BehindTheLastMeridianComesTheFirst)
{
    addToLabels(cellAt(0, 20), 0.1f);
    EXPECT_NEAR(labelOf(357, 20, levelOf(20)).gamma, gammaOf(20) + 0.025, 1e-6);
    EXPECT_NEAR(labelOf(359, 20, levelOf(20)).gamma, gammaOf(20) + 0.075, 1e-6);
}

// The first meridian is 359 degrees away from 359 E: the station takes the ocean of the western cast.
TEST_F(NeutralSynthetic, BehindTheLastMeridianTheOceanIsThatOfTheWest)
{
    addToLabels(cellAt(0, 20), 0.1f);
    addToLabels(cellAt(0, 24), 0.1f);
    for (const int latitude : {20, 24}) atlas.ocean[cellAt(0, latitude)] = 5;
    EXPECT_NEAR(labelOf(359, 20, levelOf(20)).gamma, gammaOf(20), 1e-6);
}

TEST_F(NeutralSynthetic, MinusThirtyIsThreeHundredAndThirty)
{
    addToLabels(cellAt(332, 20), 0.1f);
    const LABEL west = labelOf(-30, 20, levelOf(20)), east = labelOf(330, 20, levelOf(20));
    EXPECT_EQ(west.status, 0);
    EXPECT_EQ(west.gamma, east.gamma);
    EXPECT_EQ(west.low, east.low);
    EXPECT_NEAR(west.gamma, gammaOf(20) + 0.05, 1e-6);
}

TEST_F(NeutralSynthetic, ThreeHundredAndSixtyIsZero)
{
    addToLabels(cellAt(0, 20), 0.1f);
    EXPECT_EQ(labelOf(360, 20, levelOf(20)).gamma, labelOf(0, 20, levelOf(20)).gamma);
    EXPECT_NEAR(labelOf(360, 20, levelOf(20)).gamma, gammaOf(20) + 0.1, 1e-5);
}

TEST_F(NeutralSynthetic, PositionsOutOfRangeFail)
{
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    const std::pair<double, double> places[] = {
        {100, 70},  {100, 64.01},  {100, -80.01},  {360.01, 20},
        {-361, 20}, {nothing, 20}, {100, nothing}, {std::numeric_limits<double>::infinity(), 20}};
    for (const auto& [longitude, latitude] : places) {
        const LABEL label = labelOf(longitude, latitude, levelOf(20));
        EXPECT_EQ(label.status, 1) << longitude << ' ' << latitude;
        EXPECT_EQ(label.gamma, missing);
        EXPECT_EQ(label.low, missing);
        EXPECT_EQ(label.high, missing);
    }
    for (const double latitude : {-80.0, 64.0}) EXPECT_EQ(labelOf(100, latitude, levelOf(20)).status, 0);
}

TEST_F(NeutralSynthetic, OnLandThereIsNoLabel)
{
    for (const int longitude : {100, 104})
        for (const int latitude : {20, 24}) atlas.depthIndex[cellAt(longitude, latitude)] = 0;
    EXPECT_EQ(labelOf(101, 21, levelOf(20)).status, 1);
    EXPECT_EQ(labelOf(105, 21, levelOf(20)).status, 0);
}

TEST_F(NeutralSynthetic, TheOnlyCastInReachCountsEvenWithoutWeight)
{
    for (const auto& [longitude, latitude] : {std::pair{100, 20}, {104, 20}, {100, 24}})
        atlas.depthIndex[cellAt(longitude, latitude)] = 0;
    addToLabels(cellAt(104, 24), 0.1f);
    EXPECT_NEAR(labelOf(100, 20, levelOf(20)).gamma, gammaOf(20) + 0.1, 1e-5);
}

TEST_F(NeutralSynthetic, ACastOfAnotherOceanHasNoWeight)
{
    for (const int latitude : {20, 24}) {
        addToLabels(cellAt(104, latitude), 0.1f);
        atlas.ocean[cellAt(104, latitude)] = 5;
    }
    EXPECT_NEAR(labelOf(101, 21, levelOf(20)).gamma, gammaOf(20), 1e-6);
    EXPECT_NEAR(labelOf(103, 21, levelOf(20)).gamma, gammaOf(20) + 0.1, 1e-6);
}

TEST_F(NeutralSynthetic, ASalinityOf43StaysMissingWhileOthersAreLabelled)
{
    std::vector<float> salinity, temperature, pressure;
    for (const std::size_t k : {5u, 12u, 20u}) {
        const WATER water = levelOf(k);
        salinity.push_back(static_cast<float>(water.salinity));
        temperature.push_back(static_cast<float>(water.temperature));
        pressure.push_back(static_cast<float>(water.pressure));
    }
    salinity[1] = 43;
    std::vector<double> gamma(3), low(3), high(3);
    EXPECT_EQ(neutralDensity(atlas, salinity, temperature, pressure, 100, 20, gamma, low, high, missing), 0);
    EXPECT_NEAR(gamma[0], gammaOf(5), 1e-5);
    EXPECT_EQ(gamma[1], missing);
    EXPECT_EQ(low[1], missing);
    EXPECT_EQ(high[1], missing);
    EXPECT_NEAR(gamma[2], gammaOf(20), 1e-5);
}

TEST_F(NeutralSynthetic, SamplesOutOfRangeAreNotLabelled)
{
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    const WATER good = levelOf(20);
    const WATER bad[] = {{-0.1, good.temperature, good.pressure},    {42.1, good.temperature, good.pressure},
                         {good.salinity, -2.6, good.pressure},       {good.salinity, 40.1, good.pressure},
                         {good.salinity, good.temperature, -0.1},    {good.salinity, good.temperature, 10001},
                         {nothing, good.temperature, good.pressure}, {good.salinity, nothing, good.pressure},
                         {good.salinity, good.temperature, nothing}};
    for (const WATER& water : bad) {
        const LABEL label = labelOf(100, 20, water);
        EXPECT_EQ(label.status, 1);
        EXPECT_EQ(label.gamma, missing);
    }
}

TEST_F(NeutralSynthetic, NoSampleIsNoLabel)
{
    EXPECT_EQ(neutralDensity(atlas, {}, {}, {}, 100, 20, {}, {}, {}, missing), 1);
}

TEST_F(NeutralSynthetic, AnEmptyAtlasFails)
{
    atlas = {};
    EXPECT_EQ(labelOf(100, 20, {35, 10, 100}).status, 1);
}

TEST_F(NeutralSynthetic, DenserThanTheDeepestLevelTheCastIsContinuedDownward)
{
    WATER water = levelOf(atlasLevels - 1);
    double last = gammaOf(atlasLevels - 1);
    for (int n = 1; n <= 4; ++n) {
        water.salinity += 0.01;
        const LABEL label = labelOf(100, 20, water);
        EXPECT_EQ(label.status, 0);
        EXPECT_GT(label.gamma, last);
        last = label.gamma;
    }
    // More than 0.3 above the deepest label the cast has no weight any more.
    water.salinity += 5;
    EXPECT_EQ(labelOf(100, 20, water).status, 1);
}

TEST_F(NeutralSynthetic, LighterThanTheShallowestLevelTheCastIsContinuedUpward)
{
    WATER water = levelOf(0);
    double last = gammaOf(0);
    for (int n = 1; n <= 4; ++n) {
        water.temperature += 2;
        const LABEL label = labelOf(100, 20, water);
        EXPECT_EQ(label.status, 0);
        EXPECT_LT(label.gamma, last);
        last = label.gamma;
    }
}

// The slope of the labels over density goes on beyond the ends.
TEST_F(NeutralSynthetic, BeyondTheShallowestLevelTheLabelFollowsDensity)
{
    const NEIGHBOURHOOD around = castsAround(atlas, 100, 20);
    const ATLASCAST& cast = around.casts[0];
    const WATER water{cast.water[0].salinity, cast.water[0].temperature + 1, 0};
    const double lighter = cast.sigma[0] - sigmaOf(water);
    const double slope = (cast.gamma[1] - cast.gamma[0]) / cast.step[0];
    EXPECT_NEAR(labelOf(100, 20, water).gamma, cast.gamma[0] - slope * lighter,
                1e-3 * slope * lighter + 1e-4);
}

TEST_F(NeutralSynthetic, ExtremesOfTheRangeEndInALabelOrNone)
{
    for (const double salinity : {0.0, 42.0}) {
        for (const double temperature : {-2.5, 40.0}) {
            for (const double pressure : {0.0, 10000.0}) {
                const LABEL label = labelOf(100, 20, {salinity, temperature, pressure});
                EXPECT_TRUE(label.status == 1 || std::isfinite(label.gamma + label.low + label.high));
            }
        }
    }
}

TEST_F(NeutralSynthetic, ASurfaceThatMeetsTheCastTwiceGivesNoLabel)
{
    for (std::size_t cell = 0; cell < atlasCells; ++cell) {
        for (std::size_t k = 15; k < atlasLevels; ++k) { // lighter again below
            castOf(atlas, cell, Quantity::temperature)[k] = 10;
            castOf(atlas, cell, Quantity::salinity)[k] = 34;
        }
    }
    EXPECT_EQ(labelOf(100, 20, levelOf(12)).status, 1);
}

TEST_F(NeutralSynthetic, LevelsWithoutStratificationGiveNoNumberThatIsNone)
{
    for (std::size_t cell = 0; cell < atlasCells; ++cell) {
        for (const Quantity q : {Quantity::salinity, Quantity::temperature, Quantity::gamma})
            std::ranges::fill(castOf(atlas, cell, q), castOf(atlas, cell, q)[3]);
    }
    for (const double t : {2.0, 10.0, 14.0, 20.0}) {
        const LABEL label = labelOf(100, 20, {34.9, t, 500});
        EXPECT_TRUE(label.status == 1 || std::isfinite(label.gamma + label.low + label.high)) << t;
    }
}

TEST_F(NeutralSynthetic, LabelsOfAStableCastGrowWithDepth)
{
    std::mt19937 random(44);
    std::uniform_real_distribution<double> anyLongitude(0, 360), anyLatitude(-80, 64), anyShare(0, 1);
    for (int station = 0; station < 40; ++station) {
        const NEIGHBOURHOOD around = castsAround(atlas, 100, 20);
        double last = 0;
        const double longitude = anyLongitude(random), latitude = anyLatitude(random);
        const double warmer = 2 * anyShare(random);
        for (std::size_t k = 0; k + 1 < atlasLevels; ++k) {
            const double p =
                atlas.pressures[k] + anyShare(random) * (atlas.pressures[k + 1] - atlas.pressures[k]);
            WATER water = around.casts[0].waterAt(p, k);
            water.temperature += warmer * std::exp(-p / 800);
            const LABEL label = labelOf(longitude, latitude, water);
            ASSERT_EQ(label.status, 0);
            EXPECT_GT(label.gamma, last) << p;
            last = label.gamma;
        }
    }
}

} // namespace
