// From criteria to the list of selected stations: one scan over the header table, warm.

#include <benchmark/benchmark.h>

#include "collectiondata.h"
#include "selection/selectedlist.h"

namespace {

using collection::RCollection;

struct SCANDATA {
    bench_support::RBenchDirectory directory;
    RCollection collection;
};

// The collection is made again only if the number of stations changes.
SCANDATA& dataOf(int stations)
{
    static SCANDATA data;
    if (data.collection.stationCount != stations &&
        !bench_support::createHeaders(data.collection, data.directory.path(), stations, stations / 200)) {
        data.collection.reset();
    }
    data.collection.criteria = collection::defaultCriteria();
    return data;
}

// What the criteria select, counted station by station through the plain road.
int expectedCount(RCollection& collection, float latMin, bool evenCruises)
{
    int count = 0;
    collection::STATIONHDR header;
    for (int n = 1; n <= collection.stationCount; ++n) {
        if (!collection.readStationHeader(n, header, nullptr)) return -1;
        const char last = header.cruise[10];
        count += header.latitude >= latMin && (!evenCruises || (last - '0') % 2 == 0);
    }
    return count;
}

void run(benchmark::State& state, float latMin, bool evenCruises)
{
    SCANDATA& data = dataOf(static_cast<int>(state.range(0)));
    RCollection& collection = data.collection;
    common::RHeadlessUser user;
    collection.criteria.latMin = latMin;
    if (evenCruises) common::copyText(collection.criteria.cruisePattern, "*[02468]");
    const int expected = expectedCount(collection, latMin, evenCruises);
    if (collection.stationCount == 0 ||
        selection::buildSelectedList(collection, {}, "Scan", user) != expected ||
        static_cast<int>(selection::readSelectedList(collection).size()) != expected) {
        state.SkipWithError("wrong answer");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(selection::buildSelectedList(collection, {}, "Scan", user));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["selected"] = expected;
    state.counters["peak MB"] = bench_support::peakMemory();
}

void BM_selectAll(benchmark::State& state)
{
    run(state, -90, false);
}
BENCHMARK(BM_selectAll)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_selectHalfTheGlobeByCruise(benchmark::State& state)
{
    run(state, 0, true);
}
BENCHMARK(BM_selectHalfTheGlobeByCruise)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace
