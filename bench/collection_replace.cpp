// Storing stations: over old ones in their places, as grown ones that move to the end, each as a change of
// its own, and behind the last one. Items are stations. The first argument is the stations of the collection.

#include <benchmark/benchmark.h>

#include "collectiondata.h"

namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::WriteResult;

constexpr int levels = 20, variables = 8;

struct STOREDATA {
    bench_support::RBenchDirectory directory;
    RCollection collection;
    STATIONDATA station;
};

bool append(STOREDATA& data, int count)
{
    for (int n = 1; n <= count; ++n) {
        bench_support::fillStation(data.station, n, levels, variables);
        if (data.collection.writeStation(0, data.station, false) != WriteResult::ok) return false;
    }
    return true;
}

bool store(STOREDATA& data, int stations)
{
    return bench_support::createCollection(data.collection, data.directory.path(), variables) &&
           data.collection.beginChange("STORE") && append(data, stations) && data.collection.commitChange();
}

// Every `step`-th station gets other levels; `grown` ones go to the end, so that the numbers shift.
bool replace(STOREDATA& data, int stations, int step, int newLevels)
{
    const bool grown = newLevels > levels;
    for (int n = 1, i = 0; n <= stations; n += step, ++i) {
        bench_support::fillStation(data.station, n, newLevels, variables);
        if (data.collection.writeStation(grown ? n - i : n, data.station, false) != WriteResult::ok)
            return false;
    }
    return true;
}

void report(benchmark::State& state, std::int64_t stations)
{
    state.SetItemsProcessed(state.iterations() * stations);
    state.counters["peak_MB"] = bench_support::peakMemory();
}

void BM_appendInAChange(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    STOREDATA data;
    for (auto _ : state) {
        if (!store(data, stations)) state.SkipWithError("not stored");
    }
    report(state, stations);
}
BENCHMARK(BM_appendInAChange)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_appendAlone(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    STOREDATA data;
    for (auto _ : state) {
        if (!bench_support::createCollection(data.collection, data.directory.path(), variables) ||
            !append(data, stations) || !data.collection.flushStationFiles())
            state.SkipWithError("not stored");
    }
    report(state, stations);
}
BENCHMARK(BM_appendAlone)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

// All stations are replaced, with as many levels or more.
void replaceInAChange(benchmark::State& state, int newLevels)
{
    const auto stations = static_cast<int>(state.range(0)), step = static_cast<int>(state.range(1));
    STOREDATA data;
    for (auto _ : state) {
        state.PauseTiming();
        if (!store(data, stations)) state.SkipWithError("not stored");
        state.ResumeTiming();
        if (!data.collection.beginChange("REPLACE") || !replace(data, stations, step, newLevels) ||
            !data.collection.commitChange())
            state.SkipWithError("not replaced");
    }
    if (data.collection.stationCount != stations) state.SkipWithError("wrong answer");
    report(state, (stations + step - 1) / step);
}

void BM_overwriteInAChange(benchmark::State& state)
{
    replaceInAChange(state, levels);
}
BENCHMARK(BM_overwriteInAChange)
    ->Args({1000, 1})
    ->Args({10000, 1})
    ->Args({100000, 1})
    ->Args({100000, 100})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_growInAChange(benchmark::State& state)
{
    replaceInAChange(state, levels + 5);
}
BENCHMARK(BM_growInAChange)
    ->Args({1000, 1})
    ->Args({10000, 1})
    ->Args({100000, 1})
    ->Args({100000, 100})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// A station a change, as an editor of single stations does it.
void replaceAlone(benchmark::State& state, int newLevels)
{
    const auto stations = static_cast<int>(state.range(0));
    STOREDATA data;
    if (!store(data, stations)) state.SkipWithError("not stored");
    int number = 0;
    for (auto _ : state) {
        number = number % (stations / 2) + 1;
        bench_support::fillStation(data.station, number, newLevels, variables);
        if (data.collection.writeStation(number, data.station, false) != WriteResult::ok)
            state.SkipWithError("not replaced");
        if (newLevels > levels) ++newLevels;
    }
    report(state, 1);
}

void BM_overwriteAlone(benchmark::State& state)
{
    replaceAlone(state, levels);
}
BENCHMARK(BM_overwriteAlone)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_growAlone(benchmark::State& state)
{
    replaceAlone(state, levels + 1);
}
BENCHMARK(BM_growAlone)->Arg(1000)->Arg(100000)->Iterations(50)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
