#include "variables/seawater/pressure.h"

namespace seawater {
namespace {

constexpr double gravityAtEquator = 9.780318; // m/s2

double radiansOf(float latitude)
{
    constexpr float radiansPerDegree = 0.017453292f;
    return std::abs(static_cast<double>(latitude)) * radiansPerDegree;
}

double squaredSine(double angle)
{
    const double sine = std::sin(angle);
    return sine * sine;
}

} // namespace

RPressureAtLatitude::RPressureAtLatitude(float latitude)
    : c_(1.0 - (0.00592 + 0.00525 * squaredSine(radiansOf(latitude))))
{
}

double pressureFromDepth(float depth, float latitude)
{
    return RPressureAtLatitude(latitude).pressure(depth);
}

RDepthAtLatitude::RDepthAtLatitude(float latitude)
{
    const double x = squaredSine(radiansOf(latitude));
    surfaceGravity_ = gravityAtEquator * (1.0 + (5.2788e-3 + 2.36e-5 * x) * x);
}

double depthFromPressure(float pressure, float latitude)
{
    return RDepthAtLatitude(latitude).depth(pressure);
}

double gravity(float latitude)
{
    const double angle = radiansOf(latitude);
    return gravityAtEquator * (1.0 + 0.0053024 * squaredSine(angle) - 5.9e-6 * squaredSine(2.0 * angle));
}

} // namespace seawater
