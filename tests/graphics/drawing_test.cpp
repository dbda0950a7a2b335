#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "graphics/drawing.h"
#include "graphics/drawingfixture.h"
#include "graphics/palette.h"
#include "graphics/plotpictures.h"
#include "graphics/projection.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using namespace testing_support;
using common::MISSING_VALUE;

class Drawing : public RDrawingTest {
protected:
    void SetUp() override
    {
        RDrawingTest::SetUp();
        SetUsrSys(0, 10, 10, 1, 0, 10, 10, 1);
    }
};

std::vector<float> repeated(std::size_t n, float value)
{
    return std::vector<float>(n, value);
}

int inkIn(const RTestCanvas& canvas)
{
    return pixelsOtherThan(canvas.image, canvas.image.rect(), qRgb(255, 255, 255));
}

QRect inkBounds(const QImage& image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if ((image.pixel(x, y) & RGB_MASK) != RGB_MASK) bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

// --- user system

using UserSystem = Drawing;

TEST_F(UserSystem, EdgesAreTruncatedPixels)
{
    SetUsrSys(0, 360, 13.03f, 2.51f, -90, 90, 7.77f, 1.11f);
    const USRSYS& u = usrSys();
    EXPECT_EQ(u.x.lowPx, 100);  // 100.4
    EXPECT_EQ(u.x.highPx, 621); // 621.6
    EXPECT_EQ(u.y.lowPx, 763);  // 808 - 44.4
    EXPECT_EQ(u.y.highPx, 452); // 763 - 310.8
    EXPECT_FLOAT_EQ(u.x.pixelsPerUnit, 522.0f / 360);
    EXPECT_FLOAT_EQ(u.y.pixelsPerUnit, -310.0f / 180);
    EXPECT_FLOAT_EQ(u.x.unitsPerCm, 360 / 13.03f);
}

TEST_F(UserSystem, EdgesOfTheCanvasInUserUnits)
{
    SetUsrSys(0, 100, 10, 2, 0, 50, 5, 1);
    EXPECT_FLOAT_EQ(usrSys().x.userAtCanvasLow, -20);
    EXPECT_FLOAT_EQ(usrSys().x.userAtCanvasHigh, 270);
    EXPECT_FLOAT_EQ(usrSys().y.userAtCanvasLow, -10);
    EXPECT_FLOAT_EQ(usrSys().y.userAtCanvasHigh, 192);
}

TEST_F(UserSystem, PrinterShrinksAndMovesTheWindow)
{
    drawState().printing = true;
    SetUsrSys(0, 1, 10, 5, 0, 1, 8, 2);
    EXPECT_FLOAT_EQ(usrSys().x.lengthCm, 9.2f);
    EXPECT_FLOAT_EQ(usrSys().x.originCm, 5.6f);
    EXPECT_FLOAT_EQ(usrSys().y.lengthCm, 7.36f);
    EXPECT_FLOAT_EQ(usrSys().y.originCm, 2.84f);
}

TEST_F(UserSystem, PixelsAreTruncated)
{
    EXPECT_EQ(pixelX(0), 40);
    EXPECT_EQ(pixelX(0.02), 40);
    EXPECT_EQ(pixelX(0.0250), 41); // 40.1 pixels a unit
    EXPECT_EQ(pixelY(0), 768);
    EXPECT_EQ(pixelY(0.02), 767);
}

TEST_F(UserSystem, ReversedAxisRunsTheOtherWay)
{
    SetUsrSys(0, 1, 10, 1, 5000, 0, 10, 1);
    EXPECT_EQ(pixelY(5000), 768);
    EXPECT_EQ(pixelY(0), 369);
}

TEST_F(UserSystem, FarAwayAndImpossibleValuesStayIntegers)
{
    EXPECT_EQ(pixelX(1e30), 1000000000);
    EXPECT_EQ(pixelX(-1e30), -1000000000);
    SetUsrSys(1, 1, 10, 1, 2, 2, 10, 1); // no range
    EXPECT_LE(std::abs(pixelX(5)), 1000000000);
}

TEST_F(UserSystem, GuardPutsBackAllState)
{
    RTestCanvas canvas;
    {
        const RDrawStateGuard guard(&canvas.painter);
        SetUsrSys(5, 6, 1, 1, 5, 6, 1, 1);
        SetColor(&canvas.painter, 4);
        SetFill(&canvas.painter, true);
        SetPenWidth(&canvas.painter, 7);
        drawState().device.pixelsPerCm = 3;
    }
    EXPECT_EQ(usrSys().x.userMin, 0);
    EXPECT_EQ(drawState().color[0], 0);
    EXPECT_FALSE(drawState().fill);
    EXPECT_EQ(drawState().device.pixelsPerCm, 40);
    EXPECT_EQ(canvas.painter.pen().width(), 1);
    EXPECT_EQ(canvas.painter.backgroundMode(), Qt::TransparentMode);
}

// --- tables and state

using State = Drawing;

TEST_F(State, ThicknessesInPixels)
{
    float cm = 0;
    EXPECT_EQ(LineWidth(0, &cm), 0);
    EXPECT_FLOAT_EQ(cm, 0.005f);
    EXPECT_EQ(LineWidth(1), 1);
    EXPECT_EQ(LineWidth(2), 2);
    EXPECT_EQ(LineWidth(3), 4);
    EXPECT_EQ(LineWidth(5, &cm), 16);
    EXPECT_FLOAT_EQ(cm, 0.4f);
    drawState().device.pixelsPerCm = 4;
    EXPECT_EQ(LineWidth(1), 1); // never less than the index, up to 3
    EXPECT_EQ(LineWidth(4), 3);
}

TEST_F(State, ThicknessIndex7_GivesAPenOf1Pixel)
{
    float cm = 0;
    EXPECT_EQ(LineWidth(7, &cm), 1);
    EXPECT_FLOAT_EQ(cm, 0.05f);
    EXPECT_EQ(LineWidth(-1), 1);
    EXPECT_STREQ(thicknessProcedure(7), "very_thin_line");
    EXPECT_STREQ(thicknessProcedure(5), "extra_thick_line");
}

TEST_F(State, LineTypesFallBackAsTheyAlwaysDid)
{
    EXPECT_STREQ(lineTypes()[3].procedure, "dashed_line");
    EXPECT_STREQ(lineTypes()[4].procedure, "dotted_line");
    EXPECT_EQ(lineTypes()[4].style, Qt::DashDotLine);
    RTestCanvas canvas;
    SetLineStyle(&canvas.painter, 1);
    EXPECT_EQ(canvas.painter.pen().style(), Qt::DashLine);
    SetLineStyle(&canvas.painter, 99);
    EXPECT_EQ(canvas.painter.pen().style(), Qt::SolidLine);
}

TEST_F(State, ColorFillsAllSlotsAndThePen)
{
    RTestCanvas canvas;
    SetColor(&canvas.painter, 4);
    EXPECT_EQ(drawState().color, (std::array<int, 4>{4, 4, 4, 4}));
    EXPECT_EQ(drawState().currentColor, paletteColor(4));
    EXPECT_EQ(canvas.painter.pen().color(), paletteColor(4));
}

TEST_F(State, FillSwitchesTheBackgroundMode)
{
    RTestCanvas canvas;
    SetFill(&canvas.painter, true);
    EXPECT_TRUE(drawState().fill);
    EXPECT_EQ(canvas.painter.backgroundMode(), Qt::OpaqueMode);
    SetFill(&canvas.painter, false);
    EXPECT_EQ(canvas.painter.backgroundMode(), Qt::TransparentMode);
}

TEST_F(State, ClipIsThePlotOrTheCanvas)
{
    RTestCanvas canvas;
    SetClip(&canvas.painter, true);
    EXPECT_EQ(canvas.painter.clipBoundingRect().toRect(), QRect(40, 368, 401, 401));
    SetClip(&canvas.painter, false);
    EXPECT_EQ(canvas.painter.clipBoundingRect().toRect(), QRect(0, 0, 1160, 808));
}

TEST_F(State, BaseFontSizeFollowsTheWindow)
{
    EXPECT_NEAR(baseFontSize(29, 20.2f), 14 * std::pow(1.5, 0.49), 1e-4);
    EXPECT_NEAR(baseFontSize(7, 3.4f), 14 * std::pow(0.75 * (7 / 29.0 + 3.4 / 20.2), 0.49), 1e-4);
}

TEST_F(State, BaseFontSizeOnALargerCanvas)
{
    const auto sizeOn = [](float width, float height) {
        drawState().device.widthCm = width;
        drawState().device.heightCm = height;
        return baseFontSize(width, height) / (14 * std::pow(1.5, 0.49));
    };
    EXPECT_NEAR(sizeOn(58, 20.2f), std::sqrt(0.5), 1e-5);
    EXPECT_NEAR(sizeOn(58, 80.8f), 0.5, 1e-5);
    EXPECT_NEAR(sizeOn(29, 40.4f), 1, 1e-5);
}

TEST_F(State, DrawingWithoutASinkDoesNothing)
{
    SetColor(nullptr, 3);
    SetClip(nullptr, true);
    SetFill(nullptr, true);
    SetLineStyle(nullptr, 2);
    SelectFont(nullptr, 2, 10);
    WritePsColor(nullptr, 3);
    const std::vector<float> x{1, 2}, y{1, 2};
    DrawCurve(nullptr, nullptr, x, y, MISSING_VALUE, 1, 2, 1);
    DrawPath(nullptr, nullptr, x, y, true, pathFill);
    DrawLabel(nullptr, nullptr, "text", 1, 1, 0, 10);
    EXPECT_EQ(drawState().fontIndex, 2);
}

// --- curves

using Curve = Drawing;

TEST_F(Curve, AllPointsMissing_WritesFrameButNoCoordinates)
{
    const std::vector<float> x = repeated(5, MISSING_VALUE), y{1, 2, 3, 4, 5};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawCurve(p, ps, x, y, MISSING_VALUE, 0, 0, 1); }),
              "thin_line\nnp\nstroke\n");
}

