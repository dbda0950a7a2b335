// The tree that the build makes: what stands in it against known values of its sources.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "temporarydirectory.h"

namespace {

namespace fs = std::filesystem;

const std::string tree = std::string(NVQ_BUILD_DIR) + "/installed/";

#define SKIP_WITHOUT(path)                                                                                   \
    if (!common::fileExists(path)) GTEST_SKIP() << (path) << " isn't there: its data package is missing"

struct RECORD {
    int outline = 0;
    std::vector<float> lon, lat;
    [[nodiscard]] bool closed() const { return lon.front() == lon.back() && lat.front() == lat.back(); }
    [[nodiscard]] double area() const
    {
        double twice = 0;
        for (std::size_t i = 1; i < lon.size(); ++i)
            twice += double(lon[i - 1]) * lat[i] - double(lon[i]) * lat[i - 1];
        return std::abs(twice / 2);
    }
};

std::vector<RECORD> readRecords(const std::string& path)
{
    std::vector<RECORD> records;
    const auto bytes = common::readFile(path);
    std::size_t at = 0;
    while (bytes && at + 8 <= bytes->size()) {
        std::int32_t counts[2];
        std::memcpy(counts, bytes->data() + at, 8);
        const std::size_t size = 8 * std::size_t(counts[0]);
        if (counts[0] < 1 || counts[0] > 1500 || at + 8 + size > bytes->size()) {
            ADD_FAILURE() << path << ": bad record at " << at;
            break;
        }
        std::vector<float> values(2 * std::size_t(counts[0]));
        std::memcpy(values.data(), bytes->data() + at + 8, size);
        RECORD record{counts[1], {}, {}};
        for (std::size_t i = 0; i < values.size(); i += 2) {
            record.lon.push_back(values[i]);
            record.lat.push_back(values[i + 1]);
        }
        records.push_back(std::move(record));
        at += 8 + size;
    }
    return records;
}

double filledArea(const std::vector<RECORD>& records)
{
    double area = 0;
    for (const RECORD& record : records)
        if (record.closed()) area += record.area();
    return area;
}

// True if a fill of the file covers the position.
bool covers(const std::vector<RECORD>& records, double lon, double lat)
{
    int crossings = 0;
    for (const RECORD& r : records) {
        if (!r.closed()) continue;
        for (std::size_t i = 1; i < r.lon.size(); ++i) {
            if ((r.lat[i - 1] > lat) == (r.lat[i] > lat)) continue;
            const double t = (lat - r.lat[i - 1]) / (double(r.lat[i]) - r.lat[i - 1]);
            if (lon < r.lon[i - 1] + t * (double(r.lon[i]) - r.lon[i - 1])) ++crossings;
        }
    }
    return crossings % 2 == 1;
}

class InstalledLayers : public testing::TestWithParam<const char*> {};

TEST_P(InstalledLayers, RecordsAreLegal)
{
    const std::string set = tree + "coast/" + GetParam() + "/";
    SKIP_WITHOUT(set + "World.cdt");
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(set)) {
        if (!entry.is_regular_file()) continue;
        ++files;
        for (const RECORD& record : readRecords(entry.path().string())) {
            const int n = int(record.lon.size());
            EXPECT_TRUE(record.outline == n || (record.outline == 0 && record.closed())) << entry.path();
            for (int i = 0; i < n; ++i) {
                EXPECT_TRUE(record.lon[std::size_t(i)] >= 0 && record.lon[std::size_t(i)] <= 360);
                EXPECT_TRUE(std::abs(record.lat[std::size_t(i)]) <= 90);
            }
        }
    }
    EXPECT_EQ(files, 1 + 8 + 8); // coast, bathymetry, topography
}

TEST_P(InstalledLayers, NothingIsStrokedWhereTheGlobeWasCut)
{
    const std::string path = tree + "coast/" + GetParam() + "/World.cdt";
    SKIP_WITHOUT(path);
    const auto near = [](float a, double b) { return std::abs(a - b) < 0.01; };
    for (const RECORD& r : readRecords(path)) {
        for (int i = 1; i < r.outline; ++i) {
            const std::size_t a = std::size_t(i) - 1, b = std::size_t(i);
            if (std::hypot(r.lon[a] - r.lon[b], r.lat[a] - r.lat[b]) < 0.1) continue;
            for (const double cut : {0.0, 180.0, 360.0})
                EXPECT_FALSE(near(r.lon[a], cut) && near(r.lon[b], cut)) << r.lon[a] << " " << r.lat[a];
            EXPECT_FALSE(r.lat[a] < -89.9 && r.lat[b] < -89.9);
            for (int tile = 30; tile < 360; tile += 30)
                EXPECT_FALSE(r.lon[a] == float(tile) && r.lon[b] == float(tile)) << tile << " " << r.lat[a];
        }
    }
}

