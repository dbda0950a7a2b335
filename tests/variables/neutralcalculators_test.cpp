#include <gtest/gtest.h>

#include "collection/rcollection.h"
#include "sampleatlas.h"
#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/seawater/pressure.h"

namespace {

using namespace variables;
using common::MISSING_VALUE;
using testing_support::castOf;
using testing_support::Quantity;

// A station of three stored variables, depth, temperature and salinity, and one derived.
class NeutralCalculator : public testing::Test {
protected:
    NeutralCalculator()
    {
        collection.variableCount = 3;
        collection.totalVariableCount = 4;
        collection::VARINFO& variable = collection.variables[4];
        variable.id = idNeutralDensity;
        variable.nSources = 3;
        for (int n = 0; n < 3; ++n) variable.sources[n] = n + 1;
        collection.neededMask[4] = 1;
        with.atlas = std::make_shared<seawater::GAMMAATLAS>(atlas);
        station.clear();
        station.collection = &collection;
        station.levelCount[1] = station.levelCount[2] = station.levelCount[3] = levels;
        station.header.longitude = 100;
        station.header.latitude = 20;
        station.header.valueCount = 3 * levels;
        for (int v = 1; v <= 3; ++v) station.offset[static_cast<std::size_t>(v)] = (v - 1) * levels;
        for (int k = 0; k < levels; ++k) {
            const auto level = static_cast<std::size_t>(10 + 3 * k);
            set(1, k, atlas.pressures[level], 1);
            set(2, k, castOf(atlas, 0, Quantity::temperature)[level], 0);
            set(3, k, castOf(atlas, 0, Quantity::salinity)[level], 4);
        }
    }
    void set(int variable, int level, float value, std::uint8_t flag)
    {
        const auto cell = static_cast<std::size_t>((variable - 1) * levels + level);
        station.values[cell] = value;
        station.flags[cell] = flag;
    }
    void derive() { RDerivation(with).computeDerived(station); }
    [[nodiscard]] bool isAbsent() const { return station.offset[4] == -1 && station.levelCount[4] == 0; }
    [[nodiscard]] float label(int level) const
    {
        return collection::valueAt(station, 4, level, MISSING_VALUE);
    }
    static constexpr int levels = 4;
    seawater::GAMMAATLAS atlas = testing_support::sampleAtlas();
    collection::RCollection collection;
    SURROUNDINGS with;
    collection::STATIONDATA station;
};

TEST_F(NeutralCalculator, LabelsLevelByLevelAndTakesTheLargestFlag)
{
    derive();
    ASSERT_FALSE(isAbsent());
    EXPECT_EQ(station.levelCount[4], levels);
    EXPECT_EQ(station.header.valueCount, 4 * levels);
    for (int k = 0; k < levels; ++k) {
        // Depths are a little less than pressures: the same water a little higher.
        EXPECT_NEAR(label(k), castOf(atlas, 0, Quantity::gamma)[static_cast<std::size_t>(10 + 3 * k)], 0.005);
        EXPECT_EQ(collection::flagAt(station, 4, k), 4);
    }
}

TEST_F(NeutralCalculator, TheDepthBecomesThePressureOfItsLatitude)
{
    set(1, 3, 5000, 0); // far from the pressure of the same number
    derive();
    const auto pressure = static_cast<float>(seawater::pressureFromDepth(5000, 20));
    const float* const cells = station.values.get();
    double gamma = 0, low = 0, high = 0;
    ASSERT_EQ(seawater::neutralDensity(atlas, {cells + 11, 1}, {cells + 7, 1}, {&pressure, 1}, 100, 20,
                                       {&gamma, 1}, {&low, 1}, {&high, 1}, -1e10),
              0);
    EXPECT_EQ(label(3), static_cast<float>(gamma));
}

TEST_F(NeutralCalculator, AMissingDepthStaysMissing)
{
    set(1, 2, MISSING_VALUE, 8);
    derive();
    ASSERT_FALSE(isAbsent());
    EXPECT_EQ(label(2), MISSING_VALUE);
    EXPECT_NE(label(1), MISSING_VALUE);
    EXPECT_EQ(collection::flagAt(station, 4, 2), 8);
}

TEST_F(NeutralCalculator, ASampleWithSalinity43StaysMissingWhileOthersAreLabelled)
{
    set(3, 1, 43, 0);
    derive();
    EXPECT_EQ(label(1), MISSING_VALUE);
    for (const int k : {0, 2, 3}) EXPECT_NE(label(k), MISSING_VALUE);
}

TEST_F(NeutralCalculator, Latitude70IsAbsent)
{
    station.header.latitude = 70;
    derive();
    EXPECT_TRUE(isAbsent());
    EXPECT_EQ(station.header.valueCount, 3 * levels);
}

TEST_F(NeutralCalculator, LongitudeMinus30IsTreatedAs330)
{
    station.header.longitude = 330;
    derive();
    const float east = label(1);
    station.header.longitude = -30;
    station.header.valueCount = 3 * levels;
    derive();
    EXPECT_EQ(label(1), east);
    EXPECT_NE(east, MISSING_VALUE);
}

TEST_F(NeutralCalculator, OnLandIsAbsent)
{
    atlas.depthIndex.fill(0);
    with.atlas = std::make_shared<seawater::GAMMAATLAS>(atlas);
    derive();
    EXPECT_TRUE(isAbsent());
}

TEST_F(NeutralCalculator, WithoutAValidSampleItIsAbsent)
{
    for (int k = 0; k < levels; ++k) set(2, k, MISSING_VALUE, 8);
    derive();
    EXPECT_TRUE(isAbsent());
}

TEST_F(NeutralCalculator, WithoutTheAtlasItIsAbsent)
{
    with.atlas = nullptr;
    derive();
    EXPECT_TRUE(isAbsent());
}

TEST_F(NeutralCalculator, WithoutSalinityItIsAbsent)
{
    station.offset[3] = -1;
    derive();
    EXPECT_TRUE(isAbsent());
}

TEST_F(NeutralCalculator, AnUnneededOneIsNotComputed)
{
    collection.neededMask[4] = 0;
    RDerivation derivation(with);
    derivation.computeDerived(station);
    EXPECT_EQ(derivation.calculations(), 0);
    EXPECT_TRUE(isAbsent());
}

} // namespace
