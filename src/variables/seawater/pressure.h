#pragma once

// Depth and pressure in a standard ocean (salinity 35, temperature 0 degC). The sign of the latitude is
// irrelevant.

namespace seawater {

// Pressure [dbar] at a depth [m], 0 to 10000, and latitude [degrees]. A depth beyond the validity of the root
// (about 110 km) gives NaN.
// Source: Saunders (1981). Check: pressureFromDepth(10000, 30) = 10309.45.
[[nodiscard]] double pressureFromDepth(float depth, float latitude);

// Depth [m] at a pressure [dbar], 0 to 10000, and latitude [degrees], without the dynamic height anomaly.
// Source: Saunders and Fofonoff (1976), in Fofonoff and Millard (1983).
// Check: depthFromPressure(10000, 30) = 9712.653.
[[nodiscard]] double depthFromPressure(float pressure, float latitude);

// Acceleration of gravity [m/s2] at the surface at a latitude [degrees].
// Source: International Gravity Formula of 1967 in the form 9.780318 (1 + 0.0053024 sin2 - 0.0000059 sin2(2
// lat)).
[[nodiscard]] double gravity(float latitude);

} // namespace seawater
