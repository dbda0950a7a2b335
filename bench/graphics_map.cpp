// The station map of a collection: the scan that selects the stations, the map with their dots, and the files
// that it is exported to. The base map comes from the installed tree beside the build, or from NVQMPHOME.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <sys/resource.h>

#include <QGuiApplication>
#include <QImage>

#include <benchmark/benchmark.h>

#include "common/headlessuser.h"
#include "common/text.h"
#include "graphics/plots.h"
#include "selection/selectedlist.h"

namespace {

using namespace graphics;

void needApplication()
{
    static int argc = 1;
    static char name[] = "bench";
    static char* argv[] = {name, nullptr};
    static QGuiApplication application(argc, argv);
}

double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1000;
}

void fillStation(collection::STATIONDATA& station, int number, float longitude, float latitude)
{
    station.clear();
    common::copyText(station.header.cruise, "C" + std::to_string(number / 100));
    common::copyText(station.header.station, std::to_string(number));
    common::copyText(station.header.type, "B");
    station.header.longitude = longitude;
    station.header.latitude = latitude;
    station.header.year = 2000;
    station.header.month = 7;
    station.header.day = 15;
    for (int v = 1; v <= 2; ++v) {
        const auto cell = static_cast<std::size_t>(v - 1);
        station.offset[static_cast<std::size_t>(v)] = v - 1;
        station.values[cell] = static_cast<float>(10 * v);
        station.flags[cell] = 0;
    }
    station.levelCount[1] = 1;
    station.header.valueCount = 2;
}

// A collection of that many stations all over the globe, two variables with one value each.
class RBigCollection {
public:
    explicit RBigCollection(int stations)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "nvqbench_XXXXXX").string();
        directory_ = std::string(::mkdtemp(pattern.data())) + "/";
        collection.directory = collection.tempDirectory = directory_;
        collection.name = "big";
        collection.path = directory_ + "big";
        collection.writable = true;
        collection.variableCount = collection.totalVariableCount = 2;
        collection::setLabel(collection.variables[1], "Depth [m]");
        collection::setLabel(collection.variables[2], "Temperature [C]");
        complete = collection.createEmptyFiles() &&
                   collection.openStationFiles(collection.path, user) == collection::OpenFilesResult::ok &&
                   write(stations) && collection.openTemporaryFiles();
    }
    ~RBigCollection()
    {
        collection.closeTemporaryFiles();
        collection.closeStationFiles();
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }
    RBigCollection(const RBigCollection&) = delete;
    RBigCollection& operator=(const RBigCollection&) = delete;

    common::RHeadlessUser user;
    collection::RCollection collection;
    collection::STATIONDATA station;
    bool complete = false;
    std::string directory() const { return directory_; }

private:
    bool write(int stations)
    {
        std::mt19937 random(42);
        std::uniform_real_distribution<float> lon(0, 359.9f), lat(-89, 89);
        for (int i = 1; i <= stations; ++i) {
            fillStation(station, i, lon(random), lat(random));
            if (collection.writeStation(0, station, false) != collection::WriteResult::ok) return false;
        }
        return collection.flushStationFiles();
    }
    std::string directory_;
};

// The last one made: the benchmarks of a size share it.
RBigCollection& collectionOf(int stations)
{
    static std::unique_ptr<RBigCollection> last;
    if (!last || last->collection.stationCount != stations) {
        last.reset();
        last = std::make_unique<RBigCollection>(stations);
    }
    return *last;
}

common::INSTALLATION installed()
{
    const char* const home = std::getenv("NVQMPHOME");
    std::string root =
        home ? home : std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path().string();
    if (!home) root += "/installed";
    common::INSTALLATION installation;
    installation.root = root + "/";
    installation.coast = root + "/coast/";
    installation.palettes = root + "/palettes/";
    installation.include = root + "/include/";
    return installation;
}

struct PICTURE {
    explicit PICTURE(RBigCollection& big) : installation(installed())
    {
        needApplication();
        setDefaultSetup(setup, big.collection, installation);
        switchMode(setup, modeMap);
        setDefaultLayers(setup.map, installation);
    }
    PLOTCONTEXT context(RBigCollection& big)
    {
        return {big.collection, big.station, setup, big.user, installation, {}, "bench", "1", ""};
    }
    common::INSTALLATION installation;
    GRAPHICSSETUP setup;
};

