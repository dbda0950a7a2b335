#include "graphics/projection.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

#include "common/text.h"
#include "graphics/sincos.h"

namespace graphics {

namespace {

constexpr double degree = std::numbers::pi / 180;
constexpr double discEdge = 0.999999, obliqueEdge = 0.9999999999;
constexpr double equatorialLimit = 89.99, mollweideLimit = 179.99;
constexpr double polarGap = 0.01; // the polar maps stop this many degrees short of the equator

struct PAIR {
    double x, y;
};

double asinDegrees(double sine)
{
    return std::asin(std::clamp(sine, -1.0, 1.0)) / degree;
}

PAIR polar(double d, double lat, bool north)
{
    const double cosP = sinCosDegrees(north ? std::max(lat, polarGap) : std::min(lat, -polarGap)).cosine;
    const SINCOS l = sinCosDegrees(d);
    return {l.sine * cosP, (north ? -l.cosine : l.cosine) * cosP};
}

PAIR equatorial(double d, double lat)
{
    const SINCOS p = sinCosDegrees(lat);
    return {p.cosine * sinCosDegrees(std::clamp(d, -equatorialLimit, equatorialLimit)).sine, p.sine};
}

// The polynomials stand for the iterative solution of Mollweide's equation. x and y in degrees.
PAIR mollweide(double x, double y)
{
    const double l = degree * std::clamp(x, -mollweideLimit, mollweideLimit), q = y * y;
    return {l * (((7.701145053304345e-09 - q * 1.041717976402474e-12) * q - 0.0001024921641431577) * q +
                 0.90560600567451),
            ((-2.918286130898466e-07 - q * 1.785287864372062e-11) * q + 0.01928310553799) * y};
}

PAIR ontoHorizon(PAIR w)
{
    if (std::hypot(w.x, w.y) < 0.01) w = {0.01, 0.01};
    const double r = std::max(std::hypot(w.x, w.y), 0.001);
    return {w.x / r, w.y / r};
}

bool isHidden(double d, double lat)
{
    const double width = HalfWidth(lat);
    return width < 180 && (width <= 0 || width < std::abs(d));
}

PAIR oblique(double d, double lat)
{
    const PROJECTION& g = projection();
    const double l = d * degree, p = lat * degree;
    const PAIR w{std::sin(l) * std::cos(p), std::sin(p) * g.cosLat0 - std::cos(l) * g.sinLat0 * std::cos(p)};
    return isHidden(d, lat) ? ontoHorizon(w) : w;
}

// The globe turned so that its axis lies in the equator, then Mollweide with exchanged axes.
PAIR obliqueMollweide(double d, double lat)
{
    const SINCOS l = sinCosDegrees(d + 180), p = sinCosDegrees(lat);
    const double east = l.sine * p.cosine, north = p.sine;
    const double a = std::abs(east) < 1e-8 && std::abs(north) < 1e-8 ? 0.0 : std::atan2(east, north);
    const double x = a / degree + 90;
    const PAIR w = mollweide(x > 180 ? x - 360 : x, asinDegrees(-p.cosine * l.cosine));
    return {-w.y, w.x};
}

void limitTo(double edge, PAIR& w)
{
    const double r = std::hypot(w.x, w.y);
    if (r > edge) w = {w.x * edge / r, w.y * edge / r};
}

PAIR fromPolar(PAIR w, bool north)
{
    limitTo(discEdge, w);
    if (std::hypot(w.x, w.y) < 0.01) w = {0.05, 0.05};
    if (north) w.y = -w.y;
    // v / cos t and u / sin t are both the radius, which alone keeps its digits at every t.
    const double lat = std::acos(std::min(std::hypot(w.x, w.y), 1.0)) / degree;
    return {std::atan2(w.x, w.y) / degree, north ? lat : -lat};
}

PAIR fromEquatorial(PAIR w)
{
    limitTo(discEdge, w);
    const double p = std::asin(w.y);
    return {asinDegrees(w.x / std::cos(p)), p / degree};
}

PAIR fromMollweide(PAIR w)
{
    const double r = std::sqrt(w.x * w.x * 0.125 + w.y * w.y * 0.5);
    if (r > discEdge) w = {w.x * discEdge / r, w.y * discEdge / r};
    const double t = std::asin(std::clamp(w.y * 0.7071068, -1.0, 1.0));
    return {w.x * 1.1107207 / std::cos(t) / degree, asinDegrees((2 * t + std::sin(2 * t)) * 0.318309886)};
}

PAIR fromOblique(PAIR w)
{
    const PROJECTION& g = projection();
    limitTo(obliqueEdge, w);
    const double r = std::hypot(w.x, w.y), depth = std::sqrt(std::max(0.0, 1 - r * r));
    return {std::atan2(r * w.x, g.cosLat0 * depth * r - g.sinLat0 * r * w.y) / degree,
            asinDegrees(w.y * g.cosLat0 + depth * g.sinLat0)};
}

} // namespace

const char* projectionName(int id)
{
    static constexpr const char* names[] = {"Default Projection",
                                            "Orthographic (North Polar)",
                                            "Orthographic (Equatorial)",
                                            "Orthographic (South Polar)",
                                            "Mollweide",
                                            "Orthographic (Oblique)",
                                            "Oblique Mollweide"};
    return id >= 0 && id < int(std::size(names)) ? names[id] : "";
}

PROJECTION& projection()
{
    static PROJECTION theProjection;
    return theProjection;
}

double fromCentre(double lon)
{
    const double d = lon - projection().lon0;
    return std::abs(d) <= 180 ? d : std::remainder(d, 360);
}

void ProjectPoint(double& x, double& y)
{
    const PROJECTION& g = projection();
    const double d = x - g.lon0;
    PAIR w{x, y};
    switch (g.id) {
    case projectionNorthPolar:
        w = polar(d, y, true);
        break;
    case projectionEquatorial:
        w = equatorial(d, y);
        break;
    case projectionSouthPolar:
        w = polar(d, y, false);
        break;
    case projectionMollweide:
        w = mollweide(d, y);
        break;
    case projectionOblique:
        w = oblique(fromCentre(x), y);
        break;
    case projectionObliqueMollweide:
        w = obliqueMollweide(d, y);
        break;
    default:
        break;
    }
    x = w.x;
    y = w.y;
}

void ProjectPoint(float& x, float& y)
{
    double u = x, v = y;
    ProjectPoint(u, v);
    x = float(u);
    y = float(v);
}

void UnprojectPoint(double& x, double& y)
{
    const PROJECTION& g = projection();
    PAIR w{x, y};
    switch (g.id) {
    case projectionNorthPolar:
        w = fromPolar(w, true);
        break;
    case projectionEquatorial:
        w = fromEquatorial(w);
        break;
    case projectionSouthPolar:
        w = fromPolar(w, false);
        break;
    case projectionMollweide:
    case projectionObliqueMollweide:
        w = fromMollweide(w);
        break;
    case projectionOblique:
        w = fromOblique(w);
        break;
    default:
        return;
    }
    x = w.x + g.lon0;
    y = w.y;
}

void UnprojectPoint(float& x, float& y)
{
    double lon = x, lat = y;
    UnprojectPoint(lon, lat);
    x = float(lon);
    y = float(lat);
}

double HalfWidth(double lat)
{
    const auto& rows = projection().halfWidth;
    const double from90 = std::clamp(lat, -90.0, 90.0) + 90;
    const auto i = std::size_t(from90);
    if (i >= rows.size() - 1) return rows.back();
    return rows[i] + (rows[i + 1] - rows[i]) * (lat - std::trunc(lat));
}

bool IsVisible(double lon, double lat)
{
    if (projection().id != projectionOblique) return true;
    const double width = projection().halfWidth[std::size_t(std::clamp(lat, -90.0, 90.0) + 90)];
    return width > 0 && std::abs(fromCentre(lon)) <= width;
}

bool InsideProjection(double u, double v)
{
    switch (projection().id) {
    case projectionDefault:
        return true;
    case projectionMollweide:
        return std::sqrt(v * v * 0.5 + u * u * 0.125) <= discEdge;
    case projectionObliqueMollweide:
        return std::sqrt(u * u * 0.5 + v * v * 0.125) <= discEdge;
    default:
        return std::hypot(u, v) <= discEdge;
    }
}

double PoleLatitudeFor(int id, double latMin, double latMax, double typed)
{
    switch (id) {
    case projectionDefault:
        return (latMin + latMax) / 2;
    case projectionNorthPolar:
        return 90;
    case projectionSouthPolar:
        return -90;
    case projectionEquatorial:
    case projectionMollweide:
        return 0;
    default:
        return typed;
    }
}

std::string projectionLine(int id, double lon0)
{
    return common::format("%d %g\n", id, lon0);
}

bool parseProjectionLine(std::string_view text, int& id, double& lon0)
{
    int newId = 0;
    float newLon0 = 0;
    if (!common::takeInt(text, newId) || !common::takeFloat(text, newLon0)) return false;
    id = newId;
    lon0 = newLon0;
    return true;
}

} // namespace graphics
