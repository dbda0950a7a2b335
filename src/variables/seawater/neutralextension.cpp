#include "variables/seawater/neutralextension.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace seawater {
namespace {

// A step changes salinity by 0.014 or temperature by 0.1 degC. The widest range of samples needs fewer.
constexpr int maxSteps = 3000;
constexpr double downwardTemperature = -0.1, downwardSalinity = 0.014, upwardTemperature = 0.1;

// An end of a cast and how it is continued.
struct END {
    WATER water;
    double temperatureStep = 0, salinityStep = 0;
    double middle = 0; // pressure between the end and the sample
    double target = 0; // density of the sample there

    [[nodiscard]] WATER extended(int step) const
    {
        return {water.salinity + salinityStep * step, water.temperature + temperatureStep * step,
                water.pressure};
    }
    // True on the sample and beyond it.
    [[nodiscard]] bool reached(double sigma) const
    {
        return salinityStep > 0 ? sigma >= target : sigma <= target;
    }
};

// Between two steps, of which the second has reached the sample.
WATER pointBetween(const END& end, const WATER& before, const WATER& behind)
{
    constexpr double densityTolerance = 5e-5, partTolerance = 5e-3;
    constexpr int maxHalvings = 20;
    const double theta0 = temperatureAt(before, end.middle), theta1 = temperatureAt(behind, end.middle);
    double low = 0, high = 1;
    WATER moved;
    for (int n = 0; n < maxHalvings; ++n) {
        const double part = 0.5 * (low + high);
        moved = {before.salinity + part * (behind.salinity - before.salinity),
                 theta0 + part * (theta1 - theta0), end.middle};
        const double sigma = sigmaOf(moved);
        (end.reached(sigma) ? high : low) = part;
        if (std::abs(sigma - end.target) <= densityTolerance && high - low <= partTolerance) break;
    }
    return {moved.salinity, temperatureAt(moved, end.water.pressure), end.water.pressure};
}

std::optional<WATER> extendedToSample(const END& end)
{
    WATER before = end.water;
    for (int step = 1; step <= maxSteps; ++step) {
        const WATER behind = end.extended(step);
        const double sigma = sigmaAt(behind, end.middle);
        if (!std::isfinite(sigma)) return std::nullopt;
        if (end.reached(sigma)) return pointBetween(end, before, behind);
        before = behind;
    }
    return std::nullopt;
}

// `interval` is the one at the end, `level` its outer level.
CASTLABEL labelAtEnd(const NEUTRALSAMPLE& sample, const ATLASCAST& cast, const END& end, std::size_t interval,
                     std::size_t level)
{
    CASTLABEL label;
    const std::optional<WATER> point = extendedToSample(end);
    const double ratio = (cast.gamma[interval + 1] - cast.gamma[interval]) / cast.step[interval];
    if (!point || !std::isfinite(ratio)) return label;
    const double sigma = sigmaOf(*point);
    label.gamma = cast.gamma[level] + ratio * (sigma - cast.sigma[level]);
    const double pressures = point->pressure - sample.water.pressure;
    const double temperatures = temperatureAt(*point, 0) - sample.potentialTemperature;
    const double scale = (1000 + sigma) * ratio * thermobaric;
    label.alongPath = scale * std::abs(pressures * temperatures) / 6;
    const double bySign = scale * pressures * temperatures / 2;
    (bySign <= 0 ? label.byMixLow : label.byMixHigh) = std::abs(bySign);
    return label;
}

END endAt(const WATER& water, const NEUTRALSAMPLE& sample, double temperatureStep, double salinityStep)
{
    const double middle = 0.5 * (water.pressure + sample.water.pressure);
    return {water, temperatureStep, salinityStep, middle, sigmaAt(sample.water, middle)};
}

} // namespace

CASTLABEL labelBeyondCast(const NEUTRALSAMPLE& sample, const ATLASCAST& cast)
{
    const std::size_t deepest = cast.levels - 1;
    const END bottom = endAt(cast.water[deepest], sample, downwardTemperature, downwardSalinity);
    if (bottom.target > sigmaAt(bottom.water, bottom.middle))
        return labelAtEnd(sample, cast, bottom, deepest - 1, deepest);
    const END top = endAt(cast.water[0], sample, upwardTemperature, 0);
    if (top.target < sigmaAt(top.water, top.middle)) return labelAtEnd(sample, cast, top, 0, 0);
    return {};
}

} // namespace seawater
