#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "common/text.h"
#include "graphics/axes.h"
#include "graphics/ink.h"
#include "graphics/mapgraticule.h"
#include "graphics/palette.h"
#include "graphics/scenes.h"
#include "graphics/textsize.h"

namespace graphics {
namespace {

using testing_support::inkCovered;
using testing_support::inkIn;
using testing_support::pageText;
using testing_support::painted;
using testing_support::useDevice;

struct MAPDOMAIN {
    const char* name;
    int id;
    double lonMin, lonMax, latMin, latMax, lon0, lat0;
};

const MAPDOMAIN domains[] = {
    {"globe", 0, 0, 360, -90, 90, 180, 0},
    {"ocean", 0, -70, 20, -40, 60, 0, 0},
    {"bay", 0, -10, -5, 40, 43, 0, 0},
    {"harbour", 0, 150.25, 150.5, -40, -39.9, 0, 0},
    {"channel", 0, -30, 150, 20, 40, 0, 0},
    {"north polar", 5, -180, 180, 30, 90, 0, 90},
    {"north polar, turned", 5, -190, 170, 45, 85, -10, 90},
    {"north polar sector", 1, -60, 60, 40, 80, 0, 90},
    {"equatorial", 2, -180, 180, -90, 90, -30, 0},
    {"equatorial part", 2, -60, 60, 12, 70, 0, 0},
    {"south polar", 5, -180, 180, -90, -30, 0, -90},
    {"mollweide", 4, 0, 360, -90, 90, 180, 0},
    {"mollweide part", 4, -70, 20, -60, 60, 0, 0},
    {"oblique globe", 5, -180, 180, -90, 90, -30, 40},
    {"oblique southern globe", 5, -180, 180, -90, 90, 140, -55},
    {"oblique sector", 5, -80, 20, 10, 65, -30, 40},
    {"oblique half", 5, 120, 300, -90, 90, 210, 20},
};

MAPGEOMETRY setUp(const MAPDOMAIN& d, float width = 12, float height = 9)
{
    MAPGEOMETRY m;
    m.id = d.id;
    m.lonMin = d.lonMin, m.lonMax = d.lonMax, m.latMin = d.latMin, m.latMax = d.latMax;
    m.lon0 = d.lon0, m.lat0 = d.lat0;
    SetupMapWindow(m, {width, 3, height, 3});
    SetUsrSys(m.umin, m.umax, m.xlen, m.xorg, m.vmin, m.vmax, m.ylen, m.yorg);
    return m;
}

class MapFrame : public testing::Test {
protected:
    void SetUp() override
    {
        drawState() = DRAWSTATE{};
        useDevice(18, 14, 101.6);
    }
    void TearDown() override
    {
        drawState() = before_;
        projection() = PROJECTION{};
    }
    static std::string page(const MAPGEOMETRY& m, bool grid = true, bool labels = true, int color = 0)
    {
        return pageText(
            [&](QPainter*, std::FILE* ps) { DrawMapFrame(nullptr, ps, m, 9, color, grid, labels); });
    }
    static int count(const std::string& text, const std::string& part)
    {
        int n = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
        return n;
    }

private:
    DRAWSTATE before_ = drawState();
};

TEST_F(MapFrame, PageOfTheDefaultProjectionIsLineByLineAsItIsRead)
{
    const MAPGEOMETRY m = setUp({"", 0, -40, 0, 0, 15, 0, 0});
    EXPECT_EQ(page(m),
              "\n%%PS-OBJECT: MapFrame begin\ngsave\n/fill? false def /stroke? false def\n0 setgray\n"
              "very_thin_line 9 SetMyFont\n"
              "  -40.000     5.000 xmapframe\n"
              "-40 ymin -40 ymax Line\n(40\\312W)   -40.000 xmaplabl\n"
              "-30 ymin -30 ymax Line\n(30\\312W)   -30.000 xmaplabl\n"
              "-20 ymin -20 ymax Line\n(20\\312W)   -20.000 xmaplabl\n"
              "-10 ymin -10 ymax Line\n(10\\312W)   -10.000 xmaplabl\n"
              "0 ymin 0 ymax Line\n(0)     0.000 xmaplabl\n"
              "    0.000     2.500 ymapframe\n"
              "xmin 0 xmax 0 Line\n(EQ)     0.000 ymaplabl\n"
              "xmin 5 xmax 5 Line\n(5\\312N)     5.000 ymaplabl\n"
              "xmin 10 xmax 10 Line\n(10\\312N)    10.000 ymaplabl\n"
              "xmin 15 xmax 15 Line\n(15\\312N)    15.000 ymaplabl\n"
              "grestore\n%%PS-OBJECT: MapFrame end\n");
}

TEST_F(MapFrame, GridAndLabelsCanBeLeftOut)
{
    const MAPGEOMETRY plain = setUp(domains[1]);
    EXPECT_EQ(count(page(plain, false, true), " Line\n"), 0);
    EXPECT_EQ(count(page(plain, true, false), "maplabl"), 0);
    EXPECT_EQ(count(page(plain, false, false), "mapframe"), 2);
    const MAPGEOMETRY globe = setUp(domains[13]);
    EXPECT_EQ(count(page(globe, false, true), "gsave very_thin_line stroke"), 0);
    EXPECT_GT(count(page(globe, true, true), "gsave very_thin_line stroke"), 8);
    EXPECT_EQ(count(page(globe, true, false), "rotlabl"), 0);
    EXPECT_EQ(count(page(globe, false, false), "gsave medium_line stroke grestore\n"), 1);
}

TEST_F(MapFrame, AxisColourOfMinusOneDrawsNothing)
{
    for (const MAPDOMAIN& d : domains) {
        const MAPGEOMETRY m = setUp(d);
        EXPECT_EQ(page(m, true, true, -1), "") << d.name;
        const QImage image =
            painted([&](QPainter* p, std::FILE*) { DrawMapFrame(p, nullptr, m, 9, -1, true, true); });
        EXPECT_EQ(inkIn(image, image.rect()), 0) << d.name;
    }
}

TEST_F(MapFrame, BordersBoxesAreOneMinorStepLongAndAlternate)
{
    const MAPGEOMETRY m = setUp({"", 0, 0, 40, 0, 30, 0, 0}, 12, 9); // minor step 5
    const QImage image = painted([&](QPainter* p, std::FILE*) {
        SetColor(p, 0);
        DrawMapFrame(p, nullptr, m, 12, 0, false, false);
    });
    const double band = textCm(0.4 * 12) * 40;
    const int y = static_cast<int>(usrSys().y.lowPx + band / 2);
    for (int box = 0; box < 8; ++box) {
        const int gray = qGray(image.pixel(pixelX(5 * box + 2.5), y));
        EXPECT_EQ(gray, box % 2 == 0 ? 255 : 0) << box;
        EXPECT_EQ(qGray(image.pixel(pixelX(5 * box + 2.5), static_cast<int>(usrSys().y.highPx - band / 2))),
                  gray);
    }
    EXPECT_EQ(
        inkIn(image, QRect(QPoint(pixelX(0) + 2, pixelY(30) + 2), QPoint(pixelX(40) - 3, pixelY(0) - 2))), 0);
}

TEST_F(MapFrame, WholeGlobeHasTheEquatorAmongItsLabels)
{
    const std::string text = page(setUp(domains[0]));
    EXPECT_EQ(count(text, "(EQ)"), 1);
    EXPECT_EQ(count(text, "(90\\312"), 2); // east and west, no poles
    for (const float width : {2.0f, 4.0f, 8.0f}) {
        EXPECT_GE(count(page(setUp(domains[0], width, width / 2)), "xmaplabl"), 1) << width;
        EXPECT_GE(count(page(setUp(domains[4], width, width / 2)), "ymaplabl"), 1) << width;
    }
}

TEST_F(MapFrame, WholeCircleDoesNotPrintTheSameMeridianTwice)
{
    for (const MAPDOMAIN& d : domains) {
        const MAPGEOMETRY m = setUp(d);
        if (m.id == projectionDefault) continue; // which shows one meridian at both of its sides
        std::multiset<std::string> texts;
        for (const DEGREELABEL& label : makeGraticule(m, 9).labels) texts.insert(label.text);
        for (const std::string& text : texts) EXPECT_EQ(texts.count(text), 1u) << d.name << ' ' << text;
        EXPECT_GE(texts.size(), 4u) << d.name;
    }
}

TEST_F(MapFrame, HalvesOfTheEarthBehindTheGlobeHaveNoLabels)
{
    const MAPGEOMETRY m = setUp({"", 5, -180, 180, -90, 90, -30, 40});
    const std::set<std::string> hidden = {"150\xb0"
                                          "E",
                                          "180\xb0"
                                          "E",
                                          "120\xb0"
                                          "E",
                                          "60\xb0"
                                          "S"};
    for (const DEGREELABEL& label : makeGraticule(m, 9).labels)
        EXPECT_EQ(hidden.count(label.text), 0u) << label.text;
    for (const GRATICULEPIECE& piece : makeGraticule(m, 9).meridians) {
        EXPECT_TRUE(IsVisible(static_cast<double>(piece.at), 0.5 * (double{piece.from} + piece.to)))
            << piece.at;
    }
}

// The corners of a label in cm on the map.
std::array<QPointF, 4> cornersOf(const MAPGEOMETRY& m, const DEGREELABEL& label, double size)
{
    constexpr double fx[] = {0.5, 0.5, 0.5, 1, 1, 0, 0, 1, 0, 0.5},
                     fy[] = {0.5, 1, 0, 1, 0, 1, 0, 0.5, 0.5, 0.5};
    const double w = textCm(size * textWidth(label.text)), h = textCm(size * labelHeight);
    const double a = static_cast<double>(label.angle) * 3.14159265 / 180;
    const QPointF at(static_cast<double>((label.u - m.umin) * m.xlen / (m.umax - m.umin)),
                     static_cast<double>((label.v - m.vmin) * m.ylen / (m.vmax - m.vmin)));
    std::array<QPointF, 4> corners;
    for (std::size_t i = 0; i < 4; ++i) {
        const double x = ((i == 1 || i == 2 ? 1 : 0) - fx[label.lorg]) * w,
                     y = ((i > 1 ? 1 : 0) - fy[label.lorg]) * h;
        corners[i] = at + QPointF(std::cos(a) * x - std::sin(a) * y, std::sin(a) * x + std::cos(a) * y);
    }
    return corners;
}

TEST_F(MapFrame, LabelsDoNotCoverEachOther)
{
    for (const MAPDOMAIN& d : domains) {
        for (const float width : {3.0f, 6.0f, 15.0f}) {
            const MAPGEOMETRY m = setUp(d, width, width);
            if (m.id == projectionDefault) continue;
            const std::vector<DEGREELABEL> labels = makeGraticule(m, 8).labels;
            for (std::size_t i = 0; i < labels.size(); ++i) {
                for (std::size_t j = 0; j < i; ++j) {
                    const auto a = cornersOf(m, labels[i], 8), b = cornersOf(m, labels[j], 8);
                    const QPolygonF shared = QPolygonF(QList<QPointF>(a.begin(), a.end()))
                                                 .intersected(QPolygonF(QList<QPointF>(b.begin(), b.end())));
                    const QRectF box = shared.boundingRect();
                    EXPECT_LT(box.width() * box.height(), 1e-3)
                        << d.name << ' ' << width << ": " << labels[i].text << ", " << labels[j].text;
                }
            }
        }
    }
}

TEST_F(MapFrame, LabelsAreNeverUpsideDown)
{
    for (const MAPDOMAIN& d : domains) {
        const MAPGEOMETRY m = setUp(d);
        if (m.id == projectionDefault) continue;
        for (const DEGREELABEL& label : makeGraticule(m, 9).labels) {
            const bool upright =
                (label.angle >= 0 && label.angle < 90.1f) || (label.angle > 269.9f && label.angle < 360);
            EXPECT_TRUE(upright) << d.name << ' ' << label.text << ' ' << label.angle;
        }
    }
}

TEST_F(MapFrame, MeridiansOfAPolarMapAreLabelledOutsideItsRim)
{
    for (const std::size_t which : {5u, 10u}) {
        const MAPGEOMETRY m = setUp(domains[which]);
        for (const DEGREELABEL& label : makeGraticule(m, 9).labels) {
            if (label.inside) continue;
            double sum = 0;
            for (const QPointF& c : cornersOf(m, label, 9)) {
                sum += std::hypot(c.x() - static_cast<double>(m.xlen) / 2,
                                  c.y() - static_cast<double>(m.ylen) / 2) /
                       4;
            }
            EXPECT_GT(sum, static_cast<double>(m.xlen) / 2) << domains[which].name << ' ' << label.text;
        }
    }
}

TEST_F(MapFrame, LatitudesAtTheHorizonStandWhereTheirParallelsEnd)
{
    const MAPGEOMETRY m = setUp(domains[16]);
    int found = 0;
    for (const DEGREELABEL& label : makeGraticule(m, 9).labels) {
        if (label.inside || label.text == "150\xb0W") continue;
        const float lat = label.text == "EQ" ? 0.0f : label.text == "30\xb0N" ? 30.0f : 60.0f;
        ++found;
        float u = static_cast<float>(m.lonMin), v = lat;
        ProjectPoint(u, v);
        EXPECT_EQ(label.angle, 0) << label.text;
        EXPECT_EQ(label.lorg, 7) << label.text;
        EXPECT_NEAR(label.v, v, 1e-4) << label.text;
        EXPECT_LT(label.u, u) << label.text;
        EXPECT_LT(static_cast<double>((u - label.u) * m.xlen / (m.umax - m.umin)), textCm(1.5 * 9))
            << label.text;
    }
    EXPECT_EQ(found, 3);
}

TEST_F(MapFrame, GraticuleLeavesLabelsInsideTheMapFree)
{
    const MAPGEOMETRY m = setUp(domains[5]);
    const GRATICULE g = makeGraticule(m, 9);
    for (const DEGREELABEL& label : g.labels) {
        if (!label.inside) continue;
        for (const GRATICULEPIECE& piece : g.parallels) {
            for (double lon = static_cast<double>(piece.from) + 1; lon < static_cast<double>(piece.to) - 1;
                 lon += 0.5) {
                float u = static_cast<float>(lon), v = piece.at;
                ProjectPoint(u, v);
                const double distance =
                    std::hypot(static_cast<double>(u - label.u), static_cast<double>(v - label.v));
                EXPECT_GT(distance * static_cast<double>(m.xlen / (m.umax - m.umin)), textCm(0.5 * 9))
                    << label.text;
            }
        }
    }
}

TEST_F(MapFrame, LettersOnTopOfTheMapHaveAnEdge)
{
    const MAPGEOMETRY m = setUp(domains[13]);
    const std::vector<DEGREELABEL> labels = makeGraticule(m, 9).labels;
    const auto isInside = [](const DEGREELABEL& label) { return label.inside; };
    const int inside = static_cast<int>(std::count_if(labels.begin(), labels.end(), isInside));
    ASSERT_GT(inside, 3);
    EXPECT_EQ(count(page(m), "/halo 1 def "), inside);
    EXPECT_EQ(count(page(m, true, true, colorWhite), "/halo 0 def "), inside);
    EXPECT_EQ(count(page(m), "/halo -1 def /lorg 0 def\ngrestore\n"), 1);
    const QImage image = painted([&](QPainter* p, std::FILE*) {
        p->fillRect(QRect(0, 0, 2000, 2000), Qt::gray);
        DrawMapFrame(p, nullptr, m, 9, 0, false, true);
    });
    int white = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) white += qGray(image.pixel(x, y)) > 250;
    }
    EXPECT_GT(white, 40 * inside);
}

