// The same scene on a painter and through Ghostscript shows the same.

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graphics/axes.h"
#include "graphics/drawing.h"
#include "graphics/palette.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using namespace testing_support;

constexpr float widthCm = 20, heightCm = 14;
constexpr double dpi = 120;

// Keeps the state of the process as it was, and gives each test a device of its own.
class Sinks : public testing::Test {
protected:
    void SetUp() override
    {
        if (!haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
        drawState() = DRAWSTATE{};
        useDevice(widthCm, heightCm, dpi);
        LoadPalette("no such palette");
    }
    void TearDown() override { drawState() = before_; }

private:
    DRAWSTATE before_ = drawState();
};

struct WINDOW {
    float xmin, xmax, xlen, xorg, ymin, ymax, ylen, yorg;
};
constexpr WINDOW whole = {0, widthCm, widthCm, 0, 0, heightCm, heightCm, 0}; // centimetres

void openWindow(QPainter* p, std::FILE* ps, const WINDOW& w)
{
    SetUsrSys(w.xmin, w.xmax, w.xlen, w.xorg, w.ymin, w.ymax, w.ylen, w.yorg);
    if (p) SetClip(p, false);
    if (ps) {
        std::fprintf(ps, "/frame? true def 0 setgray\n%g %g %g %g %g %g %g %g UsrSys\n\n", w.xmin, w.xmax,
                     w.xlen, w.xorg, w.ymin, w.ymax, w.ylen, w.yorg);
    }
}

void color(QPainter* p, std::FILE* ps, int index)
{
    SetColor(p, index);
    WritePsColor(ps, index);
}

void fill(QPainter* p, std::FILE* ps, bool flag)
{
    SetFill(p, flag);
    if (ps) std::fputs(flag ? "/fill? true def\n" : "/fill? false def\n", ps);
}

void label(QPainter* p, std::FILE* ps, int lorg, const char* text, float x, float y, float angle, float size)
{
    SetLabelOrigin(p, lorg);
    DrawLabel(p, nullptr, text, x, y, angle, size);
    if (ps) {
        std::fprintf(ps, "/lorg %d def %g SetMyFont\n(%s) %g %g %g rotatedText\n", lorg, size,
                     psString(text).c_str(), x, y, angle);
    }
}

bool isInk(QRgb pixel)
{
    return qGray(pixel) < 200 || qRed(pixel) + 60 < std::max(qGreen(pixel), qBlue(pixel)) ||
           qBlue(pixel) + 60 < std::max(qRed(pixel), qGreen(pixel));
}

// Whether there is ink within `reach` pixels.
bool inkNear(const QImage& image, int x, int y, int reach)
{
    for (int v = std::max(y - reach, 0); v <= std::min(y + reach, image.height() - 1); ++v) {
        for (int u = std::max(x - reach, 0); u <= std::min(x + reach, image.width() - 1); ++u) {
            if (isInk(image.pixel(u, v))) return true;
        }
    }
    return false;
}

// Share of the ink of `a` that has ink of `b` beside it.
double covered(const QImage& a, const QImage& b, int reach)
{
    double ink = 0, met = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (!isInk(a.pixel(x, y))) continue;
            ++ink;
            if (inkNear(b, x, y, reach)) ++met;
        }
    }
    return ink == 0 ? 0 : met / ink;
}

struct BLOB {
    double x = 0, y = 0, count = 0; // centre of the ink, pixels
};
BLOB inkOf(const QImage& image)
{
    BLOB blob;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!isInk(image.pixel(x, y))) continue;
            blob.x += x;
            blob.y += y;
            ++blob.count;
        }
    }
    if (blob.count > 0) blob.x /= blob.count, blob.y /= blob.count;
    return blob;
}

void keepPictures(const QImage& a, const QImage& b, const std::string& name)
{
    const char* folder = std::getenv("NVQ_KEEP_PICTURES"); // for whoever wants to look at them
    if (!folder) return;
    QImage both(a.width(), a.height() + b.height() + 4, QImage::Format_RGB32);
    both.fill(Qt::red);
    QPainter p(&both);
    p.drawImage(0, 0, a);
    p.drawImage(0, a.height() + 4, b);
    p.end();
    both.save(QString::fromStdString(std::string(folder) + "/" + name + ".png"));
}

