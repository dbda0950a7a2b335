#include <string>
#include <vector>

#include <QFontInfo>
#include <QFontMetricsF>

#include <gtest/gtest.h>

#include "graphics/drawing.h"
#include "graphics/drawingfixture.h"
#include "graphics/labelfonts.h"
#include "graphics/labeltext.h"
#include "graphics/palette.h"
#include "graphics/plotpictures.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using namespace testing_support;

class Label : public RDrawingTest {
protected:
    void SetUp() override
    {
        RDrawingTest::SetUp();
        SetUsrSys(0, 29, 29, 0, 0, 20.2f, 20.2f, 0);
    }
};

std::u32string letters(std::string_view text)
{
    std::u32string result;
    for (const LABELCHARACTER& c : parseLabel(text)) result += c.code;
    return result;
}

QRect inkBounds(const QImage& image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 128) bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

// --- control sequences

TEST(ParseLabel, SequencesSwitchFontAndScript)
{
    const std::vector<LABELCHARACTER> parsed = parseLabel("a~$s~#~_0~^2b");
    ASSERT_EQ(parsed.size(), 5u);
    EXPECT_EQ(parsed[0].font, textFont);
    EXPECT_EQ(parsed[1].font, symbolFont);
    EXPECT_EQ(parsed[1].code, U's');
    EXPECT_EQ(parsed[2].font, textFont);
    EXPECT_EQ(parsed[2].script, -1);
    EXPECT_EQ(parsed[3].script, 1);
    EXPECT_EQ(parsed[4].script, 0);
}

TEST(ParseLabel, TrailingTilde_IsANormalCharacter)
{
    EXPECT_EQ(letters("abc~"), U"abc~");
    EXPECT_EQ(letters("~"), U"~");
    EXPECT_EQ(letters("abc~_"), U"abc~_"); // nothing to lower
}

TEST(ParseLabel, UnknownSequence_IsPlainText)
{
    EXPECT_EQ(letters("a~b~~c"), U"a~b~~c");
    EXPECT_EQ(letters("~\"x"), U"~\"x");
}

TEST(ParseLabel, UmlautSequencesAreUmlauts)
{
    EXPECT_EQ(letters("~\"a~\"A~\"o~\"O~\"u~\"U"), U"äÄöÖüÜ");
}

TEST(ParseLabel, BytesAreLatin1OrUtf8)
{
    EXPECT_EQ(letters("\xB0"
                      "C"),
              U"°C");
    EXPECT_EQ(letters("\xC2\xB0"
                      "C"),
              U"°C");
    EXPECT_EQ(letters("~_\xC3\xA4x"), U"äx");
}

TEST(ParseLabel, SmallFiguresOfUnicodeAreScripts)
{
    const std::vector<LABELCHARACTER> parsed = parseLabel("m\xE2\x81\xBB\xC2\xB3 O\xE2\x82\x82");
    ASSERT_EQ(parsed.size(), 6u);
    EXPECT_EQ(parsed[1].code, U'-');
    EXPECT_EQ(parsed[1].script, 1);
    EXPECT_EQ(parsed[2].code, U'3');
    EXPECT_EQ(parsed[5].code, U'2');
    EXPECT_EQ(parsed[5].script, -1);
}

TEST(SymbolLetters, GreekLettersAndBack)
{
    EXPECT_EQ(symbolToUnicode(U's'), U'σ');
    EXPECT_EQ(symbolToUnicode(U'D'), U'Δ');
    EXPECT_EQ(symbolToUnicode(0xB3), U'≥');
    EXPECT_EQ(symbolToUnicode(0xF2), U'∫');
    EXPECT_EQ(symbolToUnicode(0xF0), 0xF0u); // none
    for (int code = 0x21; code < 0xF0; ++code) {
        const char32_t character = symbolToUnicode(static_cast<char32_t>(code));
        if (character < 0x7F || code < 0x7F) continue; // its own text letter
        if (code < 0xA0) continue;
        EXPECT_EQ(symbolToUnicode(static_cast<char32_t>(unicodeToSymbol(character))), character) << code;
    }
}

// --- size and place

