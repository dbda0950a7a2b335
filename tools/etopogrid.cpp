#include "etopogrid.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "common/files.h"

namespace tools {
namespace {

struct ETOPOFILEHEADER {
    char magic[8];
    std::int32_t reserved1;
    float cellsPerLon;
    std::int32_t cellsPerRow;
    float southEdge;
    float cellsPerLat;
    std::int32_t reserved2, reserved3;
};
static_assert(sizeof(ETOPOFILEHEADER) == 36);

} // namespace

std::vector<std::int16_t> cellHeights(const GRID& relief)
{
    std::vector<std::int16_t> heights;
    heights.reserve(relief.heights.size());
    for (int r = 0; r < relief.rows; ++r) {
        const int north = std::min(r + 1, relief.rows - 1);
        for (int c = 0; c < relief.columns; ++c) {
            const int east = (c + 1) % relief.columns;
            const double sum =
                relief.at(r, c) + relief.at(r, east) + relief.at(north, c) + relief.at(north, east);
            heights.push_back(std::int16_t(std::lround(sum / 4)));
        }
    }
    return heights;
}

bool writeEtopo(const std::string& path, const GRID& relief)
{
    ETOPOFILEHEADER header{};
    std::memcpy(header.magic, "ETOPO01", sizeof header.magic);
    header.cellsPerLon = header.cellsPerLat = float(1 / relief.step);
    header.cellsPerRow = relief.columns;
    header.southEdge = float(relief.y0 + 90);

    const std::vector<std::int16_t> heights = cellHeights(relief);
    common::RReplacementFile file(path);
    if (!file.stream() || std::fwrite(&header, sizeof header, 1, file.stream()) != 1) return false;
    const std::size_t count = heights.size();
    return std::fwrite(heights.data(), sizeof heights[0], count, file.stream()) == count && file.commit();
}

} // namespace tools
