#pragma once

// Solubility of the transient tracers.

namespace seawater {

enum Gas : int { gasCfc11 = 0, gasCfc12 = 1, gasCfc10 = 2, gasCfc113 = 3, gasCh4 = 4, gasCount = 5 };

// Concentration in equilibrium with an atmosphere of `mixingRatio`, from potential temperature [degC] and
// practical salinity: [pmol/kg] for ppt of CFC-11, CFC-12, CFC-10 and CFC-113, [nl/l] for ppb of CH4.
// Sources: Warner and Weiss (1985); Bullister and Wisegarver (1998), CFC-10; Bu and Warner (1995), CFC-113;
// Wiesenburg and Guinasso (1979), CH4.
[[nodiscard]] double solubility(float potentialTemperature, float salinity, double mixingRatio, Gas gas);

} // namespace seawater
