#include "variables/gammaatlas.h"

#include <algorithm>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampleatlas.h"
#include "temporarydirectory.h"

namespace {

using namespace testing_support;

class GammaAtlas : public testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<const seawater::GAMMAATLAS> load()
    {
        return variables::loadGammaAtlas(folder.path(), fault);
    }
    // Loads the atlas as it stands in memory; what is wrong with it, without the folder.
    std::string faultOf()
    {
        EXPECT_TRUE(writeAtlas(folder.path(), atlas));
        EXPECT_EQ(load(), nullptr);
        return shortFault();
    }
    [[nodiscard]] std::string shortFault() const
    {
        return fault.starts_with(folder.path()) ? fault.substr(folder.path().size()) : "no path: " + fault;
    }
    RTemporaryDirectory folder;
    seawater::GAMMAATLAS atlas = sampleAtlas();
    std::string fault;
};

TEST_F(GammaAtlas, ComesBackAsItWasWritten)
{
    atlas.depthIndex[5] = 0;
    atlas.ocean[5] = 0;
    castOf(atlas, 17, Quantity::a)[3] = 0.25f;
    ASSERT_TRUE(writeAtlas(folder.path(), atlas));
    const auto loaded = load();
    ASSERT_TRUE(loaded) << fault;
    EXPECT_EQ(fault, "");
    EXPECT_EQ(loaded->longitudes, atlas.longitudes);
    EXPECT_EQ(loaded->latitudes, atlas.latitudes);
    EXPECT_EQ(loaded->pressures, atlas.pressures);
    EXPECT_EQ(loaded->depthIndex, atlas.depthIndex);
    EXPECT_EQ(loaded->ocean, atlas.ocean);
    EXPECT_EQ(loaded->casts, atlas.casts);
}

TEST_F(GammaAtlas, HasTheSizesOfThePublishedFiles)
{
    EXPECT_EQ(gridBytes(atlas).size(), 33072u);
    EXPECT_EQ(bytesOf(atlas.casts).size(), 2138400u);
}

TEST_F(GammaAtlas, TheFolderMayStandWithoutItsLastSeparator)
{
    ASSERT_TRUE(writeAtlas(folder.path(), atlas));
    EXPECT_TRUE(variables::loadGammaAtlas(folder.path().substr(0, folder.path().size() - 1), fault)) << fault;
}

TEST_F(GammaAtlas, TheGridMayStandBetweenMarksOfItsLength)
{
    const std::array<std::uint32_t, 1> mark = {33072};
    ASSERT_TRUE(writeAtlas(folder.path(), atlas));
    ASSERT_TRUE(common::writeFile(folder.file("llp.fdt"), bytesOf(mark) + gridBytes(atlas) + bytesOf(mark)));
    const auto loaded = load();
    ASSERT_TRUE(loaded) << fault;
    EXPECT_EQ(loaded->ocean, atlas.ocean);
    EXPECT_EQ(loaded->longitudes, atlas.longitudes);
}

TEST_F(GammaAtlas, MarksOfAnotherLengthAreAFault)
{
    const std::array<std::uint32_t, 1> mark = {33072}, other = {33073};
    ASSERT_TRUE(writeAtlas(folder.path(), atlas));
    ASSERT_TRUE(common::writeFile(folder.file("llp.fdt"), bytesOf(mark) + gridBytes(atlas) + bytesOf(other)));
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(shortFault(), "llp.fdt: the marks of its length don't agree with it");
}

TEST_F(GammaAtlas, AMissingFileIsNamed)
{
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(shortFault(), "llp.fdt: is missing");
    ASSERT_TRUE(common::writeFile(folder.file("llp.fdt"), gridBytes(atlas)));
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(shortFault(), "stga.fdt: is missing");
}

TEST_F(GammaAtlas, AFileOfAnotherSizeIsNamedWithBothSizes)
{
    ASSERT_TRUE(writeAtlas(folder.path(), atlas));
    ASSERT_TRUE(common::writeFile(folder.file("stga.fdt"), bytesOf(atlas.casts).substr(4)));
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(shortFault(), "stga.fdt: has 2138396 bytes instead of 2138400");
    ASSERT_TRUE(common::writeFile(folder.file("llp.fdt"), gridBytes(atlas) + "x"));
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(shortFault(), "llp.fdt: has 33073 bytes instead of 33072");
    ASSERT_TRUE(common::writeFile(folder.file("llp.fdt"), ""));
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(shortFault(), "llp.fdt: has 0 bytes instead of 33072");
}

TEST_F(GammaAtlas, AFolderInPlaceOfAFileIsAFault)
{
    ASSERT_TRUE(std::filesystem::create_directory(folder.file("llp.fdt")));
    EXPECT_EQ(load(), nullptr);
    EXPECT_THAT(shortFault(), testing::StartsWith("llp.fdt: "));
}

TEST_F(GammaAtlas, FilesOfTheOtherByteOrderAreNotBelieved)
{
    ASSERT_TRUE(writeAtlas(folder.path(), atlas));
    std::string turned = gridBytes(atlas);
    for (std::size_t n = 0; n < turned.size(); n += 4) std::reverse(&turned[n], &turned[n] + 4);
    ASSERT_TRUE(common::writeFile(folder.file("llp.fdt"), turned));
    EXPECT_EQ(load(), nullptr);
    EXPECT_THAT(shortFault(), testing::StartsWith("llp.fdt: the longitudes"));
}

TEST_F(GammaAtlas, GridsThatDoNotAscendAreFaults)
{
    const seawater::GAMMAATLAS good = atlas;
    atlas.longitudes[7] = atlas.longitudes[6];
    EXPECT_EQ(faultOf(), "llp.fdt: the longitudes don't ascend from 0 to below 360");
    atlas = good;
    atlas.longitudes[89] = 360;
    EXPECT_EQ(faultOf(), "llp.fdt: the longitudes don't ascend from 0 to below 360");
    atlas = good;
    atlas.latitudes[3] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(faultOf(), "llp.fdt: the latitudes don't ascend from -80 to beyond 64");
    atlas = good;
    std::ranges::reverse(atlas.latitudes);
    EXPECT_EQ(faultOf(), "llp.fdt: the latitudes don't ascend from -80 to beyond 64");
    atlas = good;
    atlas.pressures[32] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(faultOf(), "llp.fdt: the pressures don't ascend from 0 to 10000");
}

TEST_F(GammaAtlas, NumbersOfLevelsAndOceansThatCannotBeAreFaults)
{
    const seawater::GAMMAATLAS good = atlas;
    atlas.depthIndex[0] = -1;
    EXPECT_EQ(faultOf(), "llp.fdt: the number of levels of cell 1 is -1");
    atlas.depthIndex[0] = 34;
    EXPECT_EQ(faultOf(), "llp.fdt: the number of levels of cell 1 is 34");
    atlas.depthIndex[0] = 1; // no interval
    EXPECT_EQ(faultOf(), "llp.fdt: the number of levels of cell 1 is 1");
    atlas = good;
    atlas.ocean[4049] = 7;
    EXPECT_EQ(faultOf(), "llp.fdt: the ocean of cell 4050 is 7");
    atlas.ocean[4049] = 0; // water without an ocean
    EXPECT_EQ(faultOf(), "llp.fdt: the ocean of cell 4050 is 0");
}

TEST_F(GammaAtlas, NumbersThatCannotBeAreFaults)
{
    const seawater::GAMMAATLAS good = atlas;
    castOf(atlas, 9, Quantity::temperature)[4] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(faultOf(), "stga.fdt: the temperature of level 5 of cell 10 can't be true");
    atlas = good;
    castOf(atlas, 0, Quantity::salinity)[32] = -99; // the mark of a missing value
    EXPECT_EQ(faultOf(), "stga.fdt: the salinity of level 33 of cell 1 can't be true");
    atlas = good;
    castOf(atlas, 4049, Quantity::gamma)[0] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(faultOf(), "stga.fdt: the neutral density of level 1 of cell 4050 can't be true");
    atlas = good;
    castOf(atlas, 1, Quantity::a)[1] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(faultOf(), "stga.fdt: the coefficient of level 2 of cell 2 can't be true");
}

TEST_F(GammaAtlas, WhatStandsBelowTheDeepestLevelIsNotAskedFor)
{
    atlas.depthIndex[9] = 4;
    castOf(atlas, 9, Quantity::temperature)[4] = -99;
    castOf(atlas, 9, Quantity::gamma)[20] = std::numeric_limits<float>::quiet_NaN();
    ASSERT_TRUE(writeAtlas(folder.path(), atlas));
    EXPECT_TRUE(load()) << fault;
}

} // namespace
