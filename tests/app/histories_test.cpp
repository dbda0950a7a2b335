#include "app/histories.h"

#include <fstream>

#include <gtest/gtest.h>

#include "temporarydirectory.h"

namespace {

TEST(ParseHistory, SkipsTheHeadingAndReadsRows)
{
    const app::ATMHISTORY table = app::parseHistory("1 2 3\n1940.5  0.1 0.2\n 1941.5 +0.3\t0.4 note\r\n");
    ASSERT_EQ(table.count, 2);
    EXPECT_FLOAT_EQ(table.year[0], 1940.5f);
    EXPECT_FLOAT_EQ(table.north[1], 0.3f);
    EXPECT_FLOAT_EQ(table.south[1], 0.4f);
}

TEST(ParseHistory, StopsAtTheFirstLineWithoutThreeNumbers)
{
    EXPECT_EQ(app::parseHistory("h\n1 2 3\n1 2\n4 5 6\n").count, 1);
    EXPECT_EQ(app::parseHistory("h\n1 2 3\n\n4 5 6\n").count, 1);
    EXPECT_EQ(app::parseHistory("h").count, 0);
    EXPECT_EQ(app::parseHistory("").count, 0);
}

TEST(ParseHistory, RowsBeyondThe200thAreDropped)
{
    std::string text = "heading\n";
    for (int i = 0; i < 250; ++i) text += std::to_string(1900 + i) + " 1 2\n";
    const app::ATMHISTORY table = app::parseHistory(text);
    EXPECT_EQ(table.count, 200);
    EXPECT_FLOAT_EQ(table.year[199], 2099);
}

TEST(LoadHistories, MissingFileGivesAnEmptyTable)
{
    const testing_support::RTemporaryDirectory folder;
    std::ofstream(folder.file("atmcfc12.his")) << "year north south\n1950 1 2\n";
    app::ATMHISTORIES histories;
    histories[app::gasCfc11].count = 5;
    app::loadHistories(folder.path(), histories);
    EXPECT_EQ(histories[app::gasCfc12].count, 1);
    EXPECT_EQ(histories[app::gasCfc11].count, 0);
    EXPECT_EQ(histories[app::gasCh4].count, 0);
}

} // namespace
