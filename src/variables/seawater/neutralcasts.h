#pragma once

// The casts of the atlas around a place.

#include <array>
#include <cstddef>
#include <vector>

#include "variables/seawater/neutral.h"
#include "variables/seawater/neutralstate.h"

namespace seawater {

// A cast of the atlas, with what is asked of it for every sample.
struct ATLASCAST {
    double longitude = 0, latitude = 0, weight = 0;
    int ocean = 0;
    std::size_t levels = 0; // at least two
    std::array<WATER, atlasLevels> water{};
    std::array<double, atlasLevels> gamma{}, a{};
    std::array<double, atlasLevels> potentialTemperature{}; // [degC], reference 0 dbar
    std::array<double, atlasLevels> sigma{};                // in situ
    // Between a level and the next: how much denser the deeper is, both moved to the pressure between them.
    std::array<double, atlasLevels> step{};

    [[nodiscard]] double pressure(std::size_t level) const { return water[level].pressure; }
    // The level above a pressure, never the deepest one.
    [[nodiscard]] std::size_t intervalOf(double pressure) const;
    // Water between a level and the next: salinity and potential temperature run linearly.
    [[nodiscard]] WATER waterAt(double pressure, std::size_t level) const;
    [[nodiscard]] double gammaAt(double pressure) const;
};

// What the atlas has around a place: at most four casts, and the number of the ocean.
struct NEIGHBOURHOOD {
    std::vector<ATLASCAST> casts;
    int ocean = 0; // that of the nearest cast
};

// Longitude 0 to below 360, latitude -80 to 64.
[[nodiscard]] NEIGHBOURHOOD castsAround(const GAMMAATLAS& atlas, double longitude, double latitude);

} // namespace seawater
