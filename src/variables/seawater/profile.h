#pragma once

// Profiles on other levels.

#include <array>
#include <span>

namespace seawater {

inline constexpr int stretchedPoints = 62;
inline constexpr float stretchFactor = 1.04f;

// Points in a geometric progression over the range from `lowest` to `highest`, and 5 % of it beyond both
// ends; a range below 1 counts as 1.
void stretchedGrid(std::array<float, stretchedPoints>& out, float lowest, float highest, float factor);

struct INTERPOLATION {
    int status = 1;           // 0: done; 1: fewer than two usable points, and nothing else is set
    float xMin = 0, xMax = 0; // of the points that are used
    int firstInside = -1, lastInside = -2; // first target not below xMin, last target not above xMax
};

// Values at the targets t by a straight line through the points of a window around each. x and y have the
// same size, in any order; a pair with a missing value is left out, points of equal x become one. out and
// proximity (null: not wanted) have the size of t: the value, `missing` where there are too few points, and
// the distance of the nearest point in widths of the window, 1.0e10 where there is none.
INTERPOLATION interpolateProfile(std::span<const float> x, std::span<const float> y, float missing,
                                 std::span<const float> t, std::span<float> out, float* proximity);

} // namespace seawater
