#pragma once

// Where an axis has its tics, and which of them get a number. Every limit may be any float: what isn't finite
// counts as 0, and no range makes an endless number of tics.

#include <vector>

namespace graphics {

// The tics of an axis. For a reversed axis (lo > hi) both steps are negative. The steps are never 0.
struct TICS {
    float lo = 0, hi = 1; // limits, widened to whole minor steps
    float start = 0;      // first major tic
    float minor = 0.5f, major = 1;
};
// The general rule: major steps of 1, 2 or 5 times a power of ten, three to seven intervals on an axis, minor
// steps of half of it. Equal limits give one unit to either side.
[[nodiscard]] TICS ChooseTics(float a, float b);

// The tics of a degree axis: major ones at start + i major for i from first to last; minor and major are
// positive. There may be none (last < first).
struct MAPTICS {
    float start = 0, minor = 1, major = 1;
    int first = 0, last = 0;
};
// The limits in any order. No tic is a pole when `latitude` is set.
[[nodiscard]] MAPTICS ChooseMapTics(float a, float b, bool latitude);

// Thins the labels at start + i major, first <= i <= last, on an axis from a to b that is axisLength cm long
// to about one a centimetre: raises major by a whole factor and adjusts first and last to the labels that
// stay.
void FitLabels(int& first, int& last, float& major, float start, float a, float b, float axisLength);

// The values start + i step (i may be negative) within lo and hi, in rising order of i; a value less than
// a millionth of a step outside counts as within. At most `maxTics` values, none for a step of 0.
inline constexpr int maxTics = 2000;
[[nodiscard]] std::vector<double> ticValues(double start, double step, double lo, double hi);

} // namespace graphics
