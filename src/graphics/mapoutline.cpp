// The outline of a map domain in the plane, its bounds, and the way back from a rectangle to a domain.

#include "graphics/projection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace graphics {

namespace {

constexpr double degree = std::numbers::pi / 180;
constexpr int boundPoints = 49; // a side with both its ends, so that its middle is one of them

struct DOMAIN_LIMITS {
    double lonMin, lonMax, latMin, latMax;
};
struct POINT {
    double x, y;
};

// Point at fraction t, 0 to 1, of side 0 lower, 1 right, 2 upper, 3 left; counter-clockwise from lower left.
POINT onSide(const DOMAIN_LIMITS& d, int side, double t)
{
    switch (side) {
    case 0:
        return {d.lonMin + t * (d.lonMax - d.lonMin), d.latMin};
    case 1:
        return {d.lonMax, d.latMin + t * (d.latMax - d.latMin)};
    case 2:
        return {d.lonMax - t * (d.lonMax - d.lonMin), d.latMax};
    default:
        return {d.lonMin, d.latMax - t * (d.latMax - d.latMin)};
    }
}

constexpr double wideLongitudes = 330, wideLatitudes = 150;

bool isWide(const DOMAIN_LIMITS& d)
{
    return d.lonMax - d.lonMin > wideLongitudes || d.latMax - d.latMin > wideLatitudes;
}

// The turned globe is cut along half of its equator, west of the centre. The image of a domain that holds the
// cut isn't bounded by the images of its sides.
bool holdsCut(const DOMAIN_LIMITS& d)
{
    return d.lonMin < projection().lon0 && d.latMin < 0 && d.latMax > 0;
}

// All around the horizon. A tall domain of fewer longitudes ends at its meridians, which meet in the pole on
// this side of the horizon.
bool fillsDisc(int id, const DOMAIN_LIMITS& d)
{
    return id == projectionOblique && d.lonMax - d.lonMin > wideLongitudes;
}

bool fillsEllipse(int id, const DOMAIN_LIMITS& d)
{
    return id == projectionObliqueMollweide && (isWide(d) || holdsCut(d));
}

// The point of the horizon at an angle, or of the domain's edge where that comes first.
POINT onHorizon(const DOMAIN_LIMITS& d, double angle)
{
    double x = std::cos(angle), y = std::sin(angle);
    UnprojectPoint(x, y);
    x = std::clamp(x, d.lonMin, d.lonMax);
    y = std::clamp(y, d.latMin, d.latMax);
    ProjectPoint(x, y);
    return {x, y};
}

// Semi-axes that the polynomials reach at the limit of the longitudes.
POINT onEllipse(double angle)
{
    return {1.4173 * std::cos(angle), 2.8449 * std::sin(angle)};
}

POINT onCurve(int id, const DOMAIN_LIMITS& d, double angle)
{
    return id == projectionOblique ? onHorizon(d, angle) : onEllipse(angle);
}

int curvedOutline(std::span<float> x, std::span<float> y, int id, const DOMAIN_LIMITS& d)
{
    const std::size_t n = x.size();
    for (std::size_t i = 0; i < n; ++i) {
        const POINT w = onCurve(id, d, 2 * std::numbers::pi * double(i) / double(n - 1));
        x[i] = float(w.x);
        y[i] = float(w.y);
    }
    return int(n);
}

int parallelOutline(std::span<float> x, std::span<float> y, const DOMAIN_LIMITS& d, double lat)
{
    const std::size_t n = x.size();
    for (std::size_t i = 0; i < n; ++i) {
        double u = d.lonMin + (d.lonMax - d.lonMin) * double(i) / double(n - 1), v = lat;
        ProjectPoint(u, v);
        x[i] = float(u);
        y[i] = float(v);
    }
    return int(n);
}

int cornerOutline(std::span<float> x, std::span<float> y, const DOMAIN_LIMITS& d)
{
    for (int i = 0; i < 5; ++i) {
        const POINT w = onSide(d, i % 4, 0);
        x[std::size_t(i)] = float(w.x);
        y[std::size_t(i)] = float(w.y);
    }
    return 5;
}

int sidesOutline(std::span<float> x, std::span<float> y, const DOMAIN_LIMITS& d)
{
    const int steps = int(x.size() / 4) - 1;
    const int n = 1 + 4 * steps;
    for (int i = 0; i < n; ++i) {
        const int side = steps > 0 ? (i / steps) % 4 : 0;
        POINT w = onSide(d, side, steps > 0 ? double(i % steps) / steps : 0);
        ProjectPoint(w.x, w.y);
        x[std::size_t(i)] = float(w.x);
        y[std::size_t(i)] = float(w.y);
    }
    return n;
}

struct LIMITS {
    double xmin = 1e10, xmax = -1e10, ymin = 1e10, ymax = -1e10;
    void widen(POINT w)
    {
        xmin = std::min(xmin, w.x);
        xmax = std::max(xmax, w.x);
        ymin = std::min(ymin, w.y);
        ymax = std::max(ymax, w.y);
    }
};

LIMITS boundsOfSides(const DOMAIN_LIMITS& d)
{
    LIMITS bounds;
    for (int side = 0; side < 4; ++side)
        for (int i = 0; i < boundPoints; ++i) {
            POINT w = onSide(d, side, double(i) / (boundPoints - 1));
            ProjectPoint(w.x, w.y);
            bounds.widen(w);
        }
    return bounds;
}

LIMITS boundsOfCurve(int id, const DOMAIN_LIMITS& d)
{
    LIMITS bounds;
    for (int i = 0; i < 360; ++i) bounds.widen(onCurve(id, d, i * degree));
    return bounds;
}

// The sides of a tall oblique domain hold the pole, and the horizon its widest places.
LIMITS boundsOf(int id, const DOMAIN_LIMITS& d)
{
    if (fillsDisc(id, d) || fillsEllipse(id, d)) return boundsOfCurve(id, d);
    LIMITS bounds = boundsOfSides(d);
    if (id != projectionOblique || !isWide(d)) return bounds;
    const LIMITS horizon = boundsOfCurve(id, d);
    bounds.widen({horizon.xmin, horizon.ymin});
    bounds.widen({horizon.xmax, horizon.ymax});
    return bounds;
}

// --- from a rectangle back to a domain

// True if the rectangle crosses the seam of a polar map, opposite the centre meridian.
bool crossesSeam(int id, const DOMAIN_LIMITS& r)
{
    if (r.lonMin * r.lonMax >= 0) return false;
    return id == projectionNorthPolar ? r.latMin > 0 : id == projectionSouthPolar && r.latMax < 0;
}

// All meridians meet in a pole that stands inside the rectangle, though none of its sides knows.
void includePole(const DOMAIN_LIMITS& r, double poleLat, DOMAIN_LIMITS& d)
{
    const PROJECTION& g = projection();
    if (g.id != projectionNorthPolar && g.id != projectionSouthPolar && g.id != projectionOblique) return;
    if (poleLat * g.lat0 < 0 || (g.id == projectionOblique && g.lat0 == 0)) return; // on the far side
    double u = g.lon0, v = poleLat;
    ProjectPoint(u, v);
    if (u < r.lonMin || u > r.lonMax || v < r.latMin || v > r.latMax) return;
    d.lonMin = g.lon0 - 180;
    d.lonMax = g.lon0 + 180;
    (poleLat < 0 ? d.latMin : d.latMax) = poleLat;
}

} // namespace

