#pragma once

// The carbonate system of seawater from total carbon and alkalinity.

namespace seawater {

struct CARBONATE {
    double pH, pCO2;       // pCO2 [uatm]
    double CO2, HCO3, CO3; // [umol/kg]
};

// Temperature [degC] -2.5 to 45, practical salinity 0 to 42, total carbon and alkalinity [umol/kg] 0 to 4000,
// all limits included. Outside of these, and where no root is found, all results are `missing`. No effect of
// pressure. Total boron is 1.17314285e-5 mol/kg for each unit of salinity. The pH is that of the scale of the
// constants, NBS.
// Sources: Millero (1979), K1 and K2 of carbonic acid after Mehrbach; Dickson and Riley (1979), water;
// Johansson and Wedborg (1982), boric acid; Weiss (1974), solubility of CO2.
[[nodiscard]] CARBONATE carbonateSystem(float temperature, float salinity, float totalCarbon,
                                        float alkalinity, double missing);

} // namespace seawater
