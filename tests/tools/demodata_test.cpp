#include "demodata.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using namespace tools;

// Land everywhere but in one column of three levels, at 24.5 W 0.5 S.
CLIMATOLOGY oneColumn()
{
    const std::size_t cells = std::size_t(CLIMATOLOGY::levels) * CLIMATOLOGY::rows * CLIMATOLOGY::columns;
    CLIMATOLOGY climatology{std::vector<float>(cells, -1e10f), std::vector<float>(cells, -1e10f)};
    const int row = 89, column = 315; // 20.5 + 315 = 335.5 E
    for (int level = 0; level < 3; ++level) {
        climatology.temperature[climatology.index(level, row, column)] = 20.0f - float(level);
        climatology.salinity[climatology.index(level, row, column)] = 35.1234f;
    }
    return climatology;
}

GRID flatSea(float height)
{
    return {3, 4, 0, -90, 90, std::vector<float>(12, height)};
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

TEST(Spreadsheet, ColumnBecomesAStation)
{
    const auto lines =
        linesOf(spreadsheet(oneColumn(), flatSea(-4000), {{-24.5, -0.5}, {-25.5, -0.5}}, "Gridded mean"));
    ASSERT_EQ(lines.size(), 4u); // the second place is land
    EXPECT_EQ(lines[0], "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]\t"
                        "Depth [m]\tQF\tTemperature [°C]\tQF\tSalinity [psu]\tQF");
    EXPECT_EQ(lines[2],
              "Gridded mean\t1\tB\t07/01/1982\t00:00\t-24.500\t-0.500\t4000\t10\t1\t19.000\t1\t35.123\t1");
}

TEST(Spreadsheet, BottomIsNeverAboveTheDeepestLevel)
{
    const auto lines = linesOf(spreadsheet(oneColumn(), flatSea(120), {{-24.5, -0.5}}, "x"));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_NE(lines[1].find("\t20\t0\t1\t"), std::string::npos); // bottom 20 m, then the level at 0 m
}

TEST(Places, MeridianRunsNorth)
{
    const auto places = meridian(-25.5, -74.5, 66.5);
    ASSERT_EQ(places.size(), 142u);
    EXPECT_EQ(places.front().lat, -74.5);
    EXPECT_EQ(places.back().lat, 66.5);
}

TEST(Places, GlobeIsCoveredOnce)
{
    const auto places = globe(5);
    EXPECT_EQ(places.size(), 72u * 36u);
    EXPECT_EQ(places.front().lon, -177.5);
    EXPECT_EQ(places.back().lat, 87.5);
}

TEST(ReadClimatology, MissingFile_Refused)
{
    std::string error;
    EXPECT_FALSE(readClimatology("/nowhere/levitus.cdf", error));
    EXPECT_NE(error.find("/nowhere/levitus.cdf"), std::string::npos);
}

} // namespace
