#include "app/variablelist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "castfile.h"
#include "common/text.h"
#include "temporarydirectory.h"

namespace {

using collection::VARINFO;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string label(const VARINFO& variable)
{
    return std::string(common::fieldText(variable.label));
}

// What is wrong with a list for a collection of four variables; empty if it can be read.
std::string faultOf(std::string_view text)
{
    std::string fault;
    const std::vector<VARINFO> variables = app::parseVariableList(text, "v.txt", 4, fault);
    EXPECT_EQ(variables.empty(), !fault.empty()) << text;
    return fault;
}

TEST(VariableList, LabelFormatAndOldNumber)
{
    std::string fault;
    const auto variables =
        app::parseVariableList("Pressure [dbar]\t8.1\t0\n\n# kept ones\nDepth [m] \t 9.0\t1\r\n"
                               "Salinity [psu]\t8.3\t3",
                               "v.txt", 4, fault);
    ASSERT_THAT(variables, SizeIs(4));
    EXPECT_EQ(fault, "");
    EXPECT_EQ(label(variables[1]), "Pressure [dbar]");
    EXPECT_EQ(variables[1].width, 8);
    EXPECT_EQ(variables[1].decimals, 1);
    EXPECT_EQ(variables[1].assocSource, 0);
    EXPECT_EQ(label(variables[2]), "Depth [m]");
    EXPECT_EQ(variables[2].width, 9);
    EXPECT_EQ(variables[2].decimals, 0);
    EXPECT_EQ(variables[2].assocSource, 1);
    EXPECT_STREQ(variables[3].shortLabel, "Salinity");
    EXPECT_EQ(variables[3].assocSource, 3);
}

TEST(VariableList, LabelsAreCodedLikeElsewhere)
{
    std::string fault;
    auto variables = app::parseVariableList("Temperature [\xc2\xb0"
                                            "C]\t8.2\t2\n",
                                            "v.txt", 4, fault);
    ASSERT_THAT(variables, SizeIs(2));
    EXPECT_EQ(label(variables[1]), "Temperature [\xb0"
                                   "C]"); // Latin-1 where it fits
    variables = app::parseVariableList("Temperature [\xb0"
                                       "C]\t8.2\t2\n",
                                       "v.txt", 4, fault);
    ASSERT_THAT(variables, SizeIs(2));
    EXPECT_EQ(label(variables[1]), "Temperature [\xb0"
                                   "C]");
    variables = app::parseVariableList("\xef\xbb\xbf\xce\x94T\t8.2\t2\n", "v.txt", 4, fault);
    ASSERT_THAT(variables, SizeIs(2));
    EXPECT_EQ(label(variables[1]), "\xce\x94T");
}

TEST(VariableList, OneOldVariableMayFeedSeveral)
{
    EXPECT_EQ(faultOf("A\t8.2\t1\nA\t8.2\t1\n"), "");
}

TEST(VariableList, FaultsNameFileAndLine)
{
    EXPECT_EQ(faultOf("A\t8.2\t1\n\nB\t8.2\n"),
              "v.txt:3: a line has three fields divided by tabs: label, width.decimals, number of the old "
              "variable");
    EXPECT_THAT(faultOf("A\t8.2\t1\t5\n"), HasSubstr("v.txt:1: a line has three fields"));
    EXPECT_THAT(faultOf("A 8.2 1\n"), HasSubstr("v.txt:1: a line has three fields"));
    EXPECT_EQ(faultOf("\t8.2\t1\n"), "v.txt:1: the label is empty");
    EXPECT_EQ(faultOf(std::string(61, 'x') + "\t8.2\t1\n"),
              "v.txt:1: the label is longer than 60 characters");
    EXPECT_EQ(faultOf(std::string(60, 'x') + "\t8.2\t1\n"), "");
    EXPECT_EQ(faultOf("a\x01"
                      "b\t8.2\t1\n"),
              "v.txt:1: the label holds a control character");
    for (const char* const format : {"8", "8.", ".2", "8,2", "x", "8.2.1", "", "8.2x"}) {
        EXPECT_THAT(faultOf("A\t" + std::string(format) + "\t1\n"),
                    HasSubstr("v.txt:1: the format \"" + std::string(format) + "\" isn't width.decimals"))
            << format;
    }
    EXPECT_EQ(faultOf("A\t8.5\t1\n"), "v.txt:1: a variable has 0 to 4 decimals, not 5");
    EXPECT_EQ(faultOf("A\t4.2\t1\n"), "v.txt:1: with 2 decimals the width is 5 to 17, not 4");
    EXPECT_EQ(faultOf("A\t18.2\t1\n"), "v.txt:1: with 2 decimals the width is 5 to 17, not 18");
    EXPECT_EQ(faultOf("A\t8.2\t\n"), "v.txt:1: the old variable \"\" doesn't read as a number");
    EXPECT_EQ(faultOf("A\t8.2\t5\n"), "v.txt:1: there is no old variable 5; the collection has 4");
    EXPECT_EQ(faultOf("A\t8.2\t-1\n"), "v.txt:1: there is no old variable -1; the collection has 4");
}

TEST(VariableList, EmptyListIsRefused)
{
    EXPECT_EQ(faultOf(""), "v.txt:1: the list names no variable");
    EXPECT_EQ(faultOf("# nothing\n\n"), "v.txt:2: the list names no variable");
}

TEST(VariableList, FiftyAreAcceptedAndFiftyOneRefused)
{
    std::string text;
    for (int i = 0; i < 50; ++i) text += "A\t8.2\t0\n";
    EXPECT_EQ(faultOf(text), "");
    EXPECT_EQ(faultOf(text + "A\t8.2\t0\n"), "v.txt:51: a collection has at most 50 variables");
}

TEST(VariableList, CutAtEveryByteItIsReadOrRefused)
{
    const std::string text = "\xef\xbb\xbf"
                             "A [\xc2\xb0]\t8.2\t1\r\n# x\nB\t9.3\t0\n";
    for (std::size_t n = 0; n <= text.size(); ++n) (void)faultOf(std::string_view(text).substr(0, n));
}

TEST(VariableList, FileThatCannotBeReadIsNamed)
{
    std::string fault;
    EXPECT_THAT(app::readVariableList("/nowhere/v.txt", 4, fault), IsEmpty());
    EXPECT_EQ(fault, "/nowhere/v.txt can't be read as a list of variables");
    const testing_support::RTemporaryDirectory folder;
    testing_support::writeText(folder.file("v.txt"), "A\t8.2\t1\n");
    EXPECT_THAT(app::readVariableList(folder.file("v.txt"), 4, fault), SizeIs(2));
}

} // namespace
