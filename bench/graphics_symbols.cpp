// Very many station dots: on the screen's canvas in groups as the map draws them, and as PostScript text.

#include <cstdio>
#include <random>
#include <vector>

#include <QGuiApplication>
#include <QImage>

#include <benchmark/benchmark.h>

#include "graphics/drawing.h"
#include "graphics/pstext.h"

namespace {

using namespace graphics;

void needApplication()
{
    static int argc = 1;
    static char name[] = "bench";
    static char* argv[] = {name, nullptr};
    static QGuiApplication application(argc, argv);
}

struct POSITIONS {
    std::vector<float> x, y;
};
POSITIONS randomPositions(std::int64_t count)
{
    std::mt19937 random(42);
    std::uniform_real_distribution<float> lon(0, 360), lat(-90, 90);
    POSITIONS positions;
    for (std::int64_t i = 0; i < count; ++i) {
        positions.x.push_back(lon(random));
        positions.y.push_back(lat(random));
    }
    return positions;
}

std::int64_t colored(const QImage& image)
{
    std::int64_t count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) != qRgb(255, 255, 255);
    }
    return count;
}

// range(0): points; range(1): dot size in 0.1 mm; range(2): antialiasing.
void BM_drawSymbols(benchmark::State& state)
{
    needApplication();
    const POSITIONS positions = randomPositions(state.range(0));
    const auto group = static_cast<std::size_t>(std::max<std::int64_t>(state.range(0) / 100, 100));
    QImage image(1160, 808, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, state.range(2) != 0);
    SetUsrSys(0, 360, 24, 2.5f, -90, 90, 12, 4);
    SetClip(&p, true);
    SetColor(&p, 1);
    SetFill(&p, true);
    const float size = static_cast<float>(state.range(1)) * 0.01f;
    for (auto _ : state) {
        image.fill(Qt::white);
        for (std::size_t i = 0; i < positions.x.size(); i += group) {
            const std::size_t n = std::min(group, positions.x.size() - i);
            DrawSymbols(&p, nullptr, std::span(positions.x).subspan(i, n),
                        std::span(positions.y).subspan(i, n), 1, size);
        }
    }
    p.end();
    if (colored(image) < std::min<std::int64_t>(state.range(0), 20000) / 2)
        state.SkipWithError("dots are missing");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_drawSymbols)
    ->ArgsProduct({{10000, 100000, 1000000}, {7, 20}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

void BM_writeSymbols(benchmark::State& state)
{
    const POSITIONS positions = randomPositions(state.range(0));
    std::FILE* file = std::fopen("/dev/null", "w");
    for (auto _ : state) DrawSymbols(nullptr, file, positions.x, positions.y, 1, 0.07f);
    std::fclose(file);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_writeSymbols)->Range(10000, 1000000)->Unit(benchmark::kMillisecond);

void BM_fprintf(benchmark::State& state) // for comparison
{
    const POSITIONS positions = randomPositions(state.range(0));
    std::FILE* file = std::fopen("/dev/null", "w");
    for (auto _ : state) {
        for (std::size_t i = 0; i < positions.x.size(); ++i)
            std::fprintf(file, "%g %g %g %s\n", positions.x[i], positions.y[i], 0.7, "dotr");
    }
    std::fclose(file);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_fprintf)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_writeRelativePath(benchmark::State& state)
{
    const POSITIONS positions = randomPositions(state.range(0));
    std::FILE* file = std::fopen("/dev/null", "w");
    for (auto _ : state) {
        RPsWriter out(file);
        for (std::size_t i = 1; i < positions.x.size(); ++i)
            out.gridPoint(static_cast<int>(positions.x[i]), static_cast<int>(positions.y[i]), "R");
    }
    std::fclose(file);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_writeRelativePath)->Arg(600000)->Unit(benchmark::kMillisecond);

} // namespace
