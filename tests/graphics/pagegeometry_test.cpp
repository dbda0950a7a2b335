#include "graphics/pagegeometry.h"

#include <gtest/gtest.h>

namespace {

using namespace graphics;

constexpr double width = 29.0, height = 20.2;
const EXTENT whole{0, 0, width, height};

PSSETTINGS settings(bool landscape, bool fit)
{
    PSSETTINGS s;
    s.landscape = landscape;
    s.fitToPage = fit;
    return s;
}

TEST(PageGeometry, WithoutFittingTheOrientationsTableHolds)
{
    const PAGEGEOMETRY landscape = pageGeometry(settings(true, false), whole, width, height);
    EXPECT_DOUBLE_EQ(landscape.scale, 0.9);
    EXPECT_DOUBLE_EQ(landscape.xOffset, 2);
    EXPECT_DOUBLE_EQ(landscape.yOffset, 2);
    const PAGEGEOMETRY portrait = pageGeometry(settings(false, false), whole, width, height);
    EXPECT_DOUBLE_EQ(portrait.scale, 0.6);
    EXPECT_DOUBLE_EQ(portrait.xOffset, 4);
    EXPECT_DOUBLE_EQ(portrait.yOffset, 15);
}

TEST(PageGeometry, WithoutFittingALargerCanvasIsScaledToTheReference)
{
    const PAGEGEOMETRY page = pageGeometry(settings(true, false), whole, 2 * width, height);
    EXPECT_NEAR(page.scale, 0.45, 1e-6);
}

TEST(PageGeometry, AFittedRegionIsCentredInThePageAreaAndFillsOneSide)
{
    for (const bool landscape : {true, false}) {
        for (const EXTENT& region : {whole, EXTENT{3, 4, 7, 18}, EXTENT{0.5, 10, 28, 12}}) {
            const PAGEGEOMETRY page = pageGeometry(settings(landscape, true), region, width, height);
            const EXTENT points = pagePoints(page, region);
            const double right = landscape ? 800 : 568, top = landscape ? 560 : 800;
            EXPECT_NEAR(points.left - 40, right - points.right, 1e-6);
            EXPECT_NEAR(points.bottom - 40, top - points.top, 1e-6);
            const double slack = std::min(points.left - 40, points.bottom - 40);
            EXPECT_NEAR(slack, 0, 1e-6);
        }
    }
}

TEST(PageGeometry, ALandscapeBoxIsTurned)
{
    PAGEGEOMETRY page; // landscape
    const PAGEBOX box = boundingBox(page, {100, 50, 700, 400});
    EXPECT_EQ(box.left, 198);
    EXPECT_EQ(box.right, 548);
    EXPECT_EQ(box.bottom, 100);
    EXPECT_EQ(box.top, 700);
}

TEST(PageGeometry, BoxesStayOnThePage)
{
    PAGEGEOMETRY page;
    const PAGEBOX turned = boundingBox(page, {-5, -20, 900, 700});
    EXPECT_EQ(turned.left, 0);
    EXPECT_EQ(turned.bottom, 0);
    EXPECT_EQ(turned.right, 590);
    EXPECT_EQ(turned.top, 835);
    page.landscape = false;
    const PAGEBOX upright = boundingBox(page, {-5, -20, 900, 900});
    EXPECT_EQ(upright.left, 0);
    EXPECT_EQ(upright.bottom, 0);
    EXPECT_EQ(upright.right, 590);
    EXPECT_EQ(upright.top, 835);
}

TEST(PageGeometry, ABoxHoldsBrokenPoints)
{
    PAGEGEOMETRY page;
    page.landscape = false;
    const PAGEBOX box = boundingBox(page, {10.4, 20.0, 100.2, 200.0});
    EXPECT_EQ(box.left, 10);
    EXPECT_EQ(box.bottom, 20);
    EXPECT_EQ(box.right, 101);
    EXPECT_EQ(box.top, 200);
}

TEST(PageGeometry, AnEmptyRegionKeepsTheTable)
{
    const PAGEGEOMETRY page = pageGeometry(settings(true, true), EXTENT{}, width, height);
    EXPECT_DOUBLE_EQ(page.scale, 0.9);
}

TEST(Extents, AnEmptyOneAddsNothing)
{
    const EXTENT a{1, 2, 3, 4};
    EXPECT_DOUBLE_EQ(unite(EXTENT{}, a).left, 1);
    EXPECT_DOUBLE_EQ(unite(a, EXTENT{}).top, 4);
    EXPECT_DOUBLE_EQ(unite(a, EXTENT{0, 3, 2, 9}).left, 0);
    EXPECT_DOUBLE_EQ(unite(a, EXTENT{0, 3, 2, 9}).bottom, 2);
}

TEST(Extents, TheCanvasIsTheLimit)
{
    drawState() = {};
    const EXTENT e = clampToCanvas(grow({0.1, 0.1, 28.9, 20.1}, 0.35));
    EXPECT_DOUBLE_EQ(e.left, 0);
    EXPECT_DOUBLE_EQ(e.bottom, 0);
    EXPECT_NEAR(e.right, width, 1e-5);
    EXPECT_NEAR(e.top, height, 1e-5);
}

} // namespace
