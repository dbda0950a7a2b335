#include "app/setupvariables.h"

#include <gtest/gtest.h>

namespace {

using graphics::modeScatter;
using graphics::modeSection;
using graphics::modeStation;

// Two windows in each mode; those of the defaults show variable 1 against 2.
class SetupVariables : public testing::Test {
protected:
    SetupVariables()
    {
        for (int mode = 0; mode < graphics::modeCount; ++mode) {
            const auto m = static_cast<std::size_t>(mode);
            setup.windowCount[m] = 2;
            for (std::size_t i = 0; i < 3; ++i) set(defaults, mode, i, 1, 2, 0);
            ranged[m].set();
        }
    }
    static void set(graphics::GRAPHICSSETUP& target, int mode, std::size_t i, int x, int y, int z)
    {
        graphics::DATAWINDOW& window = target.windows[static_cast<std::size_t>(mode)][i];
        window.xVar = x;
        window.yVar = y;
        window.zVar = z;
        window.exists = 1;
    }
    const graphics::DATAWINDOW& window(int mode, std::size_t i)
    {
        return setup.windows[static_cast<std::size_t>(mode)][i];
    }
    bool isRanged(int mode, std::size_t number)
    {
        return ranged[static_cast<std::size_t>(mode)].test(number);
    }

    graphics::GRAPHICSSETUP setup, defaults;
    app::RANGEDWINDOWS ranged;
};

TEST_F(SetupVariables, WindowsFollowTheirVariables)
{
    set(setup, modeScatter, 0, 2, -1, 3);
    const std::vector<int> numbers = {0, 4, 1, 2};
    app::followVariables(setup, numbers, defaults, ranged);
    EXPECT_EQ(window(modeScatter, 0).xVar, 1);
    EXPECT_EQ(window(modeScatter, 0).yVar, -4);
    EXPECT_EQ(window(modeScatter, 0).zVar, 2);
    EXPECT_TRUE(isRanged(modeScatter, 1));
}

TEST_F(SetupVariables, WindowThatLostAnAxisTakesTheDefault)
{
    set(setup, modeStation, 0, 3, -1, 0);
    set(setup, modeStation, 1, 1, -3, 2);
    const std::vector<int> numbers = {0, 1, 2, 0};
    app::followVariables(setup, numbers, defaults, ranged);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(window(modeStation, i).xVar, 1);
        EXPECT_EQ(window(modeStation, i).yVar, 2);
        EXPECT_EQ(window(modeStation, i).exists, 1);
        EXPECT_FALSE(isRanged(modeStation, i + 1));
    }
}

TEST_F(SetupVariables, LostColourIsNone)
{
    set(setup, modeScatter, 0, 1, 2, 3);
    const std::vector<int> numbers = {0, 1, 2, 0};
    app::followVariables(setup, numbers, defaults, ranged);
    EXPECT_EQ(window(modeScatter, 0).xVar, 1);
    EXPECT_EQ(window(modeScatter, 0).zVar, 0);
    EXPECT_TRUE(isRanged(modeScatter, 1));
}

TEST_F(SetupVariables, WindowWithoutVariablesTakesTheDefaultIfItIsInTheLayout)
{
    const std::vector<int> numbers = {0, 1};
    app::followVariables(setup, numbers, defaults, ranged);
    EXPECT_EQ(window(modeScatter, 1).yVar, 2);
    EXPECT_EQ(window(modeScatter, 1).exists, 1);
    EXPECT_EQ(window(modeScatter, 2).exists, 0); // the layout has two
}

TEST_F(SetupVariables, NumberBeyondTheOldListIsGone)
{
    set(setup, modeScatter, 0, 9, 1, 0);
    const std::vector<int> numbers = {0, 1};
    app::followVariables(setup, numbers, defaults, ranged);
    EXPECT_EQ(window(modeScatter, 0).xVar, 1);
    EXPECT_EQ(window(modeScatter, 0).yVar, 2);
}

TEST_F(SetupVariables, SectionWindowsAreMadeAnew)
{
    set(setup, modeSection, 0, 0, -1, 7);
    set(defaults, modeSection, 0, 0, -1, 2);
    const std::vector<int> numbers = {0, 1, 2};
    app::followVariables(setup, numbers, defaults, ranged);
    EXPECT_EQ(window(modeSection, 0).zVar, 2);
    EXPECT_EQ(window(modeSection, 0).exists, 1);
}

TEST_F(SetupVariables, NothingToShowIsNoWindow)
{
    set(setup, modeScatter, 0, 2, 1, 0);
    const std::vector<int> numbers = {0, 1, 0};
    app::followVariables(setup, numbers, graphics::GRAPHICSSETUP{}, ranged);
    EXPECT_EQ(window(modeScatter, 0).exists, 0);
}

} // namespace
