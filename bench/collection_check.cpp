// The check of a large collection. The first argument is the number of stations, the second that of levels;
// a station has 8 variables.

#include <benchmark/benchmark.h>

#include "collection/check.h"
#include "collectiondata.h"

namespace {

struct CHECKDATA {
    bench_support::RBenchDirectory directory;
    collection::RCollection collection;
    int levels = 0;
};

constexpr int variables = 8;

bool fill(collection::RCollection& collection, int stations, int levels)
{
    collection::STATIONDATA station;
    for (int n = 1; n <= stations; ++n) {
        bench_support::fillStation(station, n, levels, variables);
        if (collection.writeStation(0, station, false) != collection::WriteResult::ok) return false;
    }
    return collection.flushStationFiles() && collection.writeVarFile(collection.path);
}

CHECKDATA& dataOf(int stations, int levels)
{
    static CHECKDATA data;
    if (data.collection.stationCount == stations && data.levels == levels) return data;
    common::RHeadlessUser user;
    data.levels = levels;
    if (bench_support::createCollection(data.collection, data.directory.path(), variables) &&
        fill(data.collection, stations, levels)) {
        data.collection.readInventory(true, user);
    } else {
        data.collection.reset();
    }
    return data;
}

void BM_checkCollection(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0)), levels = static_cast<int>(state.range(1));
    CHECKDATA& data = dataOf(stations, levels);
    common::RHeadlessUser user;
    collection::CHECKRESULT result;
    for (auto _ : state) result = collection::checkCollection(data.collection.path, user);
    if (result.stationCount != stations || !result.findings.empty()) state.SkipWithError("wrong answer");
    state.SetItemsProcessed(state.iterations() * stations);
    state.SetBytesProcessed(state.iterations() * result.dataBytes);
    state.counters["peak MB"] = bench_support::peakMemory();
}
BENCHMARK(BM_checkCollection)
    ->Args({100000, 20})
    ->Args({1000000, 4})
    ->Args({1000000, 40})
    ->Unit(benchmark::kMillisecond);

} // namespace