TEST_F(Curve, PostScriptKeepsTheUserCoordinates)
{
    const std::vector<float> x{1.5f, -2, 1e-5f}, y{0, 1234567, 3};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawCurve(p, ps, x, y, MISSING_VALUE, 0, 0, 2); }),
              "medium_line\nnp\n1.5 0 M\n-2 1.23457e+06 L\n1e-05 3 L\nstroke\n");
}

TEST_F(Curve, MissingPointDoesNotLiftThePen)
{
    const std::vector<float> x{1, 5, 9}, y{5, MISSING_VALUE, 5};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawCurve(p, ps, x, y, MISSING_VALUE, 0, 0, 1); }),
              "thin_line\nnp\n1 5 M\n9 5 L\nstroke\n");
    RTestCanvas canvas;
    DrawCurve(&canvas.painter, nullptr, x, y, MISSING_VALUE, 0, 0, 1);
    EXPECT_GT(inkIn(canvas), 300); // the whole way across the gap
}

TEST_F(Curve, AMissingFirstPointLeavesTheMoveToTheNext)
{
    const std::vector<float> x{-999, 5, 9}, y{5, 5, 6};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawCurve(p, ps, x, y, -999, 0, 0, 0); }),
              "very_thin_line\nnp\n5 5 M\n9 6 L\nstroke\n");
}

