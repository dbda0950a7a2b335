#pragma once

// The stage of a load that computes the derived variables.

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "collection/rcollection.h"
#include "variables/coverage.h"
#include "variables/formula.h"
#include "variables/histories.h"
#include "variables/seawater/neutral.h"

namespace variables {

// What calculators take from the program beside the station.
struct SURROUNDINGS {
    ATMHISTORIES histories;
    std::shared_ptr<const seawater::GAMMAATLAS> atlas; // null: not loaded
    COVERAGECRITERIA coverage;
    double mapWest = 0, mapEast = 360; // limits of the map, degrees east; west may be negative
};

// What a calculator works on: one derived variable of one loaded station.
struct CALCULATION {
    const collection::STATIONDATA& station;
    const collection::VARINFO& variable; // the one that is computed
    int number = 0;                      // its number
    const SURROUNDINGS& with;
    const RFormula* formula = nullptr; // that of an expression or a macro
    std::span<float> values; // the block to be filled, one cell a level; holds nothing of use before
    std::span<std::uint8_t> flags;

    [[nodiscard]] const collection::RCollection& collection() const { return *station.collection; }
    [[nodiscard]] std::size_t levels() const { return values.size(); }
    // The values of source `n` (from 1) and their flags, one a level; empty if the variable has no data in
    // the station, or if there is no such source.
    [[nodiscard]] std::span<const float> source(int n) const;
    [[nodiscard]] std::span<const std::uint8_t> sourceFlags(int n) const;
    // Its count of values in the station; 0 if there is no such source.
    [[nodiscard]] int sourceCount(int n) const;
};

// Fills values and flags. Returns how many count as present, or `absent`: the variable has no data in this
// station. Calculators keep nothing between calls and work on any number of threads.
inline constexpr int absent = -1;
using Calculator = int (*)(const CALCULATION& calculation);

struct CALCULATORROW {
    std::int32_t id;
    Calculator calculate;
};

// The larger of the flags of depth, temperature and salinity (sources 1 to 3) at a level.
[[nodiscard]] std::uint8_t maxFlagOf(const CALCULATION& calculation, std::size_t level);

// Windows of values that are computed with; the missing value lies outside of all of them.
[[nodiscard]] constexpr bool isDepth(float depth)
{
    return depth >= 0 && depth <= 15000;
} // m
[[nodiscard]] constexpr bool isTemperature(float t)
{
    return t >= -5 && t <= 100;
} // degC
[[nodiscard]] constexpr bool isSalinity(float s)
{
    return s >= 0 && s <= 100;
} // practical
[[nodiscard]] constexpr bool isOxygen(float oxygen)
{
    return oxygen >= 0 && oxygen <= 1000;
} // umol/kg
[[nodiscard]] constexpr bool isTracer(float tracer)
{
    return tracer >= -0.1f && tracer <= 100;
} // pmol/kg, nmol/kg
[[nodiscard]] constexpr bool isCarbon(float carbon)
{
    return carbon >= 0 && carbon < 6000;
} // umol/kg
// A result as a cell holds it: what isn't finite is missing.
[[nodiscard]] float cellOf(double result);

// Computes the needed derived variables of loaded stations, one station at a time; threads have one each.
class RDerivation {
public:
    explicit RDerivation(const SURROUNDINGS& with) : with_(with) {}
    // In ascending order, after `neededMask`; every variable beyond the collection's own is settled.
    void computeDerived(collection::STATIONDATA& station);
    // Calls of calculators since the beginning.
    [[nodiscard]] std::int64_t calculations() const { return calculations_; }

private:
    [[nodiscard]] const RFormula* formulaOf(const collection::RCollection& collection,
                                            const collection::VARINFO& variable);
    void computeOne(collection::STATIONDATA& station, int number);

    const SURROUNDINGS& with_;
    std::array<RFormula, common::maxFormulas> formulas_; // as compiled from the collection's
    std::int64_t calculations_ = 0;
};

} // namespace variables
