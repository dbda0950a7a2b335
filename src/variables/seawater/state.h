#pragma once

// Equation of state of seawater, EOS-80. Pressure [dbar], 0 to 10000; temperature [degC, IPTS-68], -2 to 40;
// practical salinity, 0 to 42. Roots are taken of |salinity|, so that values slightly below 0 give results
// too. Source of all: Fofonoff and Millard (1983), UNESCO Technical Papers in Marine Science 44.

namespace seawater {

// [cm3/g]: 1000 divided by the density in kg/m3. Check: 1000 / specificVolume(10000, 40, 40) = 1059.82037.
[[nodiscard]] double specificVolume(float pressure, float temperature, float salinity);

// The same of water of salinity 35 and temperature 0 degC: the reference of the specific volume anomaly.
[[nodiscard]] double specificVolumeStandard(float pressure);

// Density anomaly [kg/m3 - 1000]. Check: sigmaFromVolume(10000, 40, 40) = 59.82037.
[[nodiscard]] double sigmaFromVolume(float pressure, float temperature, float salinity);

} // namespace seawater
