#include <gtest/gtest.h>

#include "common/text.h"
#include "mapsupport.h"

using namespace graphics;
using namespace testing_support;

namespace {

LAYERENTRY entry(const char* name, int line, int fill)
{
    LAYERENTRY e;
    common::copyText(e.name, name);
    e.lineColor = line;
    e.fillColor = fill;
    return e;
}

// Names of the files of a PostScript text, in their order.
std::vector<std::string> drawnFiles(const std::string& text)
{
    std::vector<std::string> names;
    const std::string mark = "%%PS-OBJECT: CDT=";
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1)) {
        const std::string line = text.substr(at, text.find('\n', at) - at);
        if (line.ends_with(" begin"))
            names.push_back(
                std::filesystem::path(line.substr(mark.size(), line.size() - mark.size() - 6)).filename());
    }
    return names;
}

class Layers : public testing::Test {
protected:
    void write(const std::string& name, const std::vector<SHAPE>& shapes = {box(10, 20, 10, 20)})
    {
        writeBytes(files.layer(name), cdtBytes(shapes));
    }
    std::string kind(MAPWINDOW& m, int k, bool ramp = true)
    {
        SetupMapWindow(m.geometry, m.box);
        const BASEMAPCONTEXT c = files.context();
        return files.written([&](std::FILE* ps) { DrawLayerKind(nullptr, ps, c, m, k, ramp); });
    }
    RMapWorld files;
};

} // namespace

// --- colours

TEST(AutomaticFill, BathymetryRunsFromTheDeepEndToTheShallowOne)
{
    EXPECT_EQ(automaticFill(layerBathymetry, 0, 8, false, true), 159);
    EXPECT_EQ(automaticFill(layerBathymetry, 1, 8, false, true), 157);
    EXPECT_EQ(automaticFill(layerBathymetry, 7, 8, false, true), 145);
    EXPECT_EQ(automaticFill(layerBathymetry, 2, 4, false, true), 149); // 145 + trunc(14 / 3)
}

TEST(AutomaticFill, TopographyRunsFromLowToHigh)
{
    EXPECT_EQ(automaticFill(layerTopography, 0, 8, true, true), 162);
    EXPECT_EQ(automaticFill(layerTopography, 7, 8, true, true), 176);
}

TEST(AutomaticFill, StaysInTheRampForAnyCount)
{
    for (int n = 1; n <= maxLayerEntries; ++n)
        for (int i = 0; i < n; ++i) {
            const int b = automaticFill(layerBathymetry, i, n, false, true);
            const int t = automaticFill(layerTopography, i, n, false, true);
            EXPECT_TRUE(b >= 145 && b <= 159);
            EXPECT_TRUE(t >= 162 && t <= 176);
            const int g = automaticFill(layerBathymetry, i, n, false, false);
            EXPECT_TRUE(g >= 0 && g <= 30);
        }
}

TEST(AutomaticFill, GreyStepsAreUsedWithoutTheRamp)
{
    EXPECT_EQ(automaticFill(layerBathymetry, 0, 8, false, false), 29);
    EXPECT_EQ(automaticFill(layerBathymetry, 7, 8, false, false), 20);
    EXPECT_EQ(automaticFill(layerTopography, 1, 2, false, false), 25); // n counts as 3: 1.85 - 0.275
}

TEST(AutomaticFill, CoastDependsOnTopography)
{
    EXPECT_EQ(automaticFill(layerCoastlines, 0, 1, false, true), 160);
    EXPECT_EQ(automaticFill(layerCoastlines, 0, 1, true, true), 161);
    EXPECT_EQ(automaticLine(layerCoastlines, 0, 1, true), 0);
}

TEST(AutomaticFill, OtherKindsHaveNone)
{
    for (int kind : {layerPreBathymetry, layerPreCoastlines, layerPreTopography, layerPostTopography}) {
        EXPECT_EQ(automaticFill(kind, 0, 1, true, true), -1);
        EXPECT_EQ(automaticLine(kind, 0, 1, false), -1);
    }
}

// --- lists and paths

TEST_F(Layers, DefaultsAreEightDepthsAndOneCoast)
{
    MAPWINDOW m;
    setDefaultLayers(m, files.installation);
    EXPECT_EQ(m.layerSet, "GlobLR/");
    ASSERT_EQ(m.layers[layerBathymetry].size(), 8U);
    EXPECT_STREQ(m.layers[layerBathymetry][0].name, "Backgrd.cdt");
    EXPECT_STREQ(m.layers[layerBathymetry][7].name, "500m.cdt");
    EXPECT_EQ(m.layers[layerBathymetry][3].lineColor, -1);
    EXPECT_EQ(m.layers[layerBathymetry][3].fillColor, -2);
    ASSERT_EQ(m.layers[layerCoastlines].size(), 1U);
    EXPECT_STREQ(m.layers[layerCoastlines][0].name, "World.cdt");
    EXPECT_EQ(m.layers[layerCoastlines][0].lineColor, 0);
    EXPECT_TRUE(m.layers[layerTopography].empty());
}