TEST_F(Label, BoxIsTextAndAnIWideAndALineHigh)
{
    RTestCanvas canvas;
    const LABELFONT font = labelFont(1, 20);
    const QFontMetricsF metrics(font.font, canvas.painter.device());
    double width = metrics.horizontalAdvance(QLatin1Char('I'));
    for (const char c : std::string("Depth [m]")) width += metrics.horizontalAdvance(QLatin1Char(c));
    const QSizeF size = labelSize(&canvas.painter, "Depth [m]", 20);
    EXPECT_NEAR(size.width(), width * font.scale, 1e-6);
    EXPECT_NEAR(size.height(), 1.2 * metrics.height() * font.scale, 1e-6);
    EXPECT_NEAR(font.font.pixelSize() * font.scale, 20 * 40 / pointsPerCm, 1e-9);
}

TEST_F(Label, ScriptsAreSmaller)
{
    RTestCanvas canvas;
    const double empty = labelSize(&canvas.painter, "", 40).width();
    const double full = labelSize(&canvas.painter, "8", 40).width() - empty;
    EXPECT_NEAR((labelSize(&canvas.painter, "~_8", 40).width() - empty) / full, 0.65, 0.01);
    EXPECT_NEAR((labelSize(&canvas.painter, "~^8", 40).width() - empty) / full, 0.65, 0.01);
}

TEST_F(Label, SubscriptsStandLowerAndSuperscriptsHigher)
{
    const auto bottomOf = [](const char* text) {
        RTestCanvas canvas;
        SetLabelOrigin(&canvas.painter, 6);
        DrawLabel(&canvas.painter, nullptr, text, 5, 5, 0, 40);
        return inkBounds(canvas.image).bottom();
    };
    RTestCanvas canvas;
    const double height = labelSize(&canvas.painter, "8", 40).height();
    EXPECT_NEAR(bottomOf("~_8") - bottomOf("8"), 0.08 * height, 2);
    EXPECT_NEAR(bottomOf("8") - bottomOf("~^8"), 0.35 * height, 2);
}

TEST_F(Label, EveryOriginHoldsItsPointOfTheBox)
{
    RTestCanvas measure;
    const QSizeF size = labelSize(&measure.painter, "HHHH", 30);
    struct ORIGIN {
        int lorg;
        double x, y;
    };
    for (const ORIGIN& o : {ORIGIN{0, 0.5, 0.5},
                            {1, 0.5, 1},
                            {2, 0.5, 0},
                            {3, 1, 1},
                            {4, 1, 0},
                            {5, 0, 1},
                            {6, 0, 0},
                            {7, 1, 0.5},
                            {8, 0, 0.5},
                            {9, 0.5, 0.5}}) {
        RTestCanvas canvas;
        drawState().textFrame = true;
        SetLabelOrigin(&canvas.painter, o.lorg);
        DrawLabel(&canvas.painter, nullptr, "HHHH", 14, 10, 0, 30);
        const QRect box = inkBounds(canvas.image);
        EXPECT_NEAR(box.left(), pixelX(14) - o.x * size.width(), 1.6) << o.lorg;
        EXPECT_NEAR(box.bottom(), pixelY(10) + o.y * size.height(), 1.6) << o.lorg;
        EXPECT_NEAR(box.width(), size.width(), 2.1) << o.lorg;
    }
}

TEST_F(Label, TextStandsHalfAnIInsideTheBox)
{
    RTestCanvas canvas;
    SetLabelOrigin(&canvas.painter, 6);
    DrawLabel(&canvas.painter, nullptr, "H", 10, 10, 0, 60);
    const QFontMetricsF metrics(labelFont(1, 60).font, canvas.painter.device());
    const double bearing = metrics.leftBearing(QLatin1Char('H'));
    EXPECT_NEAR(inkBounds(canvas.image).left() - pixelX(10),
                0.5 * metrics.horizontalAdvance(QLatin1Char('I')) + bearing, 1.5);
    EXPECT_NEAR(pixelY(10) - inkBounds(canvas.image).bottom(), 0.244 * metrics.height(), 1.5);
}

