// Land must be land and sea must be sea, at every extent and in every projection. The expected answer comes
// from the polygons themselves, at the position that each sampled pixel stands for.

#include <array>
#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>

#include "mapsupport.h"

using namespace graphics;
using namespace testing_support;

namespace {

struct EXTENT {
    const char* name;
    int id;
    double lonMin, lonMax, latMin, latMax, lon0, lat0;
};

constexpr EXTENT extents[] = {
    {"Globe", 0, 0, 360, -90, 90, 0, 0},
    {"GlobeFromTheDateLine", 0, -180, 180, -90, 90, 0, 0},
    {"GlobeFrom37West", 0, -37, 323, -90, 90, 0, 0},
    {"AcrossZero", 0, -30, 30, -40, 50, 0, 0},
    {"AcrossTheDateLine", 0, 140, 235, -30, 70, 0, 0},
    {"InsideAContinent", 0, 15, 16, 8, 9, 0, 0},
    {"InsideAContinentWestOfZero", 0, -9, -8.5, 4, 4.4, 0, 0},
    {"InsideTheSea", 0, 300, 301, 30, 31, 0, 0},
    {"ASmallCoast", 0, 99, 101, -41, -39, 0, 0},
    {"NorthPolar", 5, -180, 180, 0, 90, 0, 90},
    {"NorthPolarTurned", 5, -180, 180, 0, 90, 77, 90},
    {"ArcticOnly", 1, -180, 180, 70, 90, 0, 90},
    {"SouthPolar", 5, -180, 180, -90, 0, 0, -90},
    {"SouthPolarTurned", 5, -180, 180, -90, 0, -130, -90},
    {"PolarSector", 1, 20, 150, 0, 85, 85, 90},
    {"Equatorial", 2, -90, 90, -90, 90, 0, 0},
    {"EquatorialPacific", 2, 90, 270, -90, 90, 180, 0},
    {"Mollweide", 4, -180, 180, -90, 90, 0, 0},
    {"MollweidePacific", 4, 0, 360, -90, 90, 180, 0},
    {"MollweideTurned", 4, -180, 180, -90, 90, 25, 0},
    {"MollweidePart", 4, -60, 60, -50, 60, 0, 0},
    {"Oblique", 5, -180, 180, -90, 90, 0, 40},
    {"ObliqueSouth", 5, -180, 180, -90, 90, 130, -35},
    {"ObliqueEquator", 5, -180, 180, -90, 90, -75, 0},
    {"ObliqueNearTheEquator", 5, -180, 180, -90, 90, 200, 3},
    {"ObliqueNearThePole", 5, -180, 180, -90, 90, 15, 75},
    {"ObliqueNearTheSouthPole", 5, -180, 180, -90, 90, 300, -70},
    {"ObliqueHalf", 5, 120, 300, -90, 90, 210, 20},
    {"ObliqueHalfSouth", 5, 60, 200, -90, 90, 130, -25},
    {"ObliqueRegion", 5, -20, 60, 0, 75, 20, 40},
    {"ObliqueInsideAContinent", 5, 85, 88, 50, 53, 86.5, 51.5},
    {"ObliqueMollweide", 6, -180, 180, -90, 90, 0, 0},
    {"ObliqueMollweideTurned", 6, -180, 180, -90, 90, 140, 0},
    {"ObliqueMollweidePart", 6, 0, 90, 10, 70, 45, 0},
};

struct PLACE {
    double lon, lat;
};

// Newton's way from a first guess to the position that the projection puts at (u, v).
std::optional<PLACE> refined(PLACE at, double u, double v)
{
    for (int i = 0; i < 30; ++i) {
        constexpr double step = 1e-4;
        double u0 = at.lon, v0 = at.lat, u1 = at.lon + step, v1 = at.lat, u2 = at.lon, v2 = at.lat + step;
        ProjectPoint(u0, v0);
        ProjectPoint(u1, v1);
        ProjectPoint(u2, v2);
        const double a = (u1 - u0) / step, b = (u2 - u0) / step, c = (v1 - v0) / step, d = (v2 - v0) / step;
        const double det = a * d - b * c;
        if (std::hypot(u - u0, v - v0) < 1e-6) return at;
        if (std::abs(det) < 1e-12) return {};
        at.lon += std::clamp((d * (u - u0) - b * (v - v0)) / det, -3.0, 3.0);
        at.lat =
            std::clamp(at.lat + std::clamp((a * (v - v0) - c * (u - u0)) / det, -3.0, 3.0), -89.999, 89.999);
    }
    return {};
}

// First guesses for the projection whose inverse doesn't undo its rotation.
struct LATTICE {
    struct NODE {
        PLACE at;
        double u, v;
    };
    std::vector<NODE> nodes;

