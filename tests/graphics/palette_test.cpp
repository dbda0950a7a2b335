#include <cmath>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "graphics/drawing.h"
#include "graphics/palette.h"
#include "graphics/plotpictures.h"
#include "graphics/scenes.h"
#include "temporarydirectory.h"

namespace {

using namespace graphics;
using namespace testing_support;

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// --- parsing

TEST(ParsePalette, ComponentsAreTruncatedAndClamped)
{
    PALETTE p;
    ASSERT_EQ(parsePalette("0 0.0 0.5 1.0\n1 -0.2 1.7 0.999\n", p), 2);
    EXPECT_EQ(p.red[0], 0);
    EXPECT_EQ(p.green[0], 127);
    EXPECT_EQ(p.blue[0], 255);
    EXPECT_EQ(p.red[1], 0);
    EXPECT_EQ(p.green[1], 255);
    EXPECT_EQ(p.blue[1], 254);
}

TEST(ParsePalette, WrongIndexButGoodNumbers_StillCounts)
{
    PALETTE p;
    EXPECT_EQ(parsePalette("7 1 0 0\n7 0 1 0\n-3 0 0 1\n99999999999999 1 1 1\n", p), 4);
    EXPECT_EQ(p.red[0], 255);
    EXPECT_EQ(p.blue[2], 255);
    EXPECT_EQ(p.red[3], 255);
}

TEST(ParsePalette, FirstLineWithoutFourFieldsEndsTheFile)
{
    PALETTE p;
    EXPECT_EQ(parsePalette("0 1 0 0\nx 0 1 0\n2 0 0 1\n", p), 1);
    EXPECT_EQ(parsePalette("0 1 0 0\n\n2 0 0 1\n", p), 1);
    EXPECT_EQ(parsePalette("0 1 0 0\n1 0.5 0.5\n2 0 0 1\n", p), 1);
    EXPECT_EQ(parsePalette("0 1 0 0\n1 0.5 0.5 nan\n", p), 1);
    EXPECT_EQ(parsePalette("", p), 0);
}

TEST(ParsePalette, FieldsAreScannedOneAfterTheOther)
{
    PALETTE p;
    EXPECT_EQ(parsePalette("\t 0\t.5 1e-1 +1 and more\r\n1.5 0.25 1\n", p), 2);
    EXPECT_EQ(p.red[0], 127);
    EXPECT_EQ(p.green[0], 25);
    EXPECT_EQ(p.blue[0], 255);
    EXPECT_EQ(p.red[1], 127); // an index of 1 and a first component of .5
}

TEST(ParsePalette, LastLineNeedsNoLineFeed)
{
    PALETTE p;
    EXPECT_EQ(parsePalette("0 1 0 0\n1 0 1 0", p), 2);
}

TEST(ParsePalette, MoreThan288Colors_AreCut)
{
    std::string text;
    for (int i = 0; i < 300; ++i) text += std::to_string(i) + " 0.1 0.2 0.3\n";
    PALETTE p;
    EXPECT_EQ(parsePalette(text, p), 288);
}

// --- loading

class LoadingPalette : public testing::Test {
protected:
    RTemporaryDirectory directory;
    PALETTE before = palette();
    void TearDown() override { palette() = before; }
};

TEST_F(LoadingPalette, MissingFile_BuiltInTableUnderAnImpossibleName)
{
    LoadPalette(directory.file("none.pal"));
    EXPECT_EQ(palette().count, 177);
    EXPECT_EQ(palette().path, "DUMMY");
    EXPECT_EQ(drawState().paletteColors, 177);
}

TEST_F(LoadingPalette, FileThatAppearsLater_IsTriedAgain)
{
    const std::string path = directory.file("late.pal");
    LoadPalette(path);
    writeFile(path, "0 1 0 0\n");
    LoadPalette(path);
    EXPECT_EQ(palette().count, 1);
    EXPECT_EQ(palette().path, path);
    EXPECT_EQ(drawState().paletteColors, 1);
}

TEST_F(LoadingPalette, SamePath_IsNotReadAgain)
{
    const std::string path = directory.file("a.pal");
    writeFile(path, "0 1 0 0\n");
    LoadPalette(path);
    writeFile(path, "0 0 1 0\n1 0 0 0\n");
    LoadPalette(path);
    EXPECT_EQ(palette().count, 1);
    LoadPalette(directory.file("none.pal"));
    LoadPalette(path);
    EXPECT_EQ(palette().count, 2);
}

TEST_F(LoadingPalette, FileWithoutAColor_BuiltInTable)
{
    const std::string path = directory.file("empty.pal");
    writeFile(path, "# a comment\n");
    LoadPalette(path);
    EXPECT_EQ(palette().path, "DUMMY");
    EXPECT_EQ(palette().count, 177);
}

TEST_F(LoadingPalette, DirectoryInsteadOfAFile_BuiltInTable)
{
    LoadPalette(directory.path());
    EXPECT_EQ(palette().path, "DUMMY");
}

TEST_F(LoadingPalette, ColorsBeyondThePalette_AreBlack)
{
    const std::string path = directory.file("short.pal");
    writeFile(path, "0 1 1 1\n");
    LoadPalette(path);
    EXPECT_EQ(paletteColor(0), QColor(255, 255, 255));
    EXPECT_EQ(paletteColor(1), QColor(Qt::black));
    EXPECT_EQ(paletteColor(-1), QColor(Qt::black));
    EXPECT_EQ(paletteColor(100000), QColor(Qt::black));
}

TEST(PalettePath, ExtensionIsAddedWhereThereIsNone)
{
    common::INSTALLATION where;
    where.root = "/inst/";
    where.palettes = "/home/u/palettes/";
    EXPECT_EQ(PalettePath(where, "Sea"), "/inst/palettes/Sea.pal");
    EXPECT_EQ(PalettePath(where, "Sea.PAL"), "/inst/palettes/Sea.PAL");
    EXPECT_EQ(PalettePath(where, "Sea.pal"), "/inst/palettes/Sea.pal");
}

TEST(PalettePath, UsersOwnFileGoesFirst)
{
    const RTemporaryDirectory directory;
    common::INSTALLATION where;
    where.root = "/inst/";
    where.palettes = directory.path();
    writeFile(directory.file("Sea.pal"), "0 0 0 0\n");
    EXPECT_EQ(PalettePath(where, "Sea"), directory.file("Sea.pal"));
}

// --- built-in table

TEST(BuiltInPalette, KeepsTheRoles)
{
    const PALETTE& p = builtInPalette();
    ASSERT_EQ(p.count, 177);
    const auto color = [&](int i) {
        const auto at = static_cast<std::size_t>(i);
        return QColor(p.red[at], p.green[at], p.blue[at]);
    };
    EXPECT_EQ(color(colorBlack), QColor(0, 0, 0));
    EXPECT_EQ(color(colorWhite), QColor(255, 255, 255));
    EXPECT_EQ(color(colorBackground), QColor(255, 255, 255));
    EXPECT_GT(color(bathymetryFirst).lightness(), color(bathymetryLast).lightness()); // shallow to deep
    EXPECT_NE(color(colorLand), color(colorLandLow));
}

TEST(BuiltInPalette, ScaleRunsThroughTheRainbow)
{
    const PALETTE& p = builtInPalette();
    const auto hue = [&](int i) {
        const auto at = static_cast<std::size_t>(i);
        return QColor(p.red[at], p.green[at], p.blue[at]).hue();
    };
    EXPECT_GT(hue(colorScaleFirst), 240); // violet
    EXPECT_NEAR(hue(33 + 24), 220, 20);   // blue
    EXPECT_NEAR(hue(33 + 59), 120, 25);   // green
    EXPECT_NEAR(hue(33 + 82), 55, 12);    // yellow
    EXPECT_TRUE(hue(colorScaleLast) > 340 || hue(colorScaleLast) < 10);
    for (int i = colorScaleFirst; i < colorScaleLast; ++i) {
        const auto a = static_cast<std::size_t>(i), b = a + 1;
        EXPECT_LT(std::abs(p.red[a] - p.red[b]) + std::abs(p.green[a] - p.green[b]) +
                      std::abs(p.blue[a] - p.blue[b]),
                  45)
            << i; // no jumps
    }
}

// --- mapping

class ColorMapping : public testing::Test {
protected:
    COLORMAPPING before = colorMapping();
    void TearDown() override { colorMapping() = before; }
};

TEST_F(ColorMapping, EndsOfTheRangeAreTheEndsOfTheScale)
{
    SetColorMapping(2, 30, -0.1, 0.1);
    EXPECT_EQ(ValueToColor(2), 33);
    EXPECT_EQ(ValueToColor(30), 143);
    EXPECT_EQ(ValueToColor(1), 32);
    EXPECT_EQ(ValueToColor(31), 144);
}

TEST_F(ColorMapping, AlmostOnTheRangeCountsAsOnIt)
{
    SetColorMapping(0, 1, -0.1, 0.1);
    EXPECT_EQ(ValueToColor(-0.0009), 33);
    EXPECT_EQ(ValueToColor(1.0009), 143);
    EXPECT_EQ(ValueToColor(-0.0012), 32);
    EXPECT_EQ(ValueToColor(1.0012), 144);
}

TEST_F(ColorMapping, MiddleOfASymmetricPairIsTheMiddleOfTheScale)
{
    SetColorMapping(0, 10, -2, 2);
    EXPECT_NEAR(ValueToFraction(5), 0.5, 1e-12);
    EXPECT_EQ(ValueToColor(5.0001), 33 + 55);
}

TEST_F(ColorMapping, ParametersInAnyOrder)
{
    SetColorMapping(0, 1, 0.7, -1.3);
    EXPECT_EQ(colorMapping().lo, -1.3);
    EXPECT_EQ(colorMapping().hi, 0.7);
}

TEST_F(ColorMapping, InverseGivesTheValueBack)
{
    for (const auto& [a, b] : {std::pair{-0.1, 0.1}, {-5.0, 1.0}, {0.0, 4.0}, {-10.0, -2.0}}) {
        SetColorMapping(-3, 17, a, b);
        for (double v = -3; v <= 17; v += 0.5) {
            const double u = ValueToFraction(v);
            if (u < 1e-9 || u > 1 - 1e-9) continue;
            EXPECT_NEAR(FractionToValue(u), v, 2e-3) << a << " " << b;
        }
    }
}

TEST_F(ColorMapping, InverseStaysFiniteBeyondTheCurve)
{
    SetColorMapping(0, 1, -9, 9);
    EXPECT_TRUE(std::isfinite(FractionToValue(5)));
    EXPECT_TRUE(std::isfinite(FractionToValue(-5)));
}

TEST_F(ColorMapping, ReversedRange)
{
    SetColorMapping(30, 2, -0.1, 0.1);
    EXPECT_EQ(ValueToColor(30), 33);
    EXPECT_EQ(ValueToColor(2), 143);
    EXPECT_EQ(ValueToColor(31), 32);
}

TEST_F(ColorMapping, NoNumber_IsBelowTheScale)
{
    SetColorMapping(0, 1, -0.1, 0.1);
    EXPECT_EQ(ValueToColor(std::nan("")), 32);
}

// --- colour table

TEST(PsColorTable, ThirteenValuesALineOf255ths)
{
    const PALETTE before = palette();
    palette().count = 14;
    palette().red.fill(0);
    palette().red[13] = 255;
    palette().green.fill(128);
    const std::string text = pageText([](QPainter*, std::FILE* ps) { WritePsColorTable(ps); });
    EXPECT_EQ(text.substr(0, 40), "\n%%PS-OBJECT: ColorTable begin\n/red [\n 0");
    EXPECT_NE(
        text.find(
            " 0.000 0.000 0.000 0.000 0.000 0.000 0.000 0.000 0.000 0.000 0.000 0.000 0.000\n 1.000 ] def\n"
            "/gre [\n 0.502"),
        std::string::npos);
    EXPECT_NE(text.find("/blu [\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with(" ] def\n%%PS-OBJECT: ColorTable end\n\n"));
    palette() = before;
}

} // namespace
