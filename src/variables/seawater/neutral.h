#pragma once

// Neutral density: the label of a sample is that of the neutral surface through it in a global reference
// atlas.
// Source: Jackett and McDougall (1997), J. Phys. Oceanogr. 27, 237-263.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace seawater {

inline constexpr int atlasLongitudes = 90, atlasLatitudes = 45, atlasLevels = 33;
inline constexpr int atlasCells = atlasLongitudes * atlasLatitudes;

struct GAMMAATLAS {
    std::array<float, atlasLongitudes> longitudes{}; // degrees east, ascending
    std::array<float, atlasLatitudes> latitudes{};   // degrees north, ascending
    std::array<float, atlasLevels> pressures{};      // dbar, ascending
    // By cell, longitude varying fastest: levels with data (0 on land), and number of the ocean.
    std::array<std::int32_t, atlasCells> depthIndex{}, ocean{};
    // By cell: salinities, temperatures [degC], labels [kg/m3 - 1000], and the coefficient a of the profile
    // of labels below each level, 33 of each.
    std::vector<float> casts;
};

// Labels n samples of a cast. Pressure [dbar] 0 to 10000, temperature [degC, IPTS-68] -2.5 to 40, practical
// salinity 0 to 42; other samples, and those that the atlas has no label for, get `missing`. Position in
// degrees: longitude to 360 (below 0 counts west), latitude -80 to 64. gamma [kg/m3 - 1000] and its error
// bounds have room for n values. Returns 0, or 1 if the position is out of range, there is no cast of the
// atlas around it, or no sample got a label.
[[nodiscard]] int neutralDensity(const GAMMAATLAS& atlas, std::span<const float> salinity,
                                 std::span<const float> temperature, std::span<const float> pressure,
                                 double longitude, double latitude, std::span<double> gamma,
                                 std::span<double> errorLow, std::span<double> errorHigh, double missing);

// Whether two places lie in connected water (oceanpaths.cpp), by their oceans (1 and 2 North and South
// Pacific, 3 and 4 Indian, 5 and 6 Atlantic), at a pressure [dbar].
[[nodiscard]] bool oceanPathsConnected(double lon1, double lat1, int ocean1, double lon2, double lat2,
                                       int ocean2, double pressure);

} // namespace seawater
