#include "variables/seawater/stability.h"

#include <cmath>

#include "variables/seawater/adiabat.h"
#include "variables/seawater/state.h"

namespace seawater {
namespace {

constexpr double cyclesAnHour = 573.066; // of a frequency in radians a second

float mean(float a, float b)
{
    return static_cast<float>((static_cast<double>(a) + b) / 2);
}

} // namespace

double buoyancyFrequency(const WATER& upper, const WATER& lower, double gravity)
{
    const double h = (static_cast<double>(lower.pressure) - upper.pressure) / 2;
    const float p = mean(upper.pressure, lower.pressure);
    const double lapse = adiabaticLapseRate(p, mean(upper.temperature, lower.temperature),
                                            mean(upper.salinity, lower.salinity));
    const double shift = lapse * 0.001 * h;
    const double volume1 = specificVolume(p, static_cast<float>(upper.temperature + shift), upper.salinity);
    const double volume2 = specificVolume(p, static_cast<float>(lower.temperature - shift), lower.salinity);
    const double g = gravity / ((volume1 + volume2) / 2);
    const double n2 = -0.1 * g * g * (volume2 - volume1) / 2 / h;
    return std::copysign(std::sqrt(std::abs(n2)), n2) * cyclesAnHour;
}

} // namespace seawater
