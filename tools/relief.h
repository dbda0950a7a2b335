#pragma once

// The gridded relief and its contours.

#include <optional>
#include <string>
#include <vector>

#include "plane.h"

namespace tools {

// Heights in metres, positive upward, at nodes: row r lies at y0 + r step, column c at x0 + c step, row by
// row from the south.
struct GRID {
    int rows = 0, columns = 0;
    double x0 = 0, y0 = -90, step = 1;
    std::vector<float> heights;
    [[nodiscard]] float at(int row, int column) const
    {
        return heights[std::size_t(row) * std::size_t(columns) + std::size_t(column)];
    }
};

// The global relief: nodes every 5 minutes, 2161 rows from pole to pole, 4320 columns from longitude 0.
// Empty, with a message, if the file holds something else.
[[nodiscard]] std::optional<GRID> readRelief(const std::string& path, std::string& error);

// Every `factor`-th node with the mean over the box around it, in whole metres; longitudes wrap, and boxes
// end at the poles. `factor` is even and divides the columns and the rows less one.
[[nodiscard]] GRID boxMean(const GRID& relief, int factor);

// The same grid with its first column repeated at longitude 360.
[[nodiscard]] GRID closedGlobe(const GRID& relief);

// Lines around the area higher than `level`, closed along the border of the grid; the area lies on their
// left. No node may lie exactly on the level.
[[nodiscard]] std::vector<RING> contourRings(const GRID& grid, double level);

} // namespace tools
