// What the preamble promises to the files that the program writes.

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/files.h"
#include "graphics/axes.h"
#include "graphics/drawing.h"
#include "graphics/palette.h"
#include "graphics/plotpictures.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using namespace testing_support;

class Preamble : public testing::Test {
protected:
    void SetUp() override
    {
        if (!haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
        drawState() = DRAWSTATE{};
        useDevice(21, 29.7f, 60);
    }
    void TearDown() override { drawState() = before_; }

private:
    DRAWSTATE before_ = drawState();
};

QRect inkBounds(const QImage& image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 200) bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

// Pixels of the page, from its lower left corner in points.
int column(double points)
{
    return static_cast<int>(points / pointsPerCm * drawState().device.pixelsPerCm);
}
int row(double points)
{
    return drawState().device.heightPx - column(points);
}

const char* const vocabulary =
    "BeginPlot EndPlot UsrSys SetupUsrSys usrsys default_usrsys magnify dousrclip dousrframe xaxlabl yaxlabl "
    "xmapframe ymapframe xmaplabl ymaplabl Line M L R np Fill S C T G g E showstring showString rotlabl "
    "vertlabl "
    "rotatedText SetMyFont getfont setTextFrameColor setTextFillColor dotr square diam trianr utrianr starr "
    "xr "
    "plusr medstar arrow solid_line dashed_line dotted_line very_thin_line thin_line medium_line thick_line "
    "very_thick_line extra_thick_line mean xdef smul rxd-h ryd-h TA_RU TA_LU TA_LC fill? stroke? frame? "
    "grid? tic? "
    "lorg usrclip? usrrot? scalefak lenfak xOrigin yOrigin fontfak dfltFont nativeFont labl title xtitle "
    "ytitle "
    "xll xur yg yp dely red gre blu xmin xmax ymin ymax clipRotatedText";

TEST_F(Preamble, DefinesTheWholeVocabulary)
{
    std::istringstream names(vocabulary);
    std::string content;
    for (std::string name; names >> name;)
        content += "/" + name + " where { pop } { (" + name + " is missing\\n) print } ifelse\n";
    EXPECT_EQ(complaints(pageFile(content)), "");
}

TEST_F(Preamble, LeavesNothingBehind)
{
    EXPECT_EQ(complaints(pageFile("")), "");
    EXPECT_EQ(complaints(pageFile("0 1 10 2 0 1 10 2 UsrSys 12 SetMyFont (text) 0.5 0.5 showstring\n")), "");
    EXPECT_NE(complaints(pageFile("5\n")), "");                    // what the check would say
    EXPECT_NE(complaints(pageFile("userdict /x 5 put {}\n")), ""); // stack not empty
}

TEST_F(Preamble, AFileCanBePlacedInAnother)
{
    const std::string file = pageFile("0 1 10 2 0 1 10 2 UsrSys 12 SetMyFont (text) 0.5 0.5 showstring\n");
    EXPECT_EQ(complaints(file + file), "");
}

TEST_F(Preamble, NumbersReadAsThePaintersDo)
{
    const std::vector<double> values = {0,     1,       -1,     0.1,      0.3,    -0.25, 12.5,    100,
                                        1000,  -5000,   123456, 1e6,      2.5e7,  1e-4,  1.5e-4,  1e-5,
                                        -3e-7, 34.65,   0.0125, 99999,    -0.001, 359.5, 2004.25, 28.35,
                                        1e20,  1.25e-9, 999999, 0.999999, 7,      -180};
    std::string content = "12 SetMyFont\n", expected;
    for (const double value : values) {
        std::ostringstream number;
        number.precision(9);
        number << value;
        content += number.str() + " 1e-12 axisNumber = \n";
        expected += axisNumber(value, 1e-12) + "\n";
    }
    content += "0.0000001 0.5 axisNumber = 3 0.1 mul 0.1 axisNumber =\n";
    expected += "0\n0.3\n";
    EXPECT_EQ(complaints(pageFile(content)), expected);
}

TEST_F(Preamble, LandscapePageIsTurned)
{
    const PAGE landscape{true, 1, "Helvetica-Bold"};
    const std::string dot = "0 1 1 0 0 1 1 0 UsrSys /fill? true def 10 4 6 square\n"; // cm
    const QPoint center = inkBounds(rendered(pageFile(dot, landscape))).center();
    EXPECT_NEAR(center.x(), column(598 - 4 * 28.35), 1.5);
    EXPECT_NEAR(center.y(), row(10 * 28.35), 1.5);
    const QPoint upright = inkBounds(rendered(pageFile(dot))).center();
    EXPECT_NEAR(upright.x(), column(10 * 28.35), 1.5);
    EXPECT_NEAR(upright.y(), row(4 * 28.35), 1.5);
}

TEST_F(Preamble, ScaleAppliesToPlacesAndSizes)
{
    const std::string square = "0 1 1 0 0 1 1 0 UsrSys /fill? true def 10 4 50 square\n";
    const QRect full = inkBounds(rendered(pageFile(square)));
    const QRect half = inkBounds(rendered(pageFile(square, {false, 0.5, "Helvetica-Bold"})));
    EXPECT_NEAR(half.width(), full.width() / 2.0, 1.5);
    EXPECT_NEAR(half.center().x(), full.center().x() / 2.0, 1.5);
}

TEST_F(Preamble, MagnifyMakesThePageSystemPlainCentimetres)
{
    const std::string square =
        "gsave 2 magnify default_usrsys /fill? true def 10 4 50 square 0.5 magnify grestore\n";
    const QRect stamp = inkBounds(rendered(pageFile(square, {false, 0.5, "Helvetica-Bold"})));
    EXPECT_NEAR(stamp.center().x(), column(10 * 28.35), 1.5);
    EXPECT_NEAR(stamp.width(), 0.82 * column(5 * 28.35), 1.5);
}

TEST_F(Preamble, UsrsysGoesBackToTheWindow)
{
    const std::string text =
        "100 200 10 4 0 1 10 8 UsrSys default_usrsys usrsys /fill? true def 150 0.5 5 square\n";
    const QPoint center = inkBounds(rendered(pageFile(text))).center();
    EXPECT_NEAR(center.x(), column(9 * 28.35), 1.5);
    EXPECT_NEAR(center.y(), row(13 * 28.35), 1.5);
}

TEST_F(Preamble, ClipKeepsToThePlot)
{
    const std::string text =
        "0 10 10 4 0 10 10 8 UsrSys gsave dousrclip /fill? true def 0 0 80 dotr grestore\n";
    const QRect ink = inkBounds(rendered(pageFile(text)));
    EXPECT_NEAR(ink.left(), column(4 * 28.35), 1.5);
    EXPECT_NEAR(ink.bottom(), row(8 * 28.35), 1.5);
}

TEST_F(Preamble, CharacterBoxesArePoints)
{
    // 1 inch right of the plot's right edge and above its top, on a page of half size
    const std::string text = "0 100 10 4 5 1 10 8 UsrSys /fill? true def\n"
                             "xmax 72 rxd-h smul add ymax 72 ryd-h smul add 4 square\n";
    const QPoint center = inkBounds(rendered(pageFile(text, {false, 0.5, "Helvetica-Bold"}))).center();
    EXPECT_NEAR(center.x(), column(7 * 28.35 + 36), 1.5);
    EXPECT_NEAR(center.y(), row(9 * 28.35 + 36), 1.5);
}

TEST_F(Preamble, ShadedCellsKeepTheirPlace)
{
    const std::string text = "/red [0 1 0] def /gre [0 0 1] def /blu [0 0 0] def\n0 2 2 4 0 3 3 8 UsrSys\n"
                             "/yg [\n0\n1\n2\n3\n] def\n/xll 0 def /xur 1 def 0\n1 G\ng\n2 G\npop\n"
                             "/xll 1 def /xur 2 def\n0 setgray 1 E\n";
    EXPECT_EQ(complaints(pageFile(text)), "");
    const QImage image = rendered(pageFile(text));
    const auto at = [&](double x, double y) {
        return image.pixel(column((4 + x) * 28.35), row((8 + y) * 28.35));
    };
    EXPECT_EQ(at(0.5, 0.5), qRgb(255, 0, 0));
    EXPECT_EQ(at(0.5, 1.5), qRgb(255, 0, 0));
    EXPECT_EQ(at(0.5, 2.5), qRgb(0, 255, 0));
    EXPECT_EQ(at(1.5, 1.5), qRgb(0, 0, 0));
    EXPECT_EQ(at(1.5, 0.5), qRgb(255, 255, 255));
}

TEST_F(Preamble, ColorsBeyondTheTableAreBlack)
{
    EXPECT_EQ(complaints(pageFile("/red [0] def /gre [0] def /blu [0] def 5 C -1 C 0 C\n")), "");
}

TEST_F(Preamble, LineStylesDoNotOutliveTheirGsave)
{
    const std::string text = "0 1 10 4 0 1 10 8 UsrSys gsave dashed_line thick_line grestore thin_line "
                             "currentdash pop length =\n";
    EXPECT_EQ(complaints(pageFile(text)), "0\n");
}

TEST_F(Preamble, DashesFollowTheWidthInAnyOrder)
{
    const char* const show = " currentdash pop { 100 mul round 100 div = } forall\n";
    const std::string before = complaints(pageFile(std::string("dashed_line thick_line") + show));
    EXPECT_EQ(before, complaints(pageFile(std::string("thick_line dashed_line") + show)));
    EXPECT_EQ(before, "12.47\n6.24\n"); // four and two times 1.1 mm
}

TEST_F(Preamble, LabelsWithOddTildesDoNoHarm)
{
    std::string content = "0 1 10 4 0 1 10 8 UsrSys 12 SetMyFont\n";
    for (const char* text :
         {"~", "a~", "~_", "~^", "~$", "~#", "~~", "~\"", "~\"x", "~_~", "~$~_a~#", "", "~$\\312"})
        content += std::string("(") + text + ") 0.5 0.5 showstring\n";
    EXPECT_EQ(complaints(pageFile(content)), "");
}

TEST_F(Preamble, EveryFamilyOfTheFontSettingsPrints)
{
    for (const char* screen : {"Arial", "Times New Roman", "Courier New"}) {
        for (int style = 0; style < 4; ++style) {
            const std::string family = postScriptFamily(screen, style & 1, style & 2);
            const std::string file = pageFile(
                "0 1 10 4 0 1 10 8 UsrSys 12 SetMyFont (text \\312 \\373~$a~#~_1) 0.5 0.5 showstring\n",
                {false, 1, family});
            EXPECT_EQ(complaints(file), "") << family;
            EXPECT_GT(inkBounds(rendered(file)).width(), 20) << family;
        }
    }
}

TEST_F(Preamble, TicsOfShowstringStandBesideTheText)
{
    const std::string start = "0 1 10 4 0 1 10 8 UsrSys 12 SetMyFont /lorg 1 def\n";
    EXPECT_EQ(complaints(pageFile(start + "/tic? true def () 5 ymin showstring /tic? false def\n")), "");
    const int plain = inkBounds(rendered(pageFile(start + "(x) 0.5 0.5 showstring\n"))).bottom();
    const int moved =
        inkBounds(rendered(pageFile(start + "/tic? true def (x) 0.5 0.5 showstring\n"))).bottom();
    EXPECT_GT(moved, plain + 5);
}

TEST_F(Preamble, ManyLinesOfALabelStandBelowEachOther)
{
    const std::string start = "0 1 10 4 0 1 10 8 UsrSys 12 SetMyFont /lorg 0 def\n";
    const QRect one = inkBounds(rendered(pageFile(start + "/labl [(HHH)] def 0 0.5 0.5 rotlabl\n")));
    const QRect two = inkBounds(rendered(pageFile(start + "/labl [(HHH)(HHH)] def 0 0.5 0.5 rotlabl\n")));
    EXPECT_NEAR(two.center().y(), one.center().y(), 1.5);
    EXPECT_NEAR(two.height() - one.height(), column(12 * 1.34), 1.5);
}

TEST_F(Preamble, LabelCanBeCutOutOfTheClip)
{
    const std::string text = "0 1 10 4 0 1 10 8 UsrSys 40 SetMyFont gsave dousrclip 1 setgray\n"
                             "(label) 0.5 0.5 0 rotatedText 0.5 0.5 0 clipRotatedText\n"
                             "0 setgray extra_thick_line 0 0.5 1 0.5 Line grestore\n";
    EXPECT_EQ(complaints(pageFile(text)), "");
    const QImage image = rendered(pageFile(text));
    EXPECT_EQ(qGray(image.pixel(column(4.5 * 28.35), row(13 * 28.35))), 0);
    EXPECT_EQ(qGray(image.pixel(column(9 * 28.35), row(13 * 28.35))), 255);
}

TEST_F(Preamble, AxesOfEveryKindPassWithoutAComplaint)
{
    for (const char* window :
         {"0 1 10 4 0 1 10 8", "1 0 10 4 5000 0 10 8", "-1e6 1e6 10 4 1e-7 2e-7 10 8", "5 5 10 4 2 2 10 8"}) {
        for (const char* tics : {"0 0.1 0.2", "0 -50 -100", "0 0 0", "0 2e-8 4e-8", "1e6 1e5 2e5"}) {
            const std::string text = std::string(window) + " UsrSys /grid? true def 9 SetMyFont\n" +
                                     "/xtitle [(x ~$a~#)(second)] def /title [()] def " + tics +
                                     " xaxlabl\n/ytitle [()] def " + tics + " yaxlabl dousrframe\n";
            EXPECT_EQ(complaints(pageFile(text)), "") << text;
        }
    }
}

} // namespace