TEST_F(Curve, SymbolsFollowInMillimetres)
{
    const std::vector<float> x{1, 2}, y{3, MISSING_VALUE};
    EXPECT_EQ(
        pageText([&](QPainter* p, std::FILE* ps) { DrawCurve(p, ps, x, y, MISSING_VALUE, 3, 1.6f, 1); }),
        "thin_line\nnp\n1 3 M\nstroke\nvery_thin_line\n1 3 1.6 diam\n");
}

TEST_F(Curve, UnequalLengths_TheShorterCounts)
{
    const std::vector<float> x{1, 2, 3}, y{3};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawCurve(p, ps, x, y, MISSING_VALUE, 0, 0, 1); }),
              "thin_line\nnp\n1 3 M\nstroke\n");
}

TEST_F(Curve, PenIsAsBefore)
{
    RTestCanvas canvas;
    SetPenWidth(&canvas.painter, 1);
    const std::vector<float> x{1, 2}, y{3, 4};
    DrawCurve(&canvas.painter, nullptr, x, y, MISSING_VALUE, 0, 0, 5);
    EXPECT_EQ(canvas.painter.pen().width(), 1);
}

// --- symbols

using Symbols = Drawing;

TEST_F(Symbols, SizeOf0WritesNothingInEitherSink)
{
    const std::vector<float> x{1, 2}, y{3, 4};
    for (const float size : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawSymbols(p, ps, x, y, 1, size); }), "");
        RTestCanvas canvas;
        DrawSymbols(&canvas.painter, nullptr, x, y, 1, size);
        EXPECT_EQ(inkIn(canvas), 0);
    }
}

