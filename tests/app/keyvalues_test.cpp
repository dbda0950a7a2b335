#include "app/keyvalues.h"

#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto pairWords = std::to_array<std::string_view>({"assoc"});
constexpr auto bareWords = std::to_array<std::string_view>({"reset"});

struct READ {
    std::string wrong;
    std::vector<std::string> pairs; // key|value
};

READ read(std::string_view text)
{
    std::vector<app::KEYVALUE> pairs;
    READ result{app::readKeyValues(text, {pairWords, bareWords}, pairs), {}};
    for (const app::KEYVALUE& pair : pairs) result.pairs.push_back(pair.key + "|" + pair.value);
    return result;
}

std::vector<std::string> words(std::string_view text)
{
    std::vector<std::string> result;
    EXPECT_EQ(app::readWords(text, result), "");
    return result;
}

TEST(KeyValues, AreDividedByBlanksAndCommas)
{
    EXPECT_THAT(read("a=1 b=2,c=3 , d=4\te=5").pairs, ElementsAre("a|1", "b|2", "c|3", "d|4", "e|5"));
    EXPECT_THAT(read(" ,a=1,, b=2, ").pairs, ElementsAre("a|1", "b|2"));
    EXPECT_THAT(read("").pairs, IsEmpty());
}

TEST(KeyValues, BlanksMayStandBesideTheEqualsSign)
{
    EXPECT_THAT(read("a = 1 b= 2 c =3").pairs, ElementsAre("a|1", "b|2", "c|3"));
}

TEST(KeyValues, QuotedValuesHoldWhatDivides)
{
    EXPECT_THAT(read("cruise=\"A, B = C\" type=B").pairs, ElementsAre("cruise|A, B = C", "type|B"));
    EXPECT_THAT(read("sample=\"Temperature [°C]\":2:10").pairs, ElementsAre("sample|Temperature [°C]:2:10"));
}

TEST(KeyValues, DoubledQuoteIsAQuote)
{
    EXPECT_THAT(read("a=\"say \"\"so\"\"\"").pairs, ElementsAre("a|say \"so\""));
}

TEST(KeyValues, ValueMayBeEmpty)
{
    EXPECT_THAT(read("a=,b=\"\",c=").pairs, ElementsAre("a|", "b|", "c|"));
}

TEST(KeyValues, OpenQuoteIsRefused)
{
    EXPECT_EQ(read("a=\"b c").wrong, "the quote in \"b c isn't closed");
    EXPECT_THAT(read("assoc \"b\"=\"c d").wrong, HasSubstr("isn't closed"));
}

TEST(KeyValues, WordWithoutAValueIsRefused)
{
    EXPECT_EQ(read("a=1 b").wrong, "\"b\" stands without \"=\" and a value");
    EXPECT_EQ(read("sample=Temperature [°C]:2").wrong, "\"[°C]:2\" stands without \"=\" and a value");
    EXPECT_EQ(read("assoc").wrong, "\"assoc\" stands without \"=\" and a value");
}

TEST(KeyValues, ValueWithoutAWordIsRefused)
{
    EXPECT_EQ(read("a=1 =2").wrong, "a word is missing in front of =2");
    EXPECT_EQ(read("\"a\"=2").wrong, "a word is missing in front of \"a\"=2");
}

// Otherwise "missing=  sep=;" would make "sep=;" the missing value.
TEST(KeyValues, SecondEqualsSignMustBeQuoted)
{
    EXPECT_EQ(read("a= b=1").wrong, "the value b=1 of \"a\" holds \"=\"; it belongs in quotes");
}

TEST(KeyValues, BareWordStandsAlone)
{
    EXPECT_THAT(read("reset,a=1").pairs, ElementsAre("reset|", "a|1"));
    EXPECT_THAT(read("a=1 reset").pairs, ElementsAre("a|1", "reset|"));
    EXPECT_EQ(read("reset=1").wrong, "\"reset\" takes no value");
}

TEST(KeyValues, PairAsAValueKeepsItsQuotes)
{
    const auto expected = ElementsAre("assoc|\"a b\"=\"c d\":linear:2:0", "x|1");
    EXPECT_THAT(read("assoc \"a b\"=\"c d\":linear:2:0 x=1").pairs, expected);
    EXPECT_THAT(read("assoc=\"a b\"=\"c d\":linear:2:0,x=1").pairs, expected);
    EXPECT_THAT(read("assoc \"a b\" = \"c d\":linear:2:0 , x=1").pairs, expected);
    EXPECT_THAT(read("assoc a=b assoc c=d").pairs, ElementsAre("assoc|a=b", "assoc|c=d"));
}

TEST(Words, AreDividedByBlanksAndCommas)
{
    EXPECT_THAT(words("1,2  \"Salinity [psu]\" 4,"), ElementsAre("1", "2", "Salinity [psu]", "4"));
    EXPECT_THAT(words(" "), IsEmpty());
    std::vector<std::string> none;
    EXPECT_THAT(app::readWords("1 \"2", none), HasSubstr("isn't closed"));
}

TEST(Fields, EndAtACommaOutsideQuotes)
{
    std::string_view rest = " \"a,b.txt\" , no data,1 2";
    std::string field;
    EXPECT_EQ(app::takeField(rest, field), "");
    EXPECT_EQ(field, "a,b.txt");
    EXPECT_EQ(app::takeField(rest, field), "");
    EXPECT_EQ(field, "no data");
    EXPECT_EQ(rest, "1 2");
    EXPECT_EQ(app::takeField(rest, field), "");
    EXPECT_EQ(field, "1 2");
    EXPECT_EQ(app::takeField(rest, field), "");
    EXPECT_EQ(field, "");
    rest = "\"a";
    EXPECT_THAT(app::takeField(rest, field), HasSubstr("isn't closed"));
}

TEST(Quotes, GoOnlyFromAroundTheWhole)
{
    EXPECT_EQ(app::withoutQuotes(" \"a b\" "), "a b");
    EXPECT_EQ(app::withoutQuotes("a \"b\""), "a \"b\"");
    EXPECT_EQ(app::withoutQuotes("\""), "\"");
    EXPECT_EQ(app::withoutQuotes("\"\""), "");
}

} // namespace
