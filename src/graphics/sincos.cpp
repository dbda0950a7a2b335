#include "graphics/sincos.h"

#include <array>
#include <cmath>
#include <numbers>

namespace graphics {

namespace {

constexpr double radians = std::numbers::pi / 180;
constexpr int perDegree = 10, entries = 360 * perDegree;
constexpr double largest = 1e6; // degrees; beyond it the table's index could overflow

SINCOS fromLibrary(double angle)
{
    return {std::sin(angle * radians), std::cos(angle * radians)};
}

std::array<SINCOS, entries> makeTable()
{
    std::array<SINCOS, entries> table;
    for (int i = 0; i < entries; ++i) table[std::size_t(i)] = fromLibrary(double(i) / perDegree);
    return table;
}

} // namespace

// The nearest entry of the table, turned by what is left: at most 0.05 degrees, for which the series ends
// early.
SINCOS sinCosDegrees(double angle)
{
    static const std::array<SINCOS, entries> table = makeTable();
    if (!(std::abs(angle) < largest)) return fromLibrary(angle);
    const double scaled = angle * perDegree;
    const int nearest = int(scaled < 0 ? scaled - 0.5 : scaled + 0.5);
    const int index = nearest % entries;
    const SINCOS& at = table[std::size_t(index < 0 ? index + entries : index)];
    const double d = (angle - double(nearest) / perDegree) * radians, q = d * d;
    const double sine = d * (1 - q / 6 * (1 - q / 20)), cosine = 1 - q / 2 * (1 - q / 12);
    return {at.sine * cosine + at.cosine * sine, at.cosine * cosine - at.sine * sine};
}

} // namespace graphics