void report(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["peak_MB"] = peakMegabytes();
}

bool isRight(benchmark::State& state, const RBigCollection& big)
{
    if (big.complete && big.collection.selectedStationCount == state.range(0)) return true;
    state.SkipWithError("not every station was selected");
    return false;
}

void BM_selectStations(benchmark::State& state)
{
    RBigCollection& big = collectionOf(static_cast<int>(state.range(0)));
    selection::buildSelectedList(big.collection, {}, "bench", big.user);
    if (!isRight(state, big)) return;
    for (auto _ : state) {
        benchmark::DoNotOptimize(selection::buildSelectedList(big.collection, {}, "bench", big.user));
    }
    report(state);
}
BENCHMARK(BM_selectStations)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// range(1): 1 with the base map of low resolution, 2 of high resolution.
void BM_drawnMap(benchmark::State& state)
{
    RBigCollection& big = collectionOf(static_cast<int>(state.range(0)));
    PICTURE picture(big);
    if (state.range(1) == 0) {
        for (auto& layers : picture.setup.map.layers) layers.clear();
    } else {
        picture.setup.map.layerSet = state.range(1) == 1 ? "GlobLR/" : "GlobHR/";
    }
    PLOTCONTEXT context = picture.context(big);
    QImage image(1160, 808, QImage::Format_RGB32);
    QPainter p(&image);
    for (auto _ : state) {
        picture.setup.map.toDraw = 1;
        RedrawCanvas(&p, context, false);
    }
    if (isRight(state, big)) report(state);
}
BENCHMARK(BM_drawnMap)->ArgsProduct({{10'000, 1'000'000}, {0, 1, 2}})->Unit(benchmark::kMillisecond);

// All that an opening takes, from the description of a closed collection with a current inventory to its map
// in low resolution.
void BM_openedToTheMap(benchmark::State& state)
{
    RBigCollection& big = collectionOf(static_cast<int>(state.range(0)));
    collection::RCollection& collection = big.collection;
    const std::string path = collection.path;
    bool good = collection.writeVarFile(path);
    collection.readInventory(true, big.user);
    const int cruises = collection.cruiseCount;
    QImage image(1160, 808, QImage::Format_RGB32);
    for (auto _ : state) {
        collection.closeTemporaryFiles();
        collection.closeStationFiles();
        collection.cruises.clear();
        collection.cruiseCount = collection.stationCount = 0;
        good = good && collection.openStationFiles(path, big.user) == collection::OpenFilesResult::ok &&
               collection.openTemporaryFiles() && collection.readInventory(false, big.user) == cruises;
        PICTURE picture(big);
        picture.setup.map.layerSet = "GlobLR/";
        PLOTCONTEXT context = picture.context(big);
        picture.setup.map.toDraw = 1;
        QPainter p(&image);
        RedrawCanvas(&p, context, false);
    }
    if (!good) state.SkipWithError("the collection could not be opened");
    if (isRight(state, big)) report(state);
}
BENCHMARK(BM_openedToTheMap)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();

// range(1): resolution set as above; range(2): 0 PNG at 150 dots an inch, 1 EPS.
void BM_exportedMap(benchmark::State& state)
{
    RBigCollection& big = collectionOf(static_cast<int>(state.range(0)));
    PICTURE picture(big);
    picture.setup.map.layerSet = state.range(1) == 1 ? "GlobLR/" : "GlobHR/";
    PLOTCONTEXT context = picture.context(big);
    const std::string path = big.directory() + (state.range(2) == 0 ? "map.png" : "map.eps");
    bool good = true;
    for (auto _ : state) {
        good = (state.range(2) == 0 ? exportBitmap(context, path, -1, 150)
                                    : exportPostScript(context, path, -1)) &&
               good;
    }
    if (!good) state.SkipWithError("no picture was written");
    if (!isRight(state, big)) return;
    report(state);
    state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}
BENCHMARK(BM_exportedMap)->ArgsProduct({{1'000}, {1, 2}, {0, 1}})->Unit(benchmark::kMillisecond);

} // namespace
