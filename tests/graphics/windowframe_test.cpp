#include <cmath>
#include <regex>

#include <gtest/gtest.h>

#include "common/text.h"

#include "graphics/axes.h"
#include "graphics/ink.h"
#include "graphics/scenes.h"
#include "graphics/textsize.h"

namespace graphics {
namespace {

using testing_support::inkCovered;
using testing_support::inkIn;
using testing_support::pageText;
using testing_support::painted;
using testing_support::useDevice;

class WindowFrame : public testing::Test {
protected:
    void SetUp() override
    {
        drawState() = DRAWSTATE{};
        useDevice(18, 14, 101.6);
        collection::setLabel(collection_.variables[1], "Depth [m]");
        collection::setLabel(collection_.variables[2], "Temperature [~^oC]");
        collection::setLabel(collection_.variables[3], "Oxygen (ml\\l)");
        window_.exists = window_.toDraw = 1;
        setPlot(10, 4, 8, 4);
        setX(2, -2, 30);
        setY(-1, 1000, 0);
    }
    void TearDown() override { drawState() = before_; }

    void setPlot(float xLen, float xOrg, float yLen, float yOrg)
    {
        window_.xLen = xLen, window_.xOrg = xOrg, window_.yLen = yLen, window_.yOrg = yOrg;
    }
    void setX(int variable, float low, float high)
    {
        window_.xVar = variable, window_.xMin = low, window_.xMax = high;
    }
    void setY(int variable, float low, float high)
    {
        window_.yVar = variable, window_.yMin = low, window_.yMax = high;
    }
    void draw(QPainter* p, std::FILE* ps, bool labels = true)
    {
        const FRAMECONTEXT context{collection_, title_, "me", "Jan/01/2020 00:00:00", ""};
        const DATAWINDOW& w = window_;
        SetUsrSys(w.xMin, w.xMax, w.xLen, w.xOrg, w.yMin, w.yMax, w.yLen, w.yOrg);
        if (ps) {
            std::fprintf(ps, "/frame? true def 0 setgray\n%g %g %g %g %g %g %g %g UsrSys\n\n", w.xMin, w.xMax,
                         w.xLen, w.xOrg, w.yMin, w.yMax, w.yLen, w.yOrg);
        }
        DrawWindowFrame(p, ps, context, 3, window_, labels);
    }
    std::string page(bool labels = true)
    {
        return pageText([&](QPainter*, std::FILE* ps) { draw(nullptr, ps, labels); });
    }
    QImage picture(bool labels = true)
    {
        return painted([&](QPainter* p, std::FILE*) { draw(p, nullptr, labels); });
    }
    static int count(const std::string& text, const std::string& part)
    {
        int n = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
        return n;
    }