TEST_F(Label, RotationIsCounterClockwise)
{
    RTestCanvas canvas;
    SetLabelOrigin(&canvas.painter, 6); // the text runs upward from its point, left of it
    DrawLabel(&canvas.painter, nullptr, "HHHHHH", 14, 10, 90, 30);
    const QRect box = inkBounds(canvas.image);
    EXPECT_LT(box.right(), pixelX(14));
    EXPECT_LT(box.bottom(), pixelY(10));
    EXPECT_GT(box.height(), 2 * box.width());
}

TEST_F(Label, FillCoversWhatLiesBehind)
{
    RTestCanvas canvas;
    canvas.painter.fillRect(canvas.image.rect(), Qt::green);
    SetFill(&canvas.painter, true);
    SetLabelOrigin(&canvas.painter, 0);
    DrawLabel(&canvas.painter, nullptr, "x", 14, 10, 0, 30);
    EXPECT_GT(pixelsOf(canvas.image, canvas.image.rect(), qRgb(255, 255, 255)), 300);
    EXPECT_EQ(canvas.painter.backgroundMode(), Qt::OpaqueMode);
}

TEST_F(Label, SameHeightInCentimetresOnEveryDevice)
{
    double last = 0;
    for (const double dpi : {72.0, 101.6, 150.0, 300.0, 600.0}) {
        useDevice(29, 20.2f, dpi);
        QImage image(10, 10, QImage::Format_RGB32);
        image.setDotsPerMeterX(static_cast<int>(dpi / 0.0254));
        image.setDotsPerMeterY(static_cast<int>(dpi / 0.0254));
        QPainter p(&image);
        const QSizeF size = labelSize(&p, "Temperature [C]", 12) / drawState().device.pixelsPerCm;
        EXPECT_NEAR(size.width() / (last > 0 ? last : size.width()), 1, 0.002) << dpi;
        last = size.width();
        // 12 points of a face whose lines are 1.117 of its size high
        EXPECT_NEAR(size.height(), 12 * 1.2 * 1.117 / pointsPerCm, 0.03) << dpi;
    }
}

TEST_F(Label, SizeFactorsMultiply)
{
    const auto pixels = [](int index) {
        const LABELFONT font = labelFont(index, 10);
        return font.font.pixelSize() * font.scale;
    };
    const double plain = pixels(1);
    fontSettings().factor = 2;
    EXPECT_NEAR(pixels(1), 2 * plain, 1e-4);
    drawState().fontScale = 1.5f;
    EXPECT_NEAR(pixels(1), 3 * plain, 1e-4);
    drawState().printing = true;
    EXPECT_NEAR(pixels(1), 2.4 * plain, 1e-4);
    EXPECT_NEAR(pixels(2), 3 * plain, 1e-4);
}

TEST_F(Label, ANearlyWholeSizeIsNotRounded)
{
    RTestCanvas canvas;
    const double a = labelSize(&canvas.painter, "Salinity", 9.4f).width();
    EXPECT_NEAR(labelSize(&canvas.painter, "Salinity", 9.8f).width() / a, 9.8 / 9.4, 1e-3);
    const auto inkWidth = [](float size) {
        RTestCanvas target;
        DrawLabel(&target.painter, nullptr, "Salinity and Temperature of the Ocean", 14, 10, 0, size);
        return inkBounds(target.image).width();
    };
    EXPECT_NEAR(inkWidth(9.8f) / static_cast<double>(inkWidth(9.4f)), 9.8 / 9.4, 0.01);
}

TEST_F(Label, SelectFontSetsFamilyStyleAndSize)
{
    RTestCanvas canvas;
    fontSettings().weight = 1;
    fontSettings().italic = true;
    fontSettings().underline = true;
    SelectFont(&canvas.painter, 1, 14);
    EXPECT_EQ(canvas.painter.font().weight(), QFont::Normal);
    EXPECT_TRUE(canvas.painter.font().italic());
    EXPECT_TRUE(canvas.painter.font().underline());
    EXPECT_EQ(drawState().fontSize, 14);
    EXPECT_EQ(drawState().fontIndex, 1);
    fontSettings().weight = 3;
    SelectFont(&canvas.painter, 1, 14);
    EXPECT_EQ(canvas.painter.font().weight(), QFont::Bold);
}