TEST_F(Symbols, IndexIsBroughtIntoTheTable)
{
    const std::vector<float> x{1}, y{3};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawSymbols(p, ps, x, y, 0, 0.2f); }),
              "very_thin_line\n1 3 2 dotr\n");
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawSymbols(p, ps, x, y, 99, 0.2f); }),
              "very_thin_line\n1 3 2 plusr\n");
}

TEST_F(Symbols, MissingPointsHaveNone)
{
    const std::vector<float> x{1, MISSING_VALUE, 3}, y{3, 4, MISSING_VALUE};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawSymbols(p, ps, x, y, 2, 0.16f); }),
              "very_thin_line\n1 3 1.6 square\n");
}

TEST_F(Symbols, SmallDotsArePointsAndPluses)
{
    const std::vector<float> x{5}, y{5};
    RTestCanvas point, plus, ellipse;
    DrawSymbols(&point.painter, nullptr, x, y, 1, 0.02f); // radius 0.34 pixels
    EXPECT_EQ(inkIn(point), 1);
    DrawSymbols(&plus.painter, nullptr, x, y, 1, 0.06f); // 1.01
    EXPECT_EQ(inkIn(plus), 5);
    DrawSymbols(&ellipse.painter, nullptr, x, y, 1, 0.6f); // 10.08
    EXPECT_EQ(inkBounds(ellipse.image).center(), QPoint(pixelX(5), pixelY(5)));
    EXPECT_NEAR(inkBounds(ellipse.image).width(), 21, 1);
}

TEST_F(Symbols, ShapesHaveTheirSizes)
{
    const std::vector<float> x{5}, y{5};
    const double h = 40; // a symbol of 1 cm
    struct EXPECTED {
        int symbol;
        double width, up, down;
    };
    for (const EXPECTED& e : {EXPECTED{2, 0.82, 0.41, 0.41},
                              {3, 1, 0.6, 0.6},
                              {4, 1, 0.6, 0.4},
                              {5, 1, 0.4, 0.6},
                              {6, 1, 0.5, 0.5},
                              {7, 1, 0.5, 0.5},
                              {8, 1, 0.5, 0.5}}) {
        RTestCanvas canvas;
        DrawSymbols(&canvas.painter, nullptr, x, y, e.symbol, 1);
        const QRect bounds = inkBounds(canvas.image);
        EXPECT_NEAR(bounds.width(), e.width * h + 1, 1.5) << e.symbol;
        EXPECT_NEAR(pixelY(5) - bounds.top(), e.up * h, 1.5) << e.symbol;
        EXPECT_NEAR(bounds.bottom() - pixelY(5), e.down * h, 1.5) << e.symbol;
    }
}

TEST_F(Symbols, TinySymbolsStillShow)
{
    const std::vector<float> x{5}, y{5};
    for (int symbol = 1; symbol <= 8; ++symbol) {
        RTestCanvas canvas;
        DrawSymbols(&canvas.painter, nullptr, x, y, symbol, 1e-4f);
        EXPECT_GE(inkIn(canvas), 1) << symbol;
    }
}