TEST_F(MapFrame, DrawingStateIsAsBefore)
{
    for (const std::size_t which : {0u, 13u}) {
        const MAPGEOMETRY m = setUp(domains[which]);
        (void)painted([&](QPainter* p, std::FILE*) {
            SetColor(p, 12);
            SetPenWidth(p, 4);
            const QPen pen = p->pen();
            DrawMapFrame(p, nullptr, m, 9, 3, true, true);
            EXPECT_EQ(p->pen(), pen);
            EXPECT_EQ(drawState().color[0], 12);
            EXPECT_EQ(drawState().penWidth, 4);
            EXPECT_EQ(usrSys().x.userMin, m.umin);
        });
    }
}

TEST_F(MapFrame, PainterAndPageShowTheSame)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
    for (const MAPDOMAIN& d : domains) {
        const MAPGEOMETRY m = setUp(d);
        const auto scene = [&](QPainter* p, std::FILE* ps) {
            SetUsrSys(m.umin, m.umax, m.xlen, m.xorg, m.vmin, m.vmax, m.ylen, m.yorg);
            if (ps) {
                std::fprintf(ps, "%g %g %g %g %g %g %g %g UsrSys\n", m.umin, m.umax, m.xlen, m.xorg, m.vmin,
                             m.vmax, m.ylen, m.yorg);
            }
            DrawMapFrame(p, ps, m, 9, 0, true, true);
        };
        const std::string file = testing_support::pageFile(pageText(scene));
        EXPECT_EQ(testing_support::complaints(file), "") << d.name;
        const QImage screen = painted(scene), paper = testing_support::rendered(file, false);
        ASSERT_FALSE(paper.isNull());
        EXPECT_GT(inkCovered(screen, paper, 3), 0.97) << d.name;
        EXPECT_GT(inkCovered(paper, screen, 3), 0.97) << d.name;
    }
}

} // namespace
} // namespace graphics
