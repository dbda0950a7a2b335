#include "variables/atmosphere.h"

#include <algorithm>
#include <span>

#include "variables/seawater/profile.h"

namespace variables {
namespace {

using collection::STATIONHDR;

// Months and days in mean years, as single precision has them.
float decimalYear(const STATIONHDR& station)
{
    return static_cast<float>(station.year + (station.month - 1) * 0.083333336 + station.day * 0.002739726);
}

float northernWeight(float latitude)
{
    return std::clamp((latitude + 30) * 0.016666668f, 0.0f, 1.0f);
}

} // namespace

std::optional<double> atmosphereOver(const STATIONHDR& station, const ATMHISTORY& history)
{
    const auto rows = static_cast<std::size_t>(std::clamp(history.n, 0, maxHistoryRows));
    if (rows == 0) return std::nullopt;
    const auto year = static_cast<float>(station.year);
    if (!(history.years[0] <= year && year <= history.years[rows - 1])) return std::nullopt;
    const float time = decimalYear(station);
    const auto at = [&](const std::array<float, maxHistoryRows>& column) {
        float value = common::MISSING_VALUE;
        seawater::interpolateProfile(std::span(history.years).first(rows), std::span(column).first(rows),
                                     common::MISSING_VALUE, {&time, 1}, {&value, 1}, nullptr);
        return value;
    };
    const double north = at(history.northern), south = at(history.southern);
    if (north == common::MISSING_VALUE || south == common::MISSING_VALUE) return std::nullopt;
    const double weight = northernWeight(station.latitude);
    return weight * north + (1 - weight) * south;
}

} // namespace variables
