#include "collection/varinfo.h"

#include <vector>

#include <gtest/gtest.h>

#include "collection/rcollection.h"
#include "common/text.h"

namespace collection {
namespace {

VARINFO labelled(std::string_view text)
{
    VARINFO variable = emptyVariable(1);
    setLabel(variable, text);
    return variable;
}

TEST(PlainLabel, MarkupAndTheCharacterBehindItAreDropped)
{
    EXPECT_EQ(plainLabelOf("CO~_2~# [~^3]"), "CO2 [3]");
    EXPECT_EQ(plainLabelOf("plain"), "plain");
    EXPECT_EQ(plainLabelOf("end~"), "end");
    EXPECT_EQ(plainLabelOf(""), "");
}

TEST(PlainLabel, MicroBecomesTheLetterU)
{
    EXPECT_EQ(plainLabelOf("Nitrate [~$m~#mol/l]"), "Nitrate [umol/l]");
    EXPECT_EQ(plainLabelOf("~$m"), "u");
    EXPECT_EQ(plainLabelOf("~$"), "");
    EXPECT_EQ(plainLabelOf("~$g~#x"), "gx");
}

TEST(PlainLabel, IntegralSignOfSingleByteTextBecomesABar)
{
    EXPECT_EQ(plainLabelOf("~$\xF2~#dz Oxygen"), "\xA6"
                                                 "dz Oxygen");
}

TEST(PlainLabel, Utf8LabelKeepsItsBytes)
{
    EXPECT_EQ(plainLabelOf("Ω [\U00080000]"), "Ω [\U00080000]");
}

TEST(ShortLabel, CutAtTheFirstBracketAndTrimmed)
{
    EXPECT_EQ(shortLabelOf("Depth [m]"), "Depth");
    EXPECT_EQ(shortLabelOf("  a b [x] [y]"), "a b");
    EXPECT_EQ(shortLabelOf("[m]"), "");
    EXPECT_EQ(shortLabelOf("pH"), "pH");
}

TEST(SetLabel, CutsAtSixtyBytesAndSetsAllForms)
{
    const VARINFO variable = labelled(std::string(58, 'x') + "~_[unit]");
    EXPECT_EQ(common::fieldText(variable.label), std::string(58, 'x') + "~_");
    EXPECT_EQ(common::fieldText(variable.plainLabel), std::string(58, 'x'));
    EXPECT_EQ(common::fieldText(variable.shortLabel), std::string(58, 'x') + "~_");
}

TEST(SetLabel, AShorterLabelLeavesNothingOfTheOldOne)
{
    VARINFO variable = labelled("A long label [unit]");
    setLabel(variable, "pH []");
    EXPECT_EQ(common::fieldText(variable.label), "pH []");
    EXPECT_EQ(common::fieldText(variable.plainLabel), "pH []");
    EXPECT_EQ(common::fieldText(variable.shortLabel), "pH");
}

TEST(EmptyVariable, HasNoRangeYetAndTheDefaults)
{
    const VARINFO variable = emptyVariable(7);
    EXPECT_EQ(variable.rangeMin, 1.0e10f);
    EXPECT_EQ(variable.rangeMax, -1.0e10f);
    EXPECT_EQ(variable.position, 7);
    EXPECT_EQ(variable.qualifier, 1);
    EXPECT_EQ(variable.resolution, 1.0f);
    EXPECT_EQ(variable.resolution2, 0.01f);
    EXPECT_EQ(variable.label[0], '\0');
}

TEST(RCollectionState, ANewCollectionHasResetVariables)
{
    const RCollection collection;
    for (int v = 0; v < common::variableSlots; ++v) {
        EXPECT_EQ(collection.variables.at(static_cast<std::size_t>(v)).position, v);
    }
    EXPECT_EQ(collection.headerRecordSize, 80);
    EXPECT_EQ(collection.qualityLimit, 8);
    EXPECT_FALSE(collection.isOpen);
}

class FindVariable : public testing::Test {
protected:
    FindVariable()
        : variables{emptyVariable(0), labelled("Depth [m]"), labelled("Nitrate [~$m~#mol/l]"),
                    labelled("Depth"),
                    labelled("Temperature [\xB0"
                             "C]")}
    {
    }
    int find(std::string_view text) { return findVariable(variables, 4, text); }
    std::vector<VARINFO> variables;
};

TEST_F(FindVariable, ByNumber)
{
    EXPECT_EQ(find("1"), 1);
    EXPECT_EQ(find(" 4 "), 4);
    EXPECT_EQ(find("0"), 0);
    EXPECT_EQ(find("5"), 0);
    EXPECT_EQ(find("-1"), 0);
}

TEST_F(FindVariable, ByAnyFormOfTheLabelWithCaseIgnored)
{
    EXPECT_EQ(find("depth [M]"), 1);
    EXPECT_EQ(find("nitrate"), 2);
    EXPECT_EQ(find("Nitrate [umol/l]"), 2);
    EXPECT_EQ(find("nitrate [~$M~#MOL/L]"), 2);
    EXPECT_EQ(find("Nitrat"), 0);
    EXPECT_EQ(find(""), 0);
}

TEST_F(FindVariable, AWholeLabelWinsOverAShortOne)
{
    EXPECT_EQ(find("depth"), 3);
}

TEST_F(FindVariable, Utf8TextFindsASingleByteLabel)
{
    EXPECT_EQ(find("temperature [°C]"), 4);
}

TEST_F(FindVariable, OnlyTheCountedVariablesAreLookedAt)
{
    EXPECT_EQ(findVariable(variables, 1, "nitrate"), 0);
    EXPECT_EQ(findVariable(variables, 99, "temperature"), 4);
}

} // namespace
} // namespace collection
