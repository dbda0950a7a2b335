#include "variables/formula.h"

#include <cmath>
#include <limits>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "common/limits.h"
#include "variables/calculators.h"

namespace variables {
namespace {

constexpr float missing = common::MISSING_VALUE;

struct DATE {
    int year, month, day;
};

collection::STATIONHDR headerOf(DATE date, float longitude, float latitude)
{
    collection::STATIONHDR header{};
    header.year = static_cast<std::int16_t>(date.year);
    header.month = static_cast<std::int16_t>(date.month);
    header.day = static_cast<std::int16_t>(date.day);
    header.longitude = longitude;
    header.latitude = latitude;
    return header;
}

struct RESULT {
    float value = 0;
    int counted = 0;
};

// One sample at 200.5 E, 33.25 S on 31 December 2001, or where and when a test wants it.
RESULT valueOf(std::string_view formula, const std::vector<float>& inputs = {},
               const collection::STATIONHDR& header = headerOf({2001, 12, 31}, 200.5f, -33.25f))
{
    const RFormula compiled(formula, static_cast<int>(inputs.size()));
    std::vector<std::span<const float>> columns;
    for (const float& input : inputs) columns.emplace_back(&input, 1);
    RESULT result;
    result.counted = compiled.evaluate(columns, stationTerms(header), std::span(&result.value, 1));
    return result;
}

float value(std::string_view formula, const std::vector<float>& inputs = {})
{
    return valueOf(formula, inputs).value;
}

// --- rules

TEST(Formula, DivisionByZeroIsMissingButCounts)
{
    const RESULT result = valueOf("#1 #2 /", {1, 0});
    EXPECT_EQ(result.value, missing);
    EXPECT_EQ(result.counted, 1);
    EXPECT_EQ(value("#1 -0 /", {1}), missing);
}

TEST(Formula, AMissingInputIsMissingAndDoesNotCount)
{
    const RESULT result = valueOf("#1 #2 /", {1, missing});
    EXPECT_EQ(result.value, missing);
    EXPECT_EQ(result.counted, 0);
}

TEST(Formula, AMissingInputCountsAlsoIfTheFormulaDoesNotUseIt)
{
    EXPECT_EQ(valueOf("#1", {1, missing}).value, missing);
    EXPECT_EQ(valueOf("#1", {1, missing}).counted, 0);
    EXPECT_EQ(valueOf("#1 0 /", {missing}).counted, 0);
}

TEST(Formula, WithAValueTooManyTheTopIsTheResult)
{
    EXPECT_EQ(valueOf("#1 5", {7}).value, 5);
    EXPECT_EQ(valueOf("#1 5", {7}).counted, 1);
}

TEST(Formula, RaisesToAPower)
{
    EXPECT_EQ(value("3 2 **"), 9);
}

TEST(Formula, TakesTheSmallerAndTheLarger)
{
    EXPECT_EQ(value("2 1 min"), 1);
    EXPECT_EQ(value("1 2 min"), 1);
    EXPECT_EQ(value("2 1 max"), 2);
    EXPECT_EQ(value("1 1 max"), 1);
}

TEST(Formula, OfEqualValuesTheFirstStays)
{
    EXPECT_TRUE(std::signbit(value("-0 0 min")));
    EXPECT_FALSE(std::signbit(value("0 -0 min")));
    EXPECT_TRUE(std::signbit(value("-0 0 max")));
    EXPECT_FALSE(std::signbit(value("0 -0 max")));
}

TEST(Formula, TheDayOfTheYearIsAnApproximation)
{
    EXPECT_EQ(valueOf("%d").value, 361);
    EXPECT_EQ(valueOf("%d", {}, headerOf({1999, 1, 1}, 0, 0)).value, 1);
}

TEST(Formula, TheTimeCountsYearsFrom1900)
{
    EXPECT_FLOAT_EQ(value("%t"), 101 + 361 * 0.002739726f);
    EXPECT_FLOAT_EQ(valueOf("%t", {}, headerOf({1900, 1, 1}, 0, 0)).value, 0.002739726f);
}

TEST(Formula, KnowsThePositionOfTheStation)
{
    EXPECT_EQ(value("%x"), 200.5f);
    EXPECT_EQ(value("%y"), -33.25f);
}

TEST(Formula, OperatorsTakeTheirValuesInOrder)
{
    EXPECT_EQ(value("7 2 -"), 5);
    EXPECT_EQ(value("7 2 /"), 3.5f);
    EXPECT_EQ(value("7 2 +"), 9);
    EXPECT_EQ(value("7 2 *"), 14);
    EXPECT_EQ(value("#2 #1 -", {1, 10}), 9);
    EXPECT_EQ(value("1 2 3 + *"), 5);
}

TEST(Formula, FunctionsAreRoundedFromDoublePrecision)
{
    EXPECT_EQ(value("2 sqrt"), static_cast<float>(std::sqrt(2.0)));
    EXPECT_EQ(value("10 ln"), static_cast<float>(std::log(10.0)));
    EXPECT_EQ(value("1 exp"), static_cast<float>(std::exp(1.0)));
    EXPECT_EQ(value("1 sin"), static_cast<float>(std::sin(1.0)));
    EXPECT_EQ(value("1 cos"), static_cast<float>(std::cos(1.0)));
    EXPECT_EQ(value("1.1 7 **"), static_cast<float>(std::pow(static_cast<double>(1.1f), 7.0)));
}

TEST(Formula, ArithmeticIsInSinglePrecision)
{
    EXPECT_EQ(value("16777216 1 +"), 16777216.0f);
    EXPECT_EQ(value("0.1 0.2 +"), 0.1f + 0.2f);
}

TEST(Formula, AResultThatIsNotFiniteIsMissing)
{
    for (const char* const formula : {"-1 sqrt", "0 ln", "1000 exp", "1e38 1e38 *", "-2 0.5 **"}) {
        EXPECT_EQ(value(formula), missing) << formula;
        EXPECT_EQ(valueOf(formula).counted, 1) << formula;
    }
    EXPECT_EQ(value("1 1000 exp /"), 0); // only the result must be finite
}

TEST(Formula, AnyWhiteSpaceSeparatesWords)
{
    EXPECT_EQ(value("  1\t2 \r\n +\n"), 3);
}

TEST(Formula, WordsAreCaseSensitive)
{
    EXPECT_EQ(value("4 SQRT"), missing);
    EXPECT_EQ(value("4 sqrt"), 2);
}

TEST(Formula, NumbersMayHaveAnyForm)
{
    EXPECT_EQ(value("1e2"), 100);
    EXPECT_EQ(value("+.5"), 0.5f);
    EXPECT_EQ(value("-3."), -3);
    EXPECT_EQ(value("0x1A"), 26);
    EXPECT_EQ(value("-0x10"), -16);
    EXPECT_EQ(value("5abc"), 5); // as much of it as is a number
}

TEST(Formula, AWordWithANumberSignIsAnInput)
{
    EXPECT_EQ(value("#2", {1, 10}), 10);
    EXPECT_EQ(value("x#2", {1, 10}), missing); // read from the second character on
    EXPECT_EQ(value("#2b", {1, 10}), 10);
    EXPECT_EQ(value("a2#", {1, 10}), 10);
}

TEST(Formula, AFaultyFormulaGivesMissingValuesThatCount)
{
    for (const char* const formula : {"", " ", "+", "#1 +", "#1 foo *", "#3", "#0", "sqrt", "#1 nan +"}) {
        const RESULT result = valueOf(formula, {7});
        EXPECT_EQ(result.value, missing) << formula;
        EXPECT_EQ(result.counted, 1) << formula;
    }
    EXPECT_EQ(valueOf("foo", {missing}).counted, 0);
}

TEST(Formula, TheStackHoldsAsManyValuesAsAFormulaCanPush)
{
    std::string formula;
    for (int i = 0; i < 125; ++i) formula += "1 ";
    for (int i = 0; i < 124; ++i) formula += "+ ";
    ASSERT_LT(formula.size(), 500u);
    EXPECT_EQ(value(formula), 125);
    EXPECT_EQ(formulaFault(formula, 0), "");
}

TEST(Formula, AFormulaWithoutInputsIsTheSameAtEverySample)
{
    std::vector<float> out(1000);
    const RFormula formula("%x 1 +", 0);
    EXPECT_EQ(formula.evaluate({}, {0, 0, 9, 0}, out), 1000);
    EXPECT_EQ(std::count(out.begin(), out.end(), 10.0f), 1000);
}

TEST(Formula, AFormulaThatWasNeverGivenIsMissing)
{
    std::vector<float> out(3, 1.0f);
    EXPECT_EQ(RFormula().evaluate({}, {}, out), 3);
    EXPECT_EQ(out, std::vector<float>(3, missing));
}

// --- check values

struct CHECK {
    const char* formula;
    std::vector<float> inputs;
    DATE date;
    float longitude, latitude;
    double value, tolerance;
    int counted;
};

TEST(Formula, AgreesWithTheCheckValues)
{
    const CHECK checks[] = {
        {"#1 #2 /", {1, 0}, {2001, 12, 31}, 200.5f, -33.25f, double{missing}, 0, 1},
        {"#1 #2 /", {1, missing}, {2001, 12, 31}, 200.5f, -33.25f, double{missing}, 0, 0},
        {"#1 5", {7}, {2001, 12, 31}, 200.5f, -33.25f, 5, 1e-05, 1},
        {"3 2 **", {}, {2001, 12, 31}, 200.5f, -33.25f, 9, 1.8e-05, 1},
        {"2 1 min", {}, {2001, 12, 31}, 200.5f, -33.25f, 1, 2e-06, 1},
        {"%d %x %d max /", {29.47f}, {1991, 5, 28}, 205.8f, -13.42f, 0.7191447616, 1.44e-06, 1},
        {"#1 %t *", {36.22f}, {1997, 8, 21}, 327.51f, 12.08f, 3536.262695, 0.00707, 1},
        {"6.11 ln", {12.74f, 11.88f, 26.9f}, {1994, 9, 21}, 233.06f, -9.54f, 1.809926748, 3.62e-06, 1}};
    for (const CHECK& check : checks) {
        const RESULT result =
            valueOf(check.formula, check.inputs, headerOf(check.date, check.longitude, check.latitude));
        EXPECT_NEAR(static_cast<double>(result.value), check.value, check.tolerance) << check.formula;
        EXPECT_EQ(result.counted, check.counted) << check.formula;
    }
}

// --- whole blocks against single samples

class RandomFormulas : public testing::Test {
protected:
    int draw(int end) { return std::uniform_int_distribution(0, end - 1)(random); }
    std::string formula(int words)
    {
        static const char* const operands[] = {"#1", "#2", "#3", "%t", "%y", "0", "0.5", "-2"};
        static const char* const unary[] = {"sqrt", "ln", "exp", "sin", "cos"};
        static const char* const binary[] = {"+", "*", "-", "/", "**", "min", "max"};
        std::string text;
        int values = 0;
        for (int i = 0; i < words || values > 1; ++i) {
            const bool push = values == 0 || (i < words && (values == 1 || draw(2) == 0));
            if (push && values > 0 && draw(4) == 0) {
                text += unary[draw(5)];
            } else if (push) {
                text += operands[draw(8)];
                ++values;
            } else {
                text += binary[draw(7)];
                --values;
            }
            text += ' ';
        }
        return text;
    }
    std::vector<float> column(std::size_t samples)
    {
        std::vector<float> cells(samples);
        for (float& cell : cells) cell = draw(10) == 0 ? missing : static_cast<float>(draw(7) - 3) / 2.0f;
        return cells;
    }
    std::mt19937 random{20};
};

TEST_F(RandomFormulas, GiveTheSameForABlockAsSampleBySample)
{
    for (int round = 0; round < 300; ++round) {
        const std::string text = formula(12);
        ASSERT_EQ(formulaFault(text, 3), "") << text;
        const auto samples = static_cast<std::size_t>(1 + draw(700));
        const std::vector<float> a = column(samples), b = column(samples), c = column(samples);
        std::vector<float> out(samples);
        const collection::STATIONHDR header = headerOf({2001, 12, 31}, 200.5f, -33.25f);
        const int count = RFormula(text, 3).evaluate(std::vector<std::span<const float>>{a, b, c},
                                                     stationTerms(header), out);
        int expected = 0;
        for (std::size_t i = 0; i < samples; ++i) {
            const RESULT one = valueOf(text, {a[i], b[i], c[i]});
            expected += one.counted;
            ASSERT_EQ(one.value, out[i]) << text;
        }
        EXPECT_EQ(count, expected) << text;
    }
}

TEST(Formula, ServesTwoThreadsAtOnce)
{
    const RFormula formula("#1 #1 * sqrt", 1);
    const std::vector<float> in(10000, 3);
    std::vector<float> one(in.size()), two(in.size());
    const std::vector<std::span<const float>> inputs{in};
    std::thread other([&] { static_cast<void>(formula.evaluate(inputs, {}, two)); });
    EXPECT_EQ(formula.evaluate(inputs, {}, one), 10000);
    other.join();
    EXPECT_EQ(one, in);
    EXPECT_EQ(two, in);
}

// --- what is told to whoever defines one

TEST(FormulaFault, AFormulaThatLeavesOneValueIsRight)
{
    EXPECT_EQ(formulaFault("#1 #2 + 2 / sqrt", 2), "");
    EXPECT_EQ(formulaFault("%t %d %x %y + - *\n", 0), "");
}

TEST(FormulaFault, NamesAnUnknownWordAndItsPlace)
{
    EXPECT_EQ(formulaFault("#1 foo *", 1), "Word 2, \"foo\": neither an operator, an operand nor a number.");
    EXPECT_EQ(formulaFault("1 5abc +", 1), "Word 2, \"5abc\": neither an operator, an operand nor a number.");
    EXPECT_EQ(formulaFault("\x01", 1), "Word 1, \"?\": neither an operator, an operand nor a number.");
    for (const char* const word : {"nan", "inf", "1e99", "0x1G", "Sqrt", "%T", "+-", "1,5"})
        EXPECT_NE(formulaFault(word, 1), "") << word;
}

TEST(FormulaFault, NamesTheWordThatLacksValues)
{
    EXPECT_EQ(formulaFault("sqrt", 1), "Word 1, \"sqrt\": takes 1 value, and none is there.");
    EXPECT_EQ(formulaFault("#1 +", 1), "Word 2, \"+\": takes 2 values, and only one is there.");
    EXPECT_EQ(formulaFault("*", 1), "Word 1, \"*\": takes 2 values, and none is there.");
}

TEST(FormulaFault, NamesAnInputThatIsNotThere)
{
    EXPECT_EQ(formulaFault("#1 #3 +", 2), "Word 2, \"#3\": the last input is #2.");
    EXPECT_EQ(formulaFault("#1", 0), "Word 1, \"#1\": the formula has no inputs.");
    EXPECT_EQ(formulaFault("#0", 2), "Word 1, \"#0\": inputs are numbered from 1.");
    EXPECT_EQ(formulaFault("#1a", 2), "Word 1, \"#1a\": an input is written as #1, #2 and so on.");
    EXPECT_EQ(formulaFault("#", 2), "Word 1, \"#\": an input is written as #1, #2 and so on.");
}

TEST(FormulaFault, SaysHowManyValuesAreLeft)
{
    EXPECT_EQ(formulaFault("#1 5", 1),
              "The formula leaves 2 values behind its last word; it must leave one.");
}

TEST(FormulaFault, RefusesNothingAndTooMuch)
{
    EXPECT_EQ(formulaFault(" \n", 1), "The formula is empty.");
    EXPECT_EQ(formulaFault(std::string(499, ' ') + "1", 1), "");
    EXPECT_EQ(formulaFault(std::string(500, ' ') + "1", 1), "The formula is longer than 500 characters.");
    EXPECT_LT(formulaFault(std::string(500, 'x'), 1).size(), 120u);
}

TEST(FormulaFault, WhatIsAcceptedIsComputed)
{
    EXPECT_EQ(formulaFault("0x1A", 0), "");
    EXPECT_EQ(value("0x1A"), 26);
}

} // namespace
} // namespace variables
