#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/text.h"
#include "graphics/drawing.h"
#include "graphics/palette.h"
#include "graphics/plotpictures.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using namespace testing_support;

class ColorBar : public testing::Test {
protected:
    void SetUp() override
    {
        drawState() = DRAWSTATE{};
        SetUsrSys(0, 100, 10, 2, 0, 10, 10, 2);
        LoadPalette("no such palette");
    }
    void TearDown() override
    {
        drawState() = state_;
        usrSys() = usr_;
    }

private:
    DRAWSTATE state_ = drawState();
    USRSYS usr_ = usrSys();
};

std::string barText(std::string_view title, float vmin, float vmax, float fontSize = 10, float plotWidth = 10)
{
    return pageText([&](QPainter* p, std::FILE* ps) {
        DrawColorBar(p, ps, title, fontSize, 0, 100, plotWidth, 0, 10, vmin, vmax, -0.1f, 0.1f);
    });
}

// The texts of all labels.
std::vector<std::string> labelsOf(const std::string& text)
{
    std::vector<std::string> labels;
    for (std::size_t at = text.find("\n("); at != std::string::npos; at = text.find("\n(", at + 1))
        labels.push_back(text.substr(at + 2, text.find(')', at) - at - 2));
    return labels;
}

TEST_F(ColorBar, PostScriptObjectReadsLine_ByLine)
{
    const std::string text = barText("", 0, 40);
    const std::string begin =
        "\n%%PS-OBJECT: ColorBar begin\ngsave /fill? false def /stroke? false def /lorg 8 def\n"
        "/xll 103.5 def /xur 107 def\n/dely 0.0502513 def 0\n33 T ";
    EXPECT_EQ(text.substr(0, begin.size()), begin);
    EXPECT_NE(text.find("\n/yp xdef 144 C newpath xll yp M xur yp L xll xur mean yp 3 dely mul add L fill\n"
                        "/yp 0 def 32 C newpath xll yp M xur yp L xll xur mean yp 3 dely mul sub L fill\n"),
              std::string::npos);
    EXPECT_NE(text.find("\n8.5 SetMyFont /xur 107.262 def\n(0) xur 0 showstring\n(10) xur 2.5 showstring\n"
                        "(20) xur 5 showstring\n(30) xur 7.5 showstring\n(40) xur 10 showstring\n"
                        "grestore /lorg 0 def\n%%PS-OBJECT: ColorBar end\n\n"),
              std::string::npos);
}

TEST_F(ColorBar, HasStepsInLinesOfTwelve)
{
    const std::string text = barText("", 0, 40);
    EXPECT_EQ(countOf(text, " T "), 199);
    EXPECT_EQ(countOf(text, " T \n"), 17); // sixteen full lines and the one before the cap
    EXPECT_EQ(text.find("142 T \n/yp xdef"), text.find(" T \n/yp xdef") - 3);
}

TEST_F(ColorBar, TitleIsLarger)
{
    EXPECT_NE(barText("Temp (t)", 0, 40)
                  .find("\n\n/lorg 6 def 9.775 SetMyFont 0 setgray\n"
                        "(Temp \\(t\\)) 102.8 10.0503 showstring\n"),
              std::string::npos);
}

TEST_F(ColorBar, FontIsAtLeastFiveAndAHalfPoints)
{
    EXPECT_NE(barText("", 0, 40, 2).find("\n5.5 SetMyFont /xur"), std::string::npos);
}

TEST_F(ColorBar, AWidePlotsBarIsThreePerCentWide)
{
    EXPECT_NE(barText("", 0, 40, 10, 50).find("/xll 103 def /xur 106 def\n"), std::string::npos);
}

TEST_F(ColorBar, LabelsLieOnTheBar)
{
    for (const auto& [low, high] : {std::pair{0.0f, 1.0f},
                                    {34.5f, 35.5f},
                                    {-2.0f, 30.0f},
                                    {1000.0f, 0.0f},
                                    {3e-7f, 9e-7f},
                                    {0.0f, 27.3f}}) {
        const std::string text = barText("", low, high);
        const std::vector<std::string> labels = labelsOf(text);
        EXPECT_GE(labels.size(), 4u) << low << " " << high;
        EXPECT_LE(labels.size(), 14u) << low << " " << high;
        for (const std::string& label : labels) {
            const double place =
                (common::parseDouble(label).value() - low) / (static_cast<double>(high) - low);
            EXPECT_GT(place, -0.0201) << label;
            EXPECT_LT(place, 1.0201) << label;
        }
    }
}

TEST_F(ColorBar, ZeroIsZero)
{
    EXPECT_NE(barText("", -0.3f, 0.3f).find("(0) xur 5 showstring\n"), std::string::npos);
}

TEST_F(ColorBar, ReversedRangeHasReversedLabels)
{
    const std::vector<std::string> labels = labelsOf(barText("", 40, 0));
    ASSERT_GE(labels.size(), 2u);
    EXPECT_EQ(labels.front(), "40");
    EXPECT_EQ(labels.back(), "0");
}

TEST_F(ColorBar, ImpossibleRangeDrawsNothing)
{
    EXPECT_EQ(barText("t", 3, 3), "");
    EXPECT_EQ(barText("t", 3, std::nanf("")), "");
    EXPECT_EQ(barText("t", 3, INFINITY), "");
    EXPECT_EQ(barText("t", 0, 1, 10, 0), "");
}

TEST_F(ColorBar, MappingAndStateAreAsBefore)
{
    SetColorMapping(5, 6, -1, 1);
    SetColor(nullptr, 3);
    RTestCanvas canvas;
    SetClip(&canvas.painter, true);
    DrawColorBar(&canvas.painter, nullptr, "t", 10, 0, 100, 10, 0, 10, 0, 1, -0.1f, 0.1f);
    EXPECT_EQ(colorMapping().vmin, 5);
    EXPECT_EQ(drawState().color[0], 3);
    EXPECT_EQ(canvas.painter.clipBoundingRect().toRect(), QRect(80, 328, 401, 401)); // the plot's clip
}

TEST_F(ColorBar, PainterFillsTheBarWithTheScale)
{
    RTestCanvas canvas;
    DrawColorBar(&canvas.painter, nullptr, "", 10, 0, 100, 10, 0, 10, 0, 40, -0.1f, 0.1f);
    const int x = pixelX(105);
    EXPECT_EQ(canvas.image.pixel(x, pixelY(0.02)), paletteColor(33).rgb());
    const COLORMAPPING before = colorMapping();
    SetColorMapping(0, 40, -0.1, 0.1);
    const int step = static_cast<int>(9.9 / 10 * 199);
    EXPECT_EQ(canvas.image.pixel(x, pixelY((step + 0.5) * 10 / 199)),
              paletteColor(ValueToColor(step * 40 / 199.0)).rgb());
    colorMapping() = before;
    EXPECT_EQ(canvas.image.pixel(x, pixelY(10.06)), paletteColor(144).rgb()); // caps
    EXPECT_EQ(canvas.image.pixel(x, pixelY(-0.06)), paletteColor(32).rgb());
    for (double y = 0.02; y < 9.99; y += 0.01) // no gaps
        ASSERT_NE(canvas.image.pixel(x, pixelY(y)), qRgb(255, 255, 255)) << y;
}

} // namespace
