#include "collection/sortkey.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

using collection::sortKey;

TEST(SortKey, IsTheNumberThatTheLabelBeginsWith)
{
    EXPECT_EQ(sortKey("12"), 12);
    EXPECT_EQ(sortKey("12A"), 12);
    EXPECT_EQ(sortKey(" 007 b"), 7);
    EXPECT_EQ(sortKey("3.9"), 3);
    EXPECT_EQ(sortKey("-5"), -5);
    EXPECT_EQ(sortKey("+5"), 5);
}

TEST(SortKey, OtherLabelsAreZero)
{
    EXPECT_EQ(sortKey("A12"), 0);
    EXPECT_EQ(sortKey(""), 0);
    EXPECT_EQ(sortKey("-"), 0);
    EXPECT_EQ(sortKey("+-5"), 0);
    EXPECT_EQ(sortKey("- 5"), 0);
}

TEST(SortKey, LongNumbersKeepTheirOrder)
{
    EXPECT_LT(sortKey("9999999999"), sortKey("10000000000"));
    EXPECT_EQ(sortKey("99999999999999999999"), std::numeric_limits<std::int64_t>::max());
    EXPECT_LT(sortKey("-99999999999999999999"), sortKey("-9"));
}

} // namespace
