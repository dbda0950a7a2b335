#include "graphics/axes.h"

#include <cmath>

#include <gtest/gtest.h>

#include "graphics/ink.h"
#include "graphics/scenes.h"
#include "graphics/textsize.h"

namespace graphics {
namespace {

using testing_support::inkIn;
using testing_support::painted;
using testing_support::useDevice;

// A window of 10 by 8 cm, 4 cm right of and 4 cm above the lower left corner of a canvas at 100 pixels a cm.
class Axes : public testing::Test {
protected:
    void SetUp() override
    {
        drawState() = DRAWSTATE{};
        useDevice(18, 14, 254);
        setRange(0, 10, 0, 10);
    }
    void TearDown() override { drawState() = before_; }
    static void setRange(float xmin, float xmax, float ymin, float ymax)
    {
        SetUsrSys(xmin, xmax, 10, 4, ymin, ymax, 8, 4);
    }
    static QImage picture(const std::function<void(QPainter*)>& draw)
    {
        return painted([&](QPainter* p, std::FILE*) {
            SetColor(p, 0);
            draw(p);
        });
    }
    static constexpr int left = 400, right = 1400, top = 200, bottom = 1000; // pixels of the frame

private:
    DRAWSTATE before_ = drawState();
};

TEST_F(Axes, NothingToPaintOnDoesNothing)
{
    EXPECT_EQ(DrawXAxis(nullptr, ChooseTics(0, 10), 10, true, "x"), 0);
    EXPECT_EQ(DrawYAxis(nullptr, ChooseTics(0, 10), 10, true, "y"), 0);
    DrawFrame(nullptr);
    DrawTitle(nullptr, 10, "title");
}

TEST_F(Axes, FrameIsAsWideAsItsHalo)
{
    const QImage image = picture([](QPainter* p) { DrawFrame(p); });
    EXPECT_EQ(inkIn(image, QRect(left - 20, 600, 40, 1)), 3); // 0.015 cm to either side
    EXPECT_EQ(inkIn(image, QRect(right - 20, 600, 40, 1)), 3);
    EXPECT_EQ(inkIn(image, QRect(900, top - 20, 1, 40)), 3);
    EXPECT_EQ(inkIn(image, QRect(left + 10, top + 10, 900, 700)), 0);
}

TEST_F(Axes, TicsStandOutOfTheFrameAtMajorAndMinorSteps)
{
    const TICS tics = ChooseTics(0, 10); // every 2 and every 1
    const QImage image = picture([&](QPainter* p) { (void)DrawXAxis(p, tics, 10, false, ""); });
    const int length = static_cast<int>(textCm(10 * 1.25 * widthOfW) * 100);
    for (int i = 0; i <= 10; ++i) {
        const QRect column(left + i * 100 - 3, bottom + 5, 7, length - 8);
        const int ink = inkIn(image, column);
        EXPECT_GT(ink, i % 2 == 0 ? length - 14 : length / 2 - 14) << i;
        EXPECT_LT(ink, i % 2 == 0 ? 3 * length : length) << i;
    }
    EXPECT_EQ(inkIn(image, QRect(left, top, 1000, 790)), 0); // none inside the plot
}

TEST_F(Axes, NumbersStandBelowAndLeftOfTheFrame)
{
    const TICS tics = ChooseTics(0, 10);
    const QImage x = picture([&](QPainter* p) { (void)DrawXAxis(p, tics, 10, false, ""); });
    EXPECT_GT(inkIn(x, QRect(left + 180, bottom + 42, 40, 40)), 20); // the "2"
    EXPECT_EQ(inkIn(x, QRect(0, 0, left - 40, 1400)), 0);
    const QImage y = picture([&](QPainter* p) { (void)DrawYAxis(p, tics, 10, false, ""); });
    EXPECT_GT(inkIn(y, QRect(left - 100, bottom - 160 - 20, 56, 40)), 20);
    EXPECT_EQ(inkIn(y, QRect(0, bottom + 40, 1800, 350)), 0);
}

TEST_F(Axes, GridGivesALineAcrossThePlotAtEachMajorTic)
{
    const TICS tics = ChooseTics(0, 10);
    const QImage with = picture([&](QPainter* p) { (void)DrawXAxis(p, tics, 10, true, ""); });
    const QImage without = picture([&](QPainter* p) { (void)DrawXAxis(p, tics, 10, false, ""); });
    EXPECT_EQ(inkIn(without, QRect(left, 600, 1001, 1)), 0);
    EXPECT_EQ(inkIn(with, QRect(left + 1, 600, 998, 1)), 4); // at 2, 4, 6 and 8
    EXPECT_EQ(inkIn(with, QRect(left + 150, top + 1, 100, 798)), 798);
}

TEST_F(Axes, TicsOutsideTheRangeAreLeftOut)
{
    setRange(0.5f, 9.5f, 0, 10);
    const QImage image = picture([](QPainter* p) { (void)DrawXAxis(p, ChooseTics(0, 10), 10, false, ""); });
    EXPECT_EQ(inkIn(image, QRect(0, bottom + 3, left - 10, 10)), 0);
    EXPECT_EQ(inkIn(image, QRect(right + 10, bottom + 3, 380, 10)), 0);
}

TEST_F(Axes, ReversedAxisRunsDown)
{
    setRange(0, 10, 1000, 0);
    const QImage image = picture([](QPainter* p) { (void)DrawYAxis(p, ChooseTics(1000, 0), 10, false, ""); });
    // "1000" is at the lower end and "0" at the upper one, so the ink left of the tics differs in width.
    const QRect low(200, bottom - 30, 155, 60), high(200, top - 30, 155, 60);
    EXPECT_GT(inkIn(image, low), 3 * inkIn(image, high) / 2);
    EXPECT_GT(inkIn(image, high), 20);
}

TEST_F(Axes, ReturnedDistanceLiesBeyondTheNumbers)
{
    for (const float high : {10.0f, 10000.0f}) {
        setRange(0, 10, 0, high);
        float distance = 0;
        const TICS tics = ChooseTics(0, high);
        const QImage image = picture([&](QPainter* p) { distance = DrawYAxis(p, tics, 10, false, ""); });
        const int pixels = static_cast<int>(std::lround(distance * 100));
        EXPECT_GT(inkIn(image, QRect(left - pixels, 0, pixels, 1400)), 0);
        EXPECT_EQ(inkIn(image, QRect(0, 0, left - pixels, 1400)), 0) << high;
    }
}

TEST_F(Axes, WiderNumbersMoveTheTitleOut)
{
    float narrow = 0, wide = 0;
    (void)picture([&](QPainter* p) { narrow = DrawYAxis(p, ChooseTics(0, 10), 10, false, ""); });
    setRange(0, 10, 0, 100000);
    (void)picture([&](QPainter* p) { wide = DrawYAxis(p, ChooseTics(0, 100000), 10, false, ""); });
    // "80000" against "8", or "100000" against "10"
    EXPECT_NEAR(wide - narrow, textCm(10 * 4 * 0.556), 0.06);
}

TEST_F(Axes, RotatedNumbersTakeTheHeightOfALine)
{
    setRange(0, 10, 0, 10000);
    float upright = 0, rotated = 0;
    (void)picture([&](QPainter* p) { upright = DrawYAxis(p, ChooseTics(0, 10000), 10, false, ""); });
    (void)picture([&](QPainter* p) { rotated = DrawYAxis(p, ChooseTics(0, 10000), 10, false, "", true); });
    EXPECT_NEAR(upright - rotated, textCm(10 * (textWidth("10000") - labelHeight)), 0.06);
}

TEST_F(Axes, TitlesStandBeyondTheNumbersAndAboveThePlot)
{
    const TICS tics = ChooseTics(0, 10);
    const QImage plain = picture([&](QPainter* p) { (void)DrawXAxis(p, tics, 10, false, ""); });
    const QImage titled = picture([&](QPainter* p) { (void)DrawXAxis(p, tics, 10, false, "Salinity"); });
    const QRect below(left, bottom + 85, 1000, 60);
    EXPECT_EQ(inkIn(plain, below), 0);
    EXPECT_GT(inkIn(titled, below), 200);
    const QImage above = picture([](QPainter* p) { DrawTitle(p, 10, "Title"); });
    EXPECT_GT(inkIn(above, QRect(800, 120, 200, 75)), 200);
    EXPECT_EQ(inkIn(above, QRect(left, top, 1000, 800)), 0);
}

TEST_F(Axes, DrawingStateIsAsBefore)
{
    (void)painted([](QPainter* p, std::FILE*) {
        SetColor(p, 12);
        SetPenWidth(p, 3);
        const QPen pen = p->pen();
        const QColor color = drawState().currentColor;
        (void)DrawXAxis(p, ChooseTics(0, 10), 10, true, "x");
        (void)DrawYAxis(p, ChooseTics(0, 10), 10, true, "y");
        DrawFrame(p);
        EXPECT_EQ(p->pen(), pen);
        EXPECT_EQ(drawState().currentColor, color);
        EXPECT_EQ(drawState().penWidth, 3);
    });
}

TEST_F(Axes, TicsThatFarOutnumberThePixelsEndSoon)
{
    const TICS impossible{0, 10, 0, 1e-9f, 2e-9f};
    const QImage image = picture([&](QPainter* p) { (void)DrawXAxis(p, impossible, 10, true, ""); });
    EXPECT_EQ(inkIn(image, image.rect()), 0);
}

TEST(FitTics, IsTheRuleWhereNumbersFit)
{
    const TICS rule = ChooseTics(0, 1000), fitted = FitTics(0, 1000, 10, 9, false);
    EXPECT_EQ(fitted.major, rule.major);
    EXPECT_EQ(fitted.start, rule.start);
    EXPECT_EQ(FitTics(1000, 0, 10, 9, true).major, -200);
}

TEST(FitTics, NumbersOnAShortAxisGetFewer)
{
    const TICS fitted = FitTics(1024, 1029, 2, 8, false);
    EXPECT_GT(fitted.major, ChooseTics(1024, 1029).major);
    for (const float length : {0.5f, 1.0f, 2.0f, 4.0f}) {
        const TICS t = FitTics(34.62f, 34.78f, length, 8, false);
        const std::vector<double> values = ticValues(t.start, t.major, 34.62, 34.78);
        ASSERT_FALSE(values.empty());
        const double room = std::abs(t.major) / 0.16 * length;
        if (values.size() > 1) {
            EXPECT_GE(room, textCm(8 * textWidth("34.75"))) << length;
        }
    }
}

TEST(FitTics, LowAxisKeepsNumbersApart)
{
    const TICS t = FitTics(0, 5000, 0.8f, 8, true);
    EXPECT_GE(t.major / 5000 * 0.8, textCm(8 * labelHeight));
}

TEST(FitTics, ReversedAxisStartsAtItsLowEnd)
{
    const TICS t = FitTics(1029, 1024, 2, 8, false);
    EXPECT_LT(t.major, 0);
    EXPECT_LE(t.start, 1029);
    EXPECT_GT(t.start, 1029 + t.major);
}

TEST(FitTics, NoLengthIsNoTrap)
{
    EXPECT_NE(FitTics(0, 10, 0, 8, false).major, 0);
    EXPECT_NE(FitTics(0, 0, 5, 8, false).major, 0);
    EXPECT_NE(FitTics(0, 10, std::nanf(""), 8, true).major, 0);
}

} // namespace
} // namespace graphics
