#pragma once

// Conversions of a source variable on its way into the collection: the table that a user chooses from, and
// its application to a finished station.

#include <array>
#include <span>
#include <string_view>

#include "collection/stationdata.h"
#include "collection/varinfo.h"

namespace importing {

// A row is y = a x + b, unless b is MISSING_VALUE: then a selects a special conversion.
struct CONVERSIONROW {
    int id;
    std::string_view label;
    float spare;
    float a, b;
};

inline constexpr float pressureToDepth = 0, potentialToTemperature = 1, depthToPressure = 2;
inline constexpr int potentialTemperatureRow = 3, generalLinearRow = 8;

inline constexpr auto variableConversions = std::to_array<CONVERSIONROW>({
    {0, "Identity Transformation", 0, 1, 0},
    {1, "Press [dB] -> Depth [m]", 0, pressureToDepth, common::MISSING_VALUE},
    {2, "Depth [m] -> Press [dB]", 0, depthToPressure, common::MISSING_VALUE},
    {3, "Pot. Temp [°C] -> Temp [°C]", 0, potentialToTemperature, common::MISSING_VALUE},
    {4, "Oxygen [ml/l] -> Oxygen [umol/kg]", 0, 43.53f, 0},
    {5, "Oxygen [umol/kg] -> Oxygen [ml/l]", 0, 0.022972664f, 0},
    {6, "Any [umol/kg] -> Any [umol/l]", 0, 1.025f, 0},
    {7, "Any [umol/l] -> Any [umol/kg]", 0, 0.97561f, 0},
    {8, "General Linear Transformation", 0, 1, 0}, // a and b are asked for
});
static_assert(variableConversions.size() == 9);

// The collection's variables that the potential temperature needs; 0 where they are not known.
struct KEYVARIABLES {
    int depth = 0, salinity = 0;
};

// Applies `scale` and `offset` of each target's source to the station. Index 0 of both spans is no variable;
// targets holds the collection's variables 1 to size - 1. A result that is not finite becomes missing.
void applyConversions(collection::STATIONDATA& station, std::span<const collection::VARINFO> sources,
                      std::span<const collection::VARINFO> targets, KEYVARIABLES keys);

} // namespace importing
