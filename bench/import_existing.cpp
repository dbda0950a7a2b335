// A spreadsheet of many lines into a collection that holds many stations already, with and without the check
// for existing stations. The first argument is the number of lines; the second tells what the check meets: 0
// nothing is checked, 1 none is there, 2 all are there and keep their size, 3 all are there and outgrow their
// places, 4 the same in random order, 5 all are there and are kept.

#include <map>

#include <benchmark/benchmark.h>

#include "collectiondata.h"
#include "import/importspreadsheet.h"

namespace {

using collection::RCollection;
using collection::STATIONDATA;

constexpr int stored = 100000, cruises = 500, levelsAStation = 100, variables = 8, storedLevels = 100;

enum Meeting : int { unchecked, none, equal, larger, largerAtRandom, kept };

class RSilentUser : public common::RHeadlessUser {
public:
    void about(std::string_view, std::string_view) override {}
    bool report(std::string_view, std::string_view) override { return true; }
    void note(std::string_view) override {}
};

// The stations of which a file is made, by their numbers in the collection; those beyond are new.
int numberOf(std::int64_t index, Meeting meeting, std::int64_t stations)
{
    const std::int64_t step = stored / stations;
    if (meeting == unchecked || meeting == none) return static_cast<int>(stored + 1 + index);
    if (meeting == largerAtRandom) index = index * 7919 % stations; // a prime
    return static_cast<int>(1 + index * step);
}

void writeSpreadsheet(const std::string& path, std::int64_t lines, Meeting meeting)
{
    const common::FilePtr file = common::openFile(path, "wb");
    std::string text = "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]";
    for (int v = 1; v <= variables; ++v) text += common::format("\tVariable %d [1]\tQF", v);
    text += '\n';
    STATIONDATA station;
    for (std::int64_t i = 0; i < lines; ++i) {
        const auto k = static_cast<int>(i % levelsAStation);
        if (k == 0)
            bench_support::fillStation(station, numberOf(i / levelsAStation, meeting, lines / levelsAStation),
                                       1, 1);
        const collection::STATIONHDR& h = station.header;
        text +=
            common::format("%s\t%s\tB\t%02d/%02d/%d\t12:00\t%.3f\t%.3f\t4000", h.cruise, h.station, h.month,
                           h.day, h.year, static_cast<double>(h.longitude), static_cast<double>(h.latitude));
        for (int v = 1; v <= variables; ++v) text += common::format("\t%d.%d\t1", v == 1 ? 10 * k : k + v, v);
        text += '\n';
    }
    std::fwrite(text.data(), 1, text.size(), file.get());
}

// The collection, made once a size and copied for each run.
const std::string& original(const std::string& directory, int levels)
{
    static std::map<int, std::string> made;
    std::string& path = made[levels];
    if (!path.empty()) return path;
    const std::string folder = directory + "levels" + std::to_string(levels) + "/";
    std::filesystem::create_directory(folder);
    RCollection collection;
    RSilentUser user;
    STATIONDATA station;
    bool good =
        bench_support::createCollection(collection, folder, variables) && collection.beginChange("BENCH");
    for (int n = 1; good && n <= stored; ++n) {
        bench_support::fillStation(station, n, levels, variables);
        good = collection.writeStation(0, station, false) == collection::WriteResult::ok;
    }
    if (!good || !collection.commitChange()) std::abort();
    collection.readInventory(true, user);
    return path = folder;
}

void BM_import(benchmark::State& state)
{
    static const bench_support::RBenchDirectory directory;
    const auto meeting = static_cast<Meeting>(state.range(1));
    const bool grows = meeting == larger || meeting == largerAtRandom;
    const std::string& source = original(directory.path(), grows ? 20 : storedLevels);
    const std::string file = directory.path() + common::format("%d.txt", static_cast<int>(meeting));
    writeSpreadsheet(file, state.range(0), meeting);
    RSilentUser user;
    STATIONDATA station;
    int stations = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const std::string folder = directory.path() + "work/";
        std::filesystem::remove_all(folder);
        std::filesystem::copy(source, folder);
        RCollection target;
        target.directory = target.tempDirectory = folder;
        target.path = folder + "bench";
        target.writable = true;
        if (target.openStationFiles(target.path, user) != collection::OpenFilesResult::ok)
            state.SkipWithError("can't open");
        target.readInventory(false, user);
        importing::IMPORTOPTIONS options;
        options.checkExisting = meeting != unchecked;
        options.run.existing = meeting == kept ? importing::Existing::keep : importing::Existing::replace;
        state.ResumeTiming();
        stations = importing::importSpreadsheet(target, station, file, options, user).stationsRead;
        const bool added = meeting == unchecked || meeting == none;
        if (target.stationCount != stored + (added ? stations : 0)) state.SkipWithError("wrong count");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["stations"] = stations;
    state.counters["MB"] = bench_support::peakMemory();
}

BENCHMARK(BM_import)
    ->ArgNames({"lines", "meets"})
    ->ArgsProduct({{1000000}, {unchecked, none, equal, larger, largerAtRandom, kept}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