TEST_P(InstalledLayers, KnownPlacesAreLandOrWater)
{
    const std::string path = tree + "coast/" + GetParam() + "/World.cdt";
    SKIP_WITHOUT(path);
    const auto coast = readRecords(path);
    EXPECT_TRUE(covers(coast, 20.01, 5.02));   // central Africa
    EXPECT_TRUE(covers(coast, 179.98, 68.03)); // Chukotka, on both sides of 180
    EXPECT_TRUE(covers(coast, 180.02, 68.03));
    EXPECT_TRUE(covers(coast, 0.02, 45.01)); // France, on both sides of 0
    EXPECT_TRUE(covers(coast, 359.98, 43.01));
    EXPECT_TRUE(covers(coast, 120.01, -89.51));  // the south pole
    EXPECT_TRUE(covers(coast, 0.02, -75.01));    // Antarctica at the cut
    EXPECT_TRUE(covers(coast, 90.013, 60.017));  // where four tiles meet in Siberia
    EXPECT_FALSE(covers(coast, 50.51, 42.02));   // the Caspian Sea
    EXPECT_FALSE(covers(coast, 33.01, -1.02));   // Lake Victoria
    EXPECT_FALSE(covers(coast, 330.01, 40.02));  // the Atlantic
    EXPECT_FALSE(covers(coast, 180.01, -50.02)); // the Pacific
}

TEST_P(InstalledLayers, LakeShoresAreOpenRecords)
{
    const std::string path = tree + "coast/" + GetParam() + "/World.cdt";
    SKIP_WITHOUT(path);
    int shores = 0;
    for (const RECORD& r : readRecords(path)) {
        bool inVictoria = true;
        for (std::size_t i = 0; i < r.lon.size(); ++i)
            inVictoria =
                inVictoria && r.lon[i] > 31.4f && r.lon[i] < 35 && r.lat[i] > -3.2f && r.lat[i] < 0.7f;
        if (!inVictoria || r.lon.size() < 40) continue;
        if (!r.closed()) ++shores;
        // Its islands are closed, but none of them is as large as the lake.
        if (r.closed() && r.outline > 0) {
            EXPECT_LT(r.area(), 0.5);
        }
    }
    EXPECT_GE(shores, 2);
}

TEST_P(InstalledLayers, LayersLieInsideEachOther)
{
    const std::string set = tree + "coast/" + GetParam() + "/";
    SKIP_WITHOUT(set + "bathymetry/500m.cdt");
    double before = filledArea(readRecords(set + "bathymetry/Backgrd.cdt"));
    EXPECT_DOUBLE_EQ(before, 360 * 180);
    for (const char* file : {"bathymetry/6000m", "bathymetry/5000m", "bathymetry/4000m", "bathymetry/3000m",
                             "bathymetry/2000m", "bathymetry/1000m", "bathymetry/500m", "topography/200m",
                             "topography/500m", "topography/1000m", "topography/1500m", "topography/2000m",
                             "topography/3000m", "topography/4000m", "topography/5000m"}) {
        const double area = filledArea(readRecords(set + file + ".cdt"));
        EXPECT_LT(area, before) << file;
        EXPECT_GT(area, 50) << file;
        before = area;
    }
}

TEST_P(InstalledLayers, BathymetryKnowsTheSea)
{
    const std::string set = tree + "coast/" + GetParam() + "/bathymetry/";
    SKIP_WITHOUT(set + "500m.cdt");
    const auto deep = readRecords(set + "5000m.cdt"), shelf = readRecords(set + "500m.cdt");
    EXPECT_TRUE(covers(shelf, 3.02, 56.03));                                 // North Sea
    EXPECT_FALSE(covers(shelf, 330.03, 20.02));                              // Cape Verde basin
    EXPECT_TRUE(covers(deep, 330.5, 38.51));                                 // Mid-Atlantic ridge
    EXPECT_FALSE(covers(deep, 340.02, 5.51) && covers(deep, 300.02, 25.51)); // deep basins
    EXPECT_TRUE(covers(shelf, 0.01, 20.03) && covers(shelf, 359.99, 20.03)); // land is in it, across the cut
}

INSTANTIATE_TEST_SUITE_P(Both, InstalledLayers, testing::Values("GlobLR", "GlobHR"));

