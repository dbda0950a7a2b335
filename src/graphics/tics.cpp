#include "graphics/tics.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

namespace graphics {
namespace {

// Below this a step could no longer be stored as a float with all its digits.
constexpr double smallestRange = 1e-34;
// A step that no limit is near to, for quotients that go into an int.
constexpr double largestIndex = 1e6;

double finite(double value)
{
    return std::isfinite(value) ? value : 0;
}

float toFloat(double value)
{
    return static_cast<float>(std::clamp<double>(value, -FLT_MAX, FLT_MAX)) + 0.0f; // never a negative zero
}

// A quotient this close to an integer is that integer. Limits come as floats: where a float has fewer digits
// than a millionth of a step, its own rounding counts (34.6f in steps of 0.005 is 6919.9997).
double settled(double quotient)
{
    const double nearest = std::round(quotient);
    const double tolerance = std::clamp(6e-8 * std::abs(quotient), 1e-6, 1e-3);
    return std::abs(quotient - nearest) <= tolerance ? nearest : quotient;
}

double floorQuotient(double a, double step)
{
    return std::floor(settled(a / step));
}

double ceilQuotient(double a, double step)
{
    return std::ceil(settled(a / step));
}

int truncatedIndex(double value, double start, double step)
{
    return static_cast<int>(std::clamp(settled((value - start) / step), -largestIndex, largestIndex));
}

TICS ticsOfEqualLimits(double a)
{
    // At large values one unit is less than a float can hold: the range grows with the value.
    const double unit = std::max(1.0, std::exp2(std::ceil(std::log2(std::max(std::abs(a), 1.0) * 1e-6))));
    return {toFloat(a - unit), toFloat(a + unit), toFloat(a - unit), toFloat(0.1 * unit),
            toFloat(0.5 * unit)};
}

double majorStep(double range)
{
    const double unit = std::pow(10.0, std::floor(std::log10(range) - 0.5));
    const double n = std::trunc(settled(range / unit));
    if (n < 3) return unit / 2;
    if (n < 7) return unit;
    if (n < 13) return unit * 2;
    return unit * 5;
}

} // namespace

TICS ChooseTics(float from, float to)
{
    const double a = finite(from), b = finite(to);
    const double range = std::abs(a - b);
    if (range < smallestRange) return ticsOfEqualLimits(a);
    const double major = majorStep(range), minor = major / 2;
    if (a < b) {
        return {toFloat(floorQuotient(a, minor) * minor), toFloat(ceilQuotient(b, minor) * minor),
                toFloat(ceilQuotient(a, major) * major), toFloat(minor), toFloat(major)};
    }
    return {toFloat(ceilQuotient(a, minor) * minor), toFloat(floorQuotient(b, minor) * minor),
            toFloat(floorQuotient(a, major) * major), toFloat(-minor), toFloat(-major)};
}

MAPTICS ChooseMapTics(float from, float to, bool latitude)
{
    const float a = static_cast<float>(finite(std::min(from, to)));
    const float b = static_cast<float>(finite(std::max(from, to)));
    const TICS general = ChooseTics(a, b);
    MAPTICS tics{0, std::abs(general.minor), std::abs(general.major), 0, 0};
    const double span = double{b} - a;
    if (latitude ? tics.major > 30 : span >= 120) {
        const bool wide = !latitude && span >= 270;
        tics.minor = wide ? 30 : 10;
        tics.major = wide ? 90 : 30;
    }
    tics.start = toFloat(ceilQuotient(a, tics.major) * tics.major);
    tics.first = truncatedIndex(a, tics.start, tics.major);
    tics.last = truncatedIndex(b, tics.start, tics.major);
    if (tics.start > b) tics.last = tics.first - 1; // the range lies between two tics
    if (latitude && tics.start + double{tics.major} * tics.first <= -90) ++tics.first;
    if (latitude && tics.start + double{tics.major} * tics.last >= 90) --tics.last;
    return tics;
}

void FitLabels(int& first, int& last, float& major, float start, float a, float b, float axisLength)
{
    if (!(major > 0) || !std::isfinite(major)) return;
    const double length = axisLength > 0.1f ? axisLength : 0.1;
    for (int pass = 0; pass < 2; ++pass) {
        const int low = truncatedIndex(finite(std::min(a, b)), start, major);
        int high = truncatedIndex(finite(std::max(a, b)), start, major);
        if (high == low) ++high;
        const int factor = static_cast<int>((high - low) / length) + 1;
        if (factor <= 1) break;
        major = toFloat(double{major} * factor);
        first = static_cast<int>(std::ceil(double(first) / factor));
        last = static_cast<int>(std::floor(double(last) / factor));
    }
}

std::vector<double> ticValues(double start, double step, double lo, double hi)
{
    std::vector<double> values;
    if (lo > hi) std::swap(lo, hi);
    if (step == 0 || !std::isfinite(start / step) || !std::isfinite(lo) || !std::isfinite(hi)) return values;
    const double atLo = settled((lo - start) / step), atHi = settled((hi - start) / step);
    const double first = std::ceil(std::min(atLo, atHi)), last = std::floor(std::max(atLo, atHi));
    if (!(last - first < maxTics)) return values;         // would be one black bar
    const int count = static_cast<int>(last - first) + 1; // 0 or less if none lies within
    for (int i = 0; i < count; ++i) values.push_back(start + (first + i) * step);
    return values;
}

} // namespace graphics
