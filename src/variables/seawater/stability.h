#pragma once

// Stability of the water column.

namespace seawater {

struct WATER {
    float pressure = 0;    // dbar
    float temperature = 0; // degC, IPTS-68
    float salinity = 0;    // practical
};

// Buoyancy frequency [cycles per hour] halfway between two waters, negative where the upper one is the
// heavier when both are moved there without exchange of heat; `gravity` [m/s2]. The pressures must differ.
// Source: Fofonoff and Millard (1983), UNESCO Technical Papers in Marine Science 44, with 573.066 in place of
// 3600 / (2 pi), which is greater by 1.9e-4 of the value.
// Check: buoyancyFrequency({1000, 5, 35}, {1002, 4, 35}, 9.80655) = 14.58.
[[nodiscard]] double buoyancyFrequency(const WATER& upper, const WATER& lower, double gravity);

} // namespace seawater
