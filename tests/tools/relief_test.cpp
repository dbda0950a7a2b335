#include "relief.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>
#include <netcdf.h>

#include "shapes.h"
#include "temporarydirectory.h"

namespace {

using namespace tools;

GRID grid(int rows, int columns, std::vector<float> heights)
{
    return {rows, columns, 0, 0, 1, std::move(heights)};
}

TEST(ContourRings, HillGivesOneRingWithTheHighSideOnTheLeft)
{
    const auto rings = contourRings(grid(3, 3, {0, 0, 0, 0, 10, 0, 0, 0, 0}), 5);
    ASSERT_EQ(rings.size(), 1u);
    EXPECT_EQ(rings[0].front(), rings[0].back());
    EXPECT_EQ(rings[0].size(), 5u);
    EXPECT_NEAR(signedArea(rings[0]), 0.5, 1e-12); // a diamond half a node wide
}

TEST(ContourRings, HollowRunsTheOtherWay)
{
    GRID hollow = grid(5, 5, std::vector<float>(25, 10));
    hollow.heights[12] = 0;
    const auto rings = contourRings(hollow, 5);
    ASSERT_EQ(rings.size(), 2u); // the hollow, and the border of the grid
    const double a = signedArea(rings[0]), b = signedArea(rings[1]);
    EXPECT_NEAR(std::max(a, b), 16, 1e-12);
    EXPECT_NEAR(std::min(a, b), -0.5, 1e-12);
}

TEST(ContourRings, AreaAtTheBorderIsClosedAlongIt)
{
    GRID globe{3, 5, 0, -90, 90, {}}; // the western half is high
    for (int r = 0; r < 3; ++r) globe.heights.insert(globe.heights.end(), {10, 10, 10, 0, 0});
    const auto rings = contourRings(globe, 5);
    ASSERT_EQ(rings.size(), 1u);
    const BOX bounds = boundsOf(rings[0]);
    EXPECT_EQ(bounds.xmin, 0);
    EXPECT_EQ(bounds.ymin, -90);
    EXPECT_EQ(bounds.ymax, 90);
    EXPECT_NEAR(signedArea(rings[0]), 225 * 180, 1e-9);
}

TEST(ContourRings, SaddleFollowsTheMean)
{
    // Two high corners: a mean below the level keeps them apart, one above it joins them.
    EXPECT_EQ(contourRings(grid(4, 4, {0, 0, 0, 0, 0, 10, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0}), 6).size(), 2u);
    EXPECT_EQ(contourRings(grid(4, 4, {0, 0, 0, 0, 0, 10, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0}), 4).size(), 1u);
}

TEST(ContourRings, NothingAboveTheLevelGivesNoRing)
{
    EXPECT_TRUE(contourRings(grid(2, 2, {1, 2, 3, 4}), 9).empty());
}

TEST(BoxMean, WrapsInLongitudeAndEndsAtThePoles)
{
    GRID fine{5, 8, 0, -90, 45, std::vector<float>(40, 0)};
    fine.heights[2 * 8] = 16; // the node at longitude 0 of the middle row
    const GRID coarse = boxMean(fine, 4);
    EXPECT_EQ(coarse.rows, 2);
    EXPECT_EQ(coarse.columns, 2);
    EXPECT_DOUBLE_EQ(coarse.step, 180);
    // Weight 1/2 of the outermost row, full weight of the column, over a box of 2 1/2 rows and 4 columns.
    EXPECT_FLOAT_EQ(coarse.at(0, 0), std::round(16 * 0.5 / (2.5 * 4)));
    EXPECT_FLOAT_EQ(coarse.at(0, 1), 0);

    GRID seam{5, 8, 0, -90, 45, std::vector<float>(40, 0)};
    for (int r = 0; r < 5; ++r) seam.heights[std::size_t(r) * 8 + 7] = 100; // just west of longitude 0
    EXPECT_FLOAT_EQ(boxMean(seam, 4).at(0, 0), 25);
}

TEST(BoxMean, ConstantStaysConstant)
{
    const GRID fine{5, 8, 0, -90, 45, std::vector<float>(40, -4321)};
    const GRID coarse = boxMean(fine, 4);
    EXPECT_TRUE(
        std::all_of(coarse.heights.begin(), coarse.heights.end(), [](float h) { return h == -4321; }));
}

TEST(ClosedGlobe, RepeatsTheFirstColumn)
{
    const GRID closed = closedGlobe(grid(2, 2, {1, 2, 3, 4}));
    EXPECT_EQ(closed.columns, 3);
    EXPECT_EQ(closed.heights, (std::vector<float>{1, 2, 1, 3, 4, 3}));
}

TEST(ReadRelief, FileOfAnotherShape_Refused)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string path = directory.file("small.cdf");
    int id = 0, dimensions[2], variable = 0;
    ASSERT_EQ(nc_create(path.c_str(), NC_CLOBBER, &id), NC_NOERR);
    nc_def_dim(id, "y", 3, &dimensions[0]);
    nc_def_dim(id, "x", 4, &dimensions[1]);
    nc_def_var(id, "ROSE", NC_FLOAT, 2, dimensions, &variable);
    ASSERT_EQ(nc_close(id), NC_NOERR);
    std::string error;
    EXPECT_FALSE(readRelief(path, error));
    EXPECT_NE(error.find(path), std::string::npos);
    EXPECT_NE(error.find("ROSE"), std::string::npos);
}

TEST(ReadRelief, MissingFile_Refused)
{
    std::string error;
    EXPECT_FALSE(readRelief("/nowhere/etopo5.cdf", error));
    EXPECT_NE(error.find("/nowhere/etopo5.cdf"), std::string::npos);
}

} // namespace
