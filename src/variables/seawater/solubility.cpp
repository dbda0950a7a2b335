#include "variables/seawater/solubility.h"

#include <cmath>
#include <limits>

namespace seawater {
namespace {

struct COEFFICIENTS {
    double a1, a2, a3, a4, b1, b2, b3;
};

constexpr COEFFICIENTS coefficients[gasCount] = {
    {-232.0411, 322.5546, 120.4956, -1.39165, -0.146531, 0.093621, -0.0160693}, // CFC-11
    {-220.2120, 301.8695, 114.8533, -1.39165, -0.147718, 0.093175, -0.0157340}, // CFC-12
    {-149.1630, 228.9980, 63.0162, 0, -0.405112, 0.267558, -0.0450331},         // CFC-10
    {-231.9020, 322.9150, 119.1110, -1.3917, -0.025470, 0.004540, 0.0002708},   // CFC-113
    {-68.8862, 101.4956, 28.7314, 0, -0.076146, 0.043970, -0.0068672},          // CH4
};

} // namespace

double solubility(float potentialTemperature, float salinity, double mixingRatio, Gas gas)
{
    if (gas < 0 || gas >= gasCount) return std::numeric_limits<double>::quiet_NaN();
    const COEFFICIENTS& c = coefficients[gas];
    const double t = (potentialTemperature + 273.15) / 100.0;
    const double exponent =
        c.a1 + c.a2 / t + c.a3 * std::log(t) + c.a4 * t * t + salinity * (c.b1 + c.b2 * t + c.b3 * t * t);
    return std::exp(exponent) * mixingRatio;
}

} // namespace seawater
