// The rules that keep a map domain legal for its projection, and the size of the map in its box.

#include "graphics/projection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace graphics {

namespace {

constexpr double degree = std::numbers::pi / 180;
constexpr double equatorGap = 0.1;    // polar maps keep this distance from the equator, degrees
constexpr double nearlyGlobal = 320;  // oblique maps of a larger span show the whole disc
constexpr double smallestSpan = 1e-4; // degrees; a domain below it has no extent
constexpr int obliquePasses = 6, restrictingPasses = 4;

double meanLon(const MAPGEOMETRY& m)
{
    return (m.lonMin + m.lonMax) / 2;
}

bool sameDomain(const MAPGEOMETRY& a, const MAPGEOMETRY& b)
{
    return a.lonMin == b.lonMin && a.lonMax == b.lonMax && a.latMin == b.latMin && a.latMax == b.latMax;
}

void normalize(MAPGEOMETRY& m)
{
    NormalizeDomain(m.lonMin, m.lonMax, m.latMin, m.latMax);
}

void allAround(MAPGEOMETRY& m)
{
    m.lonMin = m.lon0 - 180;
    m.lonMax = m.lon0 + 180;
}

bool isFinite(const MAPGEOMETRY& m)
{
    return std::isfinite(m.lonMin) && std::isfinite(m.lonMax) && std::isfinite(m.latMin) &&
           std::isfinite(m.latMax) && std::isfinite(m.lon0) && std::isfinite(m.lat0);
}

void widen(double& low, double& high)
{
    if (high - low >= smallestSpan) return;
    low -= 0.5;
    high += 0.5;
}

// What settings or a user can bring, but no rule below can work with.
void makeSound(MAPGEOMETRY& m)
{
    if (!isFinite(m)) m = MAPGEOMETRY{.id = m.id};
    if (m.id < projectionDefault || m.id > projectionObliqueMollweide) m.id = projectionDefault;
    if (m.lonMin > m.lonMax) std::swap(m.lonMin, m.lonMax);
    if (m.latMin > m.latMax) std::swap(m.latMin, m.latMax);
    m.latMin = std::clamp(m.latMin, -90.0, 90.0);
    m.latMax = std::clamp(m.latMax, -90.0, 90.0);
    m.lat0 = std::clamp(m.lat0, -90.0, 90.0);
    m.lon0 += 360 * std::round((meanLon(m) - m.lon0) / 360); // the turn that lies in the domain
}

void storePole(const MAPGEOMETRY& m)
{
    PROJECTION& g = projection();
    g.id = m.id;
    g.lon0 = m.lon0;
    g.lat0 = m.lat0;
    g.sinLat0 = std::sin(m.lat0 * degree);
    g.cosLat0 = std::cos(m.lat0 * degree);
}

void storeDomain(const MAPGEOMETRY& m)
{
    PROJECTION& g = projection();
    g.lonMin = m.lonMin;
    g.lonMax = m.lonMax;
    g.latMin = m.latMin;
    g.latMax = m.latMax;
}

// --- all projections but the oblique one

// A domain of the whole circle holds every meridian, so what is left of it lies around the centre.
void limitLongitudes(MAPGEOMETRY& m, double limit)
{
    if (m.lonMax - m.lonMin >= 359.98) allAround(m);
    m.lonMin = std::clamp(m.lonMin, m.lon0 - limit, m.lon0 + limit);
    m.lonMax = std::clamp(m.lonMax, m.lon0 - limit, m.lon0 + limit);
    if (m.lonMax - m.lonMin >= smallestSpan) return;
    m.lonMin = m.lon0 - limit; // nothing of it can be seen from here
    m.lonMax = m.lon0 + limit;
}

void limitNorthPolar(MAPGEOMETRY& m)
{
    m.latMin = std::max(m.latMin, equatorGap);
    m.latMax = std::max(m.latMax, equatorGap);
    if (m.latMin != m.latMax) return;
    allAround(m);
    m.latMin = equatorGap;
    m.latMax = 90;
}

void limitSouthPolar(MAPGEOMETRY& m)
{
    m.latMin = std::min(m.latMin, -equatorGap);
    m.latMax = std::min(m.latMax, -equatorGap);
    if (m.latMin != m.latMax) return;
    allAround(m);
    m.latMin = -90;
    m.latMax = -equatorGap;
}

void setUpPlain(MAPGEOMETRY& m)
{
    switch (m.id) {
    case projectionNorthPolar:
        limitNorthPolar(m);
        break;
    case projectionEquatorial:
        limitLongitudes(m, 89.99);
        break;
    case projectionSouthPolar:
        limitSouthPolar(m);
        break;
    case projectionMollweide:
    case projectionObliqueMollweide:
        limitLongitudes(m, 179.99);
        break;
    default:
        break;
    }
    widen(m.lonMin, m.lonMax);
    widen(m.latMin, m.latMax);
    normalize(m);
    m.lon0 = meanLon(m);
}

// --- the oblique projection

struct VISIBLE {
    double halfLon = 0, latMin = 90, latMax = -90;
};

void fillRows(int from, int to)
{
    auto& rows = projection().halfWidth;
    for (int i = std::max(from, 0); i <= std::min(to, 180); ++i) rows[std::size_t(i)] = 180;
}

// Fills the table of half-widths from the horizon seen from the pole's zenith.
VISIBLE traceHorizon()
{
    constexpr double radius = 0.9999998807904104;
    PROJECTION& g = projection();
    VISIBLE seen;
    g.halfWidth.fill(0);
    for (int i = 0; i < 720; ++i) {
        double lon = radius * std::cos(i * 0.5 * degree), lat = radius * std::sin(i * 0.5 * degree);
        UnprojectPoint(lon, lat);
        double& row = g.halfWidth[std::size_t(std::clamp(lat + 90, 0.0, 180.0))];
        row = std::max(row, std::abs(lon - g.lon0));
        seen.halfLon = std::max(seen.halfLon, std::abs(lon - g.lon0));
        seen.latMin = std::min(seen.latMin, lat);
        seen.latMax = std::max(seen.latMax, lat);
    }
    if (g.lat0 < 0) { // these rows hold the pole: all longitudes are visible
        fillRows(0, int(seen.latMin + 90));
        seen.latMin = -90;
    } else {
        fillRows(int(seen.latMax + 90), 180);
        seen.latMax = 90;
    }
    return seen;
}

void widenAroundPole(MAPGEOMETRY& m)
{
    if (m.lonMax - m.lonMin <= nearlyGlobal && m.lat0 >= m.latMin && m.lat0 <= m.latMax) return;
    allAround(m);
    if (m.lat0 < 0)
        m.latMin = -90;
    else
        m.latMax = 90;
}

void restrictToVisible(MAPGEOMETRY& m, const VISIBLE& seen)
{
    MAPGEOMETRY part = m;
    part.lonMin = std::max(m.lonMin, m.lon0 - seen.halfLon);
    part.lonMax = std::min(m.lonMax, m.lon0 + seen.halfLon);
    part.latMin = std::max(m.latMin, seen.latMin);
    part.latMax = std::min(m.latMax, seen.latMax);
    // A domain on the far side stays as it is: the centre moves to it, and the next pass sees it.
    if (part.lonMin < part.lonMax && part.latMin < part.latMax) {
        const double moved = std::max(
            {part.lonMin - m.lonMin, m.lonMax - part.lonMax, part.latMin - m.latMin, m.latMax - part.latMax});
        if (moved > 0.001) m = part;
        if (moved > 0.001 && m.lonMax - m.lonMin > nearlyGlobal) allAround(m);
    }
    normalize(m);
    if (std::abs(meanLon(m) - m.lon0) > 5) m.lon0 = meanLon(m);
    if (m.lat0 < m.latMin || m.lat0 > m.latMax) m.lat0 = (m.latMin + m.latMax) / 2;
}

bool switchToPolar(MAPGEOMETRY& m)
{
    const double near = 0.05 * (m.latMax - m.latMin);
    if (std::abs(m.lat0 - 90) < near)
        m.id = projectionNorthPolar;
    else if (std::abs(m.lat0 + 90) < near)
        m.id = projectionSouthPolar;
    if (m.id == projectionOblique) return false;
    m.lat0 = m.id == projectionNorthPolar ? 90 : -90;
    return true;
}

void setUpOblique(MAPGEOMETRY& m)
{
    widen(m.lonMin, m.lonMax);
    widen(m.latMin, m.latMax);
    for (int pass = 1; pass <= obliquePasses; ++pass) {
        const double lon0 = m.lon0, lat0 = m.lat0;
        widenAroundPole(m);
        storePole(m);
        const VISIBLE seen = traceHorizon();
        if (pass <= restrictingPasses) restrictToVisible(m, seen);
        if (switchToPolar(m) || (m.lon0 == lon0 && m.lat0 == lat0)) break;
    }
}

// --- size in the box

// Width and height of the map in units of one scale.
void mapAspect(const MAPGEOMETRY& m, double& width, double& height)
{
    width = double(m.umax) - m.umin;
    height = double(m.vmax) - m.vmin;
    if (m.id == projectionDefault) width *= std::max(std::cos((m.latMin + m.latMax) * 0.00872665), 1e-4);
}

void fitIntoBox(MAPGEOMETRY& m, const BOX& box)
{
    double width = 1, height = 1;
    mapAspect(m, width, height);
    const double scale = std::min(box.width / width, box.height / height);
    m.xlen = float(scale * width);
    m.ylen = float(scale * height);
    m.xorg = (box.width - m.xlen) / 2 + box.x;
    m.yorg = (box.height - m.ylen) / 2 + box.y;
}

} // namespace

bool NormalizeDomain(double& lonMin, double& lonMax, double& latMin, double& latMax)
{
    bool changed = false;
    const auto when = [&changed](bool condition) { return changed = changed || condition, condition; };
    if (when(lonMin > lonMax)) std::swap(lonMin, lonMax);
    if (when(lonMax - lonMin > 360)) lonMax = lonMin + 360;
    if (when(lonMin < 0 && lonMax < 0)) {
        lonMin += 360;
        lonMax += 360;
    }
    if (when(lonMax > 360)) {
        lonMin -= 360;
        lonMax -= 360;
    }
    if (when(latMin < -90)) latMin = -90;
    if (when(latMax > 90)) latMax = 90;
    return changed;
}

bool SetupMapWindow(MAPGEOMETRY& map, const BOX& box)
{
    const MAPGEOMETRY before = map;
    makeSound(map);
    if (map.id == projectionOblique) setUpOblique(map);
    if (map.id != projectionOblique) setUpPlain(map);
    storePole(map);
    storeDomain(map);
    ProjectedBounds(map.lonMin, map.lonMax, map.latMin, map.latMax, map.umin, map.umax, map.vmin, map.vmax);
    fitIntoBox(map, box);
    return !sameDomain(before, map);
}

} // namespace graphics
