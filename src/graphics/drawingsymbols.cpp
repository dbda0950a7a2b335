// Symbols: one at a time, and very many at once.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <QImage>
#include <QPaintEngine>
#include <QPolygon>

#include "graphics/drawing.h"
#include "graphics/drawingpen.h"
#include "graphics/pstext.h"

namespace graphics {
namespace {

// From this many points on a stamp pays.
constexpr std::size_t bulkCount = 64;

// What a symbol is made of, in pixels around its centre.
struct SHAPE {
    int radius = 0; // of an ellipse; 0: none
    QPolygon outline;
    std::vector<QLine> strokes;
    bool isPoint = false;
};

int rounded(double value, int least = 0)
{
    return std::max(static_cast<int>(std::lround(std::min(value, 30000.0))), least);
}

void addPlus(SHAPE& shape, int half)
{
    shape.strokes.emplace_back(-half, 0, half, 0);
    shape.strokes.emplace_back(0, -half, 0, half);
}

void addCross(SHAPE& shape, int half)
{
    shape.strokes.emplace_back(-half, -half, half, half);
    shape.strokes.emplace_back(-half, half, half, -half);
}

SHAPE dot(double h)
{
    SHAPE shape;
    const int radius = rounded(0.42 * h);
    if (radius >= 2) {
        shape.radius = radius;
    } else if (radius == 1) {
        addPlus(shape, 1);
    } else {
        shape.isPoint = true;
    }
    return shape;
}

// Point up for sign -1, because y runs down.
SHAPE triangle(double h, int sign)
{
    SHAPE shape;
    const int half = rounded(0.5 * h, 1), point = sign * rounded(0.6 * h, 1),
              base = -sign * rounded(0.4 * h, 1);
    shape.outline << QPoint(-half, base) << QPoint(half, base) << QPoint(0, point);
    return shape;
}

// symbol: 1 to 8; h: size in pixels.
SHAPE symbolShape(int symbol, double h)
{
    SHAPE shape;
    const int half = rounded(0.5 * h, 1);
    switch (symbol) {
    case 1:
        return dot(h);
    case 2: {
        const int side = rounded(0.41 * h, 1);
        shape.outline << QPoint(-side, -side) << QPoint(side, -side) << QPoint(side, side)
                      << QPoint(-side, side);
        break;
    }
    case 3: {
        const int high = rounded(0.6 * h, 1);
        shape.outline << QPoint(-half, 0) << QPoint(0, -high) << QPoint(half, 0) << QPoint(0, high);
        break;
    }
    case 4:
        return triangle(h, -1);
    case 5:
        return triangle(h, 1);
    case 6:
        addPlus(shape, half);
        addCross(shape, rounded(0.85 * half, 1));
        break;
    case 7:
        addCross(shape, half);
        break;
    default:
        addPlus(shape, half);
        break;
    }
    return shape;
}

void paintShape(QPainter& p, const SHAPE& shape, QPoint at)
{
    if (shape.isPoint) p.drawPoint(at);
    if (shape.radius > 0) p.drawEllipse(at, shape.radius, shape.radius);
    if (!shape.outline.isEmpty()) p.drawPolygon(shape.outline.translated(at));
    for (const QLine& stroke : shape.strokes) p.drawLine(stroke.translated(at));
}

int extent(const SHAPE& shape)
{
    int result = std::max(shape.radius, 1);
    for (const QPoint& corner : shape.outline)
        result = std::max({result, std::abs(corner.x()), std::abs(corner.y())});
    for (const QLine& stroke : shape.strokes) result = std::max({result, stroke.x2(), std::abs(stroke.y2())});
    return result + std::max(drawState().penWidth, 1) + 1;
}

// Pixels of the points on `area`, each once, in the order of their first appearance: a dot on a dot is one
// dot.
std::vector<QPoint> distinctPixels(std::span<const float> x, std::span<const float> y, const QRect& area)
{
    std::vector<QPoint> result;
    const auto width = static_cast<std::size_t>(area.width());
    std::vector<std::uint64_t> seen((width * static_cast<std::size_t>(area.height()) + 63) / 64);
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (x[i] == common::MISSING_VALUE || y[i] == common::MISSING_VALUE) continue;
        const QPoint at(pixelX(x[i]), pixelY(y[i]));
        if (!area.contains(at)) continue;
        const std::size_t place =
            static_cast<std::size_t>(at.y() - area.y()) * width + static_cast<std::size_t>(at.x() - area.x());
        const std::uint64_t bit = std::uint64_t{1} << (place % 64);
        if (seen[place / 64] & bit) continue;
        seen[place / 64] |= bit;
        result.push_back(at);
    }
    return result;
}

// A picture of the symbol, drawn just as the painter would draw it.
QImage symbolStamp(const QPainter& p, const SHAPE& shape, int reach)
{
    QImage stamp(2 * reach + 1, 2 * reach + 1, QImage::Format_ARGB32_Premultiplied);
    stamp.fill(Qt::transparent);
    QPainter q(&stamp);
    q.setRenderHints(p.renderHints());
    q.setPen(p.pen());
    q.setBrush(p.brush());
    paintShape(q, shape, QPoint(reach, reach));
    return stamp;
}

bool takesStamps(const QPainter& p)
{
    return p.paintEngine() && p.paintEngine()->type() == QPaintEngine::Raster &&
           p.worldTransform().isIdentity();
}

void paintMany(QPainter& p, const SHAPE& shape, std::span<const float> x, std::span<const float> y)
{
    const int reach = extent(shape);
    const QRect device(0, 0, p.device()->width(), p.device()->height());
    const std::vector<QPoint> pixels = distinctPixels(x, y, device.adjusted(-reach, -reach, reach, reach));
    const QImage stamp = symbolStamp(p, shape, reach);
    for (const QPoint& at : pixels) p.drawImage(at - QPoint(reach, reach), stamp);
}

void paintOneByOne(QPainter& p, const SHAPE& shape, std::span<const float> x, std::span<const float> y)
{
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (x[i] == common::MISSING_VALUE || y[i] == common::MISSING_VALUE) continue;
        paintShape(p, shape, pathPixel(x[i], y[i]));
    }
}

