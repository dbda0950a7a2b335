#pragma once

// Polygons as the records of a base map file (`.cdt`).
//
// A record holds at most 1500 points; a closed one can be filled, an open one is a line, and only a prefix of
// its points is stroked. A polygon that fits is one record. Everything else is cut into pieces that are only
// filled, and its outline follows as open records that are only stroked.

#include <span>
#include <string>
#include <vector>

#include "geos.h"
#include "plane.h"

namespace tools {

inline constexpr int maxRecordPoints = 1500;

struct CDTPOINT {
    float lon = 0, lat = 0;
    bool operator==(const CDTPOINT&) const = default;
};
struct CDTSHAPE {
    std::vector<CDTPOINT> points;
    int outline = 0; // the first `outline` points are stroked
    [[nodiscard]] bool closed() const { return points.front() == points.back(); }
};

struct CUTRULES {
    double tile = 30; // degrees; pieces lie inside one tile
    double step = 1;  // degrees; no segment is longer, so that straight cuts follow a curved projection
};

[[nodiscard]] std::vector<CDTSHAPE> cdtShapes(const RGeos& geos, std::span<const POLYGON> polygons,
                                              const CUTRULES& rules);
// The globe in tiles, filled and without lines.
[[nodiscard]] std::vector<CDTSHAPE> globeShapes(const CUTRULES& rules);

// The records in the host's byte order; false if the file can't be written, and then none was changed.
[[nodiscard]] bool writeCdt(const std::string& path, std::span<const CDTSHAPE> shapes);

} // namespace tools
