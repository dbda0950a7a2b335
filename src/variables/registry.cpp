#include "variables/registry.h"

#include "collection/varinfo.h"
#include "common/text.h"

namespace variables {

const DERIVEDROWS& derivedRows()
{
    static constexpr DERIVEDROWS rows{{
        {"Brunt-Vaisala Freq.", "[cycl/h]", 6, 2, 1, 1, 1, 1, 0.01f, 0.01f, 4},
        {"CFC-11 Saturation", "[%]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 7},
        {"CFC-12 Saturation", "[%]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 8},
        {"CFC-10 Saturation", "[%]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 24},
        {"CFC-113 Saturation", "[%]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 25},
        {"CH4 Saturation", "[%]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 26},
        {"CO2(TCO2,TALK)", "[~$m~#m/kg]", 6, 1, 1, 1, 1, 1, 1, 0.01f, 21},
        {"CO3--(TCO2,TALK)", "[~$m~#m/kg]", 7, 1, 1, 1, 1, 1, 1, 0.01f, 23},
        {"Cruise Number", "[]", 6, 0, 0, 0, 0, 0, 1, 0.01f, 46},
        {"Day of Year(header mon/day/year)", "[days]", 5, 0, 0, 0, 0, 1, 1, 0.01f, 14},
        {"Day of Year(time variable)", "[days]", 5, 0, 0, 0, 0, 1, 1, 0.01f, 49},
        {"Depth(Press)", "[m]", 5, 0, 0, 0, 0, 1, 1, 0.01f, 40},
        {"Difference from Reference", "[]", 8, 3, 0, 0, 0, 1, 1, 0.01f, 18},
        {"Dynamic Height", "[dyn m]", 6, 2, 1, 1, 1, 1, 0.01f, 0.01f, 3},
        {"Expression", "[]", 8, 3, 0, 0, 0, 1, 1, 0.01f, 45},
        {"Freezing Temperature", "[°C]", 6, 2, 1, 0, 1, 1, 0.01f, 0.01f, 42},
        {"HCO3-(TCO2,TALK)", "[~$m~#m/kg]", 7, 1, 1, 1, 1, 1, 1, 0.01f, 22},
        {"in situ Temperature(z,Tp,s)", "[°C]", 6, 2, 1, 1, 1, 1, 1, 0.01f, 47},
        {"Latitude", "[°]", 7, 2, 0, 0, 0, 1, 1, 0.01f, 16},
        {"Longitude", "[°]", 8, 2, 0, 0, 0, 1, 1, 0.01f, 15},
        {"Macro File", "[]", 8, 3, 0, 0, 0, 1, 1, 0.01f, 12},
        {"Neutral Density", "[kg/m~^3]", 7, 3, 1, 1, 1, 0, 0.001f, 0.01f, 44},
        {"Oxygen Saturation", "[%]", 6, 1, 1, 1, 1, 1, 1, 0.01f, 6},
        {"Patches", "[]", 7, 0, 0, 0, 0, 1, 1, 0.01f, 17},
        {"pCFC-11", "[pptv]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 27},
        {"pCFC-12", "[pptv]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 28},
        {"pCFC-10", "[pptv]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 29},
        {"pCFC-113", "[pptv]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 30},
        {"pCH4", "[ppbv]", 6, 0, 1, 1, 1, 1, 1, 0.01f, 31},
        {"pCO2(TCO2,TALK)", "[~$m~#Atm]", 7, 1, 1, 1, 1, 1, 1, 0.01f, 20},
        {"pH(TCO2,TALK)", "[]", 6, 3, 1, 1, 1, 1, 1, 0.01f, 19},
        {"Potential Density", "[kg/m~^3]", 7, 3, 1, 1, 1, 0, 0.001f, 0.01f, 2},
        {"Potential Temperature", "[°C]", 6, 2, 1, 1, 1, 1, 0.01f, 0.01f, 1},
        {"Pressure(Depth)", "[db]", 5, 0, 1, 0, 0, 1, 5, 0.01f, 0},
        {"Ratio", "", 6, 2, 0, 0, 0, 1, 1, 0.01f, 9},
        {"Specific Heat Cp", "[J/(kg °C)]", 7, 1, 1, 1, 1, 0, 1, 0.01f, 43},
        {"Sound Speed", "[m/s]", 6, 0, 1, 1, 1, 0, 1, 0.01f, 5},
        {"Station Number", "[]", 6, 0, 0, 0, 0, 0, 1, 0.01f, 41},
        {"Time(header mon/day/year)", "[yr]", 8, 2, 0, 0, 0, 1, 1, 0.01f, 13},
        {"Time(time variable)", "[yr]", 8, 2, 0, 0, 0, 1, 1, 0.01f, 48},
        {"Vertical Derivative", "", 7, 2, 1, 0, 0, 1, 1, 0.01f, 10},
        {"Vertical Derivative (2nd)", "", 7, 2, 1, 0, 0, 1, 1, 0.01f, 50},
        {"Vertical Integral", "", 7, 2, 1, 0, 0, 1, 1, 0.01f, 11},
    }};
    return rows;
}

int findDerivedRow(std::string_view label)
{
    const std::string_view wanted = common::trimBlanks(label);
    for (int row = 0; row < derivedRowCount; ++row) {
        if (common::equalsIgnoreCase(derivedRows()[static_cast<std::size_t>(row)].label, wanted)) return row;
    }
    return -1;
}

int rowOfCalculator(int id)
{
    for (int row = 0; row < derivedRowCount; ++row) {
        if (derivedRows()[static_cast<std::size_t>(row)].id == id) return row;
    }
    return -1;
}

} // namespace variables
