#include "cdtrecords.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <set>

#include <gtest/gtest.h>

#include "common/files.h"
#include "shapes.h"
#include "temporarydirectory.h"

namespace {

using namespace tools;
using namespace testing_support;

double filledArea(const std::vector<CDTSHAPE>& shapes)
{
    double area = 0;
    for (const CDTSHAPE& shape : shapes) {
        if (!shape.closed()) continue;
        RING ring;
        for (const CDTPOINT& p : shape.points) ring.push_back({p.lon, p.lat});
        area += std::abs(signedArea(ring));
    }
    return area;
}

void expectLegal(const std::vector<CDTSHAPE>& shapes)
{
    for (const CDTSHAPE& shape : shapes) {
        EXPECT_GE(shape.points.size(), 2u);
        EXPECT_LE(shape.points.size(), 1500u);
        const int n = int(shape.points.size());
        EXPECT_TRUE(shape.outline == n || (shape.outline == 0 && shape.closed()));
    }
}

TEST(CdtShapes, SmallIslandIsOneRecordFilledAndStroked)
{
    const RGeos geos;
    const auto shapes = cdtShapes(geos, std::vector<POLYGON>{{circle(28, 31, 3, 100), {}}}, {30, 1});
    ASSERT_EQ(shapes.size(), 1u); // though it lies across a tile's corner
    EXPECT_TRUE(shapes[0].closed());
    EXPECT_EQ(shapes[0].outline, 101);
}

TEST(CdtShapes, LakeIsCutOutAndItsShoreIsTwoOpenRecords)
{
    const RGeos geos;
    const POLYGON land{circle(15, 15, 10, 60), {circle(15, 15, 3, 30)}};
    const auto shapes = cdtShapes(geos, std::vector<POLYGON>{land}, {30, 1});
    expectLegal(shapes);
    int open = 0;
    for (const CDTSHAPE& shape : shapes) open += shape.closed() ? 0 : 1;
    EXPECT_EQ(open, 4); // two for the coast, two for the lake
    EXPECT_NEAR(filledArea(shapes), areaOf(land), 1e-3);
}

TEST(CdtShapes, LongRingIsCutIntoLegalRecords)
{
    const RGeos geos;
    const POLYGON land{circle(15, 15, 10, 20000), {}};
    const auto shapes = cdtShapes(geos, std::vector<POLYGON>{land}, {30, 1});
    expectLegal(shapes);
    EXPECT_NEAR(filledArea(shapes), areaOf(land), 1e-3);
    // The outline is whole: each line begins where the one before ends.
    std::vector<CDTSHAPE> lines;
    for (const CDTSHAPE& shape : shapes)
        if (shape.outline > 0) lines.push_back(shape);
    ASSERT_GT(lines.size(), 13u);
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i].points.back(), lines[(i + 1) % lines.size()].points.front());
}

TEST(CdtShapes, LandOnSeveralTilesIsCutThereAndNeighboursSharePoints)
{
    const RGeos geos;
    const auto shapes = cdtShapes(geos, std::vector<POLYGON>{box(10.5, -20.25, 70.5, 20.25)}, {30, 0.5});
    expectLegal(shapes);
    EXPECT_NEAR(filledArea(shapes), 60 * 40.5, 1e-9);
    std::set<float> west, east; // latitudes on longitude 30 of the pieces on both sides
    for (const CDTSHAPE& shape : shapes) {
        if (shape.outline > 0) continue;
        float low = 999;
        for (const CDTPOINT& p : shape.points) low = std::min(low, p.lon);
        for (const CDTPOINT& p : shape.points)
            if (p.lon == 30) (low < 30 ? west : east).insert(p.lat);
    }
    EXPECT_EQ(west, east);
    EXPECT_GE(west.size(), 80u);
}

