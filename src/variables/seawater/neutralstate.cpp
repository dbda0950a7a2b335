#include "variables/seawater/neutralstate.h"

#include <cmath>

namespace seawater {
namespace {

// The polynomial of adiabaticLapseRatePerDb, for the temperatures and pressures along one adiabat: the part
// that depends on salinity only is in `s`.
double lapseRate(double s, double t, double p)
{
    return (((-2.1687e-16 * t + 1.8676e-14) * t - 4.6206e-13) * p +
            ((2.7759e-12 * t - 1.1351e-10) * s + ((-5.4481e-14 * t + 8.733e-12) * t - 6.7795e-10) * t +
             1.8741e-8)) *
               p +
           (-4.2393e-8 * t + 1.8932e-6) * s + ((6.6228e-10 * t - 6.836e-8) * t + 8.5258e-6) * t + 3.5803e-5;
}

// Density anomaly at the surface against that of salinity 35 and 0 degC.
double surfaceDifference(double s, double root, double t)
{
    const double r1 =
        ((((6.536332e-9 * t - 1.120083e-6) * t + 1.001685e-4) * t - 9.095290e-3) * t + 6.793952e-2) * t -
        28.263737;
    const double r2 = (((5.3875e-9 * t - 8.2467e-7) * t + 7.6438e-5) * t - 4.0899e-3) * t + 8.24493e-1;
    const double r3 = (-1.6546e-6 * t + 1.0227e-4) * t - 5.72466e-3;
    return (4.8314e-4 * s + r3 * root + r2) * s + r1;
}

// Secant bulk modulus [bar] at p [bar] against that of salinity 35 and 0 degC.
double modulusDifference(double s, double root, double t, double p)
{
    const double e = (9.1697e-10 * t + 2.0816e-8) * t - 9.9348e-7;
    const double b = (5.2787e-8 * t - 6.12293e-6) * t + 3.47718e-5 + e * s;
    const double c = (-1.6078e-6 * t - 1.0981e-5) * t + 2.2838e-3;
    const double aw = ((-5.77905e-7 * t + 1.16092e-4) * t + 1.43713e-3) * t - 0.1194975;
    const double a = (1.91075e-4 * root + c) * s + aw;
    const double b1 = (-5.3009e-4 * t + 1.6483e-2) * t + 7.944e-2;
    const double a1 = ((-6.1670e-5 * t + 1.09987e-2) * t - 0.603459) * t + 54.6746;
    const double kw = (((-5.155288e-5 * t + 1.360477e-2) * t - 2.327105) * t + 148.4206) * t - 1930.06;
    return (b * p + a) * p + (b1 * root + a1) * s + kw;
}

} // namespace

double temperatureAt(const WATER& water, double pressure)
{
    const double s = water.salinity - 35.0;
    const double difference = pressure - water.pressure;
    const double middle = water.pressure + 0.5 * difference;
    double t = water.temperature;
    double k = difference * lapseRate(s, t, water.pressure);
    t += 0.5 * k;
    double q = k;
    k = difference * lapseRate(s, t, middle);
    t += 0.29289322 * (k - q);
    q = 0.58578644 * k + 0.121320344 * q;
    k = difference * lapseRate(s, t, middle);
    t += 1.707106781 * (k - q);
    q = 3.414213562 * k - 4.121320344 * q;
    k = difference * lapseRate(s, t, pressure);
    return t + (k - 2.0 * q) / 6.0;
}

double sigmaOf(const WATER& water)
{
    constexpr double standardDensity = 1028.1063, standardSigma = 28.106331;
    const double s = water.salinity, t = water.temperature, p = water.pressure / 10.0;
    const double root = std::sqrt(std::abs(s));
    const double surface = surfaceDifference(s, root, t);
    double volume = 1.0 / standardDensity;
    double anomaly = -surface * volume / (standardDensity + surface);
    if (p == 0) return surface + standardSigma;
    const double standardModulus = (5.03217e-5 * p + 3.359406) * p + 21582.27;
    const double modulus = modulusDifference(s, root, t, p);
    const double compression = p / standardModulus;
    anomaly = anomaly * (1.0 - compression) +
              (volume + anomaly) * p * modulus / (standardModulus * (standardModulus + modulus));
    volume *= 1.0 - compression;
    return standardSigma + compression / volume - anomaly / (volume * (volume + anomaly));
}

double sigmaAt(const WATER& water, double pressure)
{
    return sigmaOf({water.salinity, temperatureAt(water, pressure), pressure});
}

} // namespace seawater
