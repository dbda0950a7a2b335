#include "variables/seawater/pressure.h"

#include <cmath>

namespace seawater {
namespace {

constexpr float radiansPerDegree = 0.017453292f;

double squaredSine(float latitude)
{
    const double sine = std::sin(std::abs(static_cast<double>(latitude)) * radiansPerDegree);
    return sine * sine;
}

} // namespace

double pressureFromDepth(float depth, float latitude)
{
    const double c = 1.0 - (0.00592 + 0.00525 * squaredSine(latitude));
    return (c - std::sqrt(c * c - 8.84e-6 * static_cast<double>(depth))) * 226244.3;
}

double depthFromPressure(float pressure, float latitude)
{
    const double p = pressure;
    const double x = squaredSine(latitude);
    const double gravity = 9.780318 * (1.0 + (5.2788e-3 + 2.36e-5 * x) * x) + 1.092e-6 * p;
    return (((-1.82e-15 * p + 2.279e-10) * p - 2.2512e-5) * p + 9.72659) * p / gravity;
}

} // namespace seawater
