#pragma once

// A little ocean of our own in the form of the atlas: the same stable cast everywhere.

#include <array>
#include <cmath>
#include <span>

#include "common/files.h"
#include "variables/seawater/neutral.h"

namespace testing_support {

enum class Quantity : std::size_t { salinity, temperature, gamma, a };

[[nodiscard]] inline std::span<float> castOf(seawater::GAMMAATLAS& atlas, std::size_t cell, Quantity quantity)
{
    constexpr std::size_t levels = seawater::atlasLevels;
    return std::span(atlas.casts).subspan((cell * 4 + static_cast<std::size_t>(quantity)) * levels, levels);
}

// The cell at a longitude and a latitude of the grid.
[[nodiscard]] constexpr std::size_t cellAt(int longitude, int latitude)
{
    return static_cast<std::size_t>(longitude / 4 + (latitude + 88) / 4 * seawater::atlasLongitudes);
}

[[nodiscard]] inline seawater::GAMMAATLAS sampleAtlas()
{
    using namespace seawater;
    GAMMAATLAS atlas;
    atlas.pressures = {0,    10,   20,   30,   50,   75,   100,  125,  150,  200,  250,
                       300,  400,  500,  600,  700,  800,  900,  1000, 1100, 1200, 1300,
                       1400, 1500, 1750, 2000, 2500, 3000, 3500, 4000, 4500, 5000, 5500};
    for (std::size_t i = 0; i < atlasLongitudes; ++i) atlas.longitudes[i] = 4.0f * static_cast<float>(i);
    for (std::size_t j = 0; j < atlasLatitudes; ++j) atlas.latitudes[j] = 4.0f * static_cast<float>(j) - 88;
    atlas.depthIndex.fill(atlasLevels);
    atlas.ocean.fill(1);
    atlas.casts.assign(std::size_t{atlasCells} * 4 * atlasLevels, 0);
    for (std::size_t cell = 0; cell < atlasCells; ++cell) {
        for (std::size_t k = 0; k < atlasLevels; ++k) {
            const float decay = std::exp(-atlas.pressures[k] / 800);
            castOf(atlas, cell, Quantity::salinity)[k] = 34.7f + 0.3f * decay;
            castOf(atlas, cell, Quantity::temperature)[k] = 1 + 14 * decay;
            castOf(atlas, cell, Quantity::gamma)[k] = 28.1f - 2 * decay;
        }
    }
    return atlas;
}

// The bytes of its two files.
template <typename Array>
std::string bytesOf(const Array& array)
{
    return {reinterpret_cast<const char*>(array.data()), array.size() * sizeof(array[0])};
}
[[nodiscard]] inline std::string gridBytes(const seawater::GAMMAATLAS& atlas)
{
    return bytesOf(atlas.longitudes) + bytesOf(atlas.latitudes) + bytesOf(atlas.pressures) +
           bytesOf(atlas.depthIndex) + bytesOf(atlas.ocean);
}
[[nodiscard]] inline bool writeAtlas(const std::string& folder, const seawater::GAMMAATLAS& atlas)
{
    return common::writeFile(folder + "llp.fdt", gridBytes(atlas)) &&
           common::writeFile(folder + "stga.fdt", bytesOf(atlas.casts));
}

} // namespace testing_support
