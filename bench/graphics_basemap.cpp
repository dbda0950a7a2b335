// The base map of the globe on both sinks. The layers are those of the installation named by NVQMPHOME, or of
// the build tree if that variable isn't set; without either, polygons are made up in about the same number.

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numbers>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include "common/headlessuser.h"
#include "graphics/basemap.h"

namespace {

using namespace graphics;

constexpr float dotsPerInch = 150;

void application()
{
    static int argc = 1;
    static char name[] = "bench";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication theApplication(argc, argv);
}

std::string madeUpPolygon(std::size_t k, std::int32_t n)
{
    const double lon = std::fmod(double(k) * 137.5, 340) + 10, lat = std::fmod(double(k) * 61.8, 150) - 75;
    std::string out(reinterpret_cast<const char*>(&n), 4);
    out.append(reinterpret_cast<const char*>(&n), 4);
    for (std::int32_t i = 0; i < n; ++i) {
        const double a = 2 * std::numbers::pi * (i % (n - 1)) / (n - 1), r = 3 + std::sin(40 * a) / 4;
        const float point[] = {float(lon + r * std::cos(a)), float(lat + r * std::sin(a))};
        out.append(reinterpret_cast<const char*>(point), 8);
    }
    return out;
}

void makeUp(const std::string& coast, const char* set, std::size_t polygons)
{
    const std::string folder = coast + set;
    std::filesystem::create_directories(folder + "bathymetry");
    std::string bytes;
    for (std::size_t k = 0; k < polygons; ++k) bytes += madeUpPolygon(k, 200);
    std::ofstream(folder + "World.cdt", std::ios::binary) << bytes;
    for (const char* depth : {"6000m", "5000m", "4000m", "3000m", "2000m", "1000m", "500m"})
        std::ofstream(folder + "bathymetry/" + depth + ".cdt", std::ios::binary)
            << bytes.substr(0, bytes.size() / 6 / 1608 * 1608);
}

common::INSTALLATION installation()
{
    common::INSTALLATION found;
    const char* home = std::getenv("NVQMPHOME");
    for (const std::string& root :
         {std::string(home ? home : ""), std::string("build/release/installed/"), std::string("out/")}) {
        found.root = root.ends_with('/') ? root : root + "/";
        found.coast = found.root + "coast/";
        found.palettes = found.root + "palettes/";
        if (std::filesystem::exists(found.coast + "GlobHR/World.cdt")) return found;
    }
    found.root = std::filesystem::temp_directory_path() / "nvq_bench_basemap/";
    found.coast = found.root + "coast/";
    makeUp(found.coast, "GlobHR/", 3000);
    makeUp(found.coast, "GlobLR/", 300);
    return found;
}

struct SCENE {
    common::INSTALLATION files = installation();
    common::RHeadlessUser user;
    MAPWINDOW map;

    explicit SCENE(const benchmark::State& state)
    {
        application();
        setDefaultLayers(map, files);
        map.layerSet = state.range(0) ? "GlobHR/" : "GlobLR/";
        map.geometry.id = int(state.range(1));
        map.geometry.lat0 = 40;
        map.axisColor = -1;
        map.box = {26, 1.5f, 18, 1};
    }
    [[nodiscard]] BASEMAPCONTEXT context() { return {files, user, false}; }
    [[nodiscard]] std::int64_t points()
    {
        const BASEMAPCONTEXT c = context();
        std::int64_t n = 0;
        for (int kind : {layerBathymetry, layerCoastlines})
            for (const LAYERENTRY& entry : map.layers[std::size_t(kind)])
                readCdtFile(layerPath(c, map, kind, entry),
                            [&n](const CDTRECORD& r) { return n += std::int64_t(r.lon.size()), true; });
        return n;
    }
};

void paint(benchmark::State& state)
{
    SCENE scene(state);
    DEVICE& d = drawState().device;
    d.pixelsPerCm = dotsPerInch / 2.54f;
    d.widthPx = int(d.widthCm * d.pixelsPerCm);
    d.heightPx = int(d.heightCm * d.pixelsPerCm);
    for (auto _ : state) {
        QImage image(d.widthPx, d.heightPx, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter p(&image);
        const BASEMAPCONTEXT c = scene.context();
        BaseMapBack(&p, c, scene.map);
        BaseMapFront(&p, c, scene.map);
        BaseMapTop(&p, c, scene.map);
    }
    state.SetItemsProcessed(state.iterations() * scene.points());
}

void writePostScript(benchmark::State& state)
{
    SCENE scene(state);
    std::int64_t bytes = 0;
    for (auto _ : state) {
        std::FILE* const ps = std::tmpfile();
        const BASEMAPCONTEXT c = scene.context();
        PsBaseMap1(ps, c, scene.map);
        PsBaseMap2(ps, c, scene.map);
        PsBaseMap3(ps, c, scene.map);
        bytes = std::ftell(ps);
        std::fclose(ps);
    }
    state.SetItemsProcessed(state.iterations() * scene.points());
    state.counters["MB"] = double(bytes) / 1e6;
}

void everyProjection(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"high", "projection"})->Unit(benchmark::kMillisecond);
    for (int high : {0, 1})
        for (int id : {0, 2, 4, 5, 6}) b->Args({high, id});
}

BENCHMARK(paint)->Apply(everyProjection);
BENCHMARK(writePostScript)->Apply(everyProjection);

} // namespace
