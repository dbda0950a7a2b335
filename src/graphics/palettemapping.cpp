// From values to colours.

#include <algorithm>
#include <cmath>

#include "graphics/palette.h"

namespace graphics {

COLORMAPPING& colorMapping()
{
    static COLORMAPPING mapping = [] {
        COLORMAPPING m;
        m.tanhLo = std::tanh(m.lo);
        m.tanhHi = std::tanh(m.hi);
        m.inverseTanhSpan = 1 / (m.tanhHi - m.tanhLo);
        return m;
    }();
    return mapping;
}

void SetColorMapping(double vmin, double vmax, double a, double b)
{
    COLORMAPPING& m = colorMapping();
    m.vmin = vmin;
    m.vmax = vmax;
    m.inverseRange = 1 / (vmax - vmin);
    m.lo = std::min(a, b);
    m.hi = std::max(a, b);
    m.span = m.hi - m.lo;
    m.tanhLo = std::tanh(m.lo);
    m.tanhHi = std::tanh(m.hi);
    m.inverseTanhSpan = 1 / (m.tanhHi - m.tanhLo);
}

double ValueToFraction(double v)
{
    const COLORMAPPING& m = colorMapping();
    const double t = std::tanh(m.lo + (v - m.vmin) * m.inverseRange * m.span);
    const double u = (t - m.tanhLo) * m.inverseTanhSpan;
    constexpr double tolerance = 0.001;
    if (u > -tolerance && u < 0) return 0;
    if (u > 1 && u < 1 + tolerance) return 1;
    return u;
}

double FractionToValue(double u)
{
    const COLORMAPPING& m = colorMapping();
    constexpr double limit = 0.99999999999999;
    const double t = std::clamp((m.tanhHi - m.tanhLo) * u + m.tanhLo, -limit, limit);
    const double angle = 0.5 * std::log((1 + t) / (1 - t));
    return m.vmin + (angle - m.lo) / m.span * (m.vmax - m.vmin);
}

int ValueToColor(double v)
{
    const double u = ValueToFraction(v);
    if (!(u >= 0)) return colorBelow; // also what is no number
    if (u > 1) return colorAbove;
    return colorScaleFirst + static_cast<int>((colorScaleLast - colorScaleFirst) * u);
}

} // namespace graphics
