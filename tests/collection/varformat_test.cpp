#include "collection/varformat.h"

#include <utility>

#include <gtest/gtest.h>

namespace collection {
namespace {

std::pair<int, int> clamped(int width, int decimals)
{
    clampFormat(width, decimals);
    return {width, decimals};
}

TEST(VariableFormat, StaysWithinItsLimits)
{
    EXPECT_EQ(clamped(8, 2), std::pair(8, 2));
    EXPECT_EQ(clamped(99, 9), std::pair(19, 4));
    EXPECT_EQ(clamped(-1, -1), std::pair(3, 0));
    EXPECT_EQ(clamped(2000000000, 2000000000), std::pair(19, 4));
}

TEST(VariableFormat, IsOneWithinTheLimitsOnly)
{
    EXPECT_TRUE(isFormat(3, 0) && isFormat(15, 0) && isFormat(7, 4) && isFormat(19, 4));
    EXPECT_FALSE(isFormat(2, 0) || isFormat(16, 0) || isFormat(6, 4) || isFormat(20, 4) || isFormat(8, 5));
}

} // namespace
} // namespace collection
