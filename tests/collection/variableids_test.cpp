#include "collection/variableids.h"

#include <array>

#include <gtest/gtest.h>

namespace {

using collection::renumberedVariableIds;

TEST(VariableIds, FollowTheirVariables)
{
    constexpr auto origins = std::to_array<int>({0, 3, 0, 1});
    EXPECT_EQ(renumberedVariableIds("Depth=1\nSalinity=3\n", origins), "Depth=3\nSalinity=1\n");
}

TEST(VariableIds, OfAVariableThatIsGoneAreLeftOut)
{
    constexpr auto origins = std::to_array<int>({0, 2});
    EXPECT_EQ(renumberedVariableIds("Depth=1\nSalinity=2\nNone=0\nBeyond=99\n", origins), "Salinity=1\n");
    EXPECT_EQ(renumberedVariableIds("Depth=1\n", {}), "");
}

TEST(VariableIds, GoToTheFirstOfSeveralVariablesOfOneOrigin)
{
    constexpr auto origins = std::to_array<int>({0, 5, 1, 1});
    EXPECT_EQ(renumberedVariableIds("Depth=1\n", origins), "Depth=2\n");
}

TEST(VariableIds, MayBeDividedByATabAndLinesOfNoFormAreLeftOut)
{
    constexpr auto origins = std::to_array<int>({0, 1});
    EXPECT_EQ(renumberedVariableIds("Depth\t1\nno form\nno number=x\n\nTime=1", origins),
              "Depth=1\nTime=1\n");
}

} // namespace
