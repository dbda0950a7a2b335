#include "graphics/points.h"

#include <gtest/gtest.h>

#include "graphics/palette.h"
#include "graphics/plotfixture.h"
#include "graphics/plotpictures.h"
#include "graphics/preparewindow.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using testing_support::countOf;
using testing_support::pageText;
using testing_support::RPlotFixture;
using testing_support::RTestCanvas;

// A SCATTER window of 0 to 10 by 0 to 10.
struct POINTSFIXTURE : RPlotFixture {
    POINTSFIXTURE() : RPlotFixture(1), c(context())
    {
        switchMode(setup, modeScatter);
        window().xMin = window().yMin = window().zMin = 0;
        window().xMax = window().yMax = window().zMax = 10;
        SetupWindow(setup, 1);
        SetUsrSys(0, 10, window().xLen, window().xOrg, 0, 10, window().yLen, window().yOrg);
        SetColorMapping(0, 10, -0.1, 0.1);
    }
    DATAWINDOW& window() { return setup.window(1); }
    std::string marks(const PLOTDATA& data)
    {
        return pageText([&](QPainter* p, std::FILE* ps) { PlotMarks(p, ps, c, data, window(), options); });
    }
    PLOTCONTEXT c;
    PLOTOPTIONS options;
};

const PLOTDATA twoPoints{{1, 5}, {2, 6}, {}};
const PLOTDATA twoValues{{1, 5}, {2, 6}, {0, 10}};

TEST(NumberText, RoundsToTheVariablesDigitsAndDropsWhatIsEmpty)
{
    EXPECT_EQ(numberText(34.56789f, 2), "34.57");
    EXPECT_EQ(numberText(34.5f, 2), "34.5");
    EXPECT_EQ(numberText(34.0f, 2), "34");
    EXPECT_EQ(numberText(-0.001f, 2), "0");
    EXPECT_EQ(numberText(1234.6f, 0), "1235");
    EXPECT_EQ(numberText(0.12345678f, 9), "0.1235"); // four digits are the most
}

TEST(PlotMarks, PlainDotsAreOneObject)
{
    POINTSFIXTURE f;
    const std::string ps = f.marks(twoPoints);
    EXPECT_EQ(countOf(ps, "%%PS-OBJECT: NVQ_ScatterData begin"), 1);
    EXPECT_EQ(countOf(ps, "%%PS-OBJECT: NVQ_ScatterData end"), 1);
    EXPECT_NE(ps.find("gsave\n/d { C 0.720 dotr } bind def /e { 0.720 dotr } bind def\n"
                      "/A { C arrow } bind def /a { arrow } bind def\n/stroke? false def /fill? true def\n"
                      "dousrclip\n0.01 smul setlinewidth\n1 2 e\n5 6 e\ngrestore\n"),
              std::string::npos)
        << ps;
}

TEST(PlotMarks, TheColorBarComesBeforeTheColoredPoints)
{
    POINTSFIXTURE f;
    f.window().zVar = 4;
    const std::string ps = f.marks(twoValues);
    const std::size_t bar = ps.find("%%PS-OBJECT: ColorBar begin"), points = ps.find("NVQ_ScatterData begin");
    ASSERT_NE(bar, std::string::npos);
    ASSERT_NE(points, std::string::npos);
    EXPECT_LT(bar, points);
    EXPECT_NE(ps.find("\n1 2  33 d\n5 6 143 d\n"), std::string::npos) << ps;
}

TEST(PlotMarks, ABackgroundPassGivesASecondObject)
{
    POINTSFIXTURE f;
    f.window().zVar = 4;
    f.window().colorBar = 0;
    f.options.allPoints = 1;
    const std::string ps = f.marks(twoValues);
    EXPECT_EQ(countOf(ps, "NVQ_ScatterData begin"), 2);
    EXPECT_EQ(countOf(ps, "ColorBar"), 0);
    EXPECT_LT(ps.find("1 2 e\n"), ps.find("1 2  33 d\n"));
}

TEST(PlotMarks, APointWithoutAColorValueIsLeftOutOfTheColoredPass)
{
    POINTSFIXTURE f;
    f.window().zVar = 4;
    const std::string ps = f.marks({{1, 5}, {2, 6}, {common::MISSING_VALUE, 10}});
    EXPECT_EQ(countOf(ps, " d\n"), 1);
}

