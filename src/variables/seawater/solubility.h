#pragma once

// Solubility of the transient tracers.

namespace seawater {

enum Gas : int { gasCfc11 = 0, gasCfc12 = 1, gasCfc10 = 2, gasCfc113 = 3, gasCh4 = 4, gasCount = 5 };

// Concentration in equilibrium with an atmosphere of `mixingRatio`, from potential temperature [degC], -2 to
// 40, and practical salinity, 0 to 42: [pmol/kg] for ppt of CFC-11, CFC-12, CFC-10 and CFC-113, [nl/l] for
// ppb of CH4. Air is moist, at 1 atm. A number that is no gas gives NaN.
// Sources: Warner and Weiss (1985), CFC-11 and CFC-12; Bullister and Wisegarver (1998), CFC-10; Bu and Warner
// (1995), CFC-113; Wiesenburg and Guinasso (1979), CH4.
// Check: solubility(20, 35, 1, gasCfc11) = 0.00881446.
[[nodiscard]] double solubility(float potentialTemperature, float salinity, double mixingRatio, Gas gas);

} // namespace seawater
