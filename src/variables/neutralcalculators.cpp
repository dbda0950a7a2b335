#include <algorithm>
#include <vector>

#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/seawater/pressure.h"

namespace variables {
namespace {

// A missing depth is a missing pressure, and so is one that no pressure belongs to.
std::vector<float> pressuresOf(const CALCULATION& calculation)
{
    const float latitude = calculation.station.header.latitude;
    const std::span<const float> depths = calculation.source(1);
    std::vector<float> pressures(depths.size());
    std::ranges::transform(depths, pressures.begin(), [latitude](float depth) {
        return depth == common::MISSING_VALUE ? depth : cellOf(seawater::pressureFromDepth(depth, latitude));
    });
    return pressures;
}

int neutralDensity(const CALCULATION& calculation)
{
    const std::span<const float> temperatures = calculation.source(2), salinities = calculation.source(3);
    if (calculation.source(1).empty() || temperatures.empty() || salinities.empty()) return absent;
    if (!calculation.with.atlas) return absent;
    const auto& header = calculation.station.header;
    const std::vector<float> pressures = pressuresOf(calculation);
    const std::size_t levels = calculation.levels();
    std::vector<double> gamma(levels), errorLow(levels), errorHigh(levels);
    if (seawater::neutralDensity(*calculation.with.atlas, salinities, temperatures, pressures,
                                 header.longitude, header.latitude, gamma, errorLow, errorHigh,
                                 common::MISSING_VALUE) != 0)
        return absent;
    for (std::size_t n = 0; n < levels; ++n) {
        calculation.values[n] = cellOf(gamma[n]);
        calculation.flags[n] = maxFlagOf(calculation, n);
    }
    return static_cast<int>(levels); // all levels count, as after every procedure over whole profiles
}

constexpr CALCULATORROW rows[] = {{idNeutralDensity, neutralDensity}};

} // namespace

std::span<const CALCULATORROW> neutralCalculators()
{
    return rows;
}

} // namespace variables
