#include "graphics/mappath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "graphics/sincos.h"

namespace graphics {

namespace {

constexpr double degree = std::numbers::pi / 180, fullTurn = 2 * std::numbers::pi;
constexpr double margin = 0.02;     // of the domain, beyond its limits, where the map goes on
constexpr double behind = 179.9999; // the far meridian, approached from one side
constexpr double mostTurns = 100;   // around the globe, of a longitude that a file can hold
constexpr double nearCut = 1e-4;    // degrees from the cut of the turned globe

// How far from the centre meridian a projection reaches.
double reach(int id)
{
    switch (id) {
    case projectionDefault:
        return 1e9;
    case projectionEquatorial:
        return 89.99;
    case projectionMollweide:
    case projectionObliqueMollweide:
        return 179.99;
    default:
        return 180;
    }
}

RECT2D domainWithMargin(const MAPGEOMETRY& m)
{
    const double x = margin * (m.lonMax - m.lonMin), y = margin * (m.latMax - m.latMin);
    return {m.lonMin - x, m.lonMax + x, m.latMin - y, m.latMax + y};
}

// What the projection shows around its centre meridian.
RECT2D wholeView(int id, double centre)
{
    RECT2D view{centre - reach(id), centre + reach(id), -90, 90};
    if (id == projectionNorthPolar) view.ymin = 0.01;
    if (id == projectionSouthPolar) view.ymax = -0.01;
    return view;
}

// The turned globe is cut along the equator west of its centre meridian.
std::vector<RECT2D> partsBesideCut(const RECT2D& view, double centre)
{
    return {intersection(view, {centre, view.xmax, -90, 90}),
            intersection(view, {view.xmin, centre, nearCut, 90}),
            intersection(view, {view.xmin, centre, -90, -nearCut})};
}

std::vector<RECT2D> viewsOf(const MAPGEOMETRY& m, double centre)
{
    const RECT2D view = intersection(domainWithMargin(m), wholeView(m.id, centre));
    std::vector<RECT2D> views =
        m.id == projectionObliqueMollweide ? partsBesideCut(view, centre) : std::vector<RECT2D>{view};
    views.erase(std::remove_if(views.begin(), views.end(), [](const RECT2D& v) { return v.isEmpty(); }),
                views.end());
    return views;
}

RECT2D boundsOf(std::span<const float> lon, std::span<const float> lat)
{
    const auto x = std::minmax_element(lon.begin(), lon.end());
    const auto y = std::minmax_element(lat.begin(), lat.end());
    return {*x.first, *x.second, *y.first, *y.second};
}

RECT2D turned(const RECT2D& r, double turn)
{
    return {r.xmin + turn, r.xmax + turn, r.ymin, r.ymax};
}

POINT2D crossing(const POINT2D& a, double da, const POINT2D& b, double db)
{
    const double t = da / (da - db);
    const POINT2D w{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
    const double r = std::max(std::hypot(w.x, w.y), 1e-9);
    return {w.x / r, w.y / r};
}

double azimuth(const POINT2D& w)
{
    return std::atan2(w.y, w.x);
}

// Points of the horizon between two azimuths, without its ends.
void addArc(double from, double to, PATH2D& out)
{
    const int steps = int(std::ceil(std::abs(to - from) / degree));
    for (int i = 1; i < steps; ++i) {
        const double a = from + (to - from) * i / steps;
        out.push_back({std::cos(a), std::sin(a)});
    }
}

// Takes the hidden stretches of a ring along the horizon. The way along it follows the azimuths of the hidden
// points, which no ring can turn around: the place opposite the centre lies on the edge of the view.
class RHorizonRing {
public:
    RHorizonRing(const PATH2D& plane, const std::vector<double>& depth) : plane_(plane), depth_(depth) {}

    void trace(std::size_t start, PATH2D& out)
    {
        const std::size_t n = plane_.size();
        for (std::size_t k = 0; k < n; ++k) step((start + k) % n, (start + k + 1) % n, out);
    }

private:
    void step(std::size_t a, std::size_t b, PATH2D& out)
    {
        const bool from = depth_[a] >= 0, to = depth_[b] >= 0;
        if (from && !to) {
            out.push_back(crossing(plane_[a], depth_[a], plane_[b], depth_[b]));
            left_ = reached_ = azimuth(out.back());
        }
        if (!to) follow(plane_[b]);
        if (!from && to) {
            const POINT2D entry = crossing(plane_[a], depth_[a], plane_[b], depth_[b]);
            follow(entry);
            addArc(left_, reached_, out);
            out.push_back(entry);
        }
        if (to) out.push_back(plane_[b]);
    }
    void follow(const POINT2D& w) { reached_ += std::remainder(azimuth(w) - reached_, fullTurn); }

    const PATH2D& plane_;
    const std::vector<double>& depth_;
    double left_ = 0, reached_ = 0;
};

} // namespace

RMapPaths::RMapPaths(const MAPGEOMETRY& map) : map_(map)
{
    const double mean = (map.lonMin + map.lonMax) / 2;
    centre_ = map.lon0 + 360 * std::round((mean - map.lon0) / 360);
    const double span = std::max(map.lonMax - map.lonMin, map.latMax - map.latMin);
    step_ = std::clamp(span / 60, 0.01, 1.0);
    views_ = viewsOf(map, centre_);
}

// True if all of the bounds is surely behind the horizon: their middle is further below it than they reach.
bool RMapPaths::isHidden(const RECT2D& bounds) const
{
    if (map_.id != projectionOblique) return false;
    const SINCOS pole = sinCosDegrees(map_.lat0), p = sinCosDegrees((bounds.ymin + bounds.ymax) / 2);
    const double cosL = sinCosDegrees((bounds.xmin + bounds.xmax) / 2 - centre_).cosine;
    const double below =
        -std::asin(std::clamp(p.sine * pole.sine + cosL * pole.cosine * p.cosine, -1.0, 1.0));
    return below / degree > (bounds.xmax - bounds.xmin + bounds.ymax - bounds.ymin) / 2;
}

void RMapPaths::eachView(std::span<const float> lon, std::span<const float> lat, const Visit& visit)
{
    if (lon.empty()) return;
    const RECT2D bounds = boundsOf(lon, lat);
    if (isHidden(bounds)) return;
    for (const RECT2D& view : views_) {
        const int first = int(std::ceil(std::max((view.xmin - bounds.xmax) / 360, -mostTurns)));
        const int last = int(std::floor(std::min((view.xmax - bounds.xmin) / 360, mostTurns)));
        for (int k = first; k <= last; ++k) {
            const RECT2D here = turned(bounds, 360.0 * k);
            if (view.overlaps(here)) visit(view, 360.0 * k, view.holds(here));
        }
    }
}

void RMapPaths::load(std::span<const float> lon, std::span<const float> lat, double turn)
{
    path_.resize(lon.size());
    for (std::size_t i = 0; i < lon.size(); ++i) path_[i] = {lon[i] + turn, lat[i]};
}

void RMapPaths::addRing(std::span<const float> lon, std::span<const float> lat, const Emit& emit)
{
    while (lon.size() > 1 && lon.front() == lon.back() && lat.front() == lat.back()) {
        lon = lon.first(lon.size() - 1);
        lat = lat.first(lat.size() - 1);
    }
    eachView(lon, lat, [&](const RECT2D& view, double turn, bool whole) {
        load(lon, lat, turn);
        if (whole) return finishRing(path_, emit);
        for (const PATH2D& ring : clipRing(path_, view)) finishRing(ring, emit);
    });
}

void RMapPaths::addLine(std::span<const float> lon, std::span<const float> lat, const Emit& emit)
{
    eachView(lon, lat, [&](const RECT2D& view, double turn, bool whole) {
        load(lon, lat, turn);
        if (whole) return finishLine(path_, emit);
        clipLine(path_, view, [&](const PATH2D& piece) { finishLine(piece, emit); });
    });
}

// Straight sides in degrees are curves in the plane.
void RMapPaths::divide(const PATH2D& path, bool closed)
{
    plane_.clear();
    for (std::size_t i = 0; i < path.size(); ++i) {
        const POINT2D &a = path[i], &b = path[(i + 1) % path.size()];
        plane_.push_back(a);
        if (!closed && i + 1 == path.size()) break;
        const double length = std::max(std::abs(b.x - a.x), std::abs(b.y - a.y));
        if (length <= step_) continue;
        const int n = int(std::ceil(length / step_));
        for (int k = 1; k < n; ++k) plane_.push_back({a.x + (b.x - a.x) * k / n, a.y + (b.y - a.y) * k / n});
    }
}

// Degrees to the plane; in the oblique projection hidden points keep their direction from the centre.
void RMapPaths::project()
{
    if (map_.id != projectionOblique) {
        const double turn = map_.lon0 - centre_;
        for (POINT2D& w : plane_) {
            w.x += turn;
            ProjectPoint(w.x, w.y);
        }
        return;
    }
    const SINCOS pole = sinCosDegrees(map_.lat0);
    depth_.resize(plane_.size());
    for (std::size_t i = 0; i < plane_.size(); ++i) {
        const SINCOS l = sinCosDegrees(std::clamp(plane_[i].x - centre_, -behind, behind));
        const SINCOS p = sinCosDegrees(plane_[i].y);
        plane_[i] = {l.sine * p.cosine, p.sine * pole.cosine - l.cosine * pole.sine * p.cosine};
        depth_[i] = p.sine * pole.sine + l.cosine * pole.cosine * p.cosine;
    }
}

void RMapPaths::finishRing(const PATH2D& ring, const Emit& emit)
{
    if (map_.id == projectionDefault) return emit(ring);
    divide(ring, true);
    project();
    if (map_.id != projectionOblique) return emit(plane_);
    const auto hidden = std::find_if(depth_.begin(), depth_.end(), [](double d) { return d < 0; });
    if (hidden == depth_.end()) return emit(plane_);
    const auto seen = std::find_if(depth_.begin(), depth_.end(), [](double d) { return d >= 0; });
    if (seen == depth_.end()) return;
    part_.clear();
    RHorizonRing(plane_, depth_).trace(std::size_t(seen - depth_.begin()), part_);
    emit(part_);
}

void RMapPaths::finishLine(const PATH2D& line, const Emit& emit)
{
    if (map_.id == projectionDefault) return emit(line);
    divide(line, false);
    project();
    if (map_.id != projectionOblique) return emit(plane_);
    part_.clear();
    const auto finish = [&] {
        if (part_.size() > 1) emit(part_);
        part_.clear();
    };
    for (std::size_t i = 0; i < plane_.size(); ++i) {
        const bool seen = depth_[i] >= 0;
        if (i > 0 && seen != (depth_[i - 1] >= 0))
            part_.push_back(crossing(plane_[i - 1], depth_[i - 1], plane_[i], depth_[i]));
        if (seen)
            part_.push_back(plane_[i]);
        else
            finish();
    }
    finish();
}

} // namespace graphics
