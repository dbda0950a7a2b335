// Writing the selected stations as a spreadsheet: lines and bytes a second; and as a new collection: stations
// and bytes a second. The argument is the number of lines, or levels.

#include <filesystem>

#include <benchmark/benchmark.h>

#include "common/headlessuser.h"
#include "common/text.h"
#include "export/exportcollection.h"
#include "export/spreadsheet.h"
#include "selection/selectedlist.h"

namespace {

constexpr int levelsAStation = 100, variables = 8;

// A collection in a directory of its own, with a list of all its stations.
class RBenchCollection {
public:
    explicit RBenchCollection(int stations)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "nvqbench_XXXXXX").string();
        directory_ = ::mkdtemp(pattern.data()) ? pattern + "/" : std::string();
        collection.directory = collection.tempDirectory = directory_;
        collection.name = "bench";
        collection.path = directory_ + "bench";
        collection.writable = true;
        collection.variableCount = collection.totalVariableCount = variables;
        for (int v = 1; v <= variables; ++v) {
            collection.variables[static_cast<std::size_t>(v)] = collection::emptyVariable(v);
            collection::setLabel(collection.variables[static_cast<std::size_t>(v)],
                                 common::format("Variable %d", v));
        }
        collection.makeTempId();
        good = collection.createEmptyFiles() &&
               collection.openStationFiles(collection.path, user) == collection::OpenFilesResult::ok &&
               collection.openTemporaryFiles();
        for (int n = 1; good && n <= stations; ++n) good = put(n);
        selection::buildSelectedList(collection, {}, "bench", user);
    }
    ~RBenchCollection()
    {
        collection.reset();
        std::error_code ignored;
        if (!directory_.empty()) std::filesystem::remove_all(directory_, ignored);
    }
    [[nodiscard]] std::string output() const { return directory_ + "out.txt"; }

    collection::RCollection collection;
    collection::STATIONDATA station;
    common::RHeadlessUser user;
    bool good = false;

private:
    bool put(int number)
    {
        station.clear();
        common::copyText(station.header.cruise, "A16N");
        common::copyText(station.header.station, common::format("%d", number));
        station.header.year = 2003;
        station.header.month = station.header.day = 6;
        station.header.longitude = static_cast<float>(number % 3600) * 0.1f;
        station.header.latitude = static_cast<float>(number % 1700) * 0.1f - 85;
        for (int i = 0; i < variables * levelsAStation; ++i) {
            station.values[static_cast<std::size_t>(i)] =
                static_cast<float>((i * 7919 + number) % 400000) * 1e-3f;
            station.flags[static_cast<std::size_t>(i)] = i % 10 == 0 ? 4 : 0;
        }
        for (int v = 1; v <= variables; ++v)
            station.offset[static_cast<std::size_t>(v)] = (v - 1) * levelsAStation;
        station.levelCount[1] = levelsAStation;
        station.header.valueCount = variables * levelsAStation;
        return collection.writeStation(0, station, false) == collection::WriteResult::ok;
    }

    std::string directory_;
};

void BM_exportSpreadsheet(benchmark::State& state)
{
    RBenchCollection bench(static_cast<int>(state.range(0)) / levelsAStation);
    if (!bench.good) state.SkipWithError("no collection");
    for (auto _ : state) {
        if (!exporting::exportSpreadsheet(bench.collection, bench.station, bench.output(), {}, bench.user))
            state.SkipWithError("not written");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * common::fileSize(bench.output()));
}
void BM_exportCollection(benchmark::State& state)
{
    RBenchCollection bench(static_cast<int>(state.range(0)) / levelsAStation);
    if (!bench.good) state.SkipWithError("no collection");
    const std::string target = bench.collection.directory + "made";
    for (auto _ : state) {
        if (!exporting::exportCollection(bench.collection, bench.station, target, {}, bench.user))
            state.SkipWithError("not made");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) / levelsAStation);
    state.SetBytesProcessed(state.iterations() * common::fileSize(target + ".dob"));
}
BENCHMARK(BM_exportCollection)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK(BM_exportSpreadsheet)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