TEST_F(Layers, HighResolutionIsTakenWhereItsCoastIs)
{
    writeBytes(files.installation.coast + "GlobHR/World.cdt", "");
    MAPWINDOW m;
    setDefaultLayers(m, files.installation);
    EXPECT_EQ(m.layerSet, "GlobHR/");
}

TEST_F(Layers, PathHasTheKindsFolder)
{
    MAPWINDOW m;
    const BASEMAPCONTEXT c = files.context();
    m.layerSet = "GlobLR/";
    EXPECT_EQ(layerPath(c, m, layerBathymetry, entry("500m.cdt", 0, 0)), files.layer("bathymetry/500m.cdt"));
    EXPECT_EQ(layerPath(c, m, layerCoastlines, entry("World.cdt", 0, 0)), files.layer("World.cdt"));
    EXPECT_EQ(layerPath(c, m, layerPostTopography, entry("a.cdt", 0, 0)), files.layer("overlays/a.cdt"));
    EXPECT_EQ(layerPath(c, m, layerTopography, entry("200m.cdt", 0, 0)), files.layer("topography/200m.cdt"));
}

// --- drawing a kind

TEST_F(Layers, EntryIsFilledThenStroked)
{
    write("World.cdt");
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    m.layers[layerCoastlines][0] = entry("World.cdt", 0, -2);
    m.layers[layerCoastlines][0].lineType = 1;
    m.layers[layerCoastlines][0].lineThickness = 2;
    const std::string text = kind(m, layerCoastlines);
    EXPECT_EQ(drawnFiles(text), (std::vector<std::string>{"World.cdt", "World.cdt"}));
    const std::size_t fill = text.find("Fill\n"), style = text.find("dashed_line\nmedium_line\n"),
                      stroke = text.find("stroke\n");
    ASSERT_NE(fill, std::string::npos);
    ASSERT_NE(style, std::string::npos);
    EXPECT_LT(fill, style);
    EXPECT_LT(style, stroke);
    EXPECT_EQ(text.find("Fill\n", fill + 1), std::string::npos);
}

TEST_F(Layers, ObjectStandsInTheOverlayGridBetweenItsMarks)
{
    write("World.cdt");
    MAPWINDOW m = files.map(0, 0, 50, 0, 50);
    const std::string text = kind(m, layerCoastlines);
    const std::string path = files.layer("World.cdt");
    const std::string begin = "\n%%PS-OBJECT: CDT=" + path + " begin\n\n";
    ASSERT_NE(text.find(begin), std::string::npos) << text;
    const std::string body = text.substr(text.find(begin) + begin.size());
    const MAPGEOMETRY& g = m.geometry;
    EXPECT_EQ(body,
              common::format("0 5000 %g %g 0 5000 %g %g SetupUsrSys\n"
                             "\nnp\n1000 1000 M\n1000 0 R\n0 1000 R\n-1000 0 R\nFill\n"
                             "0 50 %g %g 0 50 %g %g SetupUsrSys\n"
                             "\n%%%%PS-OBJECT: CDT=%s end\n",
                             g.xlen, g.xorg, g.ylen, g.yorg, g.xlen, g.xorg, g.ylen, g.yorg, path.c_str()));
}

TEST_F(Layers, OutlineEndsBeforeTheClosingPoints)
{
    SHAPE s = box(10, 20, 10, 20);
    s.outline = 3;
    write("World.cdt", {s});
    MAPWINDOW m = files.map(0, 0, 50, 0, 50);
    m.layers[layerCoastlines][0] = entry("World.cdt", 0, -1);
    EXPECT_NE(kind(m, layerCoastlines).find("\nnp\n1000 1000 M\n1000 0 R\n0 1000 R\nstroke\n"),
              std::string::npos);
}

TEST_F(Layers, NoColourDrawsNothing)
{
    write("World.cdt");
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    m.layers[layerCoastlines][0] = entry("World.cdt", -1, -1);
    EXPECT_EQ(kind(m, layerCoastlines), "");
    m.layers[layerPostTopography] = {entry("World.cdt", -2, -2)}; // automatic is none here
    EXPECT_EQ(kind(m, layerPostTopography), "");
}

