#include "common/text.h"

#include <gtest/gtest.h>

#include "common/textcoding.h"

namespace common {
namespace {

TEST(TrimLabel, NumberLosesTrailingZerosAndPoint)
{
    EXPECT_EQ(trimLabel("12.50"), "12.5");
    EXPECT_EQ(trimLabel(" 12.000  "), "12");
    EXPECT_EQ(trimLabel("-0.0"), "-0");
    EXPECT_EQ(trimLabel("100"), "100");
}

TEST(TrimLabel, TextKeepsItsZeros)
{
    EXPECT_EQ(trimLabel("A12.50"), "A12.50");
    EXPECT_EQ(trimLabel("\t\x7f A 1.0"), "A 1.0");
    EXPECT_EQ(trimLabel(" \x01"), "");
}

TEST(TakeLine, LosesItsEndAndIsEmptyBehindTheLast)
{
    std::string_view rest = "a\r\n\nb\rc";
    EXPECT_EQ(takeLine(rest), "a");
    EXPECT_EQ(takeLine(rest), "");
    EXPECT_EQ(takeLine(rest), "b\rc");
    EXPECT_EQ(rest, "");
    EXPECT_EQ(takeLine(rest), "");
}

TEST(SplitFields, BlankSeparatorTakesRunsAsOne)
{
    std::string_view fields[4];
    EXPECT_EQ(splitFields("  a   b\r\nc", ' ', fields), 2);
    EXPECT_EQ(fields[1], "b");
}

TEST(SplitFields, OtherSeparatorsMakeEmptyFields)
{
    std::string_view fields[4];
    EXPECT_EQ(splitFields("a,,c", ',', fields), 3);
    EXPECT_EQ(fields[1], "");
    EXPECT_EQ(splitFields("", ',', fields), 0);
    EXPECT_EQ(splitFields("1,2,3,4,5,6", ',', fields), 4);
    EXPECT_EQ(fields[3], "4");
}

TEST(TakeNumber, StopsBehindTheNumber)
{
    std::string_view rest = "  +1.5e2x";
    float value = 0;
    ASSERT_TRUE(takeFloat(rest, value));
    EXPECT_EQ(value, 150.0f);
    EXPECT_EQ(rest, "x");
    EXPECT_FALSE(takeFloat(rest, value));
    EXPECT_EQ(rest, "x");
}

TEST(TakeNumber, RefusesWhatIsNoNumberOfTheField)
{
    float value = 7;
    for (const char* text : {"nan", "inf", "-inf", "1e999", "+-1", "", "."}) {
        std::string_view rest = text;
        EXPECT_FALSE(takeFloat(rest, value)) << text;
    }
    EXPECT_EQ(value, 7);
    EXPECT_FALSE(parseInt("12A"));
    EXPECT_EQ(parseInt(" 12 "), 12);
    EXPECT_FALSE(parseInt("99999999999"));
}

TEST(CopyText, CutsAtACharactersBorder)
{
    char field[5];
    copyText(field, "abc\xC3\xA9"); // the two bytes of one letter do not fit in four
    EXPECT_EQ(fieldText(field), "abc");
    copyText(field, "abcd\xE9"); // Latin-1
    EXPECT_EQ(fieldText(field), "abcd");
    copyText(field, "ab");
    EXPECT_EQ(field[4], '\0');
    EXPECT_EQ(field[3], '\0');
}

TEST(CutExtension, LeavesPointsOfDirectories)
{
    EXPECT_EQ(cutExtension("/a.b/c"), "/a.b/c");
    EXPECT_EQ(cutExtension("/a.b/c.var"), "/a.b/c");
}

TEST(TextCoding, LabelsAreLatin1WhereTheyFit)
{
    EXPECT_EQ(labelFromFile("Temperature [\xC2\xB0"
                            "C]",
                            true),
              "Temperature [\xB0"
              "C]");
    EXPECT_EQ(labelFromFile("\xCE\xB8", true), "\xCE\xB8"); // theta does not fit: UTF-8
    EXPECT_EQ(labelFromFile("[\xB0"
                            "C]",
                            false),
              "[\xB0"
              "C]");
    EXPECT_EQ(decodeLabel("[\xB0"
                          "C]"),
              QString::fromUtf8("[\xC2\xB0"
                                "C]"));
    EXPECT_EQ(labelToUtf8("[\xB0"
                          "C]"),
              "[\xC2\xB0"
              "C]");
    EXPECT_EQ(labelToLatin1("\xCE\xB8"), "?");
}

TEST(TextCoding, Latin1ThatReadsAsUtf8ComesBackUnchanged)
{
    const QString text = QString::fromLatin1("\xC3\xA9");
    EXPECT_EQ(decodeLabel(encodeLabel(text, 20)), text);
}

TEST(TextCoding, RefusesOverlongAndCutUtf8)
{
    EXPECT_FALSE(isValidUtf8("\xC0\x80"));
    EXPECT_FALSE(isValidUtf8("\xE0\x80\x80"));
    EXPECT_FALSE(isValidUtf8("\xED\xA0\x80"));
    EXPECT_FALSE(isValidUtf8("\xC3"));
    EXPECT_TRUE(isValidUtf8("\xE2\x82\xAC"));
}

} // namespace
} // namespace common
