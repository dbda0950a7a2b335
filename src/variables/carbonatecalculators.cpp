#include <algorithm>

#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/seawater/carbonate.h"
#include "variables/waterlevels.h"

namespace variables {
namespace {

using common::MISSING_VALUE;
using seawater::CARBONATE;

// One of the results of the carbonate system. What is within the windows counts, also where the system has
// no solution. All flags are "unknown".
template <double CARBONATE::*result>
int carbonateResult(const CALCULATION& calculation)
{
    const RWaterLevels water(calculation);
    const std::span<const float> carbon = calculation.source(4), alkalinity = calculation.source(5);
    if (!water.areThere() || carbon.empty() || alkalinity.empty()) return absent;
    std::fill(calculation.flags.begin(), calculation.flags.end(), collection::flagUnknown);
    int count = 0;
    for (std::size_t k = 0; k < calculation.levels(); ++k) {
        calculation.values[k] = MISSING_VALUE;
        if (!water.areUsable(k) || !isCarbon(carbon[k]) || !isCarbon(alkalinity[k])) continue;
        ++count;
        const CARBONATE system = seawater::carbonateSystem(
            water.potentialTemperature(k, 0), water.salinity(k), carbon[k], alkalinity[k], MISSING_VALUE);
        calculation.values[k] = cellOf(system.*result);
    }
    return count;
}

} // namespace

std::span<const CALCULATORROW> carbonateCalculators()
{
    static constexpr CALCULATORROW rows[] = {{idPH, carbonateResult<&CARBONATE::pH>},
                                             {idPCO2, carbonateResult<&CARBONATE::pCO2>},
                                             {idCO2, carbonateResult<&CARBONATE::CO2>},
                                             {idHCO3, carbonateResult<&CARBONATE::HCO3>},
                                             {idCO3, carbonateResult<&CARBONATE::CO3>}};
    return rows;
}

} // namespace variables
