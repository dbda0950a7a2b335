#pragma once

// Demonstration stations: columns of a gridded climatology, written as a spreadsheet.

#include <optional>
#include <string>
#include <vector>

#include "relief.h"

namespace tools {

// Annual means on 20 levels and one-degree columns: X 180 x 360 from 20.5 E, Y from 89.5 S.
struct CLIMATOLOGY {
    static constexpr int levels = 20, rows = 180, columns = 360;
    std::vector<float> temperature, salinity; // degrees C and psu, level by level from the surface
    [[nodiscard]] std::size_t index(int level, int row, int column) const
    {
        return (std::size_t(level) * rows + std::size_t(row)) * columns + std::size_t(column);
    }
};
[[nodiscard]] std::optional<CLIMATOLOGY> readClimatology(const std::string& path, std::string& error);

struct PLACE {
    double lon = 0, lat = 0; // centre of a column, degrees east of -180 to 180 and north
};
// Columns of a meridian from south to north, and columns every so many degrees over the globe.
[[nodiscard]] std::vector<PLACE> meridian(double lon, double south, double north);
[[nodiscard]] std::vector<PLACE> globe(int everyDegrees);

// The spreadsheet of the columns that hold water. Stations are numbered from 1; the date is nominal. Bottom
// depths come from the relief, but are never less than the deepest level.
[[nodiscard]] std::string spreadsheet(const CLIMATOLOGY& climatology, const GRID& relief,
                                      const std::vector<PLACE>& places, const std::string& cruise);

} // namespace tools
