#include "variables/seawater/properties.h"

#include <cmath>

namespace seawater {
namespace {

constexpr double barsPerDecibar = 0.1;

// The specific heat at the surface.
double surfaceHeat(double t, double s, double rootS)
{
    const double pure = (((2.093236e-5 * t - 2.654387e-3) * t + 0.1412855) * t - 3.720283) * t + 4217.4;
    const double bySalinity = (-1.38385e-3 * t + 0.1072763) * t - 7.643575;
    const double byRoot = (5.148e-5 * t - 4.07718e-3) * t + 0.1770383;
    return (byRoot * rootS + bySalinity) * s + pure;
}

// What pressure p [bar] adds to it in pure water, and what it adds with the salt.
double pureHeatOfPressure(double p, double t)
{
    const double linear = (((1.7168e-8 * t + 2.0357e-6) * t - 3.13885e-4) * t + 1.45747e-2) * t - 0.49592;
    const double square = (((2.2956e-11 * t - 4.0027e-9) * t + 2.87533e-7) * t - 1.08645e-5) * t + 2.4931e-4;
    const double cube = ((6.136e-13 * t - 6.5637e-11) * t + 2.6380e-9) * t - 5.422e-8;
    return ((cube * p + square) * p + linear) * p;
}

double saltHeatOfPressure(double p, double t, double s, double rootS)
{
    const double linear = (((-2.9179e-10 * t + 2.5941e-8) * t + 9.802e-7) * t - 1.28315e-4) * t + 4.9247e-3 +
                          ((3.122e-8 * t - 1.517e-6) * t - 1.2331e-4) * rootS;
    const double square = ((1.8448e-11 * t - 2.3905e-9) * t + 1.17054e-7) * t - 2.9558e-6 + 9.971e-8 * rootS;
    const double cube = (3.513e-13 * t - 1.7682e-11) * t + 5.540e-10 - 1.4300e-12 * t * rootS;
    return ((cube * p + square) * p + linear) * p * s;
}

} // namespace

double soundSpeed(float pressure, float temperature, float salinity)
{
    const double p = barsPerDecibar * pressure;
    const double t = temperature;
    const double s = salinity;
    const double pure0 =
        ((((3.1464e-9 * t - 1.47800e-6) * t + 3.3420e-4) * t - 5.80852e-2) * t + 5.03711) * t + 1402.388;
    const double pure1 = (((-6.1185e-10 * t + 1.3621e-7) * t - 8.1788e-6) * t + 6.8982e-4) * t + 0.153563;
    const double pure2 = (((1.0405e-12 * t - 2.5335e-10) * t + 2.5974e-8) * t - 1.7107e-6) * t + 3.1260e-5;
    const double pure3 = (-2.3643e-12 * t + 3.8504e-10) * t - 9.7729e-9;
    const double salt0 = (((-3.21e-8 * t + 2.006e-6) * t + 7.164e-5) * t - 1.262e-2) * t + 1.389;
    const double salt1 = (((-2.0122e-10 * t + 1.0507e-8) * t - 6.4885e-8) * t - 1.2580e-5) * t + 9.4742e-5;
    const double salt2 = ((7.988e-12 * t - 1.6002e-10) * t + 9.1041e-9) * t - 3.9064e-7;
    const double salt3 = (-3.389e-13 * t + 6.649e-12) * t + 1.100e-10;
    const double pure = ((pure3 * p + pure2) * p + pure1) * p + pure0;
    const double bySalinity = ((salt3 * p + salt2) * p + salt1) * p + salt0;
    const double byRoot = -1.922e-2 - 4.42e-5 * t + (7.3637e-5 + 1.7945e-7 * t) * p;
    const double bySquare = 1.727e-3 - 7.9836e-6 * p;
    return ((bySquare * s + byRoot * std::sqrt(std::abs(s))) + bySalinity) * s + pure;
}

double specificHeat(float pressure, float temperature, float salinity)
{
    const double p = barsPerDecibar * pressure;
    const double t = temperature;
    const double s = salinity;
    const double rootS = std::sqrt(std::abs(s));
    return surfaceHeat(t, s, rootS) + pureHeatOfPressure(p, t) + saltHeatOfPressure(p, t, s, rootS);
}

double freezingPoint(float pressure, float salinity)
{
    const double s = salinity;
    return (-0.0575 + 1.710523e-3 * std::sqrt(std::abs(s)) - 2.154996e-4 * s) * s - 7.53e-4 * pressure;
}

double oxygenSolubility(float potentialTemperature, float salinity)
{
    const double kelvin = potentialTemperature + 273.15;
    const double t = kelvin / 100.0;
    const double exponent = -173.4292 + 249.6339 / t + 143.3483 * std::log(t) - 21.8492 * t +
                            salinity * (-0.033096 + 0.014259 * t - 1.7e-7 * kelvin * kelvin);
    return std::exp(exponent) * 43.53;
}

} // namespace seawater
