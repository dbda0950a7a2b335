#include "graphics/layouts.h"

#include <gtest/gtest.h>

#include "graphics/drawing.h"

namespace {

using namespace graphics;

struct RECT {
    float left, right, bottom, top;
};

RECT rectOf(const BOX& b)
{
    return {b.x, b.x + b.width, b.y, b.y + b.height};
}

// With room for the numbers and axis labels left of and below the plot.
RECT withLabels(const BOX& b, float left, float below)
{
    RECT r = rectOf(b);
    r.left -= left;
    r.bottom -= below;
    return r;
}

bool overlap(const RECT& a, const RECT& b)
{
    return a.left < b.right && b.left < a.right && a.bottom < b.top && b.bottom < a.top;
}

GRAPHICSSETUP setupWithVariables(int mode)
{
    GRAPHICSSETUP setup;
    for (auto& windows : setup.windows) {
        for (DATAWINDOW& w : windows) {
            w.xVar = 2;
            w.yVar = -1;
        }
    }
    for (int m = 0; m < modeCount; ++m) applyLayout(setup, defaultLayout(m, false));
    setup.mapBoxes[0] = fullMapBox();
    switchMode(setup, mode);
    return setup;
}

TEST(Layouts, EveryMenuTextIsKnownWhateverItsCase)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    ASSERT_EQ(layoutNames().size(), 13u);
    for (const std::string& name : layoutNames()) EXPECT_TRUE(useLayout(setup, name)) << name;
    EXPECT_TRUE(useLayout(setup, " scatter 2 win "));
    EXPECT_FALSE(useLayout(setup, "SCATTER 3 Win"));
    EXPECT_FALSE(useLayout(setup, ""));
}

TEST(Layouts, WindowCountsAreThoseOfTheNames)
{
    const std::array<int, 14> counts = {2, 6, 2, 6, 2, 3, 5, 6, 1, 2, 4, 6, 9, 12};
    ASSERT_EQ(layoutTemplates().size(), counts.size());
    for (std::size_t i = 0; i < counts.size(); ++i) {
        EXPECT_EQ(layoutTemplates()[i].windows.size(), static_cast<std::size_t>(counts[i])) << i;
    }
    EXPECT_EQ(defaultLayout(modeStation, false).windows.size(), 6u);
    EXPECT_EQ(defaultLayout(modeScatter, false).windows.size(), 6u);
    EXPECT_EQ(defaultLayout(modeSection, false).windows.size(), 6u);
    EXPECT_EQ(defaultLayout(modeSurface, false).windows.size(), 4u);
    EXPECT_EQ(defaultLayout(modeStation, true).windows.size(), 2u);
}

TEST(Layouts, GivenBoxesStandAsGiven)
{
    GRAPHICSSETUP setup = setupWithVariables(modeScatter);
    ASSERT_TRUE(useLayout(setup, "SCATTER 2 Win"));
    const DATAWINDOW& w = setup.window(1);
    EXPECT_FLOAT_EQ(w.boxLen, 13.0f);
    EXPECT_FLOAT_EQ(w.boxOrgX, 14.0f);
    EXPECT_FLOAT_EQ(w.boxHeight, 16.3f);
    EXPECT_FLOAT_EQ(w.boxOrgY, 2.3f);
    ASSERT_TRUE(useLayout(setup, "SCATTER 6 Win"));
    EXPECT_FLOAT_EQ(setup.window(6).boxOrgX, 21.0f);
    EXPECT_FLOAT_EQ(setup.window(6).boxOrgY, 2.2f);
}

TEST(Layouts, WindowsWithTheirLabelsStayOnTheCanvas)
{
    for (const LAYOUTTEMPLATE& layout : layoutTemplates()) {
        const bool maps = layout.mode == modeSurface;
        for (const BOX& box : layout.windows) {
            const RECT r = withLabels(box, maps ? 0.9f : 1.8f, maps ? 0.4f : 1.4f);
            EXPECT_GE(r.left, 0) << layout.menuText;
            EXPECT_LE(r.right, referenceWidth) << layout.menuText;
            EXPECT_GE(r.bottom, 0) << layout.menuText;
            EXPECT_LE(r.top, referenceHeight) << layout.menuText;
        }
    }
}

TEST(Layouts, WindowsWithTheirLabelsDontOverlap)
{
    for (const LAYOUTTEMPLATE& layout : layoutTemplates()) {
        const bool maps = layout.mode == modeSurface;
        for (std::size_t i = 0; i < layout.windows.size(); ++i) {
            const RECT a = withLabels(layout.windows[i], maps ? 0.9f : 1.7f, maps ? 0.4f : 1.4f);
            for (std::size_t k = 0; k < i; ++k) {
                EXPECT_FALSE(
                    overlap(a, withLabels(layout.windows[k], maps ? 0.9f : 1.7f, maps ? 0.4f : 1.4f)))
                    << layout.suffix << " windows " << k + 1 << " and " << i + 1;
            }
        }
    }
}

TEST(Layouts, TheMapStandsFreeOfTheWindows)
{
    for (const LAYOUTTEMPLATE& layout : layoutTemplates()) {
        if (layout.mode == modeSurface) continue;
        const RECT map = withLabels(layout.map, 1.2f, 0.9f);
        EXPECT_GE(map.left, 0);
        EXPECT_GE(map.bottom, 0);
        for (const BOX& box : layout.windows) {
            EXPECT_FALSE(overlap(map, withLabels(box, 1.7f, 1.3f))) << layout.menuText << layout.suffix;
        }
    }
}

