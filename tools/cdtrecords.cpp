#include "cdtrecords.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

#include "common/files.h"

namespace tools {
namespace {

constexpr std::size_t pieceLimit = 1450; // points of a piece; leaves room for rounding

// A straight cut: x = at if vertical, else y = at.
struct CUT {
    bool vertical;
    double at;
};

// --- points along long segments

// Points at the multiples of the step, so that both neighbours of a cut get the same ones.
void appendGridPoints(POINT a, POINT b, double step, CHAIN& out)
{
    const bool vertical = a.x == b.x;
    const double from = vertical ? a.y : a.x, to = vertical ? b.y : b.x;
    const double low = std::min(from, to), high = std::max(from, to);
    CHAIN between;
    for (double k = std::floor(low / step) + 1; k * step < high; ++k)
        between.push_back(vertical ? POINT{a.x, k * step} : POINT{k * step, a.y});
    if (from > to) std::reverse(between.begin(), between.end());
    out.insert(out.end(), between.begin(), between.end());
}

void appendEqualParts(POINT a, POINT b, double step, CHAIN& out)
{
    const int parts = int(std::ceil(std::max(std::abs(b.x - a.x), std::abs(b.y - a.y)) / step));
    for (int i = 1; i < parts; ++i)
        out.push_back({a.x + (b.x - a.x) * i / parts, a.y + (b.y - a.y) * i / parts});
}

CHAIN divided(const CHAIN& chain, double step)
{
    CHAIN out;
    for (std::size_t i = 0; i < chain.size(); ++i) {
        if (i > 0 && (chain[i].x == chain[i - 1].x || chain[i].y == chain[i - 1].y))
            appendGridPoints(chain[i - 1], chain[i], step, out);
        else if (i > 0)
            appendEqualParts(chain[i - 1], chain[i], step, out);
        out.push_back(chain[i]);
    }
    return out;
}

std::vector<CDTPOINT> rounded(const CHAIN& chain)
{
    std::vector<CDTPOINT> out;
    for (const POINT& p : chain) {
        const CDTPOINT q{float(p.x), float(p.y)};
        if (out.empty() || out.back() != q) out.push_back(q);
    }
    return out;
}

// --- fills

bool touchesChartEdge(const RING& ring)
{
    for (std::size_t i = 1; i < ring.size(); ++i)
        if (onChartEdge(ring[i - 1], ring[i])) return true;
    return false;
}

bool fitsOneRecord(const POLYGON& polygon, const CUTRULES& rules)
{
    if (!polygon.holes.empty() || polygon.outer.size() > std::size_t(maxRecordPoints)) return false;
    const BOX box = boundsOf(polygon.outer);
    return box.width() <= rules.tile && box.height() <= rules.tile && !touchesChartEdge(polygon.outer) &&
           divided(polygon.outer, rules.step).size() <= std::size_t(maxRecordPoints);
}

// The tile border nearest the middle of from..to, if one lies strictly inside.
std::optional<double> tileBorder(double from, double to, double origin, double tile)
{
    constexpr double nothing = 1e-9; // narrower strips than this are rounding
    const double middle = origin + std::round(((from + to) / 2 - origin) / tile) * tile;
    for (const double at : {middle, middle - tile, middle + tile})
        if (at > from + nothing && at < to - nothing) return at;
    return std::nullopt;
}

// A place for a cut that float32 holds exactly, so that both sides round to the same line.
double exactPlace(double at)
{
    return std::round(at * 1024) / 1024;
}

CUT halvingCut(const BOX& whole, const BOX& around)
{
    const bool vertical = whole.width() >= whole.height();
    return {vertical,
            exactPlace(vertical ? (around.xmin + around.xmax) / 2 : (around.ymin + around.ymax) / 2)};
}

const RING& largestHole(const POLYGON& polygon)
{
    const auto smaller = [](const RING& a, const RING& b) {
        return std::abs(signedArea(a)) < std::abs(signedArea(b));
    };
    return *std::max_element(polygon.holes.begin(), polygon.holes.end(), smaller);
}

// The next cut that the polygon needs before its outline can be a record of its own.
std::optional<CUT> nextCut(const POLYGON& polygon, const CUTRULES& rules)
{
    const BOX box = boundsOf(polygon.outer);
    if (const auto at = tileBorder(box.xmin, box.xmax, 0, rules.tile)) return CUT{true, *at};
    if (const auto at = tileBorder(box.ymin, box.ymax, -90, rules.tile)) return CUT{false, *at};
    if (!polygon.holes.empty()) return halvingCut(box, boundsOf(largestHole(polygon)));
    if (divided(polygon.outer, rules.step).size() > pieceLimit) return halvingCut(box, box);
    return std::nullopt;
}

void appendPieces(const RGeos& geos, const POLYGON& polygon, const CUTRULES& rules, int depth,
                  std::vector<RING>& out)
{
    constexpr int maxDepth = 60; // a hole that no cut opens: rounding, nothing that could be seen
    const std::optional<CUT> cut = nextCut(polygon, rules);
    if (!cut || depth > maxDepth) {
        out.push_back(polygon.outer);
        return;
    }
    const BOX box = boundsOf(polygon.outer);
    BOX low{box.xmin - 1, box.ymin - 1, box.xmax + 1, box.ymax + 1}, high = low;
    (cut->vertical ? low.xmax : low.ymax) = cut->at;
    (cut->vertical ? high.xmin : high.ymin) = cut->at;
    for (const BOX& side : {low, high})
        for (const POLYGON& piece : geos.clipped(polygon, side))
            appendPieces(geos, piece, rules, depth + 1, out);
}

void appendFill(const RING& ring, const CUTRULES& rules, bool stroked, std::vector<CDTSHAPE>& out)
{
    constexpr double visible = 1e-9; // square degrees; less is a sliver of the cutting
    CDTSHAPE shape{rounded(divided(ring, rules.step)), 0};
    if (shape.points.size() < 4 || std::abs(signedArea(ring)) < visible) return;
    if (stroked) shape.outline = int(shape.points.size());
    out.push_back(std::move(shape));
}

// --- lines

// The ring as chains, without its segments on the chart's edges.
std::vector<CHAIN> coastChains(const RING& ring)
{
    RING turned(ring.begin(), ring.end() - 1);
    for (std::size_t i = 1; i < ring.size(); ++i) {
        if (!onChartEdge(ring[i - 1], ring[i])) continue;
        std::rotate(turned.begin(), turned.begin() + std::ptrdiff_t(i % turned.size()), turned.end());
        break; // the ring now begins behind such a segment
    }
    turned.push_back(turned.front());
    std::vector<CHAIN> chains;
    CHAIN chain{turned.front()};
    for (std::size_t i = 1; i < turned.size(); ++i) {
        if (onChartEdge(turned[i - 1], turned[i])) {
            if (chain.size() > 1) chains.push_back(std::move(chain));
            chain = {turned[i]};
        } else {
            chain.push_back(turned[i]);
        }
    }
    if (chain.size() > 1) chains.push_back(std::move(chain));
    return chains;
}

// Equal parts of at most the limit, neighbours sharing an end; a closed line is at least two, since a closed
// record would be filled.
void appendLine(const std::vector<CDTPOINT>& line, std::vector<CDTSHAPE>& out)
{
    const std::size_t segments = line.size() - 1;
    std::size_t parts = (segments + maxRecordPoints - 2) / (maxRecordPoints - 1);
    if (line.front() == line.back()) parts = std::max<std::size_t>(parts, 2);
    for (std::size_t i = 0; i < parts; ++i) {
        const auto from = line.begin() + std::ptrdiff_t(segments * i / parts);
        const auto to = line.begin() + std::ptrdiff_t(segments * (i + 1) / parts) + 1;
        CDTSHAPE shape{{from, to}, int(to - from)};
        if (shape.points.size() > 2 && shape.closed()) continue; // a loop of three points encloses nothing
        if (shape.points.size() > 1) out.push_back(std::move(shape));
    }
}

void appendLines(const RING& ring, const CUTRULES& rules, std::vector<CDTSHAPE>& out)
{
    for (const CHAIN& chain : coastChains(ring)) {
        const std::vector<CDTPOINT> line = rounded(divided(chain, rules.step));
        if (line.size() > 1) appendLine(line, out);
    }
}

} // namespace

std::vector<CDTSHAPE> cdtShapes(const RGeos& geos, std::span<const POLYGON> polygons, const CUTRULES& rules)
{
    std::vector<CDTSHAPE> shapes;
    for (const POLYGON& polygon : polygons) {
        if (fitsOneRecord(polygon, rules)) {
            appendFill(polygon.outer, rules, true, shapes);
            continue;
        }
        std::vector<RING> pieces;
        appendPieces(geos, polygon, rules, 0, pieces);
        for (const RING& piece : pieces) appendFill(piece, rules, false, shapes);
        appendLines(polygon.outer, rules, shapes);
        for (const RING& hole : polygon.holes) appendLines(hole, rules, shapes);
    }
    return shapes;
}

std::vector<CDTSHAPE> globeShapes(const CUTRULES& rules)
{
    std::vector<CDTSHAPE> shapes;
    const int rows = int(std::lround(180 / rules.tile)), columns = 2 * rows;
    for (int i = 0; i < rows * columns; ++i) {
        const int row = i / columns, column = i % columns;
        const double x = column * rules.tile, y = -90 + row * rules.tile;
        appendFill(rectangle({x, y, x + rules.tile, y + rules.tile}), rules, false, shapes);
    }
    return shapes;
}

bool writeCdt(const std::string& path, std::span<const CDTSHAPE> shapes)
{
    common::RReplacementFile file(path);
    if (!file.stream()) return false;
    for (const CDTSHAPE& shape : shapes) {
        const std::int32_t head[2] = {std::int32_t(shape.points.size()), shape.outline};
        if (std::fwrite(head, sizeof head, 1, file.stream()) != 1) return false;
        const std::size_t count = shape.points.size();
        if (std::fwrite(shape.points.data(), sizeof(CDTPOINT), count, file.stream()) != count) return false;
    }
    return file.commit();
}

} // namespace tools
