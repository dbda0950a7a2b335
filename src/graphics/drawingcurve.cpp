// Curves and paths.

#include <algorithm>
#include <vector>

#include "graphics/drawing.h"
#include "graphics/drawingpen.h"
#include "graphics/projection.h"
#include "graphics/pstext.h"

namespace graphics {
namespace {

struct POINTS {
    std::vector<float> x, y;
};

POINTS goodPoints(std::span<const float> x, std::span<const float> y, float missing)
{
    POINTS good;
    const std::size_t n = std::min(x.size(), y.size());
    good.x.reserve(n);
    good.y.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        if (x[i] == missing || y[i] == missing) continue;
        good.x.push_back(x[i]);
        good.y.push_back(y[i]);
    }
    return good;
}

// The pixels of a line, without steps that stay on a pixel: a coast on a small map has a dozen of them a
// pixel.
std::vector<QPoint> pixels(const POINTS& points)
{
    std::vector<QPoint> result;
    result.reserve(points.x.size());
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        const QPoint at = pathPixel(points.x[i], points.y[i]);
        if (result.empty() || at != result.back()) result.push_back(at);
    }
    return result;
}

void strokePixels(QPainter& p, const std::vector<QPoint>& line)
{
    if (line.size() == 1) p.drawPoint(line.front()); // an island smaller than a pixel
    if (line.size() > 1) p.drawPolyline(line.data(), static_cast<int>(line.size()));
}

void strokeCurve(QPainter& p, const POINTS& points, int thickness)
{
    if (points.x.size() < 2) return;
    p.setPen(currentPen(LineWidth(thickness)));
    strokePixels(p, pixels(points));
    p.setPen(currentPen(drawState().penWidth));
}

void writeCurve(std::FILE* ps, const POINTS& points, int thickness)
{
    RPsWriter out(ps);
    out.text(thicknessProcedure(thickness)).text("\nnp\n");
    for (std::size_t i = 0; i < points.x.size(); ++i) out.point(points.x[i], points.y[i], i == 0 ? "M" : "L");
    out.text("stroke\n");
}

void paintPath(QPainter& p, const POINTS& points, int mode)
{
    const std::vector<QPoint> path = pixels(points);
    if (mode & pathFill) {
        p.setBrush(drawState().currentColor);
        if (path.size() > 1) p.drawPolygon(path.data(), static_cast<int>(path.size()));
        if (path.size() == 1) p.drawPoint(path.front());
        p.setBrush(Qt::NoBrush);
    }
    if (mode & pathLine) strokePixels(p, path);
}

void writePath(std::FILE* ps, const POINTS& points, int mode)
{
    RPsWriter out(ps);
    out.text("\nnp\n").point(points.x.front(), points.y.front(), "M");
    for (std::size_t i = 1; i < points.x.size(); ++i) {
        const float dx = points.x[i] - points.x[i - 1];
        const float dy = points.y[i] - points.y[i - 1];
        if (dx != 0 || dy != 0) out.point(dx, dy, "R");
    }
    if (mode & pathFill) out.text("Fill\n");
    if (mode & pathLine) out.text("stroke\n");
}

// A projected line between two ends, in both sinks.
void drawSampledLine(QPainter* p, std::FILE* ps, const POINTS& ends, int n, int thickness)
{
    if (n < 2) return;
    POINTS line{std::vector<float>(static_cast<std::size_t>(n)),
                std::vector<float>(static_cast<std::size_t>(n))};
    for (std::size_t i = 0; i < line.x.size(); ++i) {
        const float share = static_cast<float>(i) / static_cast<float>(n - 1);
        line.x[i] = ends.x[0] + share * (ends.x[1] - ends.x[0]);
        line.y[i] = ends.y[0] + share * (ends.y[1] - ends.y[0]);
    }
    if (p) {
        p->setPen(currentPen(LineWidth(thickness)));
        DrawPath(p, nullptr, line.x, line.y, true, pathLine);
        p->setPen(currentPen(drawState().penWidth));
    }
    if (ps) {
        DrawPath(nullptr, ps, line.x, line.y, true, 0);
        std::fprintf(ps, "gsave %s stroke grestore\n", thicknessProcedure(thickness));
    }
}

} // namespace

void DrawCurve(QPainter* p, std::FILE* ps, std::span<const float> x, std::span<const float> y, float missing,
               int symbol, float symbolSize, int thickness)
{
    const POINTS good = goodPoints(x, y, missing);
    if (p) strokeCurve(*p, good, thickness);
    if (ps) writeCurve(ps, good, thickness);
    if (symbol > 0) DrawSymbols(p, ps, good.x, good.y, symbol, symbolSize * 0.1f);
}

void DrawPath(QPainter* p, std::FILE* ps, std::span<const float> x, std::span<const float> y, bool project,
              int mode)
{
    const std::size_t limit = maxPathPoints;
    POINTS points = goodPoints(x.first(std::min(x.size(), limit)), y.first(std::min(y.size(), limit)),
                               common::MISSING_VALUE);
    if (points.x.empty()) return;
    for (std::size_t i = 0; project && i < points.x.size(); ++i) ProjectPoint(points.x[i], points.y[i]);
    if (p) paintPath(*p, points, mode);
    if (ps) writePath(ps, points, mode);
}

void DrawMeridian(QPainter* p, std::FILE* ps, float lon, float latMin, float latMax, int n, int thickness)
{
    drawSampledLine(p, ps, {{lon, lon}, {latMin, latMax}}, n, thickness);
}

void DrawParallel(QPainter* p, std::FILE* ps, float lat, float lonMin, float lonMax, int n, int thickness)
{
    drawSampledLine(p, ps, {{lonMin, lonMax}, {lat, lat}}, n, thickness);
}

} // namespace graphics
