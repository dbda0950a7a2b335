#include <gtest/gtest.h>

#include "graphics/ink.h"
#include "graphics/plots.h"
#include "graphics/scenes.h"

namespace graphics {
namespace {

using selection::SELECTEDSTATION;

// Pixels that dots for these stations leave on an empty page.
int inkOf(const std::vector<SELECTEDSTATION>& stations, double lonMin, double lonMax)
{
    testing_support::useDevice(20, 15, 72);
    GRAPHICSSETUP setup;
    setup.map.geometry.lonMin = lonMin;
    setup.map.geometry.lonMax = lonMax;
    setup.map.geometry.lon0 = (lonMin + lonMax) / 2;
    QImage image(drawState().device.widthPx, drawState().device.heightPx, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        DrawStationDots(&painter, setup, stations, 0.23f, 1);
    }
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) ink += image.pixel(x, y) != qRgb(255, 255, 255) ? 1 : 0;
    }
    return ink;
}

TEST(StationDots, StandOnTheMapWhateverTheFormOfTheLongitude)
{
    const int one = inkOf({{1, 0, 0, 330, 10}}, -60, 60);
    EXPECT_GT(one, 10);
    EXPECT_EQ(inkOf({{1, 0, 0, -30, 10}}, -60, 60), one);
    EXPECT_GT(inkOf({{1, 0, 0, 330, 10}, {2, 0, 0, 20, -40}}, -60, 60), one);
}

TEST(StationDots, OutsideTheDomainThereAreNone)
{
    EXPECT_EQ(inkOf({{1, 0, 0, 180, 10}}, -60, 60), 0);
    EXPECT_EQ(inkOf({}, -60, 60), 0);
}

} // namespace
} // namespace graphics