TEST_F(Layers, MissingFileDrawsNothingWithoutAWord)
{
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    EXPECT_TRUE(drawnFiles(kind(m, layerCoastlines)).empty());
    EXPECT_TRUE(files.user.notes.empty());
    EXPECT_TRUE(files.user.messages.empty());
}

TEST_F(Layers, CoastIsDrawnAfterTheTopography)
{
    write("World.cdt");
    write("topography/200m.cdt");
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    m.layers[layerCoastlines][0] = entry("World.cdt", 0, -2);
    m.layers[layerTopography] = {entry("200m.cdt", -1, -2)};
    const std::string coast = kind(m, layerCoastlines);
    EXPECT_EQ(drawnFiles(coast), std::vector<std::string>{"World.cdt"});
    EXPECT_EQ(coast.find("stroke\n"), std::string::npos);
    const std::string land = kind(m, layerTopography);
    EXPECT_EQ(drawnFiles(land), (std::vector<std::string>{"200m.cdt", "World.cdt"}));
    EXPECT_LT(land.find("Fill\n"), land.find("stroke\n"));
}

TEST_F(Layers, EscapeEndsTheList)
{
    write("bathymetry/a.cdt");
    write("bathymetry/b.cdt");
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    m.layers[layerBathymetry] = {entry("a.cdt", -1, -2), entry("b.cdt", -1, -2)};
    EXPECT_EQ(drawnFiles(kind(m, layerBathymetry)).size(), 2U);
    files.user.abort = true;
    EXPECT_EQ(kind(m, layerBathymetry), "");
}

TEST_F(Layers, OddSettingsOfAnEntryDoNoHarm)
{
    write("World.cdt");
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    for (int odd : {-7, 99, 1 << 30}) {
        LAYERENTRY e = entry("World.cdt", 0, 5000);
        e.lineType = e.lineThickness = odd;
        m.layers[layerCoastlines][0] = e;
        EXPECT_EQ(drawnFiles(kind(m, layerCoastlines)).size(), 2U);
        files.paint(m);
    }
}

TEST_F(Layers, DamageIsToldOnceForAFileWithItsPlace)
{
    const std::string good = cdtRecord(box(10, 20, 10, 20));
    writeBytes(files.layer("World.cdt"), good + std::string("\xff\xff\xff\xff\xff\xff\xff\xff", 8));
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    m.layers[layerCoastlines][0] = entry("World.cdt", 0, -2);
    const QImage image = files.paint(m);
    ASSERT_EQ(files.user.notes.size(), 1U);
    EXPECT_EQ(files.user.notes[0],
              files.layer("World.cdt") + ": damaged at byte 48: impossible number of points");
    const int x = (3 * m.plotRect[0] + m.plotRect[2]) / 4, y = (m.plotRect[1] + 3 * m.plotRect[3]) / 4;
    EXPECT_EQ(image.pixelColor(x, y), paletteColor(160)); // what was drawn stands
}

TEST_F(Layers, DrawingLeavesTheStateAsItWas)
{
    write("World.cdt");
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    m.layers[layerCoastlines][0] = entry("World.cdt", 0, 5);
    SetColor(nullptr, 3);
    SetPenWidth(nullptr, 4);
    kind(m, layerCoastlines);
    EXPECT_EQ(drawState().currentColor, paletteColor(3));
    EXPECT_EQ(drawState().penWidth, 4);
}

// --- mask of a depth

TEST_F(Layers, OverlayTakesTheDeepestLayerAboveTheDepth)
{
    for (const char* name : {"500m", "1000m", "2000m", "Backgrd"})
        write(std::string("bathymetry/") + name + ".cdt");
    writeBytes(files.layer("bathymetry/700m.txt"), "");
    MAPWINDOW m = files.map(0, 0, 60, 0, 60);
    SetupMapWindow(m.geometry, m.box);
    const BASEMAPCONTEXT c = files.context();
    const auto overlay = [&](double depth) {
        return files.written([&](std::FILE* ps) { DrawBathymetryOverlay(nullptr, ps, c, m, depth); });
    };
    const std::string text = overlay(1999);
    EXPECT_EQ(drawnFiles(text), std::vector<std::string>{"1000m.cdt"});
    EXPECT_TRUE(text.starts_with("\n%%PS-OBJECT: BathyOverlay begin\n"));
    EXPECT_TRUE(text.ends_with("%%PS-OBJECT: BathyOverlay end\n\n"));
    EXPECT_EQ(drawnFiles(overlay(2000)), std::vector<std::string>{"2000m.cdt"});
    EXPECT_EQ(drawnFiles(overlay(700)), std::vector<std::string>{"500m.cdt"});
    for (double none : {0.0, -9999.0, 9999.0, 499.0}) EXPECT_EQ(overlay(none), "") << none;
}