TEST_F(Symbols, FilledOnesAreSolidWhateverThePen)
{
    const std::vector<float> x{5}, y{5};
    RTestCanvas open, filled, wide;
    DrawSymbols(&open.painter, nullptr, x, y, 2, 1);
    SetFill(&filled.painter, true);
    DrawSymbols(&filled.painter, nullptr, x, y, 2, 1);
    EXPECT_GT(inkIn(filled), 5 * inkIn(open));
    SetPenWidth(&wide.painter, 9);
    DrawSymbols(&wide.painter, nullptr, x, y, 2, 1);
    EXPECT_EQ(inkIn(filled), inkIn(wide));
}

TEST_F(Symbols, ManyAtOnceLookLikeEachByItself)
{
    constexpr unsigned seed = 99;
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> share(0, 1);
    std::vector<float> x(500), y(500);
    for (int symbol = 1; symbol <= 8; ++symbol) {
        // A circle that the clip cuts is not the same in every pixel: those stay inside.
        const float low = symbol == 1 ? 0.5f : -2, range = symbol == 1 ? 9 : 14;
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = i % 50 == 3 ? MISSING_VALUE : low + range * share(random);
            y[i] = low + range * share(random);
        }
        for (const float size : {0.03f, 0.07f, 0.3f}) {
            for (const bool fill : {false, true}) {
                RTestCanvas many, single;
                for (RTestCanvas* canvas : {&many, &single}) {
                    SetClip(&canvas->painter, true);
                    SetColor(&canvas->painter, 4);
                    SetFill(&canvas->painter, fill);
                }
                DrawSymbols(&many.painter, nullptr, x, y, symbol, size);
                for (std::size_t i = 0; i < x.size(); ++i)
                    DrawSymbols(&single.painter, nullptr, std::span(x).subspan(i, 1),
                                std::span(y).subspan(i, 1), symbol, size);
                EXPECT_EQ(many.image, single.image)
                    << symbol << " " << size << " " << fill << " seed " << seed;
            }
        }
    }
}

TEST_F(Symbols, HugeOnesAndFarOnesDoNoHarm)
{
    std::vector<float> x = repeated(100, 1e30f), y = repeated(100, -1e30f);
    x.front() = 5;
    y.front() = 5;
    RTestCanvas canvas;
    DrawSymbols(&canvas.painter, nullptr, x, y, 1, 0.07f);
    EXPECT_EQ(inkIn(canvas), 5);
    DrawSymbols(&canvas.painter, nullptr, std::span(x).first(1), std::span(y).first(1), 3, 1e9f);
}

// --- paths

using Path = Drawing;

TEST_F(Path, RelativeStepsWithoutEmptyOnes)
{
    const std::vector<float> x{10, 12, 12, 12, 7}, y{5, 5, 5, 6, 6};
    EXPECT_EQ(
        pageText([&](QPainter* p, std::FILE* ps) { DrawPath(p, ps, x, y, false, pathFill | pathLine); }),
        "\nnp\n10 5 M\n2 0 R\n0 1 R\n-5 0 R\nFill\nstroke\n");
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawPath(p, ps, x, y, false, pathLine); }),
              "\nnp\n10 5 M\n2 0 R\n0 1 R\n-5 0 R\nstroke\n");
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawPath(p, ps, {}, {}, false, pathLine); }), "");
}

TEST_F(Path, MoreThan1500Points_CutAt1500InBothSinks)
{
    std::vector<float> x, y;
    for (int i = 0; i < 1700; ++i) {
        x.push_back(static_cast<float>(i) * 0.005f);
        y.push_back(i % 2 ? 5.1f : 5);
    }
    const std::string text =
        pageText([&](QPainter* p, std::FILE* ps) { DrawPath(p, ps, x, y, false, pathLine); });
    EXPECT_EQ(countOf(text, " R\n"), 1499);
    RTestCanvas canvas;
    DrawPath(&canvas.painter, nullptr, x, y, false, pathLine);
    EXPECT_EQ(inkBounds(canvas.image).right(), pixelX(1499 * 0.005));
}

