#pragma once

// Where a surface through a sample meets a cast of the atlas.

#include <array>
#include <vector>

#include "variables/seawater/neutralcasts.h"

namespace seawater {

// A sample, with its density at the pressures between it and each level of the atlas: those are the same for
// all casts.
struct NEUTRALSAMPLE {
    WATER water;
    double potentialTemperature = 0;               // [degC], reference 0 dbar
    std::array<double, atlasLevels> middleSigma{}; // moved to half way between it and each level
};
[[nodiscard]] NEUTRALSAMPLE neutralSample(const WATER& water, const GAMMAATLAS& atlas, std::size_t levels);

enum class Meeting { none, one, several };

// Where the neutral surface through the sample meets the cast, `at` if it does so once.
[[nodiscard]] Meeting neutralCrossing(const NEUTRALSAMPLE& sample, const ATLASCAST& cast, WATER& at);

// Pressures where the cast has the density in situ that the sample takes there; at most 50, from the top.
[[nodiscard]] std::vector<double> insituCrossings(const NEUTRALSAMPLE& sample, const ATLASCAST& cast);

} // namespace seawater