void paintSymbols(QPainter& p, std::span<const float> x, std::span<const float> y, int symbol, float size)
{
    const DRAWSTATE& state = drawState();
    const SHAPE shape =
        symbolShape(symbol, static_cast<double>(size) * state.symbolScale * state.device.pixelsPerCm);
    // A filled symbol has its size whatever the pen, and so has the smallest dot.
    const bool ownSize = (symbol <= 5 && state.fill) || (symbol == 1 && shape.radius == 0);
    p.setPen(ownSize ? QPen(state.currentColor, 1) : currentPen(state.penWidth));
    p.setBrush(state.fill ? QBrush(state.currentColor) : QBrush(Qt::NoBrush));
    const Qt::BGMode mode = p.backgroundMode();
    p.setBackgroundMode(Qt::TransparentMode); // in the other one circles come out crooked
    if (x.size() >= bulkCount && takesStamps(p)) {
        paintMany(p, shape, x, y);
    } else {
        paintOneByOne(p, shape, x, y);
    }
    p.setBackgroundMode(mode);
    p.setBrush(Qt::NoBrush);
    p.setPen(currentPen(state.penWidth));
}

void writeSymbols(std::FILE* ps, std::span<const float> x, std::span<const float> y, int symbol, float size)
{
    RPsWriter out(ps);
    out.text("very_thin_line\n");
    char tail[numberTextSize + 16];
    const int length = writeNumber(tail, static_cast<double>(size) * 10);
    const std::string end = std::string(tail, static_cast<std::size_t>(length)) + " " +
                            symbols()[static_cast<std::size_t>(symbol - 1)].procedure;
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (x[i] == common::MISSING_VALUE || y[i] == common::MISSING_VALUE) continue;
        out.point(x[i], y[i], end);
    }
}

} // namespace

void DrawSymbols(QPainter* p, std::FILE* ps, std::span<const float> x, std::span<const float> y, int symbol,
                 float size)
{
    if (!(size > 0)) return;
    const std::size_t n = std::min(x.size(), y.size());
    const int known = std::clamp(symbol, 1, static_cast<int>(symbols().size()));
    if (p) paintSymbols(*p, x.first(n), y.first(n), known, size);
    if (ps) writeSymbols(ps, x.first(n), y.first(n), known, size);
}

} // namespace graphics
