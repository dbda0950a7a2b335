#include "etopogrid.h"

#include <cstring>

#include <gtest/gtest.h>

#include "common/files.h"
#include "temporarydirectory.h"

namespace {

using namespace tools;

TEST(CellHeights, AreMeansOfTheFourNodesAround)
{
    const GRID relief{2, 3, 0, -90, 180, {0, 4, 8, 100, 104, 108}};
    const auto heights = cellHeights(relief);
    ASSERT_EQ(heights.size(), 6u);
    EXPECT_EQ(heights[0], 52);
    EXPECT_EQ(heights[2], 54);  // wraps: 8, 0, 108, 100
    EXPECT_EQ(heights[3], 102); // the top row: 100, 104
}

TEST(WriteEtopo, HeaderAndSize)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string path = directory.file("Etopo.cdt");
    GRID relief{3, 4, 0, -90, 90, std::vector<float>(12, -7)};
    ASSERT_TRUE(writeEtopo(path, relief));
    const auto bytes = common::readFile(path);
    ASSERT_TRUE(bytes);
    ASSERT_EQ(bytes->size(), 36u + 24u);
    EXPECT_EQ(std::memcmp(bytes->data(), "ETOPO01\0", 8), 0);
    std::int32_t columns = 0;
    float perLon = 0, south = 1, perLat = 0;
    std::memcpy(&perLon, bytes->data() + 12, 4);
    std::memcpy(&columns, bytes->data() + 16, 4);
    std::memcpy(&south, bytes->data() + 20, 4);
    std::memcpy(&perLat, bytes->data() + 24, 4);
    EXPECT_EQ(columns, 4);
    EXPECT_EQ(south, 0);
    EXPECT_FLOAT_EQ(perLon, 1.0f / 90);
    EXPECT_FLOAT_EQ(perLat, 1.0f / 90);
}

TEST(WriteEtopo, UnwritablePlaceIsAFailure)
{
    EXPECT_FALSE(writeEtopo("/nowhere/Etopo.cdt", GRID{2, 2, 0, -90, 180, {1, 2, 3, 4}}));
}

} // namespace