TEST(CdtShapes, CutEdgesAreNotStroked)
{
    const RGeos geos;
    // Land around the south pole, cut open at longitude 0.
    const auto shapes = cdtShapes(geos, std::vector<POLYGON>{box(0, -90, 360, -70)}, {30, 1});
    expectLegal(shapes);
    double length = 0;
    for (const CDTSHAPE& shape : shapes) {
        for (int i = 1; i < shape.outline; ++i) {
            const CDTPOINT a = shape.points[std::size_t(i) - 1], b = shape.points[std::size_t(i)];
            EXPECT_EQ(a.lat, -70);
            EXPECT_EQ(b.lat, -70);
            length += std::abs(b.lon - a.lon);
        }
    }
    EXPECT_DOUBLE_EQ(length, 360);
    EXPECT_NEAR(filledArea(shapes), 360 * 20, 1e-9);
}

TEST(CdtShapes, SmallLandAtTheCutMeridianIsFilledWithoutALineThere)
{
    const RGeos geos;
    const auto shapes = cdtShapes(geos, std::vector<POLYGON>{box(0, 50, 2, 53)}, {30, 1});
    ASSERT_EQ(shapes.size(), 2u);
    EXPECT_EQ(shapes[0].outline, 0);
    EXPECT_FALSE(shapes[1].closed());
    for (std::size_t i = 1; i < shapes[1].points.size(); ++i)
        EXPECT_FALSE(shapes[1].points[i].lon == 0 && shapes[1].points[i - 1].lon == 0);
}

TEST(CdtShapes, NoSegmentIsLongerThanTheStep)
{
    const RGeos geos;
    const POLYGON land{{{0.3, 0.2}, {100.7, 3.1}, {60.9, 77.7}, {0.3, 0.2}}, {}};
    for (const CDTSHAPE& shape : cdtShapes(geos, std::vector<POLYGON>{land}, {30, 1})) {
        for (std::size_t i = 1; i < shape.points.size(); ++i) {
            EXPECT_LE(std::abs(shape.points[i].lon - shape.points[i - 1].lon), 1.00001);
            EXPECT_LE(std::abs(shape.points[i].lat - shape.points[i - 1].lat), 1.00001);
        }
    }
}

TEST(CdtShapes, SliverWithoutAreaIsLeftOut)
{
    const RGeos geos;
    const POLYGON sliver{{{10, 10}, {10.1, 10}, {10.2, 10}, {10.1, 10}, {10, 10}}, {}};
    EXPECT_TRUE(cdtShapes(geos, std::vector<POLYGON>{sliver}, {30, 1}).empty());
}

TEST(GlobeShapes, TilesCoverTheGlobeWithoutLines)
{
    const auto shapes = globeShapes({30, 1});
    EXPECT_EQ(shapes.size(), 72u);
    expectLegal(shapes);
    EXPECT_DOUBLE_EQ(filledArea(shapes), 360 * 180);
    for (const CDTSHAPE& shape : shapes) {
        EXPECT_EQ(shape.outline, 0);
        EXPECT_EQ(shape.points.size(), 121u);
    }
}

TEST(WriteCdt, RecordIsTwoCountsAndThePairs)
{
    const RTemporaryDirectory directory;
    const std::string path = directory.file("a.cdt");
    ASSERT_TRUE(writeCdt(path, std::vector<CDTSHAPE>{{{{1, 2}, {3, 4}}, 2}}));
    const auto bytes = common::readFile(path);
    ASSERT_TRUE(bytes);
    ASSERT_EQ(bytes->size(), 24u);
    std::int32_t counts[2];
    float pairs[4];
    std::memcpy(counts, bytes->data(), 8);
    std::memcpy(pairs, bytes->data() + 8, 16);
    EXPECT_EQ(counts[0], 2);
    EXPECT_EQ(counts[1], 2);
    EXPECT_EQ(pairs[0], 1);
    EXPECT_EQ(pairs[3], 4);
}

TEST(WriteCdt, UnwritablePlaceIsAFailure)
{
    EXPECT_FALSE(writeCdt("/nowhere/a.cdt", globeShapes({30, 1})));
}

} // namespace