    LATTICE()
    {
        for (double lon = projection().lon0 - 177; lon < projection().lon0 + 180; lon += 3)
            for (double lat = -87; lat < 90; lat += 3) {
                double u = lon, v = lat;
                ProjectPoint(u, v);
                nodes.push_back({{lon, lat}, u, v});
            }
    }
    [[nodiscard]] PLACE nearest(double u, double v) const
    {
        return std::min_element(nodes.begin(), nodes.end(),
                                [&](const NODE& a, const NODE& b) {
                                    return std::hypot(a.u - u, a.v - v) < std::hypot(b.u - u, b.v - v);
                                })
            ->at;
    }
};

PLACE nearestOfLattice(double u, double v)
{
    static double lon0 = 1e9;
    static LATTICE lattice;
    if (lon0 != projection().lon0) lattice = LATTICE();
    lon0 = projection().lon0;
    return lattice.nearest(u, v);
}

std::optional<PLACE> placeOf(double u, double v)
{
    const int id = projection().id;
    if (!InsideProjection(u * 1.02, v * 1.02)) return {}; // at the edge a pixel is a country
    double lon = u, lat = v;
    UnprojectPoint(lon, lat);
    if (id == projectionObliqueMollweide) return refined(nearestOfLattice(u, v), u, v);
    if (id == projectionMollweide) return refined({lon, std::clamp(lat, -89.0, 89.0)}, u, v);
    return PLACE{lon, lat};
}

bool isInDomain(PLACE at)
{
    const PROJECTION& g = projection();
    const double lon = at.lon - 360 * std::floor((at.lon - g.lonMin) / 360);
    return lon <= g.lonMax && at.lat >= g.latMin && at.lat <= g.latMax;
}

// Land, sea, or nothing where a coast or the edge of the map is near.
std::optional<bool> expectedAt(const std::vector<SHAPE>& world, double u, double v, double du, double dv)
{
    std::optional<bool> answer;
    for (int i : {0, 1, -1})
        for (int j : {0, 1, -1}) {
            const std::optional<PLACE> at = placeOf(u + i * du, v + j * dv);
            if (!at || !isInDomain(*at)) return {};
            const bool land = isLand(world, at->lon, at->lat);
            if (answer && *answer != land) return {};
            answer = land;
        }
    return answer;
}

struct COUNTS {
    int land = 0, sea = 0, wrong = 0;
    std::string firstWrong;
};

// Compares an image with what the polygons say; `plane` turns a pixel into (u, v), a step is a pixel.
template <class Plane>
COUNTS compare(const QImage& image, const std::vector<SHAPE>& world, Plane plane, int every, double du,
               double dv, int tolerance)
{
    const QColor land = paletteColor(RMapWorld::land), sea = paletteColor(RMapWorld::sea);
    const auto near = [tolerance](QColor a, QColor b) {
        return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
               std::abs(a.blue() - b.blue()) <= tolerance;
    };
    COUNTS counts;
    for (int y = 1; y < image.height(); y += every)
        for (int x = 1; x < image.width(); x += every) {
            double u = 0, v = 0;
            plane(x, y, u, v);
            const PROJECTION& g = projection();
            if (g.id == 0 && (u < g.lonMin || u > g.lonMax || v < g.latMin || v > g.latMax)) continue;
            const std::optional<bool> expected = expectedAt(world, u, v, 2.2 * du, 2.2 * dv);
            if (!expected) continue;
            ++(*expected ? counts.land : counts.sea);
            const QColor found = image.pixelColor(x, y);
            if (near(found, *expected ? land : sea)) continue;
            if (++counts.wrong == 1) {
                const PLACE at = *placeOf(u, v);
                counts.firstWrong = "pixel " + std::to_string(x) + "," + std::to_string(y) + " at " +
                                    std::to_string(at.lon) + " E " + std::to_string(at.lat) + " N is " +
                                    found.name().toStdString();
            }
        }
    return counts;
}

class MapFill : public testing::TestWithParam<EXTENT> {
protected:
    void SetUp() override { writeBytes(files.layer("World.cdt"), cdtBytes(world)); }
    [[nodiscard]] MAPWINDOW map() const
    {
        const EXTENT& e = GetParam();
        return files.map(e.id, e.lonMin, e.lonMax, e.latMin, e.latMax, e.lon0, e.lat0);
    }
    static void check(const COUNTS& counts)
    {
        EXPECT_EQ(counts.wrong, 0) << counts.firstWrong << "; land " << counts.land << ", sea " << counts.sea;
        EXPECT_GT(counts.land + counts.sea, 150);
    }
    static void pixelPlane(double x, double y, double& u, double& v)
    {
        const USRSYS& usr = usrSys();
        u = usr.x.userMin + (x + 0.5 - usr.x.lowPx) / usr.x.pixelsPerUnit;
        v = usr.y.userMin + (y + 0.5 - usr.y.lowPx) / usr.y.pixelsPerUnit;
    }

    RMapWorld files;
    const std::vector<SHAPE> world = smallWorld();
};

std::string extentName(const testing::TestParamInfo<EXTENT>& info)
{
    return info.param.name;
}

// The preamble that turns the drawing layer's words into PostScript.
std::string preamblePath()
{
    return std::string(NVQ_SOURCE_DIR) + "/data/include/PSGraph.ps";
}

} // namespace

TEST_P(MapFill, CanvasShowsLandAndSea)
{
    MAPWINDOW m = map();
    const QImage image = files.paint(m, true);
    check(compare(image, world, pixelPlane, m.geometry.id == 6 ? 13 : 7, 1 / usrSys().x.pixelsPerUnit,
                  1 / usrSys().y.pixelsPerUnit, 0));
}

TEST_P(MapFill, ExportShowsLandAndSea)
{
    MAPWINDOW m = map();
    const QImage image = files.paint(m, false);
    check(compare(image, world, pixelPlane, m.geometry.id == 6 ? 15 : 11, 1 / usrSys().x.pixelsPerUnit,
                  1 / usrSys().y.pixelsPerUnit, 0));
}

TEST_P(MapFill, OtherByteOrderPaintsTheSamePicture)
{
    MAPWINDOW m = map();
    const QImage image = files.paint(m);
    writeBytes(files.layer("World.cdt"), cdtBytes(world, true));
    m = map();
    EXPECT_EQ(files.paint(m), image);
}

TEST_P(MapFill, PostScriptShowsLandAndSea)
{
    if (!std::filesystem::exists(preamblePath()) || std::system("command -v gs >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "needs the PostScript preamble and Ghostscript";
    constexpr double scale = 28.35 * 2; // pixels per cm at 144 dots per inch and page scale 1
    MAPWINDOW m = map();
    const std::string file = files.folder.file("m.ps"), picture = files.folder.file("m.png");
    std::FILE* ps =
        OpenPsFile(file, preamblePath(), "%%EndComments\n",
                   "BeginPlot\n/usrclip? false def /usrrot? false def\n/scalefak 1 def /lenfak 1 def\n"
                   "/xOrigin 0 def /yOrigin 0 def /fontfak 1 def\n/dfltFont (Helvetica) def\n"
                   "/nativeFont (Helvetica-Bold) def\n",
                   false, files.user);
    ASSERT_NE(ps, nullptr);
    const BASEMAPCONTEXT c = files.context();
    PsBaseMap1(ps, c, m);
    PsBaseMap2(ps, c, m);
    PsBaseMap3(ps, c, m);
    std::fputs("showpage\nEndPlot\n", ps);
    std::fclose(ps);
    const std::string command =
        "gs -q -dBATCH -dNOPAUSE -dSAFER -r144 -sDEVICE=png16m -g1136x1136 -sOutputFile=" + picture + " " +
        file + " > " + files.folder.file("log") + " 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << readBytes(files.folder.file("log"));
    EXPECT_EQ(readBytes(files.folder.file("log")), "");
    const QImage image(QString::fromStdString(picture));
    ASSERT_FALSE(image.isNull());
    const MAPGEOMETRY& g = m.geometry;
    const double perU = g.xlen * scale / (g.umax - g.umin), perV = g.ylen * scale / (g.vmax - g.vmin);
    const auto plane = [&](double x, double y, double& u, double& v) {
        u = g.umin + (x + 0.5 - g.xorg * scale) / perU;
        v = g.vmin + (image.height() - y - 0.5 - g.yorg * scale) / perV;
    };
    check(compare(image, world, plane, g.id == 6 ? 43 : 29, 1 / perU, 1 / perV, 2));
}

INSTANTIATE_TEST_SUITE_P(Extents, MapFill, testing::ValuesIn(extents), extentName);

// --- single polygons

class MapFillOf : public testing::Test {
protected:
    void write(const std::vector<SHAPE>& shapes) { writeBytes(files.layer("World.cdt"), cdtBytes(shapes)); }
    // Pixels in the land's colour.
    int landPixels(MAPWINDOW m)
    {
        const QImage image = files.paint(m);
        const QRgb land = paletteColor(RMapWorld::land).rgb();
        int n = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) n += image.pixel(x, y) == land;
        return n;
    }
    RMapWorld files;
};

TEST_F(MapFillOf, PolygonAroundTheDomainFillsItThoughNoPointIsInside)
{
    write({box(0, 100, -50, 80)});
    for (int id : {0, 1, 2, 4, 5, 6}) {
        MAPWINDOW m = files.map(id, 40, 50, 20, 30, 45, 25);
        const QImage image = files.paint(m);
        const int x = (m.plotRect[0] + m.plotRect[2]) / 2, y = (m.plotRect[1] + m.plotRect[3]) / 2;
        EXPECT_EQ(image.pixelColor(x, y), paletteColor(RMapWorld::land)) << id;
    }
}

TEST_F(MapFillOf, MapFromMinus30To30ShowsPolygonsGivenIn330To360)
{
    write({box(335, 345, -5, 5)});
    EXPECT_GT(landPixels(files.map(0, -30, 30, -20, 20)), 1000);
    EXPECT_EQ(landPixels(files.map(0, 30, 60, -20, 20)), 0);
    write({box(-25, -15, -5, 5)}); // given below 0
    EXPECT_GT(landPixels(files.map(0, -30, 30, -20, 20)), 1000);
    EXPECT_GT(landPixels(files.map(0, 300, 350, -20, 20)), 1000);
}

TEST_F(MapFillOf, OpenRecordIsNeverFilled)
{
    SHAPE open = box(0, 100, -50, 80);
    open.lat.back() -= 1;
    write({open});
    EXPECT_EQ(landPixels(files.map(0, 40, 50, 20, 30)), 0);
}

TEST_F(MapFillOf, IslandBelowAPixelIsSeen)
{
    write({box(45, 45.001f, 25, 25.001f)});
    EXPECT_GE(landPixels(files.map(0, 0, 360, -90, 90)), 1);
    EXPECT_GE(landPixels(files.map(5, -180, 180, -90, 90, 30, 30)), 1);
    EXPECT_EQ(landPixels(files.map(5, -180, 180, -90, 90, 210, -30)), 0); // behind the globe
}

TEST_F(MapFillOf, PolarMapShowsNothingOfTheOtherHemisphere)
{
    write({box(0, 360, -80, -2), box(20, 60, -30, -10)});
    EXPECT_EQ(landPixels(files.map(5, -180, 180, -90, 90, 0, 90)), 0);
    write({box(0, 360, 2, 80)});
    EXPECT_EQ(landPixels(files.map(5, -180, 180, -90, 90, 0, -90)), 0);
}

TEST_F(MapFillOf, ContinentOppositeTheCentreLeavesTheDiscAlone)
{
    write({box(150, 210, -30, 30)});
    EXPECT_EQ(landPixels(files.map(5, -180, 180, -90, 90, 0, 0)), 0);
    EXPECT_EQ(landPixels(files.map(5, -180, 180, -90, 90, 3, 7)), 0);
    EXPECT_EQ(landPixels(files.map(5, -180, 180, -90, 90, -11, -20)), 0);
}

TEST_F(MapFillOf, WholeGlobeFillsEveryProjection)
{
    write({box(0, 360, -90, 90)});
    for (int id : {0, 2, 4, 5, 6})
        for (double lon0 : {0.0, 33.0, -120.0})
            for (double lat0 : {-90.0, -20.0, 0.0, 45.0, 90.0}) {
                MAPWINDOW m = files.map(id, -180, 180, -90, 90, lon0, lat0);
                const QImage image = files.paint(m);
                const QRgb sea = paletteColor(RMapWorld::sea).rgb();
                int holes = 0;
                for (int y = 0; y < image.height(); ++y)
                    for (int x = 0; x < image.width(); ++x) {
                        double u =
                            usrSys().x.userMin + (x + 0.5 - usrSys().x.lowPx) / usrSys().x.pixelsPerUnit;
                        double v =
                            usrSys().y.userMin + (y + 0.5 - usrSys().y.lowPx) / usrSys().y.pixelsPerUnit;
                        if (y == m.plotRect[1]) continue; // belongs to the frame
                        const bool inside = id == 0 || InsideProjection(u * 1.012, v * 1.012);
                        holes +=
                            inside && image.pixel(x, y) == sea &&
                            QRect(QPoint(m.plotRect[0], m.plotRect[1]), QPoint(m.plotRect[2], m.plotRect[3]))
                                .contains(x, y);
                    }
                EXPECT_EQ(holes, 0) << id << " " << lon0 << " " << lat0;
            }
}