TEST_F(Label, GreekLettersShowWithoutASymbolFont)
{
    if (symbolFontInstalled()) GTEST_SKIP() << "a symbol font is installed";
    RTestCanvas sequence, unicode;
    for (RTestCanvas* canvas : {&sequence, &unicode}) SetLabelOrigin(&canvas->painter, 6);
    DrawLabel(&sequence.painter, nullptr, "~$s~#x", 10, 10, 0, 30);
    DrawLabel(&unicode.painter, nullptr, "\xCF\x83x", 10, 10, 0, 30);
    EXPECT_EQ(sequence.image, unicode.image);
    EXPECT_GT(inkBounds(sequence.image).width(), 20);
}

TEST_F(Label, FramedLabelLeavesOutColorsBeyondThePalette)
{
    const auto framed = [](int fill, int frame) {
        RTestCanvas canvas;
        DrawFramedLabel(&canvas.painter, nullptr, "text", 14, 10, 0, 20, fill, frame, 2, 0);
        return canvas.image;
    };
    const QImage plain = framed(-1, -1);
    EXPECT_EQ(framed(palette().count, 288), plain);
    EXPECT_NE(framed(4, -1), plain);
    EXPECT_NE(framed(-1, 1), plain);
}

TEST_F(Label, FramedLabelKeepsTheLabelOrigin)
{
    RTestCanvas canvas;
    SetLabelOrigin(&canvas.painter, 3);
    DrawFramedLabel(&canvas.painter, nullptr, "text", 14, 10, 0, 20, 1, 1, 2, 6);
    EXPECT_EQ(drawState().labelFractionX, 1);
    EXPECT_EQ(drawState().labelFractionY, 1);
}

TEST_F(Label, FramedLabelIsAnAnnotationObject)
{
    SetColor(nullptr, 0);
    EXPECT_EQ(pageText([](QPainter* p, std::FILE* ps) {
                  DrawFramedLabel(p, ps,
                                  "T (\xB0"
                                  "C)",
                                  1.5f, 2, 90, 12, -1, 15, 1, 7);
              }),
              "\n%%PS-OBJECT: NVQ_Annotation begin\ngsave /frame? false def\n0 setgray\n"
              "/lorg 7 def   12.0 SetMyFont\n/fill? false def\n"
              "/stroke? true def 0.996094 0.996094 0.996094 setTextFrameColor thin_line\n"
              "(T \\(\\312C\\))\n1.5 2 90 rotatedText\n"
              "grestore /lorg 0 def 0 setgray /fill? false def /stroke? false def\n"
              "0 0 0 setTextFrameColor 1 1 1 setTextFillColor\n%%PS-OBJECT: NVQ_Annotation end\n");
}

// --- fonts

TEST(PostScriptFamily, FollowsTheScreenFont)
{
    EXPECT_EQ(postScriptFamily("Times New Roman", false, false), "Helvetica");
    EXPECT_EQ(postScriptFamily("Times New Roman", true, false), "Times-Bold");
    EXPECT_EQ(postScriptFamily("Times New Roman", false, true), "Times-Italic");
    EXPECT_EQ(postScriptFamily("Times New Roman", true, true), "Times-BoldItalic");
    EXPECT_EQ(postScriptFamily("Courier", true, true), "Courier-BoldOblique");
    EXPECT_EQ(postScriptFamily("Courier New", false, true), "Courier-Oblique");
    EXPECT_EQ(postScriptFamily("Courier", true, false), "Courier-Bold");
    EXPECT_EQ(postScriptFamily("Courier", false, false), "Helvetica");
    EXPECT_EQ(postScriptFamily("Arial", false, false), "Helvetica");
    EXPECT_EQ(postScriptFamily("Arial", true, false), "Helvetica-Bold");
    EXPECT_EQ(postScriptFamily("Arial", false, true), "Helvetica-Oblique");
    EXPECT_EQ(postScriptFamily("Arial", true, true), "Helvetica-BoldOblique");
}

// --- numbers

