#pragma once

// Plane geometry of the converters. Coordinates are degrees: x to the east, y to the north.

#include <span>
#include <vector>

namespace tools {

struct POINT {
    double x = 0, y = 0;
    bool operator==(const POINT&) const = default;
};
using CHAIN = std::vector<POINT>;
using RING = std::vector<POINT>; // closed: the last point repeats the first

struct POLYGON {
    RING outer;
    std::vector<RING> holes;
};

struct BOX {
    double xmin = 0, ymin = 0, xmax = 0, ymax = 0;
    [[nodiscard]] double width() const { return xmax - xmin; }
    [[nodiscard]] double height() const { return ymax - ymin; }
};

[[nodiscard]] BOX boundsOf(std::span<const POINT> points);    // of at least one point
[[nodiscard]] double signedArea(std::span<const POINT> ring); // positive if it runs anticlockwise
[[nodiscard]] double areaOf(const POLYGON& polygon);
[[nodiscard]] std::size_t pointCount(const POLYGON& polygon);
[[nodiscard]] bool contains(std::span<const POINT> ring, POINT point); // even-odd rule

// The rectangle as a ring, anticlockwise from its south-western corner.
[[nodiscard]] RING rectangle(const BOX& box);

// True if both ends lie on the same side of the plane chart: on longitude 0, on 360, or on a pole. Such a
// segment exists only because the globe was cut open there; it is no coast.
[[nodiscard]] bool onChartEdge(POINT a, POINT b);
[[nodiscard]] bool onChartEdge(POINT a);

} // namespace tools
