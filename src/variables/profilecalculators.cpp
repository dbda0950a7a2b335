#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "common/text.h"
#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/seawater/pressure.h"
#include "variables/seawater/profile.h"
#include "variables/seawater/stability.h"
#include "variables/seawater/state.h"
#include "variables/sourceflags.h"

namespace variables {
namespace {

using common::MISSING_VALUE;
using seawater::stretchedPoints;
using seawater::WATER;
using FLOATS = std::vector<float>;

// Points of a profile: where they are and what is there.
struct PROFILE {
    FLOATS at, value;

    void reserve(std::size_t points)
    {
        at.reserve(points);
        value.reserve(points);
    }
    void add(double position, double result)
    {
        at.push_back(static_cast<float>(position));
        value.push_back(cellOf(result));
    }
};

bool isMissing(float value)
{
    return value == MISSING_VALUE;
}

int sourceNumberOf(const CALCULATION& calculation, int n)
{
    return calculation.variable.sources[n - 1];
}

bool isCovered(const CALCULATION& calculation, int n)
{
    return calculation.sourceCount(1) > 0 && calculation.sourceCount(n) > 0 &&
           hasGoodCoverage(calculation.station, sourceNumberOf(calculation, 1),
                           sourceNumberOf(calculation, n), calculation.with.coverage, true);
}

struct RANGE {
    float lowest = 0, highest = 0;
};

// Of the values that aren't missing, of which there is one at least.
RANGE rangeOf(std::span<const float> values)
{
    RANGE range{-MISSING_VALUE, MISSING_VALUE};
    for (const float value : values) {
        if (isMissing(value)) continue;
        range.lowest = std::min(range.lowest, value);
        range.highest = std::max(range.highest, value);
    }
    return range;
}

FLOATS gridOver(std::span<const float> depths)
{
    const RANGE range = rangeOf(depths);
    std::array<float, stretchedPoints> grid{};
    seawater::stretchedGrid(grid, range.lowest, range.highest, seawater::stretchFactor);
    return {grid.begin(), grid.end()};
}

// Values of a profile at the targets that aren't missing; a missing target has no neighbours' distances to
// give, so the others are interpolated as if it weren't there.
void mapOnto(const PROFILE& profile, std::span<const float> targets, std::span<float> out)
{
    FLOATS present;
    present.reserve(targets.size());
    std::copy_if(targets.begin(), targets.end(), std::back_inserter(present),
                 [](float target) { return !isMissing(target); });
    FLOATS values(present.size());
    seawater::interpolateProfile(profile.at, profile.value, MISSING_VALUE, present, values, nullptr);
    std::size_t next = 0;
    for (std::size_t k = 0; k < targets.size(); ++k)
        out[k] = isMissing(targets[k]) ? MISSING_VALUE : values[next++];
}

// Takes the flags from the sources. Returns the count of values.
int finish(const CALCULATION& calculation)
{
    setSourceFlags(calculation);
    return static_cast<int>(std::count_if(calculation.values.begin(), calculation.values.end(),
                                          [](float value) { return !isMissing(value); }));
}

// Derivatives and integrals count every level, missing ones too.
int finishWhole(const CALCULATION& calculation, const PROFILE& profile)
{
    mapOnto(profile, calculation.source(1), calculation.values);
    setSourceFlags(calculation);
    return static_cast<int>(calculation.levels());
}

// --- derivatives and the integral

// Source 2 on the stretched grid; empty if the station doesn't cover it.
PROFILE griddedSource(const CALCULATION& calculation)
{
    if (!isCovered(calculation, 2)) return {};
    PROFILE gridded{gridOver(calculation.source(1)), FLOATS(stretchedPoints)};
    seawater::interpolateProfile(calculation.source(1), calculation.source(2), MISSING_VALUE, gridded.at,
                                 gridded.value, nullptr);
    return gridded;
}

int verticalDerivative(const CALCULATION& calculation)
{
    const PROFILE v = griddedSource(calculation);
    if (v.at.empty()) return absent;
    PROFILE derivative;
    for (std::size_t i = 0; i + 1 < v.at.size(); ++i) {
        const double d = static_cast<double>(v.at[i + 1]) - v.at[i];
        const bool isKnown = !isMissing(v.value[i]) && !isMissing(v.value[i + 1]);
        derivative.add(v.at[i] + d / 2, isKnown
                                            ? (static_cast<double>(v.value[i + 1]) - v.value[i]) / d * 1000
                                            : MISSING_VALUE);
    }
    return finishWhole(calculation, derivative);
}

int secondDerivative(const CALCULATION& calculation)
{
    const PROFILE v = griddedSource(calculation);
    if (v.at.empty()) return absent;
    PROFILE derivative;
    for (std::size_t i = 0; i + 2 < v.at.size(); ++i) {
        const double d1 = static_cast<double>(v.at[i + 1]) - v.at[i];
        const double d2 = static_cast<double>(v.at[i + 2]) - v.at[i + 1];
        const double m1 = v.at[i] + d1 / 2, m2 = v.at[i + 1] + d2 / 2;
        const bool isKnown =
            !isMissing(v.value[i]) && !isMissing(v.value[i + 1]) && !isMissing(v.value[i + 2]);
        const double slope1 = (static_cast<double>(v.value[i + 1]) - v.value[i]) / d1;
        const double slope2 = (static_cast<double>(v.value[i + 2]) - v.value[i + 1]) / d2;
        derivative.add((m1 + m2) / 2, isKnown ? (slope2 - slope1) / (m2 - m1) * 1.0e6 : MISSING_VALUE);
    }
    return finishWhole(calculation, derivative);
}

// The integral from the first point on, without the last point of the grid; missing from the first gap on.
PROFILE runningIntegral(const PROFILE& v)
{
    PROFILE integral;
    double sum = 0;
    bool isKnown = !isMissing(v.value[0]);
    integral.add(v.at[0], isKnown ? 0 : MISSING_VALUE);
    for (std::size_t i = 1; i + 1 < v.at.size(); ++i) {
        isKnown = isKnown && !isMissing(v.value[i]);
        if (isKnown)
            sum += 0.0005 * (static_cast<double>(v.at[i]) - v.at[i - 1]) *
                   (static_cast<double>(v.value[i]) + v.value[i - 1]);
        integral.add(v.at[i], isKnown ? sum : MISSING_VALUE);
    }
    return integral;
}

// The value of a running sum at a target; missing beyond its last known point, where a gap ends it.
float sumAt(const PROFILE& sum, float target)
{
    float value = MISSING_VALUE;
    const seawater::INTERPOLATION known =
        seawater::interpolateProfile(sum.at, sum.value, MISSING_VALUE, {&target, 1}, {&value, 1}, nullptr);
    return target <= known.xMax ? value : MISSING_VALUE;
}

// Counts a running sum from its value at `reference` on. False if there is none.
bool subtractReference(PROFILE& profile, float reference)
{
    const float start = sumAt(profile, reference);
    if (isMissing(start)) return false;
    for (float& value : profile.value) {
        if (!isMissing(value)) value = cellOf(static_cast<double>(value) - start);
    }
    return true;
}

int verticalIntegral(const CALCULATION& calculation)
{
    const PROFILE v = griddedSource(calculation);
    if (v.at.empty()) return absent;
    PROFILE integral = runningIntegral(v);
    const float start = std::min(calculation.variable.param, rangeOf(calculation.source(1)).highest);
    if (!subtractReference(integral, start)) return absent;
    return finishWhole(calculation, integral);
}

// --- dynamic height

// Anomalies of the specific volume [cm3/g] against pressure [dbar], at all levels that have a depth; missing
// where temperature or salinity is.
PROFILE volumeAnomalies(const CALCULATION& calculation)
{
    const auto depth = calculation.source(1), temperature = calculation.source(2),
               salinity = calculation.source(3);
    const seawater::RPressureAtLatitude here(calculation.station.header.latitude);
    PROFILE anomalies;
    anomalies.reserve(calculation.levels());
    for (std::size_t k = 0; k < calculation.levels(); ++k) {
        if (!isDepth(depth[k])) continue;
        const auto p = static_cast<float>(here.pressure(depth[k]));
        const bool isKnown = isTemperature(temperature[k]) && isSalinity(salinity[k]);
        anomalies.add(p, isKnown ? seawater::specificVolume(p, temperature[k], salinity[k]) -
                                       seawater::specificVolumeStandard(p)
                                 : MISSING_VALUE);
    }
    return anomalies;
}

PROFILE filled(const PROFILE& profile)
{
    PROFILE result{profile.at, FLOATS(profile.at.size())};
    mapOnto(profile, profile.at, result.value);
    return result;
}

// Geopotential anomaly [dyn m] against pressure, 0 at the first point; missing from the first gap on.
PROFILE runningHeights(const PROFILE& anomalies)
{
    PROFILE heights;
    heights.reserve(anomalies.at.size());
    double height = 0;
    bool isKnown = true;
    for (std::size_t i = 0; i < anomalies.at.size(); ++i) {
        isKnown = isKnown && !isMissing(anomalies.value[i]);
        if (isKnown && i > 0)
            height += (static_cast<double>(anomalies.value[i - 1]) + anomalies.value[i]) *
                      (static_cast<double>(anomalies.at[i - 1]) - anomalies.at[i]) / 2;
        heights.add(anomalies.at[i], isKnown ? height : MISSING_VALUE);
    }
    return heights;
}

// The reference, or the last value of the first variable if that is shallower. It is compared with depths and
// then taken as a pressure.
float referenceOf(const CALCULATION& calculation)
{
    const float reference = calculation.variable.param;
    const float last =
        collection::valueAt(calculation.station, 1, calculation.station.levels() - 1, reference);
    return isMissing(last) ? reference : std::min(reference, last);
}

int dynamicHeight(const CALCULATION& calculation)
{
    if (!isCovered(calculation, 2) || !isCovered(calculation, 3)) return absent;
    const auto depth = calculation.source(1);
    if (rangeOf(depth).highest < calculation.variable.param) return absent;
    PROFILE heights = runningHeights(filled(volumeAnomalies(calculation)));
    if (!subtractReference(heights, referenceOf(calculation))) return absent;
    std::size_t next = 0;
    for (std::size_t k = 0; k < calculation.levels(); ++k)
        calculation.values[k] = isDepth(depth[k]) ? heights.value[next++] : MISSING_VALUE;
    return finish(calculation);
}

// --- stability

// The station's own levels that hold everything.
std::vector<WATER> ownLevels(const CALCULATION& calculation)
{
    const auto depth = calculation.source(1), temperature = calculation.source(2),
               salinity = calculation.source(3);
    const seawater::RPressureAtLatitude here(calculation.station.header.latitude);
    std::vector<WATER> levels;
    levels.reserve(calculation.levels());
    for (std::size_t k = 0; k < calculation.levels(); ++k) {
        if (isDepth(depth[k]) && isTemperature(temperature[k]) && isSalinity(salinity[k]))
            levels.push_back({static_cast<float>(here.pressure(depth[k])), temperature[k], salinity[k]});
    }
    return levels;
}

// Levels of the stretched grid, as far as both profiles reach and one beyond. A grid that has no point within
// a profile gives none.
std::vector<WATER> gridLevels(const CALCULATION& calculation)
{
    const FLOATS grid = gridOver(calculation.source(1));
    const auto gridded = [&](int n, FLOATS& values) {
        return seawater::interpolateProfile(calculation.source(1), calculation.source(n), MISSING_VALUE, grid,
                                            values, nullptr);
    };
    FLOATS temperature(grid.size()), salinity(grid.size());
    const seawater::INTERPOLATION t = gridded(2, temperature), s = gridded(3, salinity);
    if (t.status != 0 || s.status != 0) return {};
    const int first = std::max({0, t.firstInside - 1, s.firstInside - 1});
    const int last = std::min({stretchedPoints - 1, t.lastInside + 1, s.lastInside + 1});
    const seawater::RPressureAtLatitude here(calculation.station.header.latitude);
    std::vector<WATER> levels;
    for (int i = first; i <= last; ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (isMissing(temperature[k]) || isMissing(salinity[k])) continue;
        levels.push_back({static_cast<float>(here.pressure(grid[k])), temperature[k], salinity[k]});
    }
    return levels;
}

PROFILE frequencies(const std::vector<WATER>& levels, double gravity)
{
    PROFILE result;
    result.reserve(levels.size());
    for (std::size_t i = 0; i + 1 < levels.size(); ++i) {
        const double p1 = levels[i].pressure, p2 = levels[i + 1].pressure;
        if (p1 != p2)
            result.add((p1 + p2) / 2, seawater::buoyancyFrequency(levels[i], levels[i + 1], gravity));
    }
    return result;
}

int bruntVaisala(const CALCULATION& calculation)
{
    if (!isCovered(calculation, 2) || !isCovered(calculation, 3)) return absent;
    const collection::STATIONHDR& header = calculation.station.header;
    const bool isBottle = common::fieldText(header.type) == "B";
    const std::vector<WATER> levels = isBottle ? gridLevels(calculation) : ownLevels(calculation);
    // The frequencies stand against pressure and are taken at the same numbers of metres.
    mapOnto(frequencies(levels, seawater::gravity(header.latitude)), calculation.source(1),
            calculation.values);
    return finish(calculation);
}

} // namespace

std::span<const CALCULATORROW> profileCalculators()
{
    static constexpr CALCULATORROW rows[] = {{idDynamicHeight, dynamicHeight},
                                             {idBruntVaisala, bruntVaisala},
                                             {idVerticalDerivative, verticalDerivative},
                                             {idVerticalIntegral, verticalIntegral},
                                             {idSecondDerivative, secondDerivative}};
    return rows;
}

} // namespace variables
