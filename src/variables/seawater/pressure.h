#pragma once

// Depth and pressure in a standard ocean (salinity 35, temperature 0 degC), and gravity. The sign of the
// latitude is irrelevant.

#include <cmath>

namespace seawater {

// Pressure [dbar] at a depth [m], 0 to 10000, and latitude [degrees], 0 to 90. A depth beyond the validity of
// the root (about 110 km) gives NaN.
// Source: Saunders (1981), J. Phys. Oceanogr. 11, 573-574. Check: pressureFromDepth(10000, 30) = 10309.45.
[[nodiscard]] double pressureFromDepth(float depth, float latitude);

// The same for many depths at one latitude, with the same results to the last bit.
class RPressureAtLatitude {
public:
    explicit RPressureAtLatitude(float latitude);
    [[nodiscard]] double pressure(float depth) const
    {
        return (c_ - std::sqrt(c_ * c_ - 8.84e-6 * static_cast<double>(depth))) * 226244.3;
    }

private:
    double c_;
};

// Depth [m] at a pressure [dbar], 0 to 10000, and latitude [degrees], 0 to 90, without the dynamic height
// anomaly.
// Source: Saunders and Fofonoff (1976), in Fofonoff and Millard (1983), UNESCO Technical Papers in Marine
// Science 44. Check: depthFromPressure(10000, 30) = 9712.653.
[[nodiscard]] double depthFromPressure(float pressure, float latitude);

// The same for many pressures at one latitude, with the same results to the last bit.
class RDepthAtLatitude {
public:
    explicit RDepthAtLatitude(float latitude);
    [[nodiscard]] double depth(float pressure) const
    {
        const double p = pressure;
        return (((-1.82e-15 * p + 2.279e-10) * p - 2.2512e-5) * p + 9.72659) * p /
               (surfaceGravity_ + 1.092e-6 * p);
    }

private:
    double surfaceGravity_; // by a formula of its own, not that of gravity()
};

// Acceleration of gravity [m/s2] at the surface at a latitude [degrees], 0 to 90.
// Source: International Gravity Formula of 1967 in the form 9.780318 (1 + 0.0053024 sin2(lat) -
// 0.0000059 sin2(2 lat)).
[[nodiscard]] double gravity(float latitude);

} // namespace seawater