struct PAIR {
    QImage painter, page;
};
PAIR bothPictures(const Scene& scene, const std::string& name, bool smooth = true)
{
    PAIR pair;
    pair.painter = painted(scene);
    const std::string file = pageFile(pageText(scene));
    EXPECT_EQ(complaints(file), "");
    pair.page = rendered(file, smooth);
    keepPictures(pair.painter, pair.page, name);
    return pair;
}

void expectAlike(const Scene& scene, const std::string& name, bool smooth = true, int reach = 2,
                 double share = 0.99)
{
    const PAIR pair = bothPictures(scene, name, smooth);
    ASSERT_EQ(pair.painter.size(), pair.page.size());
    EXPECT_GT(inkOf(pair.painter).count, 100);
    EXPECT_GT(covered(pair.painter, pair.page, reach), share);
    EXPECT_GT(covered(pair.page, pair.painter, reach), share);
}

TEST_F(Sinks, SymbolsHaveTheSamePlacesAndSizes)
{
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, whole);
            for (int symbol = 1; symbol <= 8; ++symbol) {
                for (int row = 0; row < 6; ++row) {
                    fill(p, ps, row >= 3);
                    color(p, ps, row == 1 ? 4 : row == 4 ? 1 : 0);
                    const std::vector<float> x{2.0f * static_cast<float>(symbol)},
                        y{1.0f + 2 * static_cast<float>(row)};
                    DrawSymbols(p, ps, x, y, symbol, 0.3f + 0.5f * static_cast<float>(row % 3));
                }
            }
        },
        "symbols", false); // the outlines are hair lines
}

TEST_F(Sinks, SymbolCentresAgreeWithinAPixel)
{
    for (int symbol = 1; symbol <= 8; ++symbol) {
        const PAIR pair = bothPictures(
            [symbol](QPainter* p, std::FILE* ps) {
                openWindow(p, ps, whole);
                fill(p, ps, true);
                const std::vector<float> x{8}, y{6};
                DrawSymbols(p, ps, x, y, symbol, 1.5f);
            },
            "symbol" + std::to_string(symbol));
        const BLOB a = inkOf(pair.painter), b = inkOf(pair.page);
        EXPECT_NEAR(a.x, b.x, 1.2) << symbol;
        EXPECT_NEAR(a.y, b.y, 1.2) << symbol;
        if (symbol > 5) continue; // thin strokes
        EXPECT_NEAR(a.count / b.count, 1, 0.08) << symbol;
    }
}

TEST_F(Sinks, CurvesFollowTheSameRoad)
{
    std::vector<float> x, y;
    for (int i = 0; i <= 200; ++i) {
        x.push_back(33 + 0.02f * static_cast<float>(i));
        y.push_back(i == 50 ? common::MISSING_VALUE : 2500 - 2000 * std::sin(0.05f * static_cast<float>(i)));
    }
    expectAlike(
        [&](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, {33, 37, 15, 2, 5000, 0, 10, 2}); // y runs down
            DrawCurve(p, ps, x, y, common::MISSING_VALUE, 0, 0, 3);
        },
        "curve");
}

TEST_F(Sinks, ThicknessesAreTheSame)
{
    for (int thickness = 1; thickness < 6; ++thickness) {
        const PAIR pair = bothPictures(
            [thickness](QPainter* p, std::FILE* ps) {
                openWindow(p, ps, whole);
                const std::vector<float> x{2, 18}, y{3, 12};
                DrawCurve(p, ps, x, y, common::MISSING_VALUE, 0, 0, thickness);
            },
            "thickness" + std::to_string(thickness));
        const double pixels = thicknesses()[static_cast<std::size_t>(thickness)].millimetres / 25.4 * dpi;
        EXPECT_NEAR(inkOf(pair.painter).count / inkOf(pair.page).count, 1, 0.1 + 1.5 / pixels) << thickness;
    }
}

TEST_F(Sinks, LineTypesHaveTheSameDashes)
{
    useDevice(5, 4, 508); // where the widths are nearly whole pixels
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, {0, 5, 5, 0, 0, 4, 4, 0});
            for (int type = 0; type < 3; ++type) {
                for (int thickness = 1; thickness < 4; ++thickness) {
                    SetLineStyle(p, type);
                    if (ps) std::fprintf(ps, "%s\n", lineTypes()[static_cast<std::size_t>(type)].procedure);
                    const float level =
                        0.3f + 1.2f * static_cast<float>(type) + 0.3f * static_cast<float>(thickness);
                    const std::vector<float> x{0.5f, 4.5f}, y{level, level};
                    DrawCurve(p, ps, x, y, common::MISSING_VALUE, 0, 0, thickness);
                }
            }
        },
        "linetypes", true, 3, 0.98);
}

