#include "variables/needed.h"

#include <numeric>

#include <gtest/gtest.h>

namespace variables {
namespace {

class Needed : public testing::Test {
protected:
    Needed()
    {
        collection.variableCount = 4;
        collection.totalVariableCount = 7;
        derive(5, {1, 2});
        derive(6, {5, 3});
        derive(7, {});
    }
    void derive(int variable, std::initializer_list<int> sources)
    {
        collection::VARINFO& info = collection.variables.at(static_cast<std::size_t>(variable));
        for (const int source : sources) info.sources[info.nSources++] = source;
    }
    std::string mask()
    {
        std::string text;
        for (int v = 1; v <= 7; ++v) {
            text += collection.neededMask.at(static_cast<std::size_t>(v)) ? '+' : '-';
        }
        return text;
    }
    void need(std::initializer_list<int> numbers)
    {
        needVariables(collection, std::span(numbers.begin(), numbers.size()));
    }
    collection::RCollection collection;
};

TEST_F(Needed, AllVariablesAreNeeded)
{
    need({});
    needAllVariables(collection);
    EXPECT_EQ(mask(), "+++++++");
    EXPECT_EQ(std::accumulate(collection.neededMask.begin(), collection.neededMask.end(), 0), 51);
}

TEST_F(Needed, OnlyTheNamedOnes)
{
    need({2, 4});
    EXPECT_EQ(mask(), "-+-+---");
}

TEST_F(Needed, SignsAndNumbersThatAreNoVariablesAreIgnored)
{
    need({-3, 0, 8, 99, -8, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()});
    EXPECT_EQ(mask(), "--+----");
}

TEST_F(Needed, SourcesAreNeededToAnyDepth)
{
    need({6});
    EXPECT_EQ(mask(), "+++-++-");
}

TEST_F(Needed, TheVariableOfTheSampleRangeIsNeededWithItsSources)
{
    collection.criteria.sampleVariable = 5;
    need({4});
    EXPECT_EQ(mask(), "++-++--");
    collection.criteria.sampleVariable = 8;
    need({4});
    EXPECT_EQ(mask(), "---+---");
}

TEST_F(Needed, ClosureCountsWhatItAdds)
{
    collection.neededMask.fill(0);
    collection.neededMask[6] = 1;
    EXPECT_EQ(addDependencies(collection), 4);
    EXPECT_EQ(addDependencies(collection), 0);
}

TEST_F(Needed, ACircleOfSourcesEnds)
{
    collection.variables[5].sources[0] = 6;
    need({5});
    EXPECT_EQ(mask(), "-++-++-");
}

TEST_F(Needed, ADamagedSourceListIsNotFollowed)
{
    collection.variables[7].nSources = 99;
    collection.variables[7].sources[0] = 1000000;
    collection.variables[7].sources[1] = -5;
    need({7});
    EXPECT_EQ(mask(), "------+");
}

} // namespace
} // namespace variables
