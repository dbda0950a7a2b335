#include "variables/atmosphere.h"
#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/seawater/adiabat.h"
#include "variables/seawater/pressure.h"
#include "variables/sourceflags.h"

namespace variables {
namespace {

using common::MISSING_VALUE;

bool hasAllSources(const CALCULATION& calculation)
{
    for (int n = 1; n <= 4; ++n) {
        if (calculation.sourceCount(n) <= 0) return false;
    }
    return true;
}

// Concentration in equilibrium with the atmosphere, at the pressure of the surface.
double equilibrium(float pressure, float temperature, float salinity, double atmosphere, seawater::Gas gas)
{
    const auto theta = static_cast<float>(seawater::potentialTemperature(pressure, temperature, salinity, 0));
    return seawater::solubility(theta, salinity, atmosphere, gas);
}

// result(concentration, equilibrium, atmosphere), cell by cell. Without gas in the atmosphere there is
// nothing to compare with, and all cells are missing.
template <typename Result>
int compareWithAtmosphere(const CALCULATION& calculation, seawater::Gas gas, Result result)
{
    if (!hasAllSources(calculation)) return absent;
    const auto atmosphere =
        atmosphereOver(calculation.station.header, calculation.with.histories[static_cast<std::size_t>(gas)]);
    if (!atmosphere) return absent;
    const auto depth = calculation.source(1), temperature = calculation.source(2),
               salinity = calculation.source(3), tracer = calculation.source(4);
    const seawater::RPressureAtLatitude here(calculation.station.header.latitude);
    int count = 0;
    for (std::size_t k = 0; k < calculation.levels(); ++k) {
        float& cell = calculation.values[k];
        cell = MISSING_VALUE;
        if (!(*atmosphere > 0) || !isDepth(depth[k]) || !isTemperature(temperature[k]) ||
            !isSalinity(salinity[k]) || !isTracer(tracer[k]))
            continue;
        const double inEquilibrium = equilibrium(static_cast<float>(here.pressure(depth[k])), temperature[k],
                                                 salinity[k], *atmosphere, gas);
        cell = cellOf(result(tracer[k], inEquilibrium, *atmosphere));
        if (cell != MISSING_VALUE) ++count;
    }
    setSourceFlags(calculation);
    return count;
}

template <seawater::Gas gas>
int saturation(const CALCULATION& calculation)
{
    return compareWithAtmosphere(calculation, gas, [](double concentration, double inEquilibrium, double) {
        return 100 * concentration / inEquilibrium;
    });
}

template <seawater::Gas gas>
int partialPressure(const CALCULATION& calculation)
{
    return compareWithAtmosphere(calculation, gas,
                                 [](double concentration, double inEquilibrium, double atmosphere) {
                                     return concentration / inEquilibrium * atmosphere;
                                 });
}

} // namespace

std::span<const CALCULATORROW> tracerCalculators()
{
    using namespace seawater;
    static constexpr CALCULATORROW rows[] = {
        {idFirstSaturation, saturation<gasCfc11>},
        {idFirstSaturation + 1, saturation<gasCfc12>},
        {idCfc10Saturation, saturation<gasCfc10>},
        {idCfc10Saturation + 1, saturation<gasCfc113>},
        {idCfc10Saturation + 2, saturation<gasCh4>},
        {idFirstPartialPressure, partialPressure<gasCfc11>},
        {idFirstPartialPressure + 1, partialPressure<gasCfc12>},
        {idFirstPartialPressure + 2, partialPressure<gasCfc10>},
        {idFirstPartialPressure + 3, partialPressure<gasCfc113>},
        {idLastPartialPressure, partialPressure<gasCh4>},
    };
    return rows;
}

} // namespace variables
