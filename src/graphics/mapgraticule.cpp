#include "graphics/mapgraticule.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "graphics/drawing.h"
#include "graphics/textsize.h"
#include "graphics/tics.h"

namespace graphics {
namespace {

constexpr double fullSpan = 359.9; // degrees that count as the whole circle
constexpr double probe = 0.01;     // of the span, to find the direction of a line
constexpr double degreesARadian = 180.0 / 3.14159265358979323846;
constexpr double lastOfCircle = 0.98; // a meridian behind it would repeat the first one

double lonSpan(const MAPGEOMETRY& m)
{
    return m.lonMax - m.lonMin;
}

double latSpan(const MAPGEOMETRY& m)
{
    return m.latMax - m.latMin;
}

bool polarOrOblique(int id)
{
    return id == projectionNorthPolar || id == projectionSouthPolar || id == projectionOblique;
}

bool wholeCircle(const MAPGEOMETRY& m)
{
    return polarOrOblique(m.id) && lonSpan(m) >= fullSpan;
}

// --- the lines

// A globe shows half of its meridians at most: lines every 90 degrees would leave it bare.
double meridianStep(const MAPGEOMETRY& m)
{
    const MAPTICS tics = ChooseMapTics(static_cast<float>(m.lonMin), static_cast<float>(m.lonMax), false);
    return tics.major >= 90 ? tics.minor : tics.major;
}

std::vector<double> meridianValues(const MAPGEOMETRY& m)
{
    std::vector<double> values = ticValues(0, meridianStep(m), m.lonMin, m.lonMax);
    const double last = m.lonMin + lonSpan(m) * (wholeCircle(m) ? lastOfCircle : 1.0);
    while (!values.empty() && values.back() > last + 1e-6 * lonSpan(m)) values.pop_back();
    return values;
}

std::vector<double> parallelValues(const MAPGEOMETRY& m)
{
    const MAPTICS tics = ChooseMapTics(static_cast<float>(m.latMin), static_cast<float>(m.latMax), true);
    std::vector<double> values;
    for (int i = tics.first; i <= tics.last; ++i) values.push_back(tics.start + i * double{tics.major});
    return values;
}

bool sees(const MAPGEOMETRY& m, double lon, double lat)
{
    return m.id != projectionOblique || IsVisible(lon, lat);
}

// Cuts the line from `from` to `to` into the pieces that `visible` allows, found in steps of a quarter
// degree at most; each piece reaches one step further, which the projection draws onto the horizon.
template <typename Visible>
void addVisiblePieces(std::vector<GRATICULEPIECE>& pieces, double at, double from, double to,
                      const Visible& visible)
{
    const int steps = std::max(120, static_cast<int>(std::ceil(4 * (to - from))));
    const double step = (to - from) / steps;
    int begin = -1;
    for (int i = 0; i <= steps + 1; ++i) {
        const bool seen = i <= steps && visible(from + i * step);
        if (seen && begin < 0) begin = i;
        if (seen || begin < 0) continue;
        if (i - begin > 1) {
            const double first = std::max(begin - 1, 0), last = std::min(i, steps);
            pieces.push_back({static_cast<float>(at), static_cast<float>(from + first * step),
                              static_cast<float>(from + last * step)});
        }
        begin = -1;
    }
}

// --- the labels

struct POINT {
    double u, v;
};

POINT projected(double lon, double lat)
{
    float u = static_cast<float>(lon), v = static_cast<float>(lat);
    ProjectPoint(u, v);
    return {u, v};
}

struct DIRECTION {
    double angle; // degrees, never upside down
    bool turned;  // by 180 degrees, to be so
};

DIRECTION upright(double degrees)
{
    double angle = degrees < 0 ? degrees + 360 : degrees;
    constexpr double rounding = 0.05;
    const bool turned = angle >= 90 - rounding && angle < 270 - rounding;
    if (turned) angle += 180;
    if (angle >= 360) angle -= 360;
    return {angle, turned};
}

// Direction in which the line at (lon, lat) goes on with a small step in longitude or latitude, seen on the
// paper; at the far end of the domain the step goes back.
DIRECTION directionAt(const MAPGEOMETRY& m, double lon, double lat, bool alongParallel)
{
    double step = probe * (alongParallel ? lonSpan(m) : latSpan(m));
    const double end = alongParallel ? lon + step - m.lonMax : lat + step - m.latMax;
    const bool back = end > 0 || !sees(m, alongParallel ? lon + step : lon, alongParallel ? lat : lat + step);
    if (back) step = -step;
    const POINT a = projected(lon, lat);
    const POINT b = alongParallel ? projected(lon + step, lat) : projected(lon, lat + step);
    const double sign = back ? -1 : 1;
    const double du = sign * (b.u - a.u) * m.xlen / (double{m.umax} - m.umin);
    const double dv = sign * (b.v - a.v) * m.ylen / (double{m.vmax} - m.vmin);
    return upright(std::atan2(dv, du) * degreesARadian);
}

// A row of labels along a parallel, or a column of them along a meridian.
struct LABELROW {
    double at;
    int lorg;
};

// An inner row stands beside its meridians, running along them from the row upward.
constexpr int besideMeridian = 6, belowEdge = 1, aboveEdge = 2, leftOfEdge = 7, centred = 0;

// A label that was turned by 180 degrees: where it stood before, but that one beside a meridian changes the
// side. Those are the meridians that bend to the west further north, and so away from it.
int turnedOrigin(int lorg)
{
    constexpr std::array<int, 10> table = {0, 2, 1, 6, 5, 4, 4, 8, 7, 9};
    return table[static_cast<std::size_t>(lorg)];
}

double nearest(const std::vector<double>& values, double target, double otherwise)
{
    double best = otherwise;
    for (const double v : values) {
        if (&v == values.data() || std::abs(v - target) <= std::abs(best - target)) best = v;
    }
    return best;
}

// The longitude at which the latitudes stand.
LABELROW latitudeColumn(const MAPGEOMETRY& m, const std::vector<double>& meridians)
{
    if (m.id == projectionOblique && lonSpan(m) > 300) {
        const double target = m.lonMin + 0.75 * (m.lon0 - m.lonMin);
        return {nearest(meridians, target, m.lonMin), centred};
    }
    return {m.lonMin, wholeCircle(m) ? centred : leftOfEdge};
}

LABELROW rowAt(const MAPGEOMETRY& m, double lat)
{
    const double tolerance = 1e-3 * latSpan(m);
    if (std::abs(lat - m.latMin) < tolerance) return {lat, belowEdge};
    if (std::abs(lat - m.latMax) < tolerance) return {lat, aboveEdge};
    return {lat, besideMeridian};
}

LABELROW obliqueRow(const MAPGEOMETRY& m, const std::vector<double>& parallels)
{
    const bool poleNear = std::abs(m.lat0) > 85 && lonSpan(m) > 300;
    const bool holdsPole = (m.latMin <= -90 || m.latMax >= 90) && lonSpan(m) > 350;
    if (!poleNear && !holdsPole) {
        return rowAt(m, std::abs(m.latMin) <= std::abs(m.latMax) ? m.latMin : m.latMax);
    }
    const double step = parallels.size() > 1 ? parallels[1] - parallels[0] : latSpan(m);
    std::vector<double> between;
    between.reserve(parallels.size());
    for (const double lat : parallels) between.push_back(lat + 0.5 * step);
    return rowAt(m, nearest(between, 0.5 * (m.latMin + m.latMax), 0.5 * (m.latMin + m.latMax)));
}

LABELROW equatorRow(const MAPGEOMETRY& m, const std::vector<double>& parallels)
{
    double best = nearest(parallels, 0, m.latMin);
    if (std::abs(m.latMax) < std::abs(best)) best = m.latMax;
    if (std::abs(m.latMin) < std::abs(best)) best = m.latMin;
    return rowAt(m, best);
}

// The latitude at which the longitudes stand.
LABELROW longitudeRow(const MAPGEOMETRY& m, const std::vector<double>& parallels)
{
    if (m.id == projectionNorthPolar) return {m.latMin, belowEdge};
    if (m.id == projectionSouthPolar) return {m.latMax, aboveEdge};
    if (m.id == projectionOblique) return obliqueRow(m, parallels);
    return equatorRow(m, parallels);
}

DEGREELABEL labelAt(const MAPGEOMETRY& m, double lon, double lat, int lorg, bool alongParallel,
                    std::string text)
{
    const POINT at = projected(lon, lat);
    const DIRECTION direction = directionAt(m, lon, lat, alongParallel);
    DEGREELABEL label;
    label.text = std::move(text);
    label.u = static_cast<float>(at.u);
    label.v = static_cast<float>(at.v);
    label.angle = static_cast<float>(direction.angle);
    label.lorg = direction.turned ? turnedOrigin(lorg) : lorg;
    label.inside = lorg == centred || lorg == besideMeridian;
    return label;
}

// --- labels must not cover each other

using CORNERS = std::array<POINT, 4>; // cm

POINT onPaper(const MAPGEOMETRY& m, double u, double v)
{
    return {(u - m.umin) * m.xlen / (double{m.umax} - m.umin),
            (v - m.vmin) * m.ylen / (double{m.vmax} - m.vmin)};
}

// Fractions of a label's box from its lower left corner to the point of `lorg`.
POINT fractions(int lorg)
{
    constexpr std::array<POINT, 10> table = {POINT{0.5, 0.5}, {0.5, 1}, {0.5, 0}, {1, 1},   {1, 0},
                                             {0, 1},          {0, 0},   {1, 0.5}, {0, 0.5}, {0.5, 0.5}};
    return table[static_cast<std::size_t>(lorg)];
}

// `margin` in font sizes makes it larger, or smaller if negative.
CORNERS boxOf(const MAPGEOMETRY& m, const DEGREELABEL& label, float fontSize, double margin = 0)
{
    const double size = textCm(fontSize);
    const double w = textWidth(label.text) * size, h = labelHeight * size, d = margin * size;
    const POINT f = fractions(label.lorg);
    const POINT at = onPaper(m, label.u, label.v);
    const double c = std::cos(label.angle / degreesARadian), s = std::sin(label.angle / degreesARadian);
    const auto corner = [&](double fx, double fy) {
        const double dx = (fx - f.u) * w + (fx - 0.5) * 2 * d, dy = (fy - f.v) * h + (fy - 0.5) * 2 * d;
        return POINT{at.u + c * dx - s * dy, at.v + s * dx + c * dy};
    };
    return {corner(0, 0), corner(1, 0), corner(1, 1), corner(0, 1)};
}

// Whether a line along one of the sides of `a` parts the two boxes.
bool sideParts(const CORNERS& a, const CORNERS& b)
{
    for (std::size_t i = 0; i < 4; ++i) {
        const POINT from = a[i], to = a[(i + 1) % 4];
        const auto behind = [&](const POINT& p) {
            return (to.u - from.u) * (p.v - from.v) - (to.v - from.v) * (p.u - from.u) <= 0;
        };
        if (std::all_of(b.begin(), b.end(), behind)) return true;
    }
    return false;
}

bool overlap(const CORNERS& a, const CORNERS& b)
{
    return !sideParts(a, b) && !sideParts(b, a);
}

bool holds(const CORNERS& box, const POINT& p)
{
    return !sideParts(box, {p, p, p, p});
}

// The places that labels take.
class RLabelSpace {
public:
    RLabelSpace(const MAPGEOMETRY& m, float fontSize) : map_(m), fontSize_(fontSize) {}
    // True if there is room, which is taken then.
    bool take(const DEGREELABEL& label)
    {
        const CORNERS box = boxOf(map_, label, fontSize_);
        const auto covers = [&](const CORNERS& other) { return overlap(box, other); };
        if (std::any_of(taken_.begin(), taken_.end(), covers)) return false;
        taken_.push_back(box);
        return true;
    }
    [[nodiscard]] bool covers(double lon, double lat) const
    {
        const POINT at = projected(lon, lat);
        const POINT point = onPaper(map_, at.u, at.v);
        return std::any_of(taken_.begin(), taken_.end(),
                           [&](const CORNERS& box) { return holds(box, point); });
    }

private:
    const MAPGEOMETRY& map_;
    float fontSize_;
    std::vector<CORNERS> taken_;
};

// The map's edge on paper, to keep labels beside it off it.
class REdge {
public:
    explicit REdge(const MAPGEOMETRY& m)
    {
        std::vector<float> u(361), v(361);
        const int n = MapOutline(u, v, m.id, m.lonMin, m.lonMax, m.latMin, m.latMax);
        for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i)
            points_.push_back(onPaper(m, u[i], v[i]));
    }
    [[nodiscard]] bool cuts(const CORNERS& box) const
    {
        const auto inside =
            std::count_if(box.begin(), box.end(), [&](const POINT& p) { return encloses(p); });
        return inside > 0 && inside < static_cast<std::ptrdiff_t>(box.size());
    }
    // Ray cast to the right.
    [[nodiscard]] bool encloses(const POINT& p) const
    {
        bool inside = false;
        for (std::size_t i = 0, j = points_.size() - 1; i < points_.size(); j = i++) {
            const POINT &a = points_[i], &b = points_[j];
            if ((a.v > p.v) == (b.v > p.v)) continue;
            if (p.u < a.u + (p.v - a.v) / (b.v - a.v) * (b.u - a.u)) inside = !inside;
        }
        return inside;
    }

private:
    std::vector<POINT> points_;
};

constexpr double innerMargin = -0.15; // font sizes; a box may touch the edge, the letters in it may not

// Moves a label that ends at the edge along its direction, until the edge doesn't cut its letters.
void moveOffEdge(DEGREELABEL& label, const MAPGEOMETRY& m, const REdge& edge, float fontSize)
{
    const double size = textCm(fontSize), angle = label.angle / degreesARadian;
    const double outward = label.lorg == leftOfEdge ? -1 : 1;
    constexpr double step = 0.1, halfLetter = 0.45; // font sizes
    constexpr int steps = 25;
    const double du = -std::sin(angle) * halfLetter * size, dv = std::cos(angle) * halfLetter * size;
    for (int moved = 0; moved < steps; ++moved) {
        const POINT end = onPaper(m, label.u, label.v);
        const bool cut = edge.encloses({end.u + du, end.v + dv}) || edge.encloses({end.u - du, end.v - dv});
        if (!cut && moved > 0) return;
        const double shift = outward * step * size;
        label.u += static_cast<float>(shift * std::cos(angle) * (double{m.umax} - m.umin) / m.xlen);
        label.v += static_cast<float>(shift * std::sin(angle) * (double{m.vmax} - m.vmin) / m.ylen);
    }
}

// At the rim of a globe the parallels run along the edge, and a label along them would leave its place.
bool endsAtTheRim(const MAPGEOMETRY& m)
{
    constexpr double nearRim = 75; // degrees from the centre
    return m.id == projectionOblique && m.lon0 - m.lonMin > nearRim;
}

// The label of a parallel at the left edge.
void putBesideEdge(DEGREELABEL& label, const MAPGEOMETRY& m, const REdge& edge, float fontSize)
{
    if (endsAtTheRim(m)) {
        label.angle = 0;
        label.lorg = leftOfEdge;
    }
    moveOffEdge(label, m, edge, fontSize);
}

// Every n-th of the meridians' labels, so that there is about one a centimetre: of the rim if they stand
// around it, else of the map's width, across which a globe shows half of its meridians.
std::size_t labelStride(const MAPGEOMETRY& m)
{
    const bool globe = m.id == projectionOblique && wholeCircle(m);
    const double span = globe ? 180 : lonSpan(m), step = meridianStep(m);
    const bool rim = m.id == projectionNorthPolar || m.id == projectionSouthPolar;
    const double length = rim ? m.xlen * 3.14 * span / 360 : m.xlen;
    int first = 0, last = static_cast<int>(span / step);
    float major = static_cast<float>(step);
    FitLabels(first, last, major, 0, 0, static_cast<float>(span), static_cast<float>(length));
    return static_cast<std::size_t>(std::max(1.0, std::round(major / step)));
}

void addLatitudes(std::vector<DEGREELABEL>& labels, RLabelSpace& space, const MAPGEOMETRY& m, float fontSize,
                  const LABELROW& column, const std::vector<double>& parallels)
{
    const REdge edge(m);
    const double margin = 0.02 * latSpan(m);
    for (const double lat : parallels) {
        const bool onEdge = lat - m.latMin < margin || m.latMax - lat < margin;
        if (!sees(m, column.at, lat) || (column.lorg == centred && onEdge)) continue;
        DEGREELABEL label = labelAt(m, column.at, lat, column.lorg, true, latitudeLabel(lat));
        if (column.lorg == leftOfEdge) putBesideEdge(label, m, edge, fontSize);
        if (column.lorg == centred && edge.cuts(boxOf(m, label, fontSize, innerMargin))) continue;
        if (space.take(label)) labels.push_back(std::move(label));
    }
}

void addLongitudes(std::vector<DEGREELABEL>& labels, RLabelSpace& space, const MAPGEOMETRY& m, float fontSize,
                   const LABELROW& row, const std::vector<double>& meridians)
{
    const REdge edge(m);
    const bool atEdge = row.lorg != besideMeridian;
    const std::size_t stride = labelStride(m);
    for (std::size_t i = 0; i < meridians.size(); i += stride) {
        const double lon = meridians[i];
        if (!sees(m, lon, row.at)) continue;
        DEGREELABEL label = labelAt(m, lon, row.at, row.lorg, atEdge, longitudeLabel(lon));
        if (!atEdge && edge.cuts(boxOf(m, label, fontSize, innerMargin))) continue;
        if (space.take(label)) labels.push_back(std::move(label));
    }
}

} // namespace

GRATICULE makeGraticule(const MAPGEOMETRY& m, float fontSize)
{
    GRATICULE g;
    const std::vector<double> meridians = meridianValues(m), parallels = parallelValues(m);
    RLabelSpace space(m, fontSize);
    addLatitudes(g.labels, space, m, fontSize, latitudeColumn(m, meridians), parallels);
    addLongitudes(g.labels, space, m, fontSize, longitudeRow(m, parallels), meridians);
    const auto free = [&](double lon, double lat) { return sees(m, lon, lat) && !space.covers(lon, lat); };
    for (const double lon : meridians) {
        addVisiblePieces(g.meridians, lon, m.latMin, m.latMax, [&](double lat) { return free(lon, lat); });
    }
    for (const double lat : parallels) {
        addVisiblePieces(g.parallels, lat, m.lonMin, m.lonMax, [&](double lon) { return free(lon, lat); });
    }
    return g;
}

} // namespace graphics
