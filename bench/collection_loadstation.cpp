// Loading every station of a collection in order, beside the same bytes read with plain read(); and storing.

#include <fcntl.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "collectiondata.h"

namespace {

using collection::LoadResult;
using collection::RCollection;
using collection::STATIONDATA;

constexpr int levels = 100, variables = 8;
constexpr std::int64_t bytesAStation = 5 * levels * variables + 80 + 2 * variables;

struct STOREDATA {
    bench_support::RBenchDirectory directory;
    RCollection collection;
    STATIONDATA station;
};

bool store(STOREDATA& data, int stations)
{
    if (!bench_support::createCollection(data.collection, data.directory.path(), variables)) return false;
    for (int n = 1; n <= stations; ++n) {
        bench_support::fillStation(data.station, n, levels, variables);
        if (data.collection.writeStation(0, data.station, false) != collection::WriteResult::ok) return false;
    }
    return data.collection.writeVarFile(data.collection.path);
}

STOREDATA& dataOf(int stations)
{
    static STOREDATA data;
    if (data.collection.stationCount != stations && !store(data, stations)) data.collection.reset();
    return data;
}

// All stations as they were stored, value by value.
bool allAreRight(STOREDATA& data, int stations)
{
    STATIONDATA wanted;
    for (int n = 1; n <= stations; ++n) {
        bench_support::fillStation(wanted, n, levels, variables);
        const auto cells = static_cast<std::size_t>(wanted.header.valueCount);
        if (data.collection.loadStation(n, data.station, false) != LoadResult::ok) return false;
        if (!std::equal(wanted.values.get(), wanted.values.get() + cells, data.station.values.get()) ||
            !std::equal(wanted.flags.get(), wanted.flags.get() + cells, data.station.flags.get())) {
            return false;
        }
    }
    return true;
}

void report(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * state.range(0) * bytesAStation);
}

void BM_loadStationInOrder(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    STOREDATA& data = dataOf(stations);
    if (!allAreRight(data, stations)) {
        state.SkipWithError("wrong answer");
        return;
    }
    for (auto _ : state) {
        for (int n = 1; n <= stations; ++n) {
            benchmark::DoNotOptimize(data.collection.loadStation(n, data.station, true));
        }
    }
    report(state);
}
BENCHMARK(BM_loadStationInOrder)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_loadStationAtRandom(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    STOREDATA& data = dataOf(stations);
    std::mt19937 random(42);
    std::vector<int> order(static_cast<std::size_t>(stations));
    for (int& number : order) number = 1 + static_cast<int>(random() % static_cast<unsigned>(stations));
    for (auto _ : state) {
        for (const int number : order) {
            benchmark::DoNotOptimize(data.collection.loadStation(number, data.station, true));
        }
    }
    report(state);
}
BENCHMARK(BM_loadStationAtRandom)->Arg(100000)->Unit(benchmark::kMillisecond);

// Bytes of a file through a buffer of the given size.
std::int64_t readPlainly(const std::string& file, std::vector<char>& buffer)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    std::int64_t total = 0;
    for (ssize_t got = 1; got > 0; total += got) {
        got = ::read(descriptor, buffer.data(), buffer.size());
        if (got < 0) return -1;
        benchmark::DoNotOptimize(buffer.data());
    }
    ::close(descriptor);
    return total;
}

void BM_plainRead(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    const STOREDATA& data = dataOf(stations);
    std::vector<char> buffer(256 * 1024);
    const auto readBoth = [&] {
        return readPlainly(data.collection.path + ".hob", buffer) +
               readPlainly(data.collection.path + ".dob", buffer);
    };
    if (readBoth() != stations * bytesAStation + 6) {
        state.SkipWithError("wrong answer");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(readBoth());
    report(state);
}
BENCHMARK(BM_plainRead)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_writeStation(benchmark::State& state)
{
    const auto stations = static_cast<int>(state.range(0));
    STOREDATA data;
    for (auto _ : state) {
        if (!store(data, stations)) {
            state.SkipWithError("not stored");
            return;
        }
    }
    if (!allAreRight(data, stations)) state.SkipWithError("wrong answer");
    report(state);
}
BENCHMARK(BM_writeStation)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_flushStations(benchmark::State& state)
{
    STOREDATA data;
    for (auto _ : state) {
        state.PauseTiming();
        if (!store(data, static_cast<int>(state.range(0)))) state.SkipWithError("not stored");
        state.ResumeTiming();
        if (!data.collection.flushStationFiles()) state.SkipWithError("not flushed");
    }
    report(state);
}
BENCHMARK(BM_flushStations)->Arg(10000)->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
