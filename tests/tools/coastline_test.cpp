#include "coastline.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>
#include <shapefil.h>

#include "shapes.h"
#include "temporarydirectory.h"

namespace {

using namespace tools;
using namespace testing_support;

RING reversed(const RING& ring)
{
    return {ring.rbegin(), ring.rend()};
}

// Writes a shape of several rings; outer rings must run clockwise.
void writeShape(SHPHandle file, int type, const std::vector<RING>& rings)
{
    std::vector<int> starts;
    std::vector<double> x, y;
    for (const RING& ring : rings) {
        starts.push_back(int(x.size()));
        for (const POINT& p : ring) {
            x.push_back(p.x);
            y.push_back(p.y);
        }
    }
    SHPObject* shape = SHPCreateObject(type, -1, int(starts.size()), starts.data(), nullptr, int(x.size()),
                                       x.data(), y.data(), nullptr, nullptr);
    SHPWriteObject(file, -1, shape);
    SHPDestroyObject(shape);
}

double totalArea(const std::vector<POLYGON>& polygons)
{
    double area = 0;
    for (const POLYGON& polygon : polygons) area += areaOf(polygon);
    return area;
}

TEST(ReadLand, RingsBecomePolygonsWithTheirLakes)
{
    const RTemporaryDirectory directory;
    const std::string path = directory.file("land.shp");
    SHPHandle file = SHPCreate(path.c_str(), SHPT_POLYGON);
    writeShape(file, SHPT_POLYGON,
               {reversed(circle(0, 0, 5, 40)), circle(0, 0, 1, 20), reversed(circle(20, 0, 2, 20))});
    writeShape(file, SHPT_NULL, {});
    SHPClose(file);
    const RGeos geos;
    std::string error;
    const auto land = readLand(geos, path, error);
    ASSERT_TRUE(land) << error;
    ASSERT_EQ(land->size(), 2u);
    EXPECT_EQ((*land)[0].holes.size(), 1u);
    EXPECT_TRUE((*land)[1].holes.empty());
}

TEST(ReadLand, MissingFile_Refused)
{
    const RGeos geos;
    std::string error;
    EXPECT_FALSE(readLand(geos, "/nowhere/land.shp", error));
    EXPECT_NE(error.find("/nowhere/land.shp"), std::string::npos);
}

TEST(ReadLand, FileOfPoints_Refused)
{
    const RTemporaryDirectory directory;
    const std::string path = directory.file("points.shp");
    SHPClose(SHPCreate(path.c_str(), SHPT_POINT));
    const RGeos geos;
    std::string error;
    EXPECT_FALSE(readLand(geos, path, error));
    EXPECT_NE(error.find("no polygons"), std::string::npos);
}

TEST(ToEastLongitudes, WesternLandIsShifted)
{
    const RGeos geos;
    const auto out = toEastLongitudes(geos, std::vector<POLYGON>{box(-60, 10, -50, 20)});
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(boundsOf(out[0].outer).xmin, 300);
}

TEST(ToEastLongitudes, LandAcrossZeroIsCutThere)
{
    const RGeos geos;
    const auto out = toEastLongitudes(geos, std::vector<POLYGON>{box(-5, 50, 2, 55)});
    ASSERT_EQ(out.size(), 2u);
    EXPECT_NEAR(totalArea(out), 35, 1e-9);
    for (const POLYGON& polygon : out) {
        EXPECT_GE(boundsOf(polygon.outer).xmin, 0);
        EXPECT_LE(boundsOf(polygon.outer).xmax, 360);
    }
}

TEST(ToEastLongitudes, LandCutAt180IsJoined)
{
    const RGeos geos;
    // The cut lies near 180 only, as it does in the sources.
    const POLYGON asia{{{170, 60}, {179.99921875, 60}, {179.999951, 70}, {170, 70}, {170, 60}}, {}};
    const POLYGON tip{{{-180, 60}, {-175, 60}, {-175, 70}, {-180, 70}, {-180, 60}}, {}};
    const auto out = toEastLongitudes(geos, std::vector<POLYGON>{asia, tip});
    ASSERT_EQ(out.size(), 1u);
    EXPECT_NEAR(areaOf(out[0]), 150, 1e-9);
    for (std::size_t i = 1; i < out[0].outer.size(); ++i) {
        const POINT a = out[0].outer[i - 1], b = out[0].outer[i];
        EXPECT_FALSE(std::abs(a.x - 180) < 0.01 && std::abs(b.x - 180) < 0.01 && std::abs(a.y - b.y) > 0.1);
    }
}

TEST(ToEastLongitudes, LandAroundThePoleReachesIt)
{
    const RGeos geos;
    const POLYGON cap{{{-180, -89.999}, {180, -89.999}, {180, -70}, {-180, -70}, {-180, -89.999}}, {}};
    const auto out = toEastLongitudes(geos, std::vector<POLYGON>{cap});
    EXPECT_NEAR(totalArea(out), 360 * 20, 1e-9);
}

} // namespace