TEST(PlotMarks, NumbersShowTheValues)
{
    POINTSFIXTURE f;
    f.window().zVar = 4;
    f.window().style = styleNumbers;
    const std::string ps = f.marks({{1, 5}, {2, 6}, {3.456f, 10}});
    EXPECT_NE(ps.find("/lorg 0 def /fill? false def 0 setgray\n(3.46) 1 2 showstring\n(10) 5 6 showstring\n"),
              std::string::npos)
        << ps;
    EXPECT_EQ(countOf(ps, "dousrclip"), 0);
}

TEST(PlotMarks, NumbersWithoutAVariableAreDots)
{
    POINTSFIXTURE f;
    f.window().style = styleNumbers;
    EXPECT_EQ(countOf(f.marks(twoPoints), " e\n"), 2);
}

TEST(PlotMarks, AGriddedStyleIsDrawnAsDots)
{
    POINTSFIXTURE f;
    f.window().zVar = 4;
    for (const int style : {1, 2, 6}) {
        f.window().style = style;
        EXPECT_EQ(countOf(f.marks(twoValues), " d\n"), 2) << style;
    }
}

TEST(PlotMarks, ASymbolSizeOfZeroDrawsNothing)
{
    POINTSFIXTURE f;
    f.window().symbolSize = 0;
    EXPECT_EQ(f.marks(twoPoints), "");
}

TEST(PlotPoints, JustOutsideTheRangeIsStillDrawn)
{
    POINTSFIXTURE f;
    EXPECT_EQ(countOf(f.marks({{10.09f, -0.09f, 5, 5}, {5, 5, 10.09f, -0.09f}, {}}), " e\n"), 4);
    EXPECT_EQ(countOf(f.marks({{10.11f, -0.11f, 5, 5}, {5, 5, 10.11f, -0.11f}, {}}), " e\n"), 0);
}

TEST(PlotPoints, AReversedAxisHasTheSameTolerance)
{
    POINTSFIXTURE f;
    std::swap(f.window().yMin, f.window().yMax);
    EXPECT_EQ(countOf(f.marks({{5, 5, 5, 5}, {10.09f, -0.09f, 10.11f, -0.11f}, {}}), " e\n"), 2);
}

TEST(PlotPoints, MissingPositionsAreLeftOut)
{
    POINTSFIXTURE f;
    EXPECT_EQ(countOf(f.marks({{common::MISSING_VALUE, 5}, {5, common::MISSING_VALUE}, {}}), " e\n"), 0);
}

TEST(PlotPoints, ThePainterDrawsEachPointInItsColor)
{
    POINTSFIXTURE f;
    f.window().zVar = 4;
    f.window().colorBar = 0;
    RTestCanvas canvas;
    PlotMarks(&canvas.painter, nullptr, f.c, twoValues, f.window(), f.options);
    EXPECT_EQ(canvas.image.pixelColor(pixelX(1), pixelY(2)), paletteColor(33));
    EXPECT_EQ(canvas.image.pixelColor(pixelX(5), pixelY(6)), paletteColor(143));
}

TEST(PlotPoints, BothSinksDrawDotsOfOneSize)
{
    POINTSFIXTURE f;
    f.window().dotSize = 5; // 4 mm of symbol, 1.68 mm of radius
    RTestCanvas canvas;
    PlotMarks(&canvas.painter, nullptr, f.c, {{5}, {5}, {}}, f.window(), f.options);
    const int radius = dotRadius(5);
    EXPECT_EQ(radius, 7); // 1.68 mm at 40 pixels a cm
    const int x = pixelX(5), y = pixelY(5);
    EXPECT_NE(canvas.image.pixelColor(x + radius - 1, y), QColor(Qt::white));
    EXPECT_EQ(canvas.image.pixelColor(x + radius + 2, y), QColor(Qt::white));
    EXPECT_NE(f.marks({{5}, {5}, {}}).find("/e { 4.000 dotr }"), std::string::npos);
}

TEST(PlotPoints, AnAbortEndsThePass)
{
    POINTSFIXTURE f;
    PLOTDATA many;
    many.x.assign(1000, 5);
    many.y.assign(1000, 5);
    f.user().abortAfter = 2;
    EXPECT_LT(countOf(f.marks(many), " e\n"), 200);
}

} // namespace
