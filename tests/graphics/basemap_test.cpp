#include <utility>

#include <gtest/gtest.h>

#include "common/text.h"
#include "mapsupport.h"

using namespace graphics;
using namespace testing_support;

namespace {

std::string oneLine(std::string text)
{
    return common::replaceAll(text, "\n", "|");
}

int countOf(const std::string& text, const std::string& what)
{
    int n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

class BaseMap : public testing::Test {
protected:
    void SetUp() override
    {
        writeBytes(files.layer("World.cdt"), cdtBytes(smallWorld()));
        writeBytes(files.layer("bathymetry/Backgrd.cdt"), cdtBytes({box(0, 360, -90, 90)}));
    }
    MAPWINDOW globe(int id = 0) const
    {
        MAPWINDOW m = files.map(id, -180, 180, -90, 90, 0, 40);
        setDefaultLayers(m, files.installation);
        return m;
    }
    template <class Block>
    std::string block(Block draw, MAPWINDOW& m)
    {
        const BASEMAPCONTEXT c = files.context();
        return files.written([&](std::FILE* ps) { draw(ps, c, m); });
    }
    RMapWorld files;
};

} // namespace

// --- PostScript

TEST_F(BaseMap, FirstBlockHoldsClipBackgroundAndBathymetry)
{
    MAPWINDOW m = globe();
    const std::string text = block(PsBaseMap1, m);
    EXPECT_TRUE(text.starts_with("\n%%PS-OBJECT: PSBaseMap1 begin\ngsave\n"));
    EXPECT_TRUE(text.ends_with("\ngrestore\n%%PS-OBJECT: PSBaseMap1 end\n\n"));
    const std::size_t clip = text.find("%%PS-OBJECT: MapClipPath begin\n");
    const std::size_t background = text.find("%%PS-OBJECT: NVQ_WindowBackground begin\n");
    const std::size_t sea = text.find("bathymetry/Backgrd.cdt begin");
    EXPECT_LT(clip, background);
    EXPECT_LT(background, sea);
    EXPECT_NE(sea, std::string::npos);
    EXPECT_EQ(text.find("World.cdt"), std::string::npos);
    m.background = -1;
    EXPECT_EQ(block(PsBaseMap1, m).find("NVQ_WindowBackground"), std::string::npos);
}

TEST_F(BaseMap, SecondBlockHoldsTheLand)
{
    MAPWINDOW m = globe();
    SetupMapWindow(m.geometry, m.box);
    const std::string text = block(PsBaseMap2, m);
    EXPECT_TRUE(text.starts_with("\n%%PS-OBJECT: PSBaseMap2 begin\ngsave\n"));
    EXPECT_TRUE(text.ends_with("\ngrestore\n%%PS-OBJECT: PSBaseMap2 end\n\n"));
    EXPECT_EQ(countOf(text, "World.cdt begin"), 2); // fill and line
    EXPECT_EQ(text.find("bathymetry"), std::string::npos);
}

TEST_F(BaseMap, LastBlockDrawsTheCoastClippedAndTheFrameUnclipped)
{
    MAPWINDOW m = globe(4);
    m.axisColor = 0;
    SetupMapWindow(m.geometry, m.box);
    const std::string text = block(PsBaseMap3, m);
    EXPECT_TRUE(text.starts_with("gsave  %saving unclipped status\n"));
    const std::size_t off = text.find("\ngrestore % clipping switched off\n\n");
    ASSERT_NE(off, std::string::npos);
    EXPECT_LT(text.find("gsave medium_line stroke grestore\nclip\n"), off);
    EXPECT_LT(text.find("World.cdt begin"), off);
    EXPECT_EQ(countOf(text, "World.cdt begin"), 1);
    EXPECT_GT(text.find("MapFrame"), off);
    m.axisColor = -1;
    EXPECT_EQ(block(PsBaseMap3, m).find("MapFrame"), std::string::npos);
}

TEST_F(BaseMap, ClipPathStandsInTheOverlayGrid)
{
    MAPWINDOW m = globe();
    SetupMapWindow(m.geometry, m.box);
    const MAPGEOMETRY& g = m.geometry;
    const std::string text = files.written([&g](std::FILE* ps) { ClipToMap(nullptr, ps, g, true); });
    EXPECT_EQ(oneLine(text), oneLine(common::format(
                                 "\n%%%%PS-OBJECT: MapClipPath begin\n0 5000 %g %g 0 5000 %g %g SetupUsrSys\n"
                                 "\nnp\n0 0 M\n5000 0 R\n0 5000 R\n-5000 0 R\n0 -5000 R\nclip\n"
                                 "-180 180 %g %g -90 90 %g %g SetupUsrSys\n%%%%PS-OBJECT: MapClipPath end\n",
                                 g.xlen, g.xorg, g.ylen, g.yorg, g.xlen, g.xorg, g.ylen, g.yorg)));
}

TEST_F(BaseMap, ProjectedClipPathHasItsFrameOnlyWhenWanted)
{
    MAPWINDOW m = globe(5);
    SetupMapWindow(m.geometry, m.box);
    for (bool frame : {false, true}) {
        const std::string text =
            files.written([&](std::FILE* ps) { ClipToMap(nullptr, ps, m.geometry, frame); });
        EXPECT_EQ(countOf(text, "gsave medium_line stroke grestore\nclip\n"), frame ? 1 : 0);
        EXPECT_GT(countOf(text, " R\n"), 300);
    }
}

TEST_F(BaseMap, OverlayGridIsTruncated)
{
    MAPGEOMETRY g;
    g.umin = 0, g.umax = 360, g.vmin = -90, g.vmax = 90;
    EXPECT_EQ(overlayX(g, 0), 0);
    EXPECT_EQ(overlayX(g, 360), 5000);
    EXPECT_EQ(overlayX(g, 0.0719), 0);
    EXPECT_EQ(overlayX(g, 0.0721), 1);
    EXPECT_EQ(overlayY(g, 0), 2500);
}

// --- painter

TEST_F(BaseMap, PlotRectangleAndUserSystemAreThoseOfTheMap)
{
    MAPWINDOW m = globe();
    files.paint(m);
    EXPECT_EQ(m.plotRect[0], 20);
    EXPECT_EQ(m.plotRect[2], 380);
    EXPECT_EQ(usrSys().x.userMin, -180);
    EXPECT_EQ(usrSys().y.userMax, 90);
}

TEST_F(BaseMap, OutsideOfTheGlobeIsWhiteOnCanvasAndInExports)
{
    for (bool onCanvas : {true, false})
        for (int id : {4, 5}) {
            MAPWINDOW m = globe(id);
            const QImage image = files.paint(m, onCanvas);
            const auto& [left, top, right, bottom] = m.plotRect;
            for (const QPoint corner : {QPoint(left + 3, top + 3), QPoint(right - 3, top + 3),
                                        QPoint(left + 3, bottom - 3), QPoint(right - 3, bottom - 3)})
                EXPECT_EQ(image.pixelColor(corner), QColor(Qt::white)) << id;
            EXPECT_NE(image.pixelColor((left + right) / 2, (top + bottom) / 2), QColor(Qt::white));
        }
}

TEST_F(BaseMap, NothingIsDrawnOutsideTheWindow)
{
    for (int id : {0, 2, 4, 5, 6}) {
        MAPWINDOW m = globe(id);
        const QImage image = files.paint(m);
        const QRect plot = QRect(QPoint(m.plotRect[0], m.plotRect[1]), QPoint(m.plotRect[2], m.plotRect[3]))
                               .adjusted(-3, -3, 3, 3);
        int strayed = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                strayed += !plot.contains(x, y) && image.pixelColor(x, y) != QColor(Qt::white);
        EXPECT_EQ(strayed, 0) << id;
    }
}

TEST_F(BaseMap, TopFindsItsWayBackFromAnotherWindow)
{
    for (bool onCanvas : {true, false}) {
        MAPWINDOW m = files.map(0, 20, 60, -20, 40); // a coast on all sides
        setDefaultLayers(m, files.installation);
        const QImage once = files.paint(m, onCanvas);
        QImage image = once;
        QPainter p(&image);
        SetUsrSys(0, 1, 5, 0, 0, 1, 5, 0);
        MAPGEOMETRY other{.id = projectionMollweide};
        SetupMapWindow(other, {5, 0, 5, 0});
        SetClip(&p, false);
        BaseMapTop(&p, files.context(onCanvas), m);
        EXPECT_EQ(image, once);
    }
}

TEST_F(BaseMap, ExportClipsWhatComesBetweenFrontAndTop)
{
    MAPWINDOW m = globe(5);
    QImage image = files.paper();
    QPainter p(&image);
    const BASEMAPCONTEXT c = files.context(false);
    BaseMapBack(&p, c, m);
    BaseMapFront(&p, c, m);
    p.fillRect(QRect(0, 0, image.width(), image.height()), Qt::magenta); // stations everywhere
    EXPECT_EQ(image.pixelColor(m.plotRect[0] + 3, m.plotRect[1] + 3), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(200, 200), QColor(Qt::magenta));
}

TEST_F(BaseMap, SetupGivesTheProjectionBack)
{
    MAPWINDOW m = files.map(5, -180, 180, -90, 90, 0, 90);
    files.paint(m);
    EXPECT_EQ(m.geometry.id, projectionNorthPolar);
    m = files.map(5, -180, 180, -90, 90, 0, -89);
    files.paint(m);
    EXPECT_EQ(m.geometry.id, projectionSouthPolar);
}

TEST_F(BaseMap, AllDomainsThatCanBeGivenAreDrawn)
{
    for (int id = -1; id <= 7; ++id)
        for (double span : {0.0, 1e-3, 5.0, 170.0, 360.0, 1000.0}) {
            MAPWINDOW m = files.map(id, 100, 100 + span, 40, 40 + span / 2, 500, -200);
            files.paint(m);
            MAPWINDOW back = files.map(id, 100 + span, 100, 40, 40 - span / 2, -500, 200);
            files.paint(back, false);
        }
    SUCCEED();
}

// --- colour bar

TEST_F(BaseMap, ColourBarHasABoxForEveryDepthAndHeight)
{
    MAPWINDOW m = globe();
    SetupMapWindow(m.geometry, m.box);
    const auto bar = [&] {
        return files.written([&m](std::FILE* ps) { DrawMapColorBar(nullptr, ps, m, 10); });
    };
    std::string text = bar();
    EXPECT_TRUE(text.starts_with("\n%%PS-OBJECT: MapColorBar begin\n"));
    EXPECT_TRUE(text.ends_with("%%PS-OBJECT: MapColorBar end\n\n"));
    EXPECT_EQ(countOf(text, "Fill 0 setgray stroke\n\n"), 8);
    EXPECT_EQ(countOf(text, "showstring"), 7); // "Backgrd" has no number
    EXPECT_LT(text.find("(6000 m)"), text.find("(500 m)"));
    EXPECT_NE(text.find("7.5 SetMyFont"), std::string::npos);
    // 3 % of the width are more than 0.35 cm here: 180 + 10.8, and as wide again.
    EXPECT_NE(text.find("np 190.8 -90 M 201.6 -90 L\n201.6 -67.5 L 190.8 -67.5 L 190.8 -90 L\n"),
              std::string::npos);
    m.layers[layerTopography].resize(9);
    common::copyText(m.layers[layerTopography][0].name, "200m.cdt");
    text = bar();
    EXPECT_EQ(countOf(text, "Fill 0 setgray stroke\n\n"), 18);
    EXPECT_LT(text.find("(500 m)"), text.find("(0m)"));
    EXPECT_LT(text.find("(0m)"), text.find("(200 m)"));
    EXPECT_NE(text.find("5.625 SetMyFont"), std::string::npos); // more than 16 boxes
}

TEST_F(BaseMap, ColourBarOfNothingIsNothing)
{
    MAPWINDOW m = globe();
    for (auto& list : m.layers) list.clear();
    EXPECT_EQ(files.written([&m](std::FILE* ps) { DrawMapColorBar(nullptr, ps, m, 10); }), "");
}

TEST_F(BaseMap, StampStandsInFrontOfTheColourBar)
{
    for (const float factor : {0.85f, 1.0f, 1.3f}) {
        MAPWINDOW m = files.map(0, -60, -23, -70, 70);
        setDefaultLayers(m, files.installation);
        m.axisColor = colorBlack;
        m.colorBar = 1;
        const float before = std::exchange(fontSettings().factor, factor);
        const auto paint = [&](const char* title) {
            QImage image = files.paper(60);
            QPainter p(&image);
            BASEMAPCONTEXT c = files.context();
            c.title = title;
            BaseMapBack(&p, c, m);
            BaseMapTop(&p, c, m);
            return image;
        };
        const QImage with = paint("Title"), without = paint("");
        fontSettings().factor = before;
        const int bar = int((m.geometry.xorg + m.geometry.xlen + mapColorBarGap(m.geometry)) * 60);
        int ink = 0;
        for (int x = 0; x < with.width(); ++x) {
            for (int y = 0; y < with.height(); ++y) {
                if (with.pixel(x, y) == without.pixel(x, y)) continue;
                ++ink;
                EXPECT_GT(x, m.plotRect[2]);
                EXPECT_LT(x, bar) << factor;
            }
        }
        EXPECT_GT(ink, 20) << factor;
    }
}

TEST_F(BaseMap, ColourBarIsPaintedRightOfTheMap)
{
    MAPWINDOW m = files.map(0, -180, 180, -90, 90);
    setDefaultLayers(m, files.installation);
    m.box.width = 12;
    m.colorBar = 1;
    const QImage image = files.paint(m);
    int sea = 0;
    const QRgb shallow = paletteColor(bathymetryFirst).rgb();
    for (int x = m.plotRect[2] + 2; x < image.width(); ++x)
        for (int y = m.plotRect[1]; y < m.plotRect[3]; ++y) sea += image.pixel(x, y) == shallow;
    EXPECT_GT(sea, 50);
}
