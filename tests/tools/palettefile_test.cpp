#include "palettefile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace tools;

const std::vector<MAPPOINT> ramp = {{0, {0, 0, 0}}, {50, {1, 0, 0}}, {100, {1, 1, 1}}};

TEST(ParseColorMap, CommentsAndTheMappingLineAreSkipped)
{
    std::string error;
    const auto map = parseColorMap("! a map\n\nRGB_Mapping Percent\n 0 0 0 0 ! black\n100 100 50 0\n", error);
    ASSERT_TRUE(map) << error;
    ASSERT_EQ(map->size(), 2u);
    EXPECT_DOUBLE_EQ((*map)[1].color.green, 0.5);
}

TEST(ParseColorMap, OtherMappingsAndDamageAreRefused)
{
    std::string error;
    EXPECT_FALSE(parseColorMap("RGB_Mapping By_value\n0 0 0 0\n10 1 1 1\n", error));
    EXPECT_NE(error.find("line 1"), std::string::npos);
    EXPECT_FALSE(parseColorMap("0 0 0 0\n0 1 1 1\n", error)); // not rising
    EXPECT_NE(error.find("line 2"), std::string::npos);
    EXPECT_FALSE(parseColorMap("0 0 0 0\n100 1 1\n", error));
    EXPECT_FALSE(parseColorMap("0 0 0 0\n100 1 1 101\n", error));
    EXPECT_FALSE(parseColorMap("0 0 0 0\n100 1 1 1 1\n", error));
    EXPECT_FALSE(parseColorMap("", error));
    EXPECT_FALSE(error.empty());
}

TEST(ColorAt, LinearBetweenAndFlatBeyond)
{
    EXPECT_DOUBLE_EQ(colorAt(ramp, 25).red, 0.5);
    EXPECT_DOUBLE_EQ(colorAt(ramp, 75).green, 0.5);
    EXPECT_DOUBLE_EQ(colorAt(ramp, -5).red, 0);
    EXPECT_DOUBLE_EQ(colorAt(ramp, 105).blue, 1);
}

TEST(Palette, FixedRolesAreFilled)
{
    const auto colors = paletteAround(ramp);
    const auto is = [&](int index, double red, double green, double blue) {
        const COLOR& c = colors[std::size_t(index)];
        return c.red == red && c.green == green && c.blue == blue;
    };
    EXPECT_TRUE(is(0, 0, 0, 0));
    EXPECT_TRUE(is(15, 1, 1, 1));
    EXPECT_TRUE(is(31, 1, 1, 1));
    EXPECT_TRUE(is(33, 0, 0, 0));
    EXPECT_TRUE(is(143, 1, 1, 1));
    EXPECT_NEAR(colors[33 + 55].red, 1, 1e-12); // the middle of the scale is the middle of the map
    for (int i = 16; i < 30; ++i)               // greys, dark to light
        EXPECT_LT(colors[std::size_t(i)].red, colors[std::size_t(i) + 1].red);
    for (int i = 145; i < 159; ++i) // shallow to deep
        EXPECT_GT(lightness(colors[std::size_t(i)]), lightness(colors[std::size_t(i) + 1]));
    EXPECT_GT(distance(colors[160], colors[161]), 0.03);
}

TEST(Palette, CapsAreApartFromTheScalesEnds)
{
    for (const std::vector<MAPPOINT>& scale : {ramp, rainbow(), {{0, {1, 1, 1}}, {100, {0, 0, 0}}}}) {
        const auto colors = paletteAround(scale);
        EXPECT_GT(distance(colors[32], colors[33]), 0.1);
        EXPECT_GT(distance(colors[144], colors[143]), 0.1);
    }
}

TEST(Palette, StationCurvesAreApartFromEachOtherAndFromPaper)
{
    constexpr int order[] = {1, 4, 2, 5, 8, 6, 3, 9, 12, 13, 10, 11, 14};
    const auto colors = paletteAround(ramp);
    for (const int a : order) {
        EXPECT_GT(distance(colors[std::size_t(a)], colors[31]), 0.25) << a;
        for (const int b : order) {
            if (a == b) continue;
            EXPECT_GT(distance(colors[std::size_t(a)], colors[std::size_t(b)]), 0.07) << a << " " << b;
        }
    }
    for (std::size_t i = 0; i + 1 < std::size(order); ++i)
        EXPECT_GT(distance(colors[std::size_t(order[i])], colors[std::size_t(order[i + 1])]), 0.15)
            << order[i];
}

TEST(Rainbow, StepsAreEvenAndLightnessHasOneCrest)
{
    const auto map = rainbow();
    std::vector<COLOR> scale;
    for (int i = 0; i < scaleSteps; ++i) scale.push_back(colorAt(map, 100.0 * i / (scaleSteps - 1)));
    double least = 1, most = 0;
    int turns = 0;
    for (std::size_t i = 1; i < scale.size(); ++i) {
        least = std::min(least, distance(scale[i - 1], scale[i]));
        most = std::max(most, distance(scale[i - 1], scale[i]));
        if (i < 2) continue;
        const double before = lightness(scale[i - 1]) - lightness(scale[i - 2]);
        const double after = lightness(scale[i]) - lightness(scale[i - 1]);
        turns += before > 0 && after <= 0 ? 1 : 0;
    }
    EXPECT_LT(most, 1.15 * least);
    EXPECT_EQ(turns, 1);
}

TEST(Oklab, LightnessOfTheEnds)
{
    EXPECT_NEAR(lightness({1, 1, 1}), 1, 1e-6);
    EXPECT_NEAR(lightness({0, 0, 0}), 0, 1e-9);
    EXPECT_NEAR(lightness({1, 0, 0}), 0.62796, 1e-4); // sRGB red
}

TEST(PaletteText, EveryByteSurvivesTruncation)
{
    std::vector<COLOR> colors;
    for (int i = 0; i < 256; ++i) colors.push_back({i / 255.0, 1 - i / 255.0, 0.5});
    const std::string text = paletteText(colors);
    const char* at = text.c_str();
    for (int i = 0; i < 256; ++i) {
        int index = -1, used = 0;
        float red = 0, green = 0, blue = 0;
        ASSERT_EQ(std::sscanf(at, "%d%f%f%f\n%n", &index, &red, &green, &blue, &used), 4);
        at += used;
        EXPECT_EQ(index, i);
        EXPECT_EQ(int(red * 255), i);
        EXPECT_EQ(int(green * 255), 255 - i);
        EXPECT_LE(std::max({red, green, blue}), 1);
    }
}

} // namespace
