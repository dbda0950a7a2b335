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
    EXPECT_TRUE(variables::loadHistories(folder.path(), histories).empty())
        << "what is missing is told when asked for";
    EXPECT_EQ(histories[seawater::gasCfc12].n, 1);
    EXPECT_EQ(histories[seawater::gasCfc11].n, 0);
    EXPECT_EQ(histories[seawater::gasCh4].n, 0);
}

// "line: text" of each fault.
std::vector<std::string> faultsOf(const std::string& content)
{
    std::vector<variables::HISTORYFAULT> faults;
    (void)variables::parseHistory(content, &faults);
    std::vector<std::string> lines;
    for (const variables::HISTORYFAULT& fault : faults)
        lines.push_back(std::to_string(fault.line) + ": " + fault.text);
    return lines;
}

TEST(ParseHistory, AHistoryWithBlankLinesBehindItHasNoFault)
{
    EXPECT_TRUE(faultsOf("h\n1 2 3\n2 3 4\n").empty());
    EXPECT_TRUE(faultsOf("h\n1 2 3\n \t\r\n\n").empty());
}

TEST(ParseHistory, TextBehindTheLastRowIsAFaultWithItsLine)
{
    for (const char* const content : {"h\n1 2 3\n\nfoo\n", "h\n1 2 3\n2 3 4\nfoo\n4 5 6\n"}) {
        const std::vector<std::string> faults = faultsOf(content);
        ASSERT_EQ(faults.size(), 1u);
        EXPECT_EQ(faults[0].find("4: the history ends in front of this line"), 0u) << faults[0];
    }
}

TEST(ParseHistory, AFileWithoutNumbersIsAFault)
{
    const std::vector<std::string> wanted{"1: there are no lines \"year north south\" behind the heading"};
    for (const char* const content : {"", "h", "h\n", "h\n1950,5 2,5 3,5\n"})
        EXPECT_EQ(faultsOf(content), wanted);
}

TEST(ParseHistory, YearsThatDontAscendAreAFault)
{
    EXPECT_EQ(faultsOf("h\n1950 1 2\n1952 1 2\n1951 1 2\n1951 1 2\n"),
              std::vector<std::string>{"4: the year isn't later than that of the line before"});
}

TEST(ParseHistory, ALineBeyondThe200thIsAFault)
{
    std::string text = "heading\n";
    for (int i = 0; i < 201; ++i) text += std::to_string(1800 + i) + " 1 2\n";
    EXPECT_EQ(faultsOf(text), std::vector<std::string>{
                                  "202: a history has 200 lines; this one and what follows is left out"});
}

TEST(LoadHistories, DamagedFilesAreToldWithTheirPlace)
{
    const testing_support::RTemporaryDirectory folder;
    std::ofstream(folder.file("atmcfc11.his")) << "year north south\n1950 1 2\nfoo\n";
    std::ofstream(folder.file("atmch4.his")) << "";
    variables::ATMHISTORIES histories;
    const std::vector<std::string> told = variables::loadHistories(folder.path(), histories);
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[0].find(folder.path() + "atmcfc11.his:3: "), 0u) << told[0];
    EXPECT_EQ(told[1].find(folder.path() + "atmch4.his:1: "), 0u) << told[1];
}

TEST(LoadHistories, ThoseOfTheInstallationHaveNoFault)
{
    variables::ATMHISTORIES histories;
    EXPECT_TRUE(variables::loadHistories(NVQ_SOURCE_DIR "/data/atmhist/", histories).empty());
    for (const variables::ATMHISTORY& history : histories) EXPECT_GT(history.n, 10);
}

} // namespace
