// Derived variables of single levels: stations computed as a load does it, and how the time grows with the
// number of levels.

#include <benchmark/benchmark.h>

#include <initializer_list>
#include <vector>

#include "collection/rcollection.h"
#include "variables/derivation.h"
#include "variables/registry.h"

namespace {

using namespace variables;

// A station in memory: depth, temperature, salinity, oxygen, total carbon, alkalinity.
struct CAST {
    collection::RCollection collection;
    collection::STATIONDATA station;
    SURROUNDINGS with;
};

void fillCast(CAST& cast, int levels)
{
    constexpr int columns = 6;
    cast.station.clear();
    cast.station.collection = &cast.collection;
    cast.station.header.latitude = 45.6f;
    cast.collection.variableCount = cast.collection.totalVariableCount = columns;
    const auto length = static_cast<std::size_t>(levels);
    for (std::size_t v = 1; v <= columns; ++v) {
        cast.station.offset[v] = static_cast<std::int32_t>((v - 1) * length);
        cast.station.levelCount[v] = static_cast<std::int16_t>(levels);
    }
    for (std::size_t k = 0; k < length; ++k) {
        const float part = static_cast<float>(k) / static_cast<float>(levels);
        const float values[columns] = {5500 * part,     25 - 23 * part,    36 - 1.3f * part,
                                       200 + 50 * part, 2000 + 250 * part, 2300 + 100 * part};
        for (std::size_t v = 0; v < columns; ++v) cast.station.values[v * length + k] = values[v];
    }
    cast.station.header.valueCount = columns * levels;
    cast.collection.neededMask.fill(1);
}

void addVariable(CAST& cast, int id, std::initializer_list<int> sources)
{
    const int number = ++cast.collection.totalVariableCount;
    collection::VARINFO variable = collection::emptyVariable(number);
    variable.id = id;
    variable.nSources = static_cast<std::int32_t>(sources.size());
    std::copy(sources.begin(), sources.end(), variable.sources);
    cast.collection.variables[static_cast<std::size_t>(number)] = variable;
}

// Computes one derived variable of one station over and over; items are levels.
void run(benchmark::State& state, int id, std::initializer_list<int> sources)
{
    const int levels = static_cast<int>(state.range(0));
    CAST cast;
    fillCast(cast, levels);
    addVariable(cast, id, sources);
    const std::int32_t used = cast.station.header.valueCount;
    RDerivation derivation(cast.with);
    for (auto _ : state) {
        cast.station.header.valueCount = used;
        derivation.computeDerived(cast.station);
        benchmark::ClobberMemory();
    }
    if (cast.station.levelCount[7] != levels) state.SkipWithError("wrong count");
    state.SetItemsProcessed(state.iterations() * levels);
    state.SetComplexityN(levels);
}

#define LEVELS ->Arg(20)->Arg(200)->Arg(2000)->Complexity(benchmark::oN)

void BM_levelsOfPressure(benchmark::State& state)
{
    run(state, idPressure, {1});
}
BENCHMARK(BM_levelsOfPressure) LEVELS;

void BM_levelsOfPotentialTemperature(benchmark::State& state)
{
    run(state, idPotentialTemperature, {1, 2, 3});
}
BENCHMARK(BM_levelsOfPotentialTemperature) LEVELS;

void BM_levelsOfPotentialDensity(benchmark::State& state)
{
    run(state, idPotentialDensity, {1, 2, 3});
}
BENCHMARK(BM_levelsOfPotentialDensity) LEVELS;

void BM_levelsOfSoundSpeed(benchmark::State& state)
{
    run(state, idSoundSpeed, {1, 2, 3});
}
BENCHMARK(BM_levelsOfSoundSpeed) LEVELS;

void BM_levelsOfSpecificHeat(benchmark::State& state)
{
    run(state, idSpecificHeat, {1, 2, 3});
}
BENCHMARK(BM_levelsOfSpecificHeat) LEVELS;

void BM_levelsOfOxygenSaturation(benchmark::State& state)
{
    run(state, idOxygenSaturation, {1, 2, 3, 4});
}
BENCHMARK(BM_levelsOfOxygenSaturation) LEVELS;

void BM_levelsOfRatio(benchmark::State& state)
{
    run(state, idRatio, {4, 3});
}
BENCHMARK(BM_levelsOfRatio) LEVELS;

void BM_levelsOfPH(benchmark::State& state)
{
    run(state, idPH, {1, 2, 3, 5, 6});
}
BENCHMARK(BM_levelsOfPH) LEVELS;

} // namespace
