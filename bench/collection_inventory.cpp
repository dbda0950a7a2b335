// The inventory of a large collection: built from the header table, and read from its file.

#include <benchmark/benchmark.h>

#include "collectiondata.h"

namespace {

struct INVENTORYDATA {
    bench_support::RBenchDirectory directory;
    collection::RCollection collection;
};

INVENTORYDATA& dataOf(int stations, int cruises, bool inTurns)
{
    static INVENTORYDATA data;
    static bool areInTurns = false;
    const bool isMade = data.collection.stationCount == stations && areInTurns == inTurns;
    areInTurns = inTurns;
    if (!isMade &&
        !bench_support::createHeaders(data.collection, data.directory.path(), stations, cruises, inTurns)) {
        data.collection.reset();
    }
    return data;
}

bool isRight(const std::vector<collection::CRUISEINFO>& entries, int stations, int cruises)
{
    int total = 0;
    for (const auto& entry : entries) total += entry.stationCount;
    return static_cast<int>(entries.size()) == cruises && total == stations;
}

// range(1): 1 if the cruises take turns.
void BM_buildInventory(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    const int cruises = stations / 200;
    INVENTORYDATA& data = dataOf(stations, cruises, state.range(1) == 1);
    common::RHeadlessUser user;
    for (auto _ : state) data.collection.readInventory(true, user);
    if (!isRight(data.collection.cruises, stations, cruises)) state.SkipWithError("wrong answer");
    state.SetItemsProcessed(state.iterations() * stations);
    state.counters["peak MB"] = bench_support::peakMemory();
}
BENCHMARK(BM_buildInventory)
    ->ArgsProduct({{100000, 1000000}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_readInventory(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    const int cruises = stations / 200;
    INVENTORYDATA& data = dataOf(stations, cruises, true);
    common::RHeadlessUser user;
    data.collection.readInventory(true, user);
    for (auto _ : state) data.collection.readInventory(false, user);
    if (!isRight(data.collection.cruises, stations, cruises)) state.SkipWithError("wrong answer");
    state.SetItemsProcessed(state.iterations() * stations);
}
BENCHMARK(BM_readInventory)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();

// The indices of the cruises, from the file and (range(1): 1) from the headers.
void BM_cruiseIndices(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    INVENTORYDATA& data = dataOf(stations, stations / 200, true);
    common::RHeadlessUser user;
    data.collection.readInventory(true, user);
    std::vector<std::int32_t> indices;
    for (auto _ : state) indices = data.collection.readCruiseIndices(state.range(1) == 1);
    const auto at = static_cast<std::size_t>(stations / 3);
    const std::string cruise = common::format("CRUISE%05d", static_cast<int>(at + 1) % (stations / 200));
    if (indices.size() != static_cast<std::size_t>(stations) ||
        cruise != data.collection.cruises.at(static_cast<std::size_t>(indices[at])).cruise) {
        state.SkipWithError("wrong answer");
    }
    state.SetItemsProcessed(state.iterations() * stations);
}
BENCHMARK(BM_cruiseIndices)->ArgsProduct({{1000000}, {0, 1}})->Unit(benchmark::kMillisecond)->UseRealTime();

// The table of a selection: every second station.
void BM_selectedInventory(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    INVENTORYDATA& data = dataOf(stations, stations / 200, true);
    common::RHeadlessUser user;
    std::rewind(data.collection.valFile.get());
    for (std::int32_t n = 1; n <= stations; n += 2) {
        const std::int32_t record[4] = {n, 0, 0, 0};
        std::fwrite(record, sizeof record, 1, data.collection.valFile.get());
    }
    data.collection.selectedStationCount = stations / 2;
    for (auto _ : state) data.collection.makeInventoryTables(false, user);
    if (!isRight(data.collection.selectedCruises, stations / 2, stations / 400))
        state.SkipWithError("wrong answer");
    state.SetItemsProcessed(state.iterations() * stations / 2);
}
BENCHMARK(BM_selectedInventory)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
