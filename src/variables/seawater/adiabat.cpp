#include "variables/seawater/adiabat.h"

namespace seawater {

double adiabaticLapseRate(float pressure, float temperature, float salinity)
{
    const double p = 0.1 * pressure; // bar
    const double t = temperature;
    const double s = static_cast<double>(salinity) - 35.0;
    const double perBar = (((-2.1687e-13 * t + 1.8676e-11) * t - 4.6206e-10) * p +
                           ((2.7759e-10 * t - 1.1351e-8) * s +
                            ((-5.4481e-12 * t + 8.733e-10) * t - 6.7795e-8) * t + 1.8741e-6)) *
                              p +
                          (-4.2393e-7 * t + 1.8932e-5) * s +
                          ((6.6228e-9 * t - 6.836e-7) * t + 8.5258e-5) * t + 3.5803e-4;
    return 100.0 * perBar;
}

double adiabaticLapseRatePerDb(float salinity, float temperature, float pressure)
{
    const double p = pressure;
    const double t = temperature;
    const double s = static_cast<double>(salinity) - 35.0;
    return (((-2.1687e-16 * t + 1.8676e-14) * t - 4.6206e-13) * p +
            ((2.7759e-12 * t - 1.1351e-10) * s + ((-5.4481e-14 * t + 8.733e-12) * t - 6.7795e-10) * t +
             1.8741e-8)) *
               p +
           (-4.2393e-8 * t + 1.8932e-6) * s + ((6.6228e-10 * t - 6.836e-8) * t + 8.5258e-6) * t + 3.5803e-5;
}

double potentialTemperature(float pressure, float temperature, float salinity, float referencePressure)
{
    const double difference = static_cast<double>(referencePressure) - pressure;
    const float middle = static_cast<float>(pressure + 0.5 * difference);
    const auto change = [&](float p, double t) { // the temperature goes through single precision
        return difference * 0.001 * adiabaticLapseRate(p, static_cast<float>(t), salinity);
    };
    double t = temperature;
    double k = change(pressure, t);
    t += 0.5 * k;
    double q = k;
    k = change(middle, t);
    t += 0.29289322 * (k - q);
    q = 0.58578644 * k + 0.121320344 * q;
    k = change(middle, t);
    t += 1.707106781 * (k - q);
    q = 3.414213562 * k - 4.121320344 * q;
    k = change(referencePressure, t);
    return t + (k - 2.0 * q) / 6.0;
}

} // namespace seawater