    collection::RCollection collection_;
    DATAWINDOW window_;
    std::string title_ = "nvqmp - Test";

private:
    DRAWSTATE before_ = drawState();
};

TEST_F(WindowFrame, PageHoldsTheFrameBlockInItsOrder)
{
    const std::string text = page();
    std::size_t at = 0;
    for (const char* part :
         {"\n%%PS-OBJECT: NVQ_Stamp begin\n", "%%PS-OBJECT: NVQ_Stamp end\n\n",
          "%%PS-OBJECT: WindowFrame start\n",
          "0 setgray\nvery_thin_line usrsys /fill? false def /stroke? false def\n",
          " SetMyFont\n/grid? true def\n", "0 setgray\ndousrframe\n",
          " SetMyFont\n/xtitle [()] def /title [()] def\n0 5 10 xaxlabl\n",
          " SetMyFont\n/ytitle [()] def 1000 -100 -200 yaxlabl\n", "%%PS-OBJECT: WindowFrame end\n\n",
          "\n%%PS-OBJECT: NVQ_Annotation begin\n", "(Temperature [~^oC])\n",
          "%%PS-OBJECT: NVQ_Annotation end\n", "\n%%PS-OBJECT: NVQ_Annotation begin\n", "(Depth [m])\n",
          "%%PS-OBJECT: NVQ_Annotation end\n", "\n%%PS-WINDOW: NVQ_Window_3 end\n\n"}) {
        const std::size_t found = text.find(part, at);
        ASSERT_NE(found, std::string::npos) << part << "\nin\n" << text;
        at = found + 1;
    }
    EXPECT_EQ(count(text, "%%PS-OBJECT: NVQ_Annotation begin"), 2); // no colour variable
    EXPECT_TRUE(text.ends_with("NVQ_Window_3 end\n\n"));
}

TEST_F(WindowFrame, FontIsNineTenthsOfTheWindows)
{
    const std::string font = common::formatG(0.9f * baseFontSize(10, 8)) + " SetMyFont\n";
    EXPECT_EQ(count(page(), font), 3);
    const std::string stamp = common::formatG(0.65f * baseFontSize(10, 8)) + " dfltFont getfont\n";
    EXPECT_EQ(count(page(), stamp), 1);
}

TEST_F(WindowFrame, GridFlagReachesThePage)
{
    window_.grid = 0;
    EXPECT_EQ(count(page(), "/grid? false def\n"), 1);
    EXPECT_EQ(count(page(), "/grid? true def\n"), 0);
}

TEST_F(WindowFrame, AxisColourOfMinusOneDrawsNoFrameAndNoNumbers)
{
    window_.axisColor = -1;
    const std::string text = page();
    EXPECT_EQ(count(text, "dousrframe"), 0);
    EXPECT_EQ(count(text, "axlabl"), 0);
    EXPECT_EQ(count(text, "NVQ_Annotation"), 0);
    EXPECT_EQ(count(text, "NVQ_Window_3 end"), 1);
    title_.clear();
    const QImage image = painted([&](QPainter* p, std::FILE*) {
        p->fillRect(QRect(200, 200, 10, 10), Qt::black); // the data
        draw(p, nullptr);
    });
    EXPECT_EQ(inkIn(image, image.rect()), 100);
    EXPECT_EQ(window_.toDraw, 0);
}

TEST_F(WindowFrame, PainterClearsToDrawAndThePageLeavesIt)
{
    (void)page();
    EXPECT_EQ(window_.toDraw, 1);
    (void)picture();
    EXPECT_EQ(window_.toDraw, 0);
}

TEST_F(WindowFrame, PainterKeepsUserSystemAndEndsInBlack)
{
    (void)painted([&](QPainter* p, std::FILE*) {
        SetColor(p, 12);
        window_.axisColor = 4;
        draw(p, nullptr);
        EXPECT_EQ(drawState().color[0], 0);
        EXPECT_EQ(usrSys().x.userMin, -2);
        EXPECT_EQ(usrSys().x.userMax, 30);
    });
}

TEST_F(WindowFrame, LabelsAreLeftOutWhenNotWanted)
{
    EXPECT_EQ(count(page(false), "NVQ_Annotation"), 0);
    window_.autoLabels = 0;
    EXPECT_EQ(count(page(), "NVQ_Annotation"), 0);
    EXPECT_EQ(count(page(), "xaxlabl"), 1);
}

TEST_F(WindowFrame, ColourVariableIsNamedAboveTheTopCentre)
{
    window_.zVar = -3;
    const std::string text = page();
    EXPECT_EQ(count(text, "%%PS-OBJECT: NVQ_Annotation begin"), 3);
    std::smatch found;
    const std::regex line(
        "/lorg 2 def[^%]*\\(Oxygen \\\\\\(ml\\\\\\\\l\\\\\\)\\)\n([^ ]+) ([^ ]+) 0 rotatedText");
    ASSERT_TRUE(std::regex_search(text, found, line)) << text;
    EXPECT_FLOAT_EQ(std::stof(found[1]), 14);  // the middle of -2 to 30
    EXPECT_FLOAT_EQ(std::stof(found[2]), -30); // 1.03 of the way from 1000 to 0
}

TEST_F(WindowFrame, LongNamesAreMadeSmallerToKeepToTheirAxis)
{
    collection::setLabel(collection_.variables[2],
                         "A name that is much longer than the axis under which it stands");
    setPlot(5, 4, 8, 4);
    std::smatch found;
    const std::string text = page();
    ASSERT_TRUE(std::regex_search(text, found, std::regex("/lorg 1 def +([0-9.]+) SetMyFont")));
    const double size = std::stod(found[1]);
    EXPECT_LT(size, static_cast<double>(baseFontSize(5, 8)));
    EXPECT_GE(size, 0.59 * static_cast<double>(baseFontSize(5, 8)));
}

TEST_F(WindowFrame, VariablesWithoutANameHaveNoLabel)
{
    setX(0, 0, 1);
    setY(99, 0, 1);
    EXPECT_EQ(count(page(), "NVQ_Annotation begin"), 0);
}

TEST_F(WindowFrame, PercentSignsAndBracketsInTitlesDoNoHarm)
{
    title_ = "100%s (a\\b) %n";
    collection::setLabel(collection_.variables[2], "Saturation [%] %s%n");
    const std::string text = page();
    EXPECT_EQ(count(text, "/labl [(100%s \\(a\\\\b\\) %n)] def\n"), 1);
    EXPECT_EQ(count(text, "(Saturation [%] %s%n)\n"), 1);
}

TEST_F(WindowFrame, TicsOfLargeValuesKeepTheirPlaces)
{
    setPlot(40, 4, 8, 4); // room for numbers
    setX(2, 2451545, 2451555);
    EXPECT_EQ(count(page(), "2451546 1 2 xaxlabl\n"), 1);
    setX(2, 1994.25f, 1996.75f);
    EXPECT_EQ(count(page(), "1994.5 0.25 0.5 xaxlabl\n"), 1);
}

TEST_F(WindowFrame, EqualLimitsDrawNothingAndEndTheWindow)
{
    setX(2, 5, 5);
    EXPECT_EQ(count(page(), "dousrframe"), 0);
    EXPECT_EQ(count(page(), "NVQ_Window_3 end"), 1);
}

TEST_F(WindowFrame, NothingOverlapsBelowTheFrame)
{
    // Numbers and x label are parted by a row without ink, at several sizes.
    for (const float length : {3.0f, 6.0f, 12.0f}) {
        setPlot(length, 4, length * 0.8f, 4);
        title_.clear();
        useDevice(18, 16, 200);
        const QImage image = picture();
        const double ppcm = static_cast<double>(drawState().device.pixelsPerCm);
        const double font = static_cast<double>(baseFontSize(length, length * 0.8f));
        const int frame = static_cast<int>(12 * ppcm) - 1;
        const int numbers = frame + static_cast<int>(textCm(0.9 * font * (1.25 * widthOfW + 0.4)) * ppcm);
        const int left = static_cast<int>(4 * ppcm),
                  width = static_cast<int>(static_cast<double>(length) * ppcm);
        int gaps = 0, inks = 0;
        for (int y = numbers; y < numbers + static_cast<int>(textCm(2.2 * font) * ppcm); ++y) {
            (inkIn(image, QRect(left, y, width, 1)) == 0 ? gaps : inks) += 1;
        }
        EXPECT_GT(gaps, 1) << length;
        EXPECT_GT(inks, static_cast<int>(textCm(font) * ppcm)) << length;
    }
}

struct CASE {
    float xlen, ylen, xlo, xhi, ylo, yhi;
};

TEST_F(WindowFrame, PainterAndPageShowTheSame)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
    for (const CASE& c : {CASE{10, 8, -2, 30, 1000, 0}, CASE{12, 5, 34.62f, 34.78f, -0.00012f, 0.00031f},
                          CASE{4, 8, 0, 44, 6000, 0}, CASE{7, 3.4f, 1024.25f, 1028.5f, -1e7f, 5e7f}}) {
        setPlot(c.xlen, 4, c.ylen, 3);
        setX(2, c.xlo, c.xhi);
        setY(1, c.ylo, c.yhi);
        window_.zVar = 1;
        const QImage screen = picture();
        const std::string file = testing_support::pageFile(page());
        EXPECT_EQ(testing_support::complaints(file), "");
        const QImage paper = testing_support::rendered(file, false);
        ASSERT_FALSE(paper.isNull());
        EXPECT_GT(inkCovered(screen, paper, 3), 0.97) << c.xlen;
        EXPECT_GT(inkCovered(paper, screen, 3), 0.97) << c.xlen;
        // The same test must tell a shifted picture.
        EXPECT_LT(inkCovered(screen, paper.copy(12, 9, paper.width(), paper.height()), 3), 0.9);
    }
}

TEST_F(WindowFrame, ATinyValueAtAZeroTicPrintsZero)
{
    EXPECT_EQ(axisNumber(1e-7, 0.5), "0");
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
    // A start that is off zero by rounding: the page's axis must print as if it were zero.
    const auto text = [](const char* start) {
        return testing_support::pageFile(
            std::string("-1 1 10 4 0 1 8 3 UsrSys\n9 SetMyFont\n/xtitle [()] def /title "
                        "[()] def\n") +
            start + " 0.25 0.5 xaxlabl\n");
    };
    const QImage off = testing_support::rendered(text("1e-7"), false);
    const QImage zero = testing_support::rendered(text("0"), false);
    EXPECT_EQ(off, zero);
}

} // namespace
} // namespace graphics
