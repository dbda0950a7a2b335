#include "selection/wildcard.h"

#include <string>

#include <gtest/gtest.h>

namespace selection {
namespace {

TEST(Wildcard, TheWholeLabelMustMatch)
{
    EXPECT_TRUE(matchesWildcard("A20", "A20"));
    EXPECT_FALSE(matchesWildcard("A20", "A201"));
    EXPECT_FALSE(matchesWildcard("A20", "a20"));
    EXPECT_TRUE(matchesWildcard("", ""));
    EXPECT_FALSE(matchesWildcard("", "x"));
}

TEST(Wildcard, AsteriskStandsForAnyText)
{
    EXPECT_TRUE(matchesWildcard("*", ""));
    EXPECT_TRUE(matchesWildcard("A*", "A"));
    EXPECT_TRUE(matchesWildcard("*20", "A20"));
    EXPECT_TRUE(matchesWildcard("A*2*", "A1234"));
    EXPECT_TRUE(matchesWildcard("*ab*ab", "abxabab"));
    EXPECT_FALSE(matchesWildcard("*ab*ab", "xabx"));
}

TEST(Wildcard, QuestionMarkStandsForOneCharacter)
{
    EXPECT_TRUE(matchesWildcard("A??", "A20"));
    EXPECT_FALSE(matchesWildcard("A??", "A2"));
    EXPECT_TRUE(matchesWildcard("?", "é"));                    // two bytes of UTF-8
    EXPECT_TRUE(matchesWildcard("M\xE9t?or", "M\xE9t\xE9or")); // single bytes
}

TEST(Wildcard, BracketSets)
{
    EXPECT_TRUE(matchesWildcard("A[0-9]x", "A5x"));
    EXPECT_FALSE(matchesWildcard("A[0-9]x", "Abx"));
    EXPECT_TRUE(matchesWildcard("A[!0-9]", "Ab"));
    EXPECT_TRUE(matchesWildcard("A[^0-9]", "Ab"));
    EXPECT_FALSE(matchesWildcard("A[!0-9]", "A1"));
    EXPECT_TRUE(matchesWildcard("[]x]", "]"));
    EXPECT_TRUE(matchesWildcard("[a-]", "-"));
    EXPECT_TRUE(matchesWildcard("*[ab]*", "xxbxx"));
}

TEST(Wildcard, ABracketWithoutEndIsItself)
{
    EXPECT_TRUE(matchesWildcard("A[", "A["));
    EXPECT_TRUE(matchesWildcard("A[x", "A[x"));
    EXPECT_FALSE(matchesWildcard("A[x", "Ax"));
}

TEST(Wildcard, ManyAsterisksEndSoon)
{
    std::string pattern;
    for (int i = 0; i < 20; ++i) pattern += "*a";
    EXPECT_FALSE(matchesWildcard(pattern + "b", std::string(5000, 'a')));
}

} // namespace
} // namespace selection
