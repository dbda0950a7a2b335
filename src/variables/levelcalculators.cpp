#include <cmath>

#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/seawater/properties.h"
#include "variables/seawater/state.h"
#include "variables/sourceflags.h"
#include "variables/waterlevels.h"

namespace variables {
namespace {

using common::MISSING_VALUE;

// Each cell gets the flag of the collection's first variable.
void setPrimaryFlags(const CALCULATION& calculation)
{
    for (std::size_t k = 0; k < calculation.levels(); ++k)
        calculation.flags[k] =
            static_cast<std::uint8_t>(collection::flagAt(calculation.station, 1, static_cast<int>(k)));
}

// Fills the cells where `isUsable` with `resultAt`, the others with the missing value. Counts the results.
template <typename IsUsable, typename ResultAt>
int fillCells(const CALCULATION& calculation, IsUsable isUsable, ResultAt resultAt)
{
    int count = 0;
    for (std::size_t k = 0; k < calculation.levels(); ++k) {
        const float cell = isUsable(k) ? cellOf(resultAt(k)) : MISSING_VALUE;
        calculation.values[k] = cell;
        count += cell != MISSING_VALUE;
    }
    return count;
}

// The same for what follows from depth, temperature and salinity alone: resultAt(water, level).
template <typename ResultAt>
int fillFromWater(const CALCULATION& calculation, ResultAt resultAt)
{
    const RWaterLevels water(calculation);
    if (!water.areThere()) return absent;
    setSourceFlags(calculation);
    return fillCells(
        calculation, [&](std::size_t k) { return water.areUsable(k); },
        [&](std::size_t k) { return resultAt(water, k); });
}

// --- depth and pressure

int pressureOfDepth(const CALCULATION& calculation)
{
    const std::span<const float> depths = calculation.source(1);
    if (depths.empty()) return absent;
    setPrimaryFlags(calculation);
    const seawater::RPressureAtLatitude pressures(calculation.station.header.latitude);
    return fillCells(
        calculation, [&](std::size_t k) { return isDepth(depths[k]); },
        [&](std::size_t k) { return pressures.pressure(depths[k]); });
}

// Pressures have the window of depths.
int depthOfPressure(const CALCULATION& calculation)
{
    const std::span<const float> pressures = calculation.source(1);
    if (pressures.empty()) return absent;
    setPrimaryFlags(calculation);
    const seawater::RDepthAtLatitude depths(calculation.station.header.latitude);
    return fillCells(
        calculation, [&](std::size_t k) { return isDepth(pressures[k]); },
        [&](std::size_t k) { return depths.depth(pressures[k]); });
}

// --- from depth, temperature and salinity

int potentialTemperature(const CALCULATION& calculation)
{
    const float reference = calculation.variable.param;
    return fillFromWater(calculation, [reference](const RWaterLevels& water, std::size_t k) {
        return water.potentialTemperature(k, reference);
    });
}

int potentialDensity(const CALCULATION& calculation)
{
    const float reference = calculation.variable.param;
    return fillFromWater(calculation, [reference](const RWaterLevels& water, std::size_t k) {
        return seawater::sigmaFromVolume(reference, water.potentialTemperature(k, reference),
                                         water.salinity(k));
    });
}

int soundSpeed(const CALCULATION& calculation)
{
    return fillFromWater(calculation, [](const RWaterLevels& water, std::size_t k) {
        return seawater::soundSpeed(water.pressure(k), water.temperature(k), water.salinity(k));
    });
}

int specificHeat(const CALCULATION& calculation)
{
    return fillFromWater(calculation, [](const RWaterLevels& water, std::size_t k) {
        return seawater::specificHeat(water.pressure(k), water.temperature(k), water.salinity(k));
    });
}

// The pressure that source 2 is potential to: 0 for a stored variable, which doesn't say.
float referenceOfSource(const CALCULATION& calculation)
{
    const collection::RCollection& collection = calculation.collection();
    const int number = calculation.variable.sources[1];
    return number > collection.variableCount ? collection.variables[static_cast<std::size_t>(number)].param
                                             : 0;
}

int inSituTemperature(const CALCULATION& calculation)
{
    if (calculation.source(2).empty()) return absent;
    const float reference = referenceOfSource(calculation);
    return fillFromWater(calculation, [reference](const RWaterLevels& water, std::size_t k) {
        return seawater::potentialTemperature(reference, water.temperature(k), water.salinity(k),
                                              water.pressure(k));
    });
}

// From depth and salinity; there is no source 2.
int freezingTemperature(const CALCULATION& calculation)
{
    const std::span<const float> depths = calculation.source(1), salinities = calculation.source(3);
    if (depths.empty() || salinities.empty()) return absent;
    setSourceFlags(calculation);
    const seawater::RPressureAtLatitude pressures(calculation.station.header.latitude);
    return fillCells(
        calculation, [&](std::size_t k) { return isDepth(depths[k]) && isSalinity(salinities[k]); },
        [&](std::size_t k) {
            return seawater::freezingPoint(static_cast<float>(pressures.pressure(depths[k])), salinities[k]);
        });
}

// --- with other variables

bool haveValues(const CALCULATION& calculation, int sources)
{
    for (int n = 1; n <= sources; ++n) {
        if (calculation.sourceCount(n) <= 0) return false;
    }
    return true;
}

int oxygenSaturation(const CALCULATION& calculation)
{
    if (!haveValues(calculation, 4)) return absent;
    setSourceFlags(calculation);
    const RWaterLevels water(calculation);
    const std::span<const float> oxygen = calculation.source(4);
    return fillCells(
        calculation, [&](std::size_t k) { return water.areUsable(k) && isOxygen(oxygen[k]); },
        [&](std::size_t k) {
            return 100.0 * oxygen[k] /
                   seawater::oxygenSolubility(water.potentialTemperature(k, 0), water.salinity(k));
        });
}

int ratio(const CALCULATION& calculation)
{
    if (!haveValues(calculation, 2)) return absent;
    setSourceFlags(calculation);
    const std::span<const float> numerators = calculation.source(1), denominators = calculation.source(2);
    const float param = calculation.variable.param, limit = param > 0 ? param : 0;
    return fillCells(
        calculation,
        [&](std::size_t k) {
            return numerators[k] != MISSING_VALUE && denominators[k] != MISSING_VALUE &&
                   std::abs(denominators[k]) > limit;
        },
        [&](std::size_t k) { return static_cast<double>(numerators[k]) / denominators[k]; });
}

} // namespace

std::span<const CALCULATORROW> levelCalculators()
{
    static constexpr CALCULATORROW rows[] = {{idPressure, pressureOfDepth},
                                             {idDepth, depthOfPressure},
                                             {idPotentialTemperature, potentialTemperature},
                                             {idPotentialDensity, potentialDensity},
                                             {idSoundSpeed, soundSpeed},
                                             {idSpecificHeat, specificHeat},
                                             {idInSituTemperature, inSituTemperature},
                                             {idFreezingTemperature, freezingTemperature},
                                             {idOxygenSaturation, oxygenSaturation},
                                             {idRatio, ratio}};
    return rows;
}

} // namespace variables
