// Formulas as variables of a station.

#include <gtest/gtest.h>

#include "common/limits.h"
#include "variables/derivation.h"
#include "variables/registry.h"

namespace variables {
namespace {

constexpr float missing = common::MISSING_VALUE;

class FormulaVariable : public testing::Test {
protected:
    FormulaVariable()
    {
        collection.variableCount = 3;
        station.collection = &collection;
        station.clear();
        station.levelCount[1] = 3;
        fill(1, {0, 10, 20}, {0, 1, 0});
        fill(2, {1, 2, missing}, {4, 0, 0});
        station.header.longitude = 30;
    }
    void fill(std::size_t variable, std::initializer_list<float> values,
              std::initializer_list<std::uint8_t> flags)
    {
        const std::int32_t cell = station.header.valueCount;
        station.offset.at(variable) = cell;
        std::copy(values.begin(), values.end(), station.values.get() + cell);
        std::copy(flags.begin(), flags.end(), station.flags.get() + cell);
        station.header.valueCount += 3;
    }
    // Variable 4.
    void define(int id, const std::string& formula, std::initializer_list<int> inputs)
    {
        collection.totalVariableCount = 4;
        collection.nMacros = 1;
        collection.formulas[0] = formula;
        collection::VARINFO& variable = collection.variables[4];
        variable = collection::emptyVariable(4);
        variable.id = id;
        variable.intParam = 0;
        for (const int input : inputs) variable.sources[variable.nSources++] = input;
        collection.neededMask.fill(1);
        derivation.computeDerived(station);
    }
    [[nodiscard]] float at(int level) const { return collection::valueAt(station, 4, level, -99); }
    [[nodiscard]] int flag(int level) const { return collection::flagAt(station, 4, level); }

    collection::RCollection collection;
    collection::STATIONDATA station;
    SURROUNDINGS surroundings;
    RDerivation derivation{surroundings};
};

TEST_F(FormulaVariable, ComputesLevelByLevel)
{
    define(idExpression, "#1 #2 + ", {1, 2});
    EXPECT_EQ(at(0), 1);
    EXPECT_EQ(at(1), 12);
    EXPECT_EQ(at(2), missing);
    EXPECT_EQ(station.levelCount[4], 2);
    EXPECT_EQ(station.header.valueCount, 9);
}

TEST_F(FormulaVariable, MacrosAreTheSame)
{
    define(idMacro, "#1 2 * ", {1});
    EXPECT_EQ(at(2), 40);
    EXPECT_EQ(station.levelCount[4], 3);
}

TEST_F(FormulaVariable, TakesTheLargestFlagOfItsInputs)
{
    define(idExpression, "#1", {1, 2});
    EXPECT_EQ(flag(0), 4);
    EXPECT_EQ(flag(1), 1);
    EXPECT_EQ(flag(2), 0);
}

TEST_F(FormulaVariable, WithoutInputsAllFlagsAreGood)
{
    define(idMacro, "%x", {});
    EXPECT_EQ(at(0), 30);
    EXPECT_EQ(at(2), 30);
    EXPECT_EQ(flag(0), 0);
    EXPECT_EQ(station.levelCount[4], 3);
}

TEST_F(FormulaVariable, IsAbsentIfAnInputIsAbsentAlsoOneThatIsNotUsed)
{
    define(idExpression, "#1", {1, 3});
    EXPECT_EQ(station.offset[4], -1);
    EXPECT_EQ(station.levelCount[4], 0);
    EXPECT_EQ(station.header.valueCount, 6);
}

TEST_F(FormulaVariable, IsAbsentIfAnInputIsNoVariable)
{
    for (const int input : {0, -1, 4, 5, 99}) {
        define(idExpression, "#1", {input});
        EXPECT_EQ(station.offset[4], -1) << input;
    }
}

TEST_F(FormulaVariable, ADivisionByZeroCounts)
{
    define(idExpression, "#2 #1 /", {1, 2});
    EXPECT_EQ(at(0), missing);
    EXPECT_EQ(at(1), 0.2f);
    EXPECT_EQ(station.levelCount[4], 2);
}

TEST_F(FormulaVariable, AFaultyFormulaIsMissingButCounts)
{
    define(idExpression, "#1 +", {1});
    EXPECT_EQ(at(1), missing);
    EXPECT_EQ(station.levelCount[4], 3);
}

} // namespace
} // namespace variables