TEST_F(Sinks, ThinDashesKeepTheirLengthOnFineDevices)
{
    useDevice(5, 4, 1270);
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, {0, 5, 5, 0, 0, 4, 4, 0});
            for (int type = 1; type < 3; ++type) {
                SetLineStyle(p, type);
                if (ps) std::fprintf(ps, "%s\n", lineTypes()[static_cast<std::size_t>(type)].procedure);
                const std::vector<float> x{0.5f, 4.5f}, y{static_cast<float>(type), static_cast<float>(type)};
                DrawCurve(p, ps, x, y, common::MISSING_VALUE, 0, 0, 0);
            }
        },
        "thindashes", true, 3, 0.98);
}

TEST_F(Sinks, FilledPathsCoverTheSameArea)
{
    const PAIR pair = bothPictures(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, {-30, 30, 16, 2, -20, 20, 10, 2});
            color(p, ps, 4);
            const std::vector<float> x{-20, 20, 10, 25, -20}, y{-15, -10, 0, 15, -15};
            DrawPath(p, ps, x, y, false, pathFill | pathLine);
        },
        "fill");
    EXPECT_NEAR(inkOf(pair.painter).count / inkOf(pair.page).count, 1, 0.02);
    EXPECT_GT(covered(pair.painter, pair.page, 1), 0.999);
}

TEST_F(Sinks, LabelsStandAtTheSamePlaceWithEveryOrigin)
{
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, whole);
            for (int lorg = 0; lorg <= 9; ++lorg) {
                const float x = 2.5f + 3.8f * static_cast<float>(lorg % 5),
                            y = 10.5f - 6.5f * static_cast<float>(lorg / 5);
                fill(p, ps, false);
                label(p, ps, lorg, "Label", x, y + 2, 0, 18);
                label(p, ps, lorg, "Label", x, y, 90, 14);
                label(p, ps, lorg, "Label", x, y - 2, 30, 10);
                const std::vector<float> px{x, x, x}, py{y + 2, y, y - 2};
                DrawSymbols(p, ps, px, py, 8, 0.3f);
            }
        },
        "lorg");
}

TEST_F(Sinks, TextLooksTheSame)
{
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, whole);
            label(p, ps, 6, "Oxygen [ml/l] O~_2 m~^3 tail", 1, 12, 0, 20);
            label(p, ps, 6,
                  "Temperature [\xB0"
                  "C] \xE4\xF6\xFC\xDF \xCA\xFB",
                  1, 10, 0, 20);
            label(p, ps, 6, "[kg m\xE2\x81\xBB\xC2\xB3], \xE2\x80\x93 and 3 m\xC2\xB2~", 1, 8, 0, 20);
            label(p, ps, 6, "(brackets) and - 50% 'quoted'", 1, 6, 0, 20);
        },
        "text", true, 3, 0.97);
}

TEST_F(Sinks, SymbolLettersAppearInBoth)
{
    const PAIR pair = bothPictures(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, whole);
            label(p, ps, 6, "~$abcdefghiklmnopqrstuvwxyz", 1, 12, 0, 16);
            label(p, ps, 6, "~$ABCDEFGHIKLMNOPQRSTUVWXYZ", 1, 10, 0, 16);
            label(p, ps, 6, "\xCF\x83\xCE\xB8 and ~$s~#~_1, [~$m~#mol/kg] \xCE\x94", 1, 8, 0, 16);
        },
        "greek");
    const BLOB a = inkOf(pair.painter), b = inkOf(pair.page);
    EXPECT_NEAR(a.x / b.x, 1, symbolFontInstalled() ? 0.3 : 0.1); // a symbol font is drawn a quarter larger
    EXPECT_NEAR(a.y, b.y, 15);
    EXPECT_GT(covered(pair.page, pair.painter, 12), 0.95);
}

