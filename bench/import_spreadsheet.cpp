// Spreadsheet into a collection: lines and bytes a second, the share of reading and of storing, and how both
// grow with the file. The argument is the number of lines; ten million (1 GB) only with NVQ_BENCH_LARGE set.

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>

#include <benchmark/benchmark.h>

#include "common/headlessuser.h"
#include "common/text.h"
#include "import/association.h"
#include "import/importspreadsheet.h"
#include "import/linereader.h"
#include "import/spreadsheetreader.h"

namespace {

using collection::RCollection;
using collection::STATIONDATA;

constexpr int levelsAStation = 100;
constexpr int variables = 8;

class RSilentUser : public common::RHeadlessUser {
public:
    void about(std::string_view, std::string_view) override {}
    bool report(std::string_view, std::string_view) override { return true; }
    void note(std::string_view) override {}
};

// A directory with one spreadsheet, gone at the end of the program.
class RFiles {
public:
    RFiles()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "nvqbench_XXXXXX").string();
        path_ = ::mkdtemp(pattern.data()) ? pattern + "/" : std::string();
    }
    ~RFiles()
    {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    [[nodiscard]] const std::string& directory() const { return path_; }

    // The spreadsheet of so many lines, made when it is first asked for; always the same bytes.
    std::string spreadsheet(std::int64_t lines)
    {
        const std::string path = path_ + std::to_string(lines) + ".txt";
        if (!common::fileExists(path)) write(path, lines);
        return path;
    }

private:
    static void write(const std::string& path, std::int64_t lines)
    {
        const common::FilePtr file = common::openFile(path, "wb");
        std::mt19937 random(42);
        std::string text = "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]";
        for (int v = 1; v <= variables; ++v) text += common::format("\tVariable %d [umol/kg]\tQF", v);
        text += '\n';
        for (std::int64_t i = 0; i < lines; ++i) {
            const auto station = static_cast<int>(i / levelsAStation),
                       level = static_cast<int>(i % levelsAStation);
            text += common::format("A16N\t%d\tC\t%02d/%02d/%d\t%02d:%02d\t%.3f\t%.3f\t%d", station + 1,
                                   station % 12 + 1, station % 28 + 1, 1990 + station % 30, station % 24,
                                   station % 60, station % 3600 * 0.1 - 180, station % 1700 * 0.1 - 85,
                                   3000 + station % 2000);
            text += common::format("\t%d.0\t0", level * 50);
            for (int v = 2; v <= variables; ++v)
                text += common::format("\t%.*f\t%d", static_cast<int>(2 + random() % 3),
                                       random() % 400000 * 1e-3, random() % 10 == 0 ? 4 : 0);
            text += '\n';
            if (text.size() > 1 << 20) {
                std::fwrite(text.data(), 1, text.size(), file.get());
                text.clear();
            }
        }
        std::fwrite(text.data(), 1, text.size(), file.get());
    }

    std::string path_;
};

RFiles& files()
{
    static RFiles instance;
    return instance;
}

bool isTooLarge(benchmark::State& state)
{
    if (state.range(0) <= 1000000 || std::getenv("NVQ_BENCH_LARGE") != nullptr) return false;
    state.SkipWithError("set NVQ_BENCH_LARGE to run this size");
    return true;
}

void report(benchmark::State& state, const std::string& path)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * common::fileSize(path));
    state.counters["MB"] = static_cast<double>(common::fileSize(path)) * 1e-6;
}

// The lines alone: what reading the file costs.
void BM_lines(benchmark::State& state)
{
    if (isTooLarge(state)) return;
    const std::string path = files().spreadsheet(state.range(0));
    for (auto _ : state) {
        importing::RLineReader reader;
        std::string_view line;
        if (!reader.open(path)) state.SkipWithError("can't read");
        while (reader.next(line) == importing::RLineReader::Result::line) benchmark::DoNotOptimize(line);
    }
    report(state, path);
}

// Reading into stations, nothing stored.
void BM_read(benchmark::State& state)
{
    if (isTooLarge(state)) return;
    const std::string path = files().spreadsheet(state.range(0));
    RSilentUser user;
    STATIONDATA station;
    for (auto _ : state) {
        importing::SPREADSHEETHEADER header;
        (void)importing::readSpreadsheetHeader(path, nullptr, user, header);
        auto targets = header.sources;
        importing::associateByNumber(header.sources, targets);
        importing::RSpreadsheetReader reader(header, targets, {}, user);
        if (!reader.open(path)) state.SkipWithError("can't read");
        std::int64_t levels = 0;
        while (reader.readStation(station) > 0) levels += station.levels();
        if (levels != state.range(0)) state.SkipWithError("wrong number of levels");
    }
    report(state, path);
}

// From nothing to a collection on the disk with description and inventory.
void BM_import(benchmark::State& state)
{
    if (isTooLarge(state)) return;
    const std::string path = files().spreadsheet(state.range(0));
    RSilentUser user;
    STATIONDATA station;
    for (auto _ : state) {
        RCollection target;
        target.directory = files().directory();
        target.name = "bench";
        target.path = target.directory + target.name;
        target.writable = true;
        importing::IMPORTOPTIONS options;
        options.header.emplace();
        const bool made = importing::spreadsheetVariables(path, nullptr, target, *options.header, user) &&
                          target.createEmptyFiles() &&
                          target.openStationFiles(target.path, user) == collection::OpenFilesResult::ok;
        const auto result = importing::importSpreadsheet(target, station, path, options, user);
        if (!made || result.stationsStored != state.range(0) / levelsAStation)
            state.SkipWithError("wrong count");
        state.PauseTiming();
        target.reset();
        for (const char* suffix : {".var", ".hob", ".dob", ".inv", ".cid", ".log"})
            std::filesystem::remove(files().directory() + "bench" + suffix);
        state.ResumeTiming();
    }
    report(state, path);
}

void sizes(benchmark::internal::Benchmark* b)
{
    b->Arg(100000)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK(BM_lines)->Apply(sizes);
BENCHMARK(BM_read)->Apply(sizes);
BENCHMARK(BM_import)->Apply(sizes);

} // namespace
