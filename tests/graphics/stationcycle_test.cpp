#include <array>

#include <gtest/gtest.h>

#include "graphics/plots.h"

namespace {

using graphics::RStationCycle;

TEST(StationCycle, ColorsFollowTheFixedListAndBeginAnew)
{
    constexpr std::array<int, 16> colors = {1, 4, 2, 5, 8, 6, 3, 9, 12, 13, 10, 11, 14, 0, 15, 4};
    RStationCycle cycle;
    for (int round = 0; round < 2; ++round) {
        for (const int color : colors) {
            cycle.next();
            EXPECT_EQ(cycle.color, color);
        }
    }
}

TEST(StationCycle, FillTogglesWheneverTheSymbolWraps)
{
    RStationCycle cycle;
    for (int i = 0; i < 32; ++i) {
        cycle.next();
        EXPECT_EQ(cycle.symbol, i % 8 + 1);
        EXPECT_EQ(cycle.fill, i / 8 % 2 == 1) << i;
    }
}

} // namespace