TEST(AxisNumber, TrimmedAndZeroNearZero)
{
    EXPECT_EQ(axisNumber(1e-7, 0.5), "0");
    EXPECT_EQ(axisNumber(-1e-7, -0.5), "0");
    EXPECT_EQ(axisNumber(0.25, 0.25), "0.25");
    EXPECT_EQ(axisNumber(-1000, 500), "-1000");
    EXPECT_EQ(axisNumber(1e7, 1e6), "1e+07");
    EXPECT_EQ(axisNumber(0, 0), "0");
}

TEST(DegreeLabels, LettersFollowTheSign)
{
    EXPECT_EQ(longitudeLabel(0), "0");
    EXPECT_EQ(longitudeLabel(30), "30\xB0"
                                  "E");
    EXPECT_EQ(longitudeLabel(-30), "30\xB0"
                                   "W");
    EXPECT_EQ(longitudeLabel(330), "30\xB0"
                                   "W");
    EXPECT_EQ(longitudeLabel(180), "180\xB0"
                                   "E");
    EXPECT_EQ(longitudeLabel(-180), "180\xB0"
                                    "E");
    EXPECT_EQ(longitudeLabel(360), "0");
    EXPECT_EQ(longitudeLabel(12.5), "12.5\xB0"
                                    "E");
    EXPECT_EQ(longitudeLabel(-0.00001), "0");
    EXPECT_EQ(latitudeLabel(0), "EQ");
    EXPECT_EQ(latitudeLabel(-60), "60\xB0"
                                  "S");
    EXPECT_EQ(latitudeLabel(0.125), "0.125\xB0"
                                    "N");
}

// --- PostScript strings

TEST(PsString, BracketsAndBackslashesAreEscaped)
{
    EXPECT_EQ(psString("a(b)c\\d"), "a\\(b\\)c\\\\d");
    EXPECT_EQ(psString("100% of it"), "100% of it");
    EXPECT_EQ(psString(""), "");
}

TEST(PsString, BytesAbove126AreOctal)
{
    EXPECT_EQ(psString("\xE4\xFC"), "\\344\\374");
    EXPECT_EQ(psString("\xC3\xA4"), "\\344");
    EXPECT_EQ(psString("\xB0"
                       "C"),
              "\\312C");
    EXPECT_EQ(psString("\xDF"), "\\337");
}

TEST(PsString, LettersThatGaveWayHaveOtherPlaces)
{
    EXPECT_EQ(psString("\xCA\xFB"), "\\200\\201"); // the degree sign and the sharp s stand at 312 and 373
    EXPECT_EQ(psString("\xE2\x80\xB0\xE2\x82\xAC"), "\\202\\224");
}

TEST(PsString, SequencesPassThrough)
{
    EXPECT_EQ(psString("~$s~#~_0 [kg m~^-~^3]~"), "~$s~#~_0 [kg m~^-~^3]~");
    EXPECT_EQ(psString("~_("), "~_\\(");
}

TEST(PsString, GreekLettersTakeTheSymbolFont)
{
    EXPECT_EQ(psString("\xCF\x83x"), "~$s~#x");
    EXPECT_EQ(psString("~$a\xCF\x83~#"), "~$as~#");
    EXPECT_EQ(psString("O~_\xCE\xB8"), "O~$~_q~#");
    EXPECT_EQ(psString("\xE2\x89\xA5 3"), "~$\\263~# 3");
}

TEST(PsString, SmallFiguresBecomeScripts)
{
    EXPECT_EQ(psString("m\xE2\x81\xBB\xC2\xB3"), "m~^-~^3");
    EXPECT_EQ(psString("O\xE2\x82\x82"), "O~_2");
}

TEST(PsString, WhatNoFontHasIsAQuestionMark)
{
    EXPECT_EQ(psString("\xE6\xBC\xA2"), "?");
    EXPECT_EQ(psString("a\nb"), "a?b");
}

TEST(PsAnnotationText, TheEightCharactersHaveTheirSequences)
{
    EXPECT_EQ(psAnnotationText("\xE4\xC4\xF6\xD6\xFC\xDC\xB0\xDF"), "~\"a~\"A~\"o~\"O~\"u~\"U\\312\\373");
    EXPECT_EQ(psAnnotationText("(x)"), "\\(x\\)");
    EXPECT_EQ(psAnnotationText("~_\xE4"), "~_\\344"); // one character only can be lowered
}

} // namespace
