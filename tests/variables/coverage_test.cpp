#include "variables/coverage.h"

#include "memorycast.h"

namespace variables {
namespace {

using testing_support::missing;
using testing_support::RMemoryCast;
using FLOATS = std::vector<float>;

struct ROW {
    FLOATS depth, values;
    bool withSurfaceAndBottom;
    float bottomDepth;
    COVERAGECRITERIA criteria;
    bool expected;
};

bool isCovered(const ROW& row)
{
    RMemoryCast cast;
    cast.store({row.depth, row.values});
    cast.station.header.bottomDepth = row.bottomDepth;
    return hasGoodCoverage(cast.station, 1, 2, row.criteria, row.withSurfaceAndBottom);
}

TEST(GoodCoverage, GivesTheCheckValues)
{
    const ROW rows[] = {
        {{0.0f, 100.0f, 900.0f, 1000.0f},
         {1.0f, 1.0f, 1.0f, 1.0f},
         false,
         0.0f,
         {4, 60, 175.0f, 0.5f, 700.0f},
         false}, // a gap of 800 m
        {{0.0f, 100.0f, 250.0f, 450.0f, 700.0f, 1000.0f, 1400.0f, 1900.0f, 2400.0f, 3000.0f},
         {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f},
         true,
         5000.0f,
         {4, 60, 175.0f, 0.5f, 700.0f},
         false}, // cast to 3000 m in 5000 m of water
        {{0.0f, 100.0f, 250.0f, 450.0f, 700.0f, 1000.0f, 1400.0f, 1900.0f, 2400.0f, 3000.0f},
         {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f},
         false,
         5000.0f,
         {4, 60, 175.0f, 0.5f, 700.0f},
         true}, // the same without surface and bottom
        {{0.0f, 100.0f, 250.0f, 450.0f, 700.0f, 1000.0f, 1400.0f, 1900.0f, 2400.0f, 3000.0f},
         {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f},
         true,
         0.0f,
         {4, 60, 175.0f, 0.5f, 700.0f},
         true}, // no bottom depth
        {{0.0f, 20.0f, 40.0f, 60.0f, 80.0f, 100.0f, 120.0f, 140.0f, 160.0f, 180.0f},
         {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, missing, missing, missing, missing},
         false,
         0.0f,
         {4, 60, 175.0f, 0.5f, 700.0f},
         false}, // 60 percent of the levels
        {{0.0f, 120.7f, 253.1f, 397.1f, 691.2f, 895.6f, 1255.7f, 1664.2f, 2000.0f},
         {13.332f, 11.086f, 9.168f, 7.663f, 5.245f, 4.238f, missing, 2.295f, missing},
         false,
         2300.0f,
         {2, 40, 100.0f, 0.3000000119f, 500.0f},
         false},
        {{5.0f, 249.0f, 538.7f, 788.1f, 1163.9f, 1588.3f, 2177.6f, 2727.2f, 3186.9f, 4000.1f},
         {18.067f, 12.529f, 8.324f, 5.964f, missing, missing, 1.894f, missing, 1.567f, 1.597f},
         true,
         0.0f,
         {2, 40, 100.0f, 0.3000000119f, 500.0f},
         false},
        {{0.0f, 62.4f, 170.1f, 313.4f, 430.2f, 607.4f, 819.4f, 1000.1f},
         {7.431f, missing, 6.083f, missing, missing, 3.681f, 2.983f, 2.576f},
         true,
         1300.1f,
         {2, 40, 100.0f, 0.3000000119f, 500.0f},
         false},
    };
    int n = 0;
    for (const ROW& row : rows) EXPECT_EQ(isCovered(row), row.expected) << "row " << n++;
}

// `filled` of 100 levels a metre apart.
bool isCoveredWith(int filled)
{
    FLOATS depth, values;
    for (int k = 0; k < 100; ++k) {
        depth.push_back(static_cast<float>(k));
        values.push_back(k < filled ? 1 : missing);
    }
    return isCovered({depth, values, false, 0, {}, false});
}

TEST(GoodCoverage, SixtyPercentOfTheLevelsFailAndSixtyOnePass)
{
    EXPECT_FALSE(isCoveredWith(60));
    EXPECT_TRUE(isCoveredWith(61));
}

TEST(GoodCoverage, FourLevelsWithAGapOf800MetresFail)
{
    EXPECT_FALSE(isCovered({{0, 100, 900, 1000}, {1, 1, 1, 1}, false, 0, {}, false}));
    EXPECT_TRUE(isCovered({{0, 100, 300, 500}, {1, 1, 1, 1}, false, 0, {}, false}));
}

TEST(GoodCoverage, TheBottomIsAppendedToACastThatEndsAboveIt)
{
    const FLOATS depth{0, 100, 250, 450, 700, 1000, 1400, 1900, 2400, 3000}, values(10, 1);
    EXPECT_FALSE(isCovered({depth, values, true, 5000, {}, false}));
    EXPECT_TRUE(isCovered({depth, values, true, 3600, {}, false}));
    EXPECT_TRUE(isCovered({depth, values, false, 5000, {}, false}));
}

TEST(GoodCoverage, TheSurfaceIsADepthWithAValue)
{
    const FLOATS depth{180, 200, 220, 240}, values(4, 1);
    EXPECT_TRUE(isCovered({depth, values, false, 0, {}, false}));
    EXPECT_TRUE(isCovered({depth, values, true, 0, {}, false}));                   // 180 m are below 175 + 45
    EXPECT_FALSE(isCovered({depth, values, true, 0, {4, 60, 90, 1, 700}, false})); // and are not below 180
    EXPECT_TRUE(isCovered({{10, 20, 30}, {1, 1, 1}, true, 0, {}, false})); // with the surface four levels
    EXPECT_FALSE(isCovered({{10, 20, 30}, {1, 1, 1}, false, 0, {}, false}));
}

TEST(GoodCoverage, AVariableWithoutDataIsNotCovered)
{
    RMemoryCast cast;
    cast.store({{0, 10, 20, 30}, {}, {1, 1, 1, 1}});
    EXPECT_FALSE(hasGoodCoverage(cast.station, 1, 2, {}, false));
    EXPECT_FALSE(hasGoodCoverage(cast.station, 2, 3, {}, false));
    EXPECT_TRUE(hasGoodCoverage(cast.station, 1, 3, {}, false));
    EXPECT_FALSE(hasGoodCoverage(cast.station, 0, 3, {}, false));
    EXPECT_FALSE(hasGoodCoverage(cast.station, 1, 51, {}, false));
}

TEST(GoodCoverage, OneLevelSucceedsIfTheCriteriaAllowIt)
{
    EXPECT_TRUE(isCovered({{10}, {1}, false, 0, {1, 60, 175, 0.5f, 700}, false}));
    EXPECT_FALSE(isCovered({{10}, {1}, false, 0, {2, 60, 175, 0.5f, 700}, false}));
}

} // namespace
} // namespace variables
