#include "selection/polygonfile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/files.h"
#include "temporarydirectory.h"

namespace selection {
namespace {

using collection::DOMAINPOLYGON;
using testing::ElementsAre;
using testing::HasSubstr;

// What a text is as a polygon: "lon/lat ..." or what is wrong.
std::string read(std::string_view content)
{
    DOMAINPOLYGON polygon;
    std::string text;
    if (!parsePolygon(content, polygon, text)) return text;
    for (std::size_t i = 0; i < static_cast<std::size_t>(polygon.nPoints); ++i) {
        std::ostringstream point;
        point << polygon.lon[i] << '/' << polygon.lat[i] << ' ';
        text += point.str();
    }
    return text;
}

std::string corners(int count)
{
    std::string content;
    for (int i = 0; i < count; ++i) content += std::to_string(i % 300) + " " + std::to_string(i % 80) + "\n";
    return content;
}

TEST(PolygonFile, IsClosedIfItIsNot)
{
    EXPECT_EQ(read("0 0\n10 0\n10 5\n"), "0/0 10/0 10/5 0/0 ");
    EXPECT_EQ(read("0 0\n10 0\n10 5\n0 0\n"), "0/0 10/0 10/5 0/0 ");
}

TEST(PolygonFile, AnySeparatorLineEndAndComment)
{
    EXPECT_EQ(read("\xEF\xBB\xBF# a bay\r\n\r\n  0,\t0 \r\n10;0#east\r10\t5\n  -5.5 , -1e1"),
              "0/0 10/0 10/5 -5.5/-10 0/0 ");
}

TEST(PolygonFile, WhatIsWrongIsToldWithItsLine)
{
    EXPECT_EQ(read("0 0\n\nx 5\n"), "3: the longitude \"x\" doesn't read as a number");
    EXPECT_EQ(read("0\n"), "1: the latitude is missing");
    EXPECT_EQ(read("0 0 0\n"), "1: more than a longitude and a latitude: \"0\"");
    EXPECT_EQ(read("1,,2\n"), "1: the latitude \"\" doesn't read as a number");
    EXPECT_EQ(read("0 0\r10 95"), "2: the latitude \"95\" isn't within -90 to 90");
    EXPECT_EQ(read("-361 0"), "1: the longitude \"-361\" isn't within -360 to 720");
    EXPECT_EQ(read("nan 0"), "1: the longitude \"nan\" doesn't read as a number");
    EXPECT_EQ(read("-180 0\n200 0\n0 9\n"), "3: the longitudes span more than 360 degrees");
}

TEST(PolygonFile, FewerThan3CornersAreNoPolygon)
{
    EXPECT_EQ(read(""), "1: a polygon has at least 3 corners, not 0");
    EXPECT_EQ(read("0 0\n"), "1: a polygon has at least 3 corners, not 0");
    EXPECT_EQ(read("0 0\n1 1\n"), "2: a polygon has at least 3 corners, not 2");
    EXPECT_EQ(read("0 0\n1 1\n0 0\n"), "3: a polygon has at least 3 corners, not 2");
}

TEST(PolygonFile, HoldsUpTo1499Corners)
{
    DOMAINPOLYGON polygon;
    std::string fault;
    EXPECT_TRUE(parsePolygon(corners(1499), polygon, fault)) << fault;
    EXPECT_EQ(polygon.nPoints, 1500);
    EXPECT_TRUE(parsePolygon(corners(1499) + "0 0\n", polygon, fault)) << fault;
    EXPECT_EQ(polygon.nPoints, 1500);
    EXPECT_FALSE(parsePolygon(corners(1500), polygon, fault));
    EXPECT_THAT(fault, HasSubstr("more than 1499 corners"));
    EXPECT_FALSE(parsePolygon(corners(5000), polygon, fault));
    EXPECT_EQ(fault, "1501: more than 1499 corners");
    EXPECT_EQ(polygon.nPoints, 1500);
}

TEST(PolygonFile, LongitudesBeyond360AreTakenFurtherWest)
{
    EXPECT_EQ(read("350 0\n370 0\n360 9\n"), "-10/0 10/0 0/9 -10/0 ");
    EXPECT_EQ(read("170 0\n190 0\n180 9\n"), "170/0 190/0 180/9 170/0 ");
}

TEST(PolygonFile, ALongOrOddWordIsToldInShort)
{
    const std::string fault = read(std::string(5000, 'x') + " 1\n");
    EXPECT_LT(fault.size(), 120U);
    EXPECT_EQ(read("x\x01\x7F"
                   "x 1"),
              "1: the longitude \"x??x\" doesn't read as a number");
}

TEST(PolygonFile, ItsNameStandsBeforeWhatIsWrong)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string file = directory.path() + "p.txt";
    DOMAINPOLYGON polygon;
    std::string fault;
    EXPECT_FALSE(readPolygon(file, polygon, fault));
    EXPECT_EQ(fault, file + ": can't be read");
    ASSERT_TRUE(common::writeFile(file, "0 0\n1 1\nx\n"));
    EXPECT_FALSE(readPolygon(file, polygon, fault));
    EXPECT_THAT(fault, HasSubstr(file + ":3: the longitude"));
    ASSERT_TRUE(common::writeFile(file, std::string((1 << 20) + 1, '\n')));
    EXPECT_FALSE(readPolygon(file, polygon, fault));
    EXPECT_EQ(fault, file + ": is too large for a polygon");
    EXPECT_FALSE(readPolygon(directory.path(), polygon, fault));
    EXPECT_THAT(fault, HasSubstr("can't be read"));
    EXPECT_EQ(polygon.nPoints, 0);
}

TEST(PolygonDomain, IsTheRectangleAroundThePolygon)
{
    collection::SELECTIONCRITERIA criteria = collection::defaultCriteria();
    DOMAINPOLYGON polygon;
    std::string fault;
    ASSERT_TRUE(parsePolygon("-30 10\n20 -5\n0 40\n", polygon, fault));
    setPolygonDomain(criteria, polygon);
    EXPECT_EQ(criteria.usePolygon, 1);
    EXPECT_EQ(criteria.lonMin, -30);
    EXPECT_EQ(criteria.lonMax, 20);
    EXPECT_EQ(criteria.latMin, -5);
    EXPECT_EQ(criteria.latMax, 40);
}

TEST(ClosePolygon, RepeatsTheFirstVertexWhereThereIsRoom)
{
    DOMAINPOLYGON polygon;
    closePolygon(polygon);
    EXPECT_EQ(polygon.nPoints, 0);
    polygon.nPoints = 3;
    polygon.lon[0] = 7;
    closePolygon(polygon);
    EXPECT_EQ(polygon.nPoints, 4);
    EXPECT_EQ(polygon.lon[3], 7);
    closePolygon(polygon);
    EXPECT_EQ(polygon.nPoints, 4);
    polygon.nPoints = 1500;
    closePolygon(polygon);
    EXPECT_EQ(polygon.nPoints, 1500);
    EXPECT_EQ(polygon.lon[1499], 7);
}

} // namespace
} // namespace selection