TEST_F(Path, ProjectedOnRequest)
{
    const PROJECTION before = projection();
    projection().id = projectionEquatorial;
    projection().lon0 = 0;
    const std::vector<float> x{0, 90, 0}, y{0, 0, 90};
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawPath(p, ps, x, y, false, 0); }),
              "\nnp\n0 0 M\n90 0 R\n-90 90 R\n");
    EXPECT_EQ(pageText([&](QPainter* p, std::FILE* ps) { DrawPath(p, ps, x, y, true, 0); }).substr(0, 12),
              "\nnp\n0 0 M\n1 ");
    projection() = before;
}

TEST_F(Path, PolygonsBeyondTheRasterisersRangeAreClamped)
{
    const std::vector<float> x{-1e9f, 1e9f, 1e9f, -1e9f}, y{-1e9f, -1e9f, 1e9f, 1e9f};
    RTestCanvas canvas;
    SetColor(&canvas.painter, 4);
    DrawPath(&canvas.painter, nullptr, x, y, false, pathFill);
    EXPECT_EQ(pixelsOf(canvas.image, canvas.image.rect(), paletteColor(4).rgb()),
              canvas.image.width() * canvas.image.height());
}

TEST_F(Path, AnIslandSmallerThanAPixelIsAPixel)
{
    const std::vector<float> x{5, 5.001f, 5, 5}, y{5, 5, 5.001f, 5};
    RTestCanvas canvas;
    DrawPath(&canvas.painter, nullptr, x, y, false, pathFill | pathLine);
    EXPECT_EQ(inkIn(canvas), 1);
}

TEST_F(Path, LineAloneDoesNotFill)
{
    const std::vector<float> x{2, 8, 8, 2, 2}, y{2, 2, 8, 8, 2};
    RTestCanvas line, fill;
    DrawPath(&line.painter, nullptr, x, y, false, pathLine);
    DrawPath(&fill.painter, nullptr, x, y, false, pathFill);
    EXPECT_NEAR(inkIn(line), 4 * 240, 20);
    EXPECT_NEAR(inkIn(fill), 241 * 241, 600);
}

TEST_F(Path, MeridianAndParallelAreSampledLines)
{
    const std::string meridian =
        pageText([](QPainter* p, std::FILE* ps) { DrawMeridian(p, ps, 30, -10, 10, 5, 2); });
    EXPECT_EQ(meridian, "\nnp\n30 -10 M\n0 5 R\n0 5 R\n0 5 R\n0 5 R\ngsave medium_line stroke grestore\n");
    const std::string parallel =
        pageText([](QPainter* p, std::FILE* ps) { DrawParallel(p, ps, 7, 0, 10, 3, 0); });
    EXPECT_EQ(parallel, "\nnp\n0 7 M\n5 0 R\n5 0 R\ngsave very_thin_line stroke grestore\n");
    EXPECT_EQ(pageText([](QPainter* p, std::FILE* ps) { DrawParallel(p, ps, 7, 0, 10, 1, 0); }), "");
    RTestCanvas canvas;
    DrawMeridian(&canvas.painter, nullptr, 5, 1, 9, 20, 1);
    EXPECT_NEAR(inkIn(canvas), 320, 3);
}

// --- colours

using PsColor = Drawing;

TEST_F(PsColor, GreysAndOthersIn256ths)
{
    palette().red[5] = palette().green[5] = palette().blue[5] = 128;
    palette().red[6] = 255;
    palette().green[6] = 64;
    palette().blue[6] = 0;
    EXPECT_EQ(pageText([](QPainter*, std::FILE* ps) { WritePsColor(ps, 5); }), "0.5 setgray\n");
    EXPECT_EQ(pageText([](QPainter*, std::FILE* ps) { WritePsColor(ps, 6); }), "0.996094 0.25 0 S\n");
    EXPECT_EQ(pageText([](QPainter*, std::FILE* ps) { WritePsColor(ps, -1); }), "0 setgray\n");
    LoadPalette("no such palette");
}

} // namespace
