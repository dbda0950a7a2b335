#pragma once

// Small polygons for the tests of the converters.

#include <cmath>
#include <numbers>

#include "plane.h"

namespace testing_support {

inline tools::POLYGON box(double xmin, double ymin, double xmax, double ymax)
{
    return {tools::rectangle({xmin, ymin, xmax, ymax}), {}};
}

// A regular polygon of `points` corners, anticlockwise.
inline tools::RING circle(double x, double y, double radius, int points)
{
    tools::RING ring;
    for (int i = 0; i < points; ++i) {
        const double angle = 2 * std::numbers::pi * i / points;
        ring.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
    }
    ring.push_back(ring.front());
    return ring;
}

} // namespace testing_support