void ProjectedBounds(double lonMin, double lonMax, double latMin, double latMax, float& umin, float& umax,
                     float& vmin, float& vmax)
{
    const DOMAIN_LIMITS d{lonMin, lonMax, latMin, latMax};
    const LIMITS bounds = boundsOf(projection().id, d);
    umin = float(bounds.xmin);
    umax = float(bounds.xmax);
    vmin = float(bounds.ymin);
    vmax = float(bounds.ymax);
}

int MapOutline(std::span<float> x, std::span<float> y, int id, double lonMin, double lonMax, double latMin,
               double latMax)
{
    const DOMAIN_LIMITS d{lonMin, lonMax, latMin, latMax};
    const std::size_t n = std::min(x.size(), y.size());
    if (n < 5) return 0;
    x = x.first(n);
    const bool around = std::abs(lonMax - lonMin - 360) < 1e-6;
    if (id == projectionDefault) return cornerOutline(x, y, d);
    if (id == projectionNorthPolar && around) return parallelOutline(x, y, d, latMin);
    if (id == projectionSouthPolar && around) return parallelOutline(x, y, d, latMax);
    if (fillsDisc(id, d) || fillsEllipse(id, d)) return curvedOutline(x, y, id, d);
    return sidesOutline(x, y, d);
}

void DomainOfRectangle(double u0, double u1, double v0, double v1, double& lonMin, double& lonMax,
                       double& latMin, double& latMax)
{
    const DOMAIN_LIMITS r{std::min(u0, u1), std::max(u0, u1), std::min(v0, v1), std::max(v0, v1)};
    const bool seam = crossesSeam(projection().id, r);
    LIMITS limits;
    for (int side = 0; side < 4; ++side)
        for (int i = 0; i < boundPoints; ++i) {
            POINT w = onSide(r, side, double(i) / (boundPoints - 1));
            UnprojectPoint(w.x, w.y);
            if (seam && w.x > projection().lon0) w.x -= 360;
            limits.widen(w);
        }
    DOMAIN_LIMITS d{limits.xmin, limits.xmax, limits.ymin, limits.ymax};
    includePole(r, 90, d);
    includePole(r, -90, d);
    lonMin = d.lonMin;
    lonMax = d.lonMax;
    latMin = d.latMin;
    latMax = d.latMax;
}

} // namespace graphics
