#include "variables/seawater/state.h"

#include <cmath>

namespace seawater {
namespace {

constexpr double barsPerDecibar = 0.1;
constexpr double smallestPressure = 1e-5; // bar; below, water counts as being at the surface

// Density [kg/m3] at the surface; rootS is the root of |s|.
double surfaceDensity(double t, double s, double rootS)
{
    const double pure =
        ((((6.536332e-9 * t - 1.120083e-6) * t + 1.001685e-4) * t - 9.095290e-3) * t + 6.793952e-2) * t +
        999.842594;
    const double bySalinity =
        (((5.3875e-9 * t - 8.2467e-7) * t + 7.6438e-5) * t - 4.0899e-3) * t + 8.24493e-1;
    const double byRoot = (-1.6546e-6 * t + 1.0227e-4) * t - 5.72466e-3;
    return (4.8314e-4 * s + byRoot * rootS + bySalinity) * s + pure;
}

// Secant bulk modulus [bar] at pressure p [bar].
double bulkModulus(double p, double t, double s, double rootS)
{
    const double surface = (((-5.155288e-5 * t + 1.360477e-2) * t - 2.327105) * t + 148.4206) * t + 19652.21 +
                           (((-6.1670e-5 * t + 1.09987e-2) * t - 0.603459) * t + 54.6746 +
                            ((-5.3009e-4 * t + 1.6483e-2) * t + 7.944e-2) * rootS) *
                               s;
    const double a = ((-5.77905e-7 * t + 1.16092e-4) * t + 1.43713e-3) * t + 3.239908 +
                     ((-1.6078e-6 * t - 1.0981e-5) * t + 2.2838e-3 + 1.91075e-4 * rootS) * s;
    const double b =
        (5.2787e-8 * t - 6.12293e-6) * t + 8.50935e-5 + ((9.1697e-10 * t + 2.0816e-8) * t - 9.9348e-7) * s;
    return (b * p + a) * p + surface;
}

} // namespace

double specificVolume(float pressure, float temperature, float salinity)
{
    const double p = barsPerDecibar * pressure;
    const double t = temperature;
    const double s = salinity;
    const double rootS = std::sqrt(std::abs(s));
    const double density = surfaceDensity(t, s, rootS);
    if (std::abs(p) < smallestPressure) return 1000.0 / density;
    return (1.0 - p / bulkModulus(p, t, s, rootS)) / density * 1000.0;
}

double specificVolumeStandard(float pressure)
{
    const double p = barsPerDecibar * pressure;
    return (1.0 - p / (21582.27 + 3.359406 * p + 5.03217e-5 * p * p)) * 0.000972662 * 1000.0;
}

double sigmaFromVolume(float pressure, float temperature, float salinity)
{
    return 1000.0 / specificVolume(pressure, temperature, salinity) - 1000.0;
}

} // namespace seawater
