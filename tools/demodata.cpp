#include "demodata.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "common/text.h"
#include "netcdffile.h"

namespace tools {
namespace {

constexpr std::array<double, CLIMATOLOGY::levels> depths = {
    0, 10, 20, 30, 50, 75, 100, 150, 200, 300, 400, 600, 800, 1000, 1200, 1500, 2000, 3000, 4000, 5000};

constexpr const char* heading =
    "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]\t"
    "Depth [m]\tQF\tTemperature [°C]\tQF\tSalinity [psu]\tQF\n";
constexpr const char* nominalTime = "B\t07/01/1982\t00:00"; // the year of the climatology

bool isWater(float value)
{
    return value > -100;
}

int columnOf(double lon)
{
    return int(std::floor(lon - 20 + 360)) % 360;
}

int rowOf(double lat)
{
    return std::clamp(int(std::floor(lat + 90)), 0, CLIMATOLOGY::rows - 1);
}

int levelsAt(const CLIMATOLOGY& c, int row, int column)
{
    int count = 0;
    while (count < CLIMATOLOGY::levels && isWater(c.temperature[c.index(count, row, column)]) &&
           isWater(c.salinity[c.index(count, row, column)]))
        ++count;
    return count;
}

// Depth of the sea floor at the nearest node of the relief, metres.
double seaFloor(const GRID& relief, PLACE place)
{
    const int row = int(std::lround((place.lat - relief.y0) / relief.step));
    const int column = int(std::lround((place.lon + 360) / relief.step)) % relief.columns;
    return -relief.at(std::clamp(row, 0, relief.rows - 1), column);
}

} // namespace

std::optional<CLIMATOLOGY> readClimatology(const std::string& path, std::string& error)
{
    RNetcdfFile file(path);
    const std::vector<std::size_t> shape = {CLIMATOLOGY::levels, CLIMATOLOGY::rows, CLIMATOLOGY::columns};
    CLIMATOLOGY climatology{file.floats("TEMP", shape), file.floats("SALT", shape)};
    if (file.error().empty()) return climatology;
    error = path + ": " + file.error();
    return std::nullopt;
}

std::vector<PLACE> meridian(double lon, double south, double north)
{
    std::vector<PLACE> places;
    const int count = int(std::lround(north - south)) + 1;
    places.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) places.push_back({lon, south + i});
    return places;
}

std::vector<PLACE> globe(int everyDegrees)
{
    std::vector<PLACE> places;
    const double half = everyDegrees / 2.0;
    for (int south = -90; south < 90; south += everyDegrees)
        for (int west = -180; west < 180; west += everyDegrees) places.push_back({west + half, south + half});
    return places;
}

std::string spreadsheet(const CLIMATOLOGY& climatology, const GRID& relief, const std::vector<PLACE>& places,
                        const std::string& cruise)
{
    std::string text = heading;
    int station = 0;
    for (const PLACE& place : places) {
        const int row = rowOf(place.lat), column = columnOf(place.lon);
        const int levels = levelsAt(climatology, row, column);
        if (levels == 0) continue;
        const double bottom = std::max(seaFloor(relief, place), depths[std::size_t(levels - 1)]);
        const std::string front = common::format("%s\t%d\t%s\t%.3f\t%.3f\t%.0f", cruise.c_str(), ++station,
                                                 nominalTime, place.lon, place.lat, bottom);
        for (int level = 0; level < levels; ++level) {
            const std::size_t i = climatology.index(level, row, column);
            text +=
                front + common::format("\t%g\t1\t%.3f\t1\t%.3f\t1\n", depths[std::size_t(level)],
                                       double(climatology.temperature[i]), double(climatology.salinity[i]));
        }
    }
    return text;
}

} // namespace tools
