#pragma once

// The files of a layer set: coast, bathymetry and topography in one resolution.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cdtrecords.h"
#include "geos.h"
#include "relief.h"

namespace tools {

struct RESOLUTION {
    std::string_view name;
    double coastTolerance;  // degrees
    int reliefFactor;       // nodes of the relief to one of its own; 1: all
    double reliefTolerance; // degrees
    double smallestRing;    // square degrees; smaller rings of the relief are left out
    CUTRULES cut;
};
inline constexpr RESOLUTION lowResolution{"low", 0.02, 4, 0.05, 0.03, {30, 1}};
inline constexpr RESOLUTION highResolution{"high", 0.002, 1, 0.01, 0.005, {30, 0.5}};

// Depths and heights in metres; a layer is the area above it, land and all.
inline constexpr std::array<int, 7> bathymetrySteps = {6000, 5000, 4000, 3000, 2000, 1000, 500};
inline constexpr std::array<int, 8> topographySteps = {200, 500, 1000, 1500, 2000, 3000, 4000, 5000};

// The area of the closed globe `grid` above `height` metres (negative below sea level). The contour lies half
// a metre lower: heights are whole, so that no node is on it.
[[nodiscard]] std::vector<POLYGON> areaAbove(const RGeos& geos, const GRID& grid, int height,
                                             const RESOLUTION& resolution);

} // namespace tools