TEST(Layouts, ALayoutOfAnotherModeWaitsForThatMode)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    const BOX before = setup.map.box;
    ASSERT_TRUE(useLayout(setup, "SECTION 2 Win"));
    EXPECT_EQ(setup.mode, modeStation);
    EXPECT_FLOAT_EQ(setup.map.box.height, before.height);
    switchMode(setup, modeSection);
    EXPECT_EQ(setup.count(), 2);
    EXPECT_FLOAT_EQ(setup.map.box.height, 5.3f);
}

TEST(Layouts, MapModeHasNoWindowsAndTheWholeCanvas)
{
    GRAPHICSSETUP setup = setupWithVariables(modeMap);
    EXPECT_EQ(setup.count(), 0);
    EXPECT_FLOAT_EQ(setup.map.box.width, fullMapBox().width);
    EXPECT_EQ(setup.map.toDraw, 1);
}

TEST(Layouts, AWindowWithoutVariablesDoesntExist)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    setup.window(2).xVar = 0;
    ASSERT_TRUE(useLayout(setup, "STATION 2 Win"));
    EXPECT_EQ(setup.window(1).exists, 1);
    EXPECT_EQ(setup.window(2).exists, 0);
    EXPECT_TRUE(setWindowVariables(setup, 2, 3, -1, 0));
    EXPECT_EQ(setup.window(2).exists, 1);
    EXPECT_EQ(setup.window(2).toDraw, 1);
    EXPECT_FALSE(setWindowVariables(setup, 3, 3, -1, 0));
    EXPECT_FALSE(setWindowVariables(setup, 0, 3, -1, 0));
}

// --- twins

TEST(Twins, RangeGoesToEveryAxisOfTheVariable)
{
    GRAPHICSSETUP setup = setupWithVariables(modeScatter);
    setup.window(1).zVar = 1;
    setup.window(2).xVar = 5;
    setup.window(2).yVar = 6;
    markAllToDraw(setup);
    for (int n = 1; n <= setup.count(); ++n) setup.window(n).toDraw = 0;
    EXPECT_TRUE(ApplyRangeToTwins(setup, 1, 100, 500));
    EXPECT_FLOAT_EQ(setup.window(1).zMin, 100);
    EXPECT_FLOAT_EQ(setup.window(1).zMax, 500);
    EXPECT_EQ(setup.window(3).toDraw, 1);
    EXPECT_EQ(setup.window(2).toDraw, 0); // has no such axis
    EXPECT_FLOAT_EQ(setup.window(2).yMax, 1);
}

TEST(Twins, AReversedAxisGetsThePairExchanged)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    EXPECT_TRUE(ApplyRangeToTwins(setup, 1, 0, 5000));
    EXPECT_FLOAT_EQ(setup.window(1).yMin, 5000);
    EXPECT_FLOAT_EQ(setup.window(1).yMax, 0);
}

TEST(Twins, AnEqualRangeChangesNothing)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    EXPECT_TRUE(ApplyRangeToTwins(setup, 1, 0, 5000));
    for (int n = 1; n <= setup.count(); ++n) setup.window(n).toDraw = 0;
    EXPECT_FALSE(ApplyRangeToTwins(setup, 1, 0, 5000));
    EXPECT_EQ(setup.window(1).toDraw, 0);
}

TEST(Twins, AWindowThatDoesntExistIsLeftAlone)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    setup.window(1).exists = setup.window(1).toDraw = 0;
    EXPECT_TRUE(ApplyRangeToTwins(setup, 1, 0, 5000));
    EXPECT_FLOAT_EQ(setup.window(1).yMin, 0);
    EXPECT_EQ(setup.window(1).toDraw, 0);
}

TEST(Twins, VariableZeroIsNoAxis)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    EXPECT_FALSE(ApplyRangeToTwins(setup, 0, 0, 5000));
}

TEST(MapWindows, OnlyTheMapAndSurfaceWindowsOfLongitudeAndLatitude)
{
    GRAPHICSSETUP setup = setupWithVariables(modeStation);
    setup.window(1).xVar = 1;
    setup.window(1).yVar = 2;
    EXPECT_TRUE(IsMapWindow(setup, 0));
    EXPECT_FALSE(IsMapWindow(setup, 1));
    switchMode(setup, modeSurface);
    EXPECT_FALSE(IsMapWindow(setup, 1));
    setup.window(1).xVar = 1;
    setup.window(1).yVar = 2;
    EXPECT_TRUE(IsMapWindow(setup, 1));
    EXPECT_FALSE(IsMapWindow(setup, 20));
}

TEST(Modes, NamesAndNumbers)
{
    EXPECT_STREQ(modeName(modeMap), "MAP");
    EXPECT_STREQ(modeName(modeSurface), "SURFACE");
    EXPECT_STREQ(modeName(4), "");
    EXPECT_EQ(modeByName("scatter"), modeScatter);
    EXPECT_EQ(modeByName("MAP"), modeMap);
    EXPECT_FALSE(modeByName("PLAN").has_value());
}

} // namespace
