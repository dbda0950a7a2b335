// The functions of seawater sample by sample, and the calculators that use them station by station. Times are
// CPU times; run with --benchmark_repetitions and take the smallest on a busy machine.

#include <benchmark/benchmark.h>

#include <vector>

#include "variables/seawater/adiabat.h"
#include "variables/seawater/carbonate.h"
#include "variables/seawater/pressure.h"
#include "variables/seawater/properties.h"
#include "variables/seawater/solubility.h"
#include "variables/seawater/state.h"

namespace {

using namespace seawater;

constexpr int samples = 4096; // stay in the cache

struct WATER {
    std::vector<float> pressure, temperature, salinity, result;
};

// Casts of 64 levels each, from warm and salty to cold.
const WATER& water()
{
    static const WATER made = [] {
        WATER w;
        for (int i = 0; i < samples; ++i) {
            const float part = static_cast<float>(i % 64) / 64;
            w.pressure.push_back(5500 * part);
            w.temperature.push_back(25 - 23 * part + 0.001f * static_cast<float>(i / 64));
            w.salinity.push_back(36 - 1.3f * part);
        }
        return w;
    }();
    return made;
}

// property(p, t, s) of each sample.
template <typename Property>
void run(benchmark::State& state, Property property)
{
    const WATER& w = water();
    std::vector<float> result(samples);
    for (auto _ : state) {
        for (std::size_t i = 0; i < samples; ++i)
            result[i] = static_cast<float>(property(w.pressure[i], w.temperature[i], w.salinity[i]));
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * samples);
}

void BM_potentialTemperature(benchmark::State& state)
{
    run(state, [](float p, float t, float s) { return potentialTemperature(p, t, s, 0); });
}
BENCHMARK(BM_potentialTemperature);

// Goal: 8 million samples a second.
void BM_potentialTemperatureAndDensity(benchmark::State& state)
{
    float theta = 0;
    run(state, [&](float p, float t, float s) {
        benchmark::DoNotOptimize(theta = static_cast<float>(potentialTemperature(p, t, s, 0)));
        return sigmaFromVolume(0, theta, s);
    });
}
BENCHMARK(BM_potentialTemperatureAndDensity);

// The same at depth, where the term of pressure counts.
void BM_potentialTemperatureAndDensityAt4000(benchmark::State& state)
{
    float theta = 0;
    run(state, [&](float p, float t, float s) {
        benchmark::DoNotOptimize(theta = static_cast<float>(potentialTemperature(p, t, s, 4000)));
        return sigmaFromVolume(4000, theta, s);
    });
}
BENCHMARK(BM_potentialTemperatureAndDensityAt4000);

void BM_specificVolume(benchmark::State& state)
{
    run(state, specificVolume);
}
BENCHMARK(BM_specificVolume);

// Goal: 40 million samples a second.
void BM_soundSpeed(benchmark::State& state)
{
    run(state, soundSpeed);
}
BENCHMARK(BM_soundSpeed);

void BM_specificHeat(benchmark::State& state)
{
    run(state, specificHeat);
}
BENCHMARK(BM_specificHeat);

void BM_freezingPoint(benchmark::State& state)
{
    run(state, [](float p, float, float s) { return freezingPoint(p, s); });
}
BENCHMARK(BM_freezingPoint);

void BM_oxygenSolubility(benchmark::State& state)
{
    run(state, [](float, float t, float s) { return oxygenSolubility(t, s); });
}
BENCHMARK(BM_oxygenSolubility);

void BM_solubility(benchmark::State& state)
{
    run(state, [](float, float t, float s) { return solubility(t, s, 250, gasCfc11); });
}
BENCHMARK(BM_solubility);

void BM_carbonateSystem(benchmark::State& state)
{
    run(state, [](float p, float t, float s) {
        return carbonateSystem(t, s, 2000 + 0.05f * p, 2300 + 0.02f * p, -1.0e10).pH;
    });
}
BENCHMARK(BM_carbonateSystem);

void BM_pressureFromDepth(benchmark::State& state)
{
    run(state, [](float p, float t, float) { return pressureFromDepth(p, t); });
}
BENCHMARK(BM_pressureFromDepth);

void BM_pressureAtOneLatitude(benchmark::State& state)
{
    const RPressureAtLatitude pressures(45.6f);
    run(state, [&](float p, float, float) { return pressures.pressure(p); });
}
BENCHMARK(BM_pressureAtOneLatitude);

} // namespace