TEST(InstalledCoast, FilledAreasAreThoseOfTheSources)
{
    SKIP_WITHOUT(tree + "coast/GlobLR/World.cdt");
    SKIP_WITHOUT(tree + "coast/GlobHR/World.cdt");
    EXPECT_NEAR(filledArea(readRecords(tree + "coast/GlobLR/World.cdt")), 21293.1, 0.005 * 21293.1);
    EXPECT_NEAR(filledArea(readRecords(tree + "coast/GlobHR/World.cdt")), 21272.0, 0.002 * 21272.0);
}

TEST(InstalledCoast, SetsKeepTheirSize)
{
    SKIP_WITHOUT(tree + "coast/GlobLR/bathymetry/500m.cdt");
    SKIP_WITHOUT(tree + "coast/GlobHR/bathymetry/500m.cdt");
    const auto sizeOf = [](const std::string& set) {
        std::uintmax_t size = 0;
        for (const auto& entry : fs::recursive_directory_iterator(set))
            if (entry.is_regular_file()) size += entry.file_size();
        return size;
    };
    EXPECT_LT(sizeOf(tree + "coast/GlobLR"), 3000000u);
    EXPECT_LT(sizeOf(tree + "coast/GlobHR"), 30000000u);
    EXPECT_TRUE(fs::is_directory(tree + "coast/GlobLR/overlays"));
    EXPECT_TRUE(fs::is_directory(tree + "coast/GlobHR/overlays"));
}

TEST(InstalledEtopo, HeightsAreThoseOfTheRelief)
{
    const std::string path = tree + "coast/Etopo.cdt";
    SKIP_WITHOUT(path);
    const auto bytes = common::readFile(path);
    ASSERT_TRUE(bytes);
    ASSERT_EQ(bytes->size(), 18671076u);
    const auto height = [&](double lon, double lat) {
        const std::size_t row = std::size_t((lat + 90) * 12), column = std::size_t(lon * 12);
        std::int16_t h = 0;
        std::memcpy(&h, bytes->data() + 36 + (row * 4320 + column) * 2, 2);
        return h;
    };
    EXPECT_LT(height(142.3, 11.3), -8000);        // Challenger Deep
    EXPECT_GT(height(86.9, 28.0), 4500);          // Himalaya
    EXPECT_NEAR(height(334.5, 30.5), -5300, 600); // Madeira abyssal plain's west
    EXPECT_EQ(height(0.0, 90.0), -4290);          // the northernmost row
    EXPECT_EQ(height(359.99, 90.0), -4290);
    EXPECT_NEAR(height(0, -90), 2810, 20);
}

TEST(InstalledPalettes, EveryOneHas177Colours)
{
    SKIP_WITHOUT(tree + "palettes/Nvq.pal");
    int files = 0;
    for (const auto& entry : fs::directory_iterator(tree + "palettes")) {
        ASSERT_EQ(entry.path().extension(), ".pal");
        ++files;
        const auto text = common::readFile(entry.path().string());
        ASSERT_TRUE(text);
        std::istringstream lines(*text);
        int count = 0;
        for (std::string line; std::getline(lines, line); ++count) {
            int index = -1;
            float r = -1, g = -1, b = -1;
            ASSERT_EQ(std::sscanf(line.c_str(), "%d%f%f%f", &index, &r, &g, &b), 4) << entry.path();
            EXPECT_EQ(index, count);
            for (const float c : {r, g, b}) EXPECT_TRUE(c >= 0 && c <= 1);
        }
        EXPECT_EQ(count, 177) << entry.path();
    }
    EXPECT_GE(files, 9);
    for (const char* name : {"Viridis", "Plasma", "Inferno", "Magma", "Cividis", "Thermal", "Haline", "Deep"})
        EXPECT_TRUE(common::fileExists(tree + "palettes/" + name + ".pal")) << name;
}

