// Labels of neutral density a second. With the atlas of its authors, if the environment names the shared data
// (NVQ_SHARED_DATA), otherwise with one that is made here; the label of each line tells which.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "variables/gammaatlas.h"
#include "variables/seawater/neutral.h"

namespace {

using namespace seawater;

struct ATLASDATA {
    std::shared_ptr<const GAMMAATLAS> atlas;
    const char* origin = "made atlas";
};

// A stably stratified ocean of full depth everywhere, warmer towards the equator. Its labels are plausible,
// no more.
std::shared_ptr<const GAMMAATLAS> madeAtlas()
{
    constexpr std::array<float, atlasLevels> pressures = {
        0,   10,   20,   30,   50,   75,   100,  125,  150,  200,  250,  300,  400,  500,  600,  700, 800,
        900, 1000, 1100, 1200, 1300, 1400, 1500, 1750, 2000, 2500, 3000, 3500, 4000, 4500, 5000, 5500};
    auto atlas = std::make_shared<GAMMAATLAS>();
    atlas->pressures = pressures;
    for (std::size_t i = 0; i < atlasLongitudes; ++i) atlas->longitudes[i] = 4.0f * static_cast<float>(i);
    for (std::size_t j = 0; j < atlasLatitudes; ++j) atlas->latitudes[j] = 4.0f * static_cast<float>(j) - 88;
    atlas->depthIndex.fill(atlasLevels);
    atlas->ocean.fill(1);
    atlas->casts.assign(std::size_t{atlasCells} * 4 * atlasLevels, 0);
    for (std::size_t cell = 0; cell < atlasCells; ++cell) {
        const float latitude = atlas->latitudes[cell / atlasLongitudes];
        float* const cast = atlas->casts.data() + cell * 4 * atlasLevels;
        for (std::size_t k = 0; k < atlasLevels; ++k) {
            const float decay = std::exp(-pressures[k] / 800);
            cast[k] = 34.7f + 0.3f * decay;
            cast[atlasLevels + k] = 1 + (14 - 0.1f * std::abs(latitude)) * decay;
            cast[2 * atlasLevels + k] = 28.1f - 2.0f * decay;
        }
    }
    return atlas;
}

const ATLASDATA& atlasData()
{
    static const ATLASDATA data = [] {
        const char* const shared = std::getenv("NVQ_SHARED_DATA");
        std::string fault = "not named";
        ATLASDATA found;
        if (shared) found.atlas = variables::loadGammaAtlas(std::string(shared) + "/gamma_n/", fault);
        if (found.atlas)
            found.origin = "published atlas";
        else
            found.atlas = madeAtlas();
        return found;
    }();
    return data;
}

// A cast of the open South Pacific down to 4500 dbar.
struct CAST {
    explicit CAST(std::size_t n) : pressure(n), salinity(n), temperature(n), gamma(n), low(n), high(n)
    {
        for (std::size_t k = 0; k < n; ++k) {
            pressure[k] = 1 + 4500 * static_cast<float>(k) / static_cast<float>(n - 1);
            const float decay = std::exp(-pressure[k] / 700);
            temperature[k] = 1.2f + 12 * decay;
            salinity[k] = 34.71f + 0.4f * decay - 0.5f * std::exp(-std::pow((pressure[k] - 900) / 400, 2.0f));
        }
    }
    std::vector<float> pressure, salinity, temperature;
    std::vector<double> gamma, low, high;
};

void BM_neutralDensity(benchmark::State& state)
{
    constexpr double missing = -1e10;
    CAST cast(static_cast<std::size_t>(state.range(0)));
    const ATLASDATA& data = atlasData();
    const auto run = [&] {
        return neutralDensity(*data.atlas, cast.salinity, cast.temperature, cast.pressure, 189, -41.5,
                              cast.gamma, cast.low, cast.high, missing);
    };
    const auto labelled = [&] {
        return std::ranges::count_if(cast.gamma, [](double g) { return g > 20 && g < 30; });
    };
    if (run() != 0 || labelled() < state.range(0) * 9 / 10) {
        state.SkipWithError("wrong answer");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(run());
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["labelled"] = static_cast<double>(labelled());
    state.SetLabel(data.origin);
}
BENCHMARK(BM_neutralDensity)->Arg(24)->Arg(2000)->Unit(benchmark::kMillisecond);

} // namespace
