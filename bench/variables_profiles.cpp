// Dynamic height and stability of casts of 2,000 levels, the share that the interpolation has in them, and
// how the interpolation grows with points and targets. CPU time; the smallest of the repetitions counts.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "collection/rcollection.h"
#include "common/text.h"
#include "variables/derivation.h"
#include "variables/registry.h"
#include "variables/seawater/profile.h"

namespace {

using FLOATS = std::vector<float>;
constexpr int castLevels = 2000;

// A cast of a level every 2 m with one derived variable, number 4.
struct CAST {
    CAST(std::int32_t id, const char* type)
    {
        station.collection = &collection;
        collection.variableCount = 3;
        collection.totalVariableCount = 4;
        collection.neededMask.fill(1);
        collection::VARINFO& variable = collection.variables[4];
        variable = collection::emptyVariable(4);
        variable.id = id;
        variable.nSources = 3;
        std::iota(variable.sources, variable.sources + 3, 1);
        station.header.latitude = 35;
        common::copyText(station.header.type, type);
        fill();
    }
    void fill()
    {
        for (int v = 1; v <= 3; ++v) {
            station.levelCount[static_cast<std::size_t>(v)] = castLevels;
            station.offset[static_cast<std::size_t>(v)] = (v - 1) * castLevels;
        }
        for (int k = 0; k < castLevels; ++k) {
            const float depth = 2.0f * static_cast<float>(k);
            station.values[static_cast<std::size_t>(k)] = depth;
            station.values[static_cast<std::size_t>(castLevels + k)] = 2 + 18 * std::exp(-depth / 600);
            station.values[static_cast<std::size_t>(2 * castLevels + k)] =
                34.7f + 0.6f * std::exp(-depth / 400);
        }
    }
    [[nodiscard]] std::span<const float> column(int v) const
    {
        return {station.values.get() + (v - 1) * castLevels, static_cast<std::size_t>(castLevels)};
    }
    // Whether the variable has as many values as there are levels.
    bool compute()
    {
        station.header.valueCount = 3 * castLevels;
        derivation.computeDerived(station);
        return station.levelCount[4] == castLevels;
    }

    collection::RCollection collection;
    collection::STATIONDATA station;
    variables::SURROUNDINGS with;
    variables::RDerivation derivation{with};
};

double minimum(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

double cpuSeconds()
{
    std::timespec now{};
    (void)clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <typename Work>
double shortest(Work work)
{
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < 50; ++i) {
        const double start = cpuSeconds();
        work();
        best = std::min(best, cpuSeconds() - start);
    }
    return best;
}

void interpolate(std::span<const float> x, std::span<const float> y, std::span<const float> t, FLOATS& out)
{
    out.resize(t.size());
    benchmark::DoNotOptimize(seawater::interpolateProfile(x, y, common::MISSING_VALUE, t, out, nullptr));
    benchmark::ClobberMemory();
}

// Times the variable, and beside it what it interpolates.
template <typename Interpolations>
void timeCasts(benchmark::State& state, std::int32_t id, const char* type, Interpolations interpolations)
{
    CAST cast(id, type);
    if (!cast.compute()) return state.SkipWithError("the cast has not all values");
    for (auto _ : state) benchmark::DoNotOptimize(cast.compute());
    state.SetItemsProcessed(state.iterations());
    const double whole = shortest([&] { (void)cast.compute(); });
    state.counters["interpolation_percent"] = 100 * shortest([&] { interpolations(cast); }) / whole;
}

void dynamicHeight(benchmark::State& state)
{
    FLOATS out;
    timeCasts(state, variables::idDynamicHeight, "C", [&](const CAST& cast) {
        const float reference = 0;
        interpolate(cast.column(1), cast.column(2), cast.column(1), out);
        interpolate(cast.column(1), cast.column(2), {&reference, 1}, out);
    });
}

void stabilityOfCtd(benchmark::State& state)
{
    FLOATS out;
    timeCasts(state, variables::idBruntVaisala, "C", [&](const CAST& cast) {
        interpolate(cast.column(1).first(castLevels - 1), cast.column(2).first(castLevels - 1),
                    cast.column(1), out);
    });
}

void stabilityOfBottles(benchmark::State& state)
{
    std::array<float, seawater::stretchedPoints> grid{};
    seawater::stretchedGrid(grid, 0, 2.0f * castLevels, seawater::stretchFactor);
    FLOATS out;
    timeCasts(state, variables::idBruntVaisala, "B", [&](const CAST& cast) {
        interpolate(cast.column(1), cast.column(2), grid, out);
        interpolate(cast.column(1), cast.column(3), grid, out);
        interpolate(grid, grid, cast.column(1), out);
    });
}

FLOATS evenly(std::size_t n, float to)
{
    FLOATS values(n);
    for (std::size_t i = 0; i < n; ++i) values[i] = to * static_cast<float>(i) / static_cast<float>(n - 1);
    return values;
}

// n points on m targets in ascending (or any) order.
void timeTargets(benchmark::State& state, FLOATS targets)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const FLOATS x = evenly(n, 5000);
    FLOATS y(n), out;
    for (std::size_t i = 0; i < n; ++i) y[i] = std::exp(-x[i] / 800);
    for (auto _ : state) interpolate(x, y, targets, out);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n + targets.size()));
    state.SetComplexityN(state.range(0));
}

void manyTargets(benchmark::State& state)
{
    timeTargets(state, evenly(static_cast<std::size_t>(state.range(0)), 5100));
}

void manyTargetsInAnyOrder(benchmark::State& state)
{
    FLOATS targets = evenly(static_cast<std::size_t>(state.range(0)), 5100);
    std::shuffle(targets.begin(), targets.end(), std::mt19937(1)); // windows of a third of the points
    timeTargets(state, targets);
}

void fewTargets(benchmark::State& state)
{
    timeTargets(state, evenly(seawater::stretchedPoints, 5100));
}

benchmark::internal::Benchmark* withMinimum(benchmark::internal::Benchmark* bench)
{
    return bench->Repetitions(5)->ReportAggregatesOnly()->ComputeStatistics("min", minimum);
}

void withSizes(benchmark::internal::Benchmark* bench)
{
    withMinimum(bench)->RangeMultiplier(10)->Range(100, 100000)->Complexity()->Unit(benchmark::kMicrosecond);
}

void withCasts(benchmark::internal::Benchmark* bench)
{
    withMinimum(bench)->Unit(benchmark::kMicrosecond);
}

} // namespace

BENCHMARK(dynamicHeight)->Apply(withCasts);
BENCHMARK(stabilityOfCtd)->Apply(withCasts);
BENCHMARK(stabilityOfBottles)->Apply(withCasts);
BENCHMARK(manyTargets)->Apply(withSizes);
BENCHMARK(manyTargetsInAnyOrder)->Apply(withSizes);
BENCHMARK(fewTargets)->Apply(withSizes);