TEST(InstalledHistories, HaveTheirYears)
{
    struct HISTORY {
        const char* file;
        int rows;
        double firstYear, lastYear, north1990, south1990;
    };
    for (const HISTORY& h : {HISTORY{"atmcfc11.his", 80, 1936.5, 2015.5, 265.83, 251.06},
                             HISTORY{"atmcfc12.his", 86, 1930.5, 2015.5, 497.70, 472.70},
                             HISTORY{"atmcfc10.his", 106, 1910.5, 2015.5, 104.90, 102.30},
                             HISTORY{"atmcfc113.his", 76, 1940.5, 2015.5, 75.60, 66.14},
                             HISTORY{"atmch4.his", 25, 1983.5, 2007.5, 1762.88, 1667.83}}) {
        const auto text = common::readFile(tree + "atmhist/" + h.file);
        ASSERT_TRUE(text) << h.file;
        std::istringstream lines(*text);
        std::string line;
        ASSERT_TRUE(std::getline(lines, line));
        int rows = 0;
        float year = 0, north = 0, south = 0, before = 0;
        while (std::getline(lines, line)) {
            ASSERT_EQ(std::sscanf(line.c_str(), "%f %f %f", &year, &north, &south), 3) << h.file << line;
            if (rows++ == 0) {
                EXPECT_FLOAT_EQ(year, float(h.firstYear)) << h.file;
            }
            EXPECT_GT(year, before) << h.file;
            before = year;
            if (year != 1990.5f) continue;
            EXPECT_FLOAT_EQ(north, float(h.north1990));
            EXPECT_FLOAT_EQ(south, float(h.south1990));
        }
        EXPECT_EQ(rows, h.rows) << h.file;
        EXPECT_FLOAT_EQ(year, float(h.lastYear)) << h.file;
    }
}

// Stations and levels of a spreadsheet.
std::array<int, 2> countStations(const std::string& path)
{
    const auto text = common::readFile(path);
    std::istringstream lines(text.value_or(""));
    std::set<std::string> stations;
    int levels = -1; // the heading
    for (std::string line; std::getline(lines, line); ++levels) {
        std::array<std::string_view, 14> fields;
        if (levels >= 0 && common::splitFields(line, '\t', fields) == 14) stations.emplace(fields[1]);
    }
    return {int(stations.size()), levels};
}

TEST(InstalledDemonstration, HasTheColumnsOfTheClimatology)
{
    SKIP_WITHOUT(tree + "data/demo/atlantic_section.txt");
    EXPECT_EQ(countStations(tree + "data/demo/atlantic_section.txt"), (std::array<int, 2>{142, 2633}));
    EXPECT_EQ(countStations(tree + "data/demo/global_means.txt"), (std::array<int, 2>{1676, 28680}));
    const auto text = common::readFile(tree + "data/demo/atlantic_section.txt");
    ASSERT_TRUE(text);
    // 25.5 W 30.5 N at 400 m, 25.5 W 0.5 S at 1500 m, 25.5 W 60.5 S at 5000 m
    EXPECT_NE(text->find("-25.500\t30.500\t"), std::string::npos);
    EXPECT_NE(text->find("\t400\t1\t14.026\t1\t35.906\t1\n"), std::string::npos);
    EXPECT_NE(text->find("\t1500\t1\t4.112\t1\t34.949\t1\n"), std::string::npos);
    EXPECT_NE(text->find("\t5000\t1\t-0.370\t1\t34.654\t1\n"), std::string::npos);
}

TEST(InstalledTree, HoldsWhatIsCommitted)
{
    for (const char* file : {"NOTICE", "doc/nvqGuide.htm", "share/man/man1/nvqmp.1", "data/demo/section.cmd",
                             "data/demo/global.cmd", "macros/README.txt"})
        EXPECT_TRUE(common::fileExists(tree + file)) << file;
}

// --- the programs themselves

int run(const std::string& command, std::string& output)
{
    std::FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return -1;
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
    return ::pclose(pipe);
}

TEST(Programs, UnknownInputIsRefusedAndNothingIsWritten)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string programs = std::string(NVQ_BUILD_DIR) + "/tools/";
    const std::string relief = directory.file("etopo5.cdf"), land = directory.file("ne_50m_land.shp");
    for (const std::string& path : {relief, land}) {
        const common::FilePtr file = common::openFile(path, "wb");
        std::fputs("not what it says", file.get());
    }
    const std::string target = directory.file("out");
    for (const std::string& command :
         {"make_coast low " + land + " " + target, "make_relief low " + relief + " " + target,
          "make_etopo " + relief + " " + target + "/Etopo.cdt",
          "make_demo " + relief + " " + relief + " " + target}) {
        std::string output;
        EXPECT_NE(run(programs + command, output), 0) << command;
        EXPECT_NE(output.find("not the known edition"), std::string::npos) << command << ": " << output;
        EXPECT_FALSE(fs::exists(target)) << command;
    }
}

TEST(Programs, WrongArgumentsGiveTheUsage)
{
    for (const char* program : {"make_coast", "make_relief", "make_etopo", "make_palettes", "make_demo"}) {
        std::string output;
        EXPECT_NE(run(std::string(NVQ_BUILD_DIR) + "/tools/" + program, output), 0);
        EXPECT_NE(output.find(std::string("usage: ") + program), std::string::npos) << output;
    }
}

} // namespace
