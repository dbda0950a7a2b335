// From criteria to the list of selected stations: one scan over the header table, warm.

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

#include "collectiondata.h"
#include "selection/criteria.h"
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

// --- polygon, months and required variables

// A coast: a ring around the middle of the map whose distance from it swings, `teeth` times.
collection::DOMAINPOLYGON coast(int corners, int teeth)
{
    collection::DOMAINPOLYGON polygon;
    polygon.nPoints = corners + 1;
    for (int i = 0; i <= corners; ++i) {
        const double angle = 2 * std::numbers::pi * (i % corners) / corners;
        const double distance = 0.7 + 0.25 * std::sin(teeth * angle);
        polygon.lon[static_cast<std::size_t>(i)] = static_cast<float>(180 + 170 * distance * std::cos(angle));
        polygon.lat[static_cast<std::size_t>(i)] = static_cast<float>(80 * distance * std::sin(angle));
    }
    return polygon;
}

// Each edge runs over all longitudes, so that every point meets all of them: the worst there is.
collection::DOMAINPOLYGON zigzag(int corners)
{
    collection::DOMAINPOLYGON polygon = coast(corners, 1);
    for (int i = 0; i < corners; ++i) {
        polygon.lon[static_cast<std::size_t>(i)] = i % 2 == 0 ? 0.001f : 359.999f;
        polygon.lat[static_cast<std::size_t>(i)] =
            -80 + 160.0f * static_cast<float>(i) / static_cast<float>(corners);
    }
    polygon.lon[static_cast<std::size_t>(corners)] = polygon.lon[0];
    polygon.lat[static_cast<std::size_t>(corners)] = polygon.lat[0];
    return polygon;
}

// The same by the test of a single station, asked for each.
int plainCount(RCollection& collection)
{
    int count = 0;
    static_cast<void>(collection.scanHeaders(
        1, collection.stationCount,
        [&](int number, const auto& header, const auto& counts) {
            count += selection::passesSelection(number, header, counts, collection.criteria,
                                                collection.polygon, false);
            return true;
        },
        [](int) {}));
    return count;
}

void runPolygon(benchmark::State& state, const collection::DOMAINPOLYGON& polygon)
{
    RCollection& collection = dataOf(static_cast<int>(state.range(0))).collection;
    common::RHeadlessUser user;
    collection.criteria.usePolygon = 1;
    common::copyText(collection.criteria.months, "+++   ++++++");
    collection::setRequiredVariables(collection.criteria, std::vector<int>{2, 3, 8});
    collection.polygon = polygon;
    const int expected = plainCount(collection);
    collection.polygon = polygon;
    if (expected < collection.stationCount / 10 ||
        selection::buildSelectedList(collection, {}, "Scan", user) != expected) {
        state.SkipWithError("wrong answer");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(selection::buildSelectedList(collection, {}, "Scan", user));
    }
    collection.polygon.nPoints = 0;
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["selected"] = expected;
    state.counters["peak MB"] = bench_support::peakMemory();
}

void BM_selectByPolygonOf100Corners(benchmark::State& state)
{
    runPolygon(state, coast(100, 8));
}
BENCHMARK(BM_selectByPolygonOf100Corners)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

void BM_selectByPolygonOf1499Corners(benchmark::State& state)
{
    runPolygon(state, coast(1499, 60));
}
BENCHMARK(BM_selectByPolygonOf1499Corners)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

void BM_selectByZigzagOf1499Corners(benchmark::State& state)
{
    runPolygon(state, zigzag(1499));
}
BENCHMARK(BM_selectByZigzagOf1499Corners)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace
