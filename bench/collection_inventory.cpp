// The inventory of a large collection: built from the header table, and read from its file.

#include <benchmark/benchmark.h>

#include "collectiondata.h"

namespace {

struct INVENTORYDATA {
    bench_support::RBenchDirectory directory;
    collection::RCollection collection;
};

INVENTORYDATA& dataOf(int stations, int cruises)
{
    static INVENTORYDATA data;
    if (data.collection.stationCount != stations &&
        !bench_support::createHeaders(data.collection, data.directory.path(), stations, cruises)) {
        data.collection.reset();
    }
    return data;
}

bool isRight(const collection::RCollection& collection, int stations, int cruises)
{
    int total = 0;
    for (const auto& entry : collection.cruises) total += entry.stationCount;
    return collection.cruiseCount == cruises && total == stations;
}

void BM_buildInventory(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    const int cruises = stations / 200;
    INVENTORYDATA& data = dataOf(stations, cruises);
    common::RHeadlessUser user;
    for (auto _ : state) data.collection.readInventory(true, user);
    if (!isRight(data.collection, stations, cruises)) state.SkipWithError("wrong answer");
    state.SetItemsProcessed(state.iterations() * stations);
    state.counters["peak MB"] = bench_support::peakMemory();
}
BENCHMARK(BM_buildInventory)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_readInventory(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    const int cruises = stations / 200;
    INVENTORYDATA& data = dataOf(stations, cruises);
    common::RHeadlessUser user;
    data.collection.readInventory(true, user);
    for (auto _ : state) data.collection.readInventory(false, user);
    if (!isRight(data.collection, stations, cruises)) state.SkipWithError("wrong answer");
    state.SetItemsProcessed(state.iterations() * stations);
}
BENCHMARK(BM_readInventory)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace
