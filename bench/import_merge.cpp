// Merging and updating stations of a collection: stations a second. The arguments are the number of stations,
// their levels, and whether the new levels lie between the old ones (the stations outgrow their places) or on
// them.

#include <benchmark/benchmark.h>

#include "collectiondata.h"
#include "import/importrun.h"

namespace {

using collection::RCollection;
using collection::STATIONDATA;
using importing::ImportMode;

constexpr int variables = 8;

class RSilentUser : public common::RHeadlessUser {
public:
    void about(std::string_view, std::string_view) override {}
    bool report(std::string_view, std::string_view) override { return true; }
    void note(std::string_view) override {}
};

// Two stations in memory, nothing on a disk.
void BM_mergeStation(benchmark::State& state)
{
    const int levels = static_cast<int>(state.range(0));
    STATIONDATA fresh, stored, merged;
    bench_support::fillStation(fresh, 1, levels, variables);
    bench_support::fillStation(stored, 1, levels, variables);
    bench_support::fillStation(merged, 1, levels, variables);
    for (auto _ : state) {
        if (!importing::mergeStation(fresh, stored, ImportMode::merge, variables))
            state.SkipWithError("not merged");
        benchmark::DoNotOptimize(stored.values.get());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_mergeStation)->ArgName("levels")->Arg(100)->Arg(1000)->Arg(10000);

void run(benchmark::State& state, ImportMode mode)
{
    static const bench_support::RBenchDirectory directory;
    const auto stations = static_cast<int>(state.range(0)), levels = static_cast<int>(state.range(1));
    const bool between = state.range(2) != 0;
    RSilentUser user;
    STATIONDATA station;
    for (auto _ : state) {
        state.PauseTiming();
        RCollection target;
        bool good = bench_support::createCollection(target, directory.path(), variables) &&
                    target.beginChange("BENCH");
        for (int n = 1; good && n <= stations; ++n) {
            bench_support::fillStation(station, n, levels, variables);
            for (int k = 0; between && k < levels; ++k) station.values[static_cast<std::size_t>(k)] *= 4;
            good = target.writeStation(0, station, false) == collection::WriteResult::ok;
        }
        if (!good || !target.commitChange()) state.SkipWithError("can't make the collection");
        target.readInventory(true, user);
        state.ResumeTiming();
        importing::RImportRun import(target, user, {});
        if (import.openImport(target.path + ".var", "bench", 0, mode) == 0) state.SkipWithError("can't open");
        for (int n = 1; n <= stations; ++n) {
            bench_support::fillStation(station, n, levels, variables);
            for (int k = 0; between && k < levels; ++k)
                station.values[static_cast<std::size_t>(k)] = static_cast<float>(40 * k + 20);
            if (import.importStation(station, 10, 50000)) state.SkipWithError("broken off");
        }
        import.closeImport(true);
        if (import.state.account.merged != stations) state.SkipWithError("not all were merged");
    }
    state.SetItemsProcessed(state.iterations() * stations);
}

void BM_merge(benchmark::State& state)
{
    run(state, ImportMode::merge);
}
void BM_update(benchmark::State& state)
{
    run(state, ImportMode::update);
}

void sizes(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"stations", "levels", "between"})
        ->Args({10000, 100, 0})
        ->Args({10000, 100, 1})
        ->Args({100000, 20, 0})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}
BENCHMARK(BM_merge)->Apply(sizes);
BENCHMARK(BM_update)->Apply(sizes);

} // namespace
