// Rewriting a collection (sorting and condensing, another list of variables) beside plain copying of the same
// bytes, both until they are on the disk. NVQ_BENCH_LARGE=1 adds the collection of 100,000 stations (500 MB).

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <numeric>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "collectiondata.h"
#include "common/files.h"

namespace {

using collection::RCollection;
using collection::STATIONDATA;

constexpr int levels = 100, variables = 10;
constexpr std::int64_t bytesAStation = 5 * levels * variables + 80 + 2 * variables;

enum Order : int { inOrder = 0, shuffled = 1 };

struct REWRITEDATA {
    bench_support::RBenchDirectory directory;
    RCollection collection;
    STATIONDATA station;
    common::RHeadlessUser user;
    int stations = 0, order = -1;
};

std::vector<int> numbersIn(int stations, int order)
{
    std::vector<int> numbers(static_cast<std::size_t>(stations));
    std::iota(numbers.begin(), numbers.end(), 1);
    std::mt19937 random(42);
    if (order == shuffled) std::shuffle(numbers.begin(), numbers.end(), random);
    return numbers;
}

bool store(REWRITEDATA& data, int stations, int order)
{
    if (!bench_support::createCollection(data.collection, data.directory.path(), variables)) return false;
    if (!data.collection.beginChange("bench")) return false;
    for (const int n : numbersIn(stations, order)) {
        bench_support::fillStation(data.station, n, levels, variables);
        if (data.collection.writeStation(0, data.station, false) != collection::WriteResult::ok) return false;
    }
    return data.collection.commitChange();
}

// A collection in its first state: what the last run has left is thrown away.
REWRITEDATA& freshData(int stations, int order)
{
    static REWRITEDATA data;
    data.stations = store(data, stations, order) ? stations : 0;
    data.order = order;
    data.collection.readInventory(true, data.user);
    ::sync();
    return data;
}

// Every station is there, whole, and they stand in the order of cruises and labels.
bool isSorted(REWRITEDATA& data)
{
    if (data.collection.stationCount != data.stations) return false;
    std::string lastCruise;
    int lastLabel = -1;
    for (int n = 1; n <= data.stations; ++n) {
        if (data.collection.loadStation(n, data.station, false) != collection::LoadResult::ok) return false;
        const std::string cruise(common::fieldText(data.station.header.cruise));
        const int label = std::atoi(data.station.header.station);
        const bool follows = cruise == lastCruise ? label > lastLabel : cruise > lastCruise;
        if (!follows || data.station.header.valueCount != levels * variables) return false;
        lastCruise = cruise;
        lastLabel = label;
    }
    return true;
}

void report(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * state.range(0) * bytesAStation);
    state.counters["peak MB"] = bench_support::peakMemory();
}

void BM_sortAndCondense(benchmark::State& state)
{
    bool right = true;
    for (auto _ : state) {
        state.PauseTiming();
        REWRITEDATA& data = freshData(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
        state.ResumeTiming();
        right = data.collection.sortAndCondense(data.station, data.user) && right;
        state.PauseTiming();
        right = isSorted(data) && right;
        state.ResumeTiming();
    }
    if (!right) state.SkipWithError("wrong answer");
    report(state);
}

std::vector<collection::VARINFO> withoutTheLast(const RCollection& collection)
{
    std::vector<collection::VARINFO> list(collection.variables.begin(),
                                          collection.variables.begin() + collection.variableCount);
    for (std::size_t v = 1; v < list.size(); ++v) list[v].assocSource = static_cast<int>(v);
    return list;
}

void BM_changeVariableSet(benchmark::State& state)
{
    bool right = true;
    for (auto _ : state) {
        state.PauseTiming();
        REWRITEDATA& data = freshData(static_cast<int>(state.range(0)), inOrder);
        const auto list = withoutTheLast(data.collection);
        state.ResumeTiming();
        right = data.collection.changeVariableSet(data.station, list, data.user) && right;
        right = data.collection.variableCount == variables - 1 && right;
    }
    if (!right) state.SkipWithError("wrong answer");
    report(state);
}

bool copyBytes(const std::string& from, const std::string& to)
{
    const int in = ::open(from.c_str(), O_RDONLY),
              out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    std::vector<char> block(1 << 20);
    bool good = in >= 0 && out >= 0;
    for (ssize_t got = 1; good && got > 0;) {
        got = ::read(in, block.data(), block.size());
        good = got >= 0 && ::write(out, block.data(), static_cast<std::size_t>(got)) == got;
    }
    good = good && ::fsync(out) == 0;
    if (in >= 0) ::close(in);
    if (out >= 0) ::close(out);
    return good;
}

void BM_plainCopy(benchmark::State& state)
{
    bool right = true;
    for (auto _ : state) {
        state.PauseTiming();
        const REWRITEDATA& data = freshData(static_cast<int>(state.range(0)), inOrder);
        const std::string& path = data.collection.path;
        state.ResumeTiming();
        right = copyBytes(path + ".dob", path + ".dob2") && copyBytes(path + ".hob", path + ".hob2") && right;
        state.PauseTiming();
        std::remove((path + ".dob2").c_str());
        std::remove((path + ".hob2").c_str());
        state.ResumeTiming();
    }
    if (!right) state.SkipWithError("wrong answer");
    report(state);
}

void sizes(benchmark::internal::Benchmark* bench, bool withOrder)
{
    std::vector<int> counts = {1000, 10000};
    if (std::getenv("NVQ_BENCH_LARGE")) counts.push_back(100000);
    for (const int count : counts) {
        for (const int order : {inOrder, shuffled}) {
            if (withOrder) bench->Args({count, order});
        }
        if (!withOrder) bench->Arg(count);
    }
    bench->UseRealTime()->Iterations(3)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_plainCopy)->Apply([](auto* bench) { sizes(bench, false); });
BENCHMARK(BM_sortAndCondense)->ArgNames({"stations", "shuffled"})->Apply([](auto* bench) {
    sizes(bench, true);
});
BENCHMARK(BM_changeVariableSet)->Apply([](auto* bench) { sizes(bench, false); });

} // namespace
