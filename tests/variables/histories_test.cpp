#include "variables/histories.h"

#include <fstream>

#include <gtest/gtest.h>

#include "temporarydirectory.h"

namespace {

TEST(ParseHistory, SkipsTheHeadingAndReadsRows)
{
    const variables::ATMHISTORY table =
        variables::parseHistory("1 2 3\n1940.5  0.1 0.2\n 1941.5 +0.3\t0.4 note\r\n");
    ASSERT_EQ(table.n, 2);
    EXPECT_FLOAT_EQ(table.years[0], 1940.5f);
    EXPECT_FLOAT_EQ(table.northern[1], 0.3f);
    EXPECT_FLOAT_EQ(table.southern[1], 0.4f);
}

TEST(ParseHistory, StopsAtTheFirstLineWithoutThreeNumbers)
{
    EXPECT_EQ(variables::parseHistory("h\n1 2 3\n1 2\n4 5 6\n").n, 1);
    EXPECT_EQ(variables::parseHistory("h\n1 2 3\n\n4 5 6\n").n, 1);
    EXPECT_EQ(variables::parseHistory("h").n, 0);
    EXPECT_EQ(variables::parseHistory("").n, 0);
}

TEST(ParseHistory, RowsBeyondThe200thAreDropped)
{
    std::string text = "heading\n";
    for (int i = 0; i < 250; ++i) text += std::to_string(1900 + i) + " 1 2\n";
    const variables::ATMHISTORY table = variables::parseHistory(text);
    EXPECT_EQ(table.n, 200);
    EXPECT_FLOAT_EQ(table.years[199], 2099);
}

TEST(LoadHistories, MissingFileGivesAnEmptyTable)
{
    const testing_support::RTemporaryDirectory folder;
    std::ofstream(folder.file("atmcfc12.his")) << "year north south\n1950 1 2\n";
    variables::ATMHISTORIES histories;
    histories[seawater::gasCfc11].n = 5;
    variables::loadHistories(folder.path(), histories);
    EXPECT_EQ(histories[seawater::gasCfc12].n, 1);
    EXPECT_EQ(histories[seawater::gasCfc11].n, 0);
    EXPECT_EQ(histories[seawater::gasCh4].n, 0);
}

} // namespace