TEST_F(Sinks, FramedLabelsHaveTheSameBox)
{
    const PAIR pair = bothPictures(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, whole);
            color(p, ps, 0);
            DrawFramedLabel(p, ps, "Framed", 5, 10, 0, 24, 3, 1, 2, 6);
            DrawFramedLabel(p, ps, "Framed", 12, 7, 45, 24, 2, -1, 2, 0);
            DrawFramedLabel(p, ps, "Framed", 12, 3, 180, 16, -1, 4, 1, 1);
        },
        "framed");
    EXPECT_GT(covered(pair.painter, pair.page, 2), 0.99);
    EXPECT_GT(covered(pair.page, pair.painter, 2), 0.99);
    EXPECT_NEAR(inkOf(pair.painter).count / inkOf(pair.page).count, 1, 0.05);
}

TEST_F(Sinks, ColorBarLooksTheSame)
{
    const PAIR pair = bothPictures(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, {0, 100, 12, 2, 0, 10, 10, 2});
            WritePsColorTable(ps);
            DrawColorBar(p, ps,
                         "Temp [\xB0"
                         "C]",
                         14, 0, 100, 12, 0, 10, -2, 30, -0.1f, 0.1f);
        },
        "colorbar");
    EXPECT_GT(covered(pair.painter, pair.page, 2), 0.99);
    EXPECT_GT(covered(pair.page, pair.painter, 2), 0.99);
    for (int row = 2; row < 12; ++row) { // the same colours all along
        const int x = static_cast<int>((14 + 0.42 + 0.21) / 2.54 * dpi),
                  y = static_cast<int>(row / 2.54 * dpi) + 20;
        const QRgb a = pair.painter.pixel(x, y), b = pair.page.pixel(x, y);
        EXPECT_NEAR(qRed(a), qRed(b), 24) << row;
        EXPECT_NEAR(qGreen(a), qGreen(b), 24) << row;
        EXPECT_NEAR(qBlue(a), qBlue(b), 24) << row;
    }
}

// Frame, axes and titles as the window frame writes them.
void drawAxes(QPainter* p, std::FILE* ps, const WINDOW& w, float size)
{
    const TICS x = ChooseTics(w.xmin, w.xmax), y = ChooseTics(w.ymin, w.ymax);
    openWindow(p, ps, w);
    color(p, ps, 0);
    if (p) {
        DrawFrame(p);
        DrawXAxis(p, x, size, true, "X title");
        DrawYAxis(p, y, size, true, "Y title");
        DrawTitle(p, size, "Title");
    }
    if (!ps) return;
    std::fprintf(ps,
                 "very_thin_line usrsys /fill? false def /stroke? false def\n%g SetMyFont\n/grid? true def\n",
                 size);
    std::fputs("dousrframe\n/xtitle [(X title)] def /title [(Title)] def\n", ps);
    std::fprintf(ps, "%g %g %g xaxlabl\n", x.start, x.minor, x.major);
    std::fprintf(ps, "/ytitle [(Y title)] def %g %g %g yaxlabl\n", y.start, y.minor, y.major);
}

TEST_F(Sinks, AxesLookTheSame)
{
    // Grid lines are hair lines on the page: without soft edges they show.
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            drawAxes(p, ps, {0, 1, 13, 4, 0, 1000, 8, 3}, 14);
        },
        "axes", false, 3, 0.97);
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            drawAxes(p, ps, {37, 33.3f, 13, 4, 5500, 0, 8, 3}, 10);
        },
        "reversedaxes", false, 3, 0.97);
}

TEST_F(Sinks, MapFramesLookTheSame)
{
    MAPGEOMETRY map;
    map.lonMin = map.umin = -33;
    map.lonMax = map.umax = 40;
    map.latMin = map.vmin = -20;
    map.latMax = map.vmax = 25;
    map.xlen = 15;
    map.xorg = 3;
    map.ylen = 9;
    map.yorg = 3;
    expectAlike(
        [&](QPainter* p, std::FILE* ps) {
            openWindow(p, ps,
                       {map.umin, map.umax, map.xlen, map.xorg, map.vmin, map.vmax, map.ylen, map.yorg});
            DrawMapFrame(p, ps, map, 12, 0, false, true);
        },
        "mapframe", true, 3, 0.97);
}

TEST_F(Sinks, StampsStandAtTheSamePlace)
{
    expectAlike(
        [](QPainter* p, std::FILE* ps) {
            openWindow(p, ps, {0, 100, 10, 2, 50, 0, 8, 3});
            DrawStamp(p, ps, "Program 1.0 - a collection", 12, 0);
        },
        "stamp", true, 4, 0.95);
}

} // namespace
