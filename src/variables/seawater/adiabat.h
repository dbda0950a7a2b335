#pragma once

// Temperature along an adiabat. Pressure [dbar], 0 to 10000; temperature [degC, IPTS-68], -2 to 40; practical
// salinity, 0 to 42.

namespace seawater {

// Adiabatic lapse rate [degC per 1000 dbar]. The polynomial is evaluated in bars.
// Source: Bryden (1973), in Fofonoff and Millard (1983). Check: adiabaticLapseRate(10000, 40, 40) =
// 0.3255976.
[[nodiscard]] double adiabaticLapseRate(float pressure, float temperature, float salinity);

// The same [degC per dbar], evaluated in decibars; the two differ by rounding.
// Check: adiabaticLapseRatePerDb(40, 40, 10000) = 3.255976e-4.
[[nodiscard]] double adiabaticLapseRatePerDb(float salinity, float temperature, float pressure);

// Temperature [degC] that water of `temperature` at `pressure` takes when it is moved without exchange of
// heat to `referencePressure`. With the two pressures exchanged it gives the temperature in situ of a
// potential temperature.
// Source: Fofonoff (1977), in Fofonoff and Millard (1983). Check: potentialTemperature(10000, 40, 40, 0) =
// 36.89073.
[[nodiscard]] double potentialTemperature(float pressure, float temperature, float salinity,
                                          float referencePressure);

} // namespace seawater
