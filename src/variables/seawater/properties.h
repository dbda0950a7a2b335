#pragma once

// Properties of seawater. Pressure [dbar], 0 to 10000; temperature [degC, IPTS-68], 0 to 40; practical
// salinity, 0 to 42. Roots are taken of |salinity|, so that values slightly below 0 give results too.
// Fofonoff and Millard (1983) are UNESCO Technical Papers in Marine Science 44.

namespace seawater {

// Speed of sound [m/s]. Source: Chen and Millero (1977), in Fofonoff and Millard (1983).
// Check: soundSpeed(10000, 40, 40) = 1731.995.
[[nodiscard]] double soundSpeed(float pressure, float temperature, float salinity);

// Specific heat at constant pressure [J/(kg degC)]. Source: Millero, Perron and Desnoyers (1973), in Fofonoff
// and Millard (1983). Check: specificHeat(10000, 40, 40) = 3849.500.
[[nodiscard]] double specificHeat(float pressure, float temperature, float salinity);

// Freezing point [degC]; pressure to 500, salinity 4 to 40. Source: Millero (1978), in Fofonoff and Millard
// (1983). Check: freezingPoint(500, 40) = -2.588567.
[[nodiscard]] double freezingPoint(float pressure, float salinity);

// Oxygen in equilibrium with moist air of 1 atm [umol/kg], from potential temperature [degC], -2 to 40, and
// practical salinity, 0 to 42.
// Source: Weiss (1970), Deep-Sea Res. 17, 721-735; its ml/l are taken as 43.53 umol/kg whatever the density.
// Check: oxygenSolubility(20, 35) = 43.53 * 5.166.
[[nodiscard]] double oxygenSolubility(float potentialTemperature, float salinity);

} // namespace seawater
