#include <algorithm>
#include <cmath>
#include <vector>

#include "graphics/axes.h"
#include "graphics/gridpen.h"
#include "graphics/mapgraticule.h"
#include "graphics/palette.h"
#include "graphics/textsize.h"

namespace graphics {
namespace {

constexpr int gridThickness = 0, outlineThickness = 2;
constexpr int outlinePoints = 361;
constexpr double labelGap = 0.2; // between border and labels, in font sizes

constexpr double haloWidth = 0.07; // around letters on top of the map, in font sizes

// --- the default projection

// One axis of an unprojected map.
struct DEGREEAXIS {
    double lo, hi, start, minor;
    std::vector<double> tics;        // major
    std::vector<std::string> labels; // of the tics
};

// Room in cm that each label takes along the axis.
double neededCm(const DEGREEAXIS& axis, float fontSize, bool across)
{
    double needed = across ? labelHeight : 0;
    for (const std::string& text : axis.labels) {
        if (!across) needed = std::max(needed, textWidth(text));
    }
    return textCm(needed * fontSize);
}

// The tics that get a label. Steps that were thinned count from 0, so that the equator keeps its label.
std::vector<double> labelledTics(const MAPTICS& all, double lo, double hi, float length, bool latitude)
{
    MAPTICS t = all;
    FitLabels(t.first, t.last, t.major, t.start, static_cast<float>(lo), static_cast<float>(hi), length);
    std::vector<double> tics = ticValues(0, t.major, lo, hi);
    const auto isPole = [&](double value) { return latitude && std::abs(value) >= 90; };
    tics.erase(std::remove_if(tics.begin(), tics.end(), isPole), tics.end());
    if (tics.empty() && all.first <= all.last) tics.push_back(all.start + all.first * double{all.major});
    return tics;
}

DEGREEAXIS degreeAxis(double lo, double hi, float length, bool latitude, float fontSize)
{
    const MAPTICS t = ChooseMapTics(static_cast<float>(lo), static_cast<float>(hi), latitude);
    DEGREEAXIS axis{lo, hi, t.start, t.minor, labelledTics(t, lo, hi, length, latitude), {}};
    for (const double value : axis.tics) {
        axis.labels.push_back(latitude ? latitudeLabel(value) : longitudeLabel(value));
    }
    if (axis.tics.size() < 2) return axis;
    const double spacing = (axis.tics[1] - axis.tics[0]) * length / (hi - lo);
    const auto every =
        static_cast<std::size_t>(std::ceil(std::min(neededCm(axis, fontSize, latitude) / spacing, 1e3)));
    for (std::size_t i = 0; every > 1 && i < axis.labels.size(); ++i) {
        if (i % every != 0) axis.labels[i].clear();
    }
    return axis;
}

// Ends of the boxes of the border within [lo, hi].
std::vector<double> boxEnds(const DEGREEAXIS& axis)
{
    std::vector<double> ends = ticValues(axis.start, axis.minor, axis.lo, axis.hi);
    if (ends.empty() || ends.front() > axis.lo) ends.insert(ends.begin(), axis.lo);
    if (ends.back() < axis.hi) ends.push_back(axis.hi);
    return ends;
}

bool isBlack(const DEGREEAXIS& axis, double from, double to)
{
    const double box = std::floor((0.5 * (from + to) - axis.start) / axis.minor);
    return std::fmod(std::abs(box), 2) == 1;
}

void paintBox(QPainter* p, const QRectF& rect, const QColor& color)
{
    p->setBrush(color);
    p->drawRect(rect);
}

void paintBorder(QPainter* p, const DEGREEAXIS& lon, const DEGREEAXIS& lat, double band)
{
    const USRSYS& u = usrSys();
    const QRectF plot(QPointF(u.x.lowPx, u.y.highPx), QPointF(u.x.highPx, u.y.lowPx));
    const QColor ink = drawState().currentColor;
    p->setPen(QPen(ink, 1));
    paintBox(
        p,
        plot.adjusted(-band, -band, band, 0).intersected(plot.adjusted(-band, -band, band, -plot.height())),
        Qt::white);
    paintBox(p, QRectF(plot.left() - band, plot.bottom(), plot.width() + 2 * band, band), Qt::white);
    const std::vector<double> x = boxEnds(lon), y = boxEnds(lat);
    for (std::size_t i = 1; i < x.size(); ++i) {
        const double left = pixelX(x[i - 1]), right = std::min<double>(pixelX(x[i]), plot.right());
        const QColor color = isBlack(lon, x[i - 1], x[i]) ? ink : QColor(Qt::white);
        paintBox(p, QRectF(left, plot.top() - band, right - left, band), color);
        paintBox(p, QRectF(left, plot.bottom(), right - left, band), color);
    }
    for (std::size_t i = 1; i < y.size(); ++i) {
        const double low = pixelY(y[i - 1]), high = std::max<double>(pixelY(y[i]), plot.top());
        const QColor color = isBlack(lat, y[i - 1], y[i]) ? ink : QColor(Qt::white);
        paintBox(p, QRectF(plot.left() - band, high, band, low - high), color);
        paintBox(p, QRectF(plot.right(), high, band, low - high), color);
    }
    p->setBrush(Qt::NoBrush);
}

void paintGridLines(QPainter* p, const DEGREEAXIS& lon, const DEGREEAXIS& lat)
{
    const USRSYS& u = usrSys();
    p->setPen(gridPen(p));
    for (const double x : lon.tics) {
        p->drawLine(QPointF(pixelX(x), u.y.lowPx), QPointF(pixelX(x), u.y.highPx));
    }
    for (const double y : lat.tics) {
        p->drawLine(QPointF(u.x.lowPx, pixelY(y)), QPointF(u.x.highPx, pixelY(y)));
    }
}

void paintLabels(QPainter* p, const DEGREEAXIS& lon, const DEGREEAXIS& lat, float fontSize, double distance)
{
    const USRSYS& u = usrSys();
    const float below = static_cast<float>(u.y.userMin + distance / u.y.pixelsPerUnit);
    const float left = static_cast<float>(u.x.userMin - distance / u.x.pixelsPerUnit);
    SetLabelOrigin(p, 1);
    for (std::size_t i = 0; i < lon.labels.size(); ++i) {
        DrawLabel(p, nullptr, lon.labels[i], static_cast<float>(lon.tics[i]), below, 0, fontSize);
    }
    SetLabelOrigin(p, 7);
    for (std::size_t i = 0; i < lat.labels.size(); ++i) {
        DrawLabel(p, nullptr, lat.labels[i], left, static_cast<float>(lat.tics[i]), 0, fontSize);
    }
}

void writeAxis(std::FILE* ps, const DEGREEAXIS& axis, char name, bool grid, bool labels)
{
    const bool x = name == 'x';
    std::fprintf(ps, "%9.3f %9.3f %cmapframe\n", axis.start, axis.minor, name);
    for (std::size_t i = 0; i < axis.tics.size(); ++i) {
        if (grid)
            std::fprintf(ps, x ? "%g ymin %g ymax Line\n" : "xmin %g xmax %g Line\n", axis.tics[i],
                         axis.tics[i]);
        if (!labels || axis.labels[i].empty()) continue;
        std::fprintf(ps, "(%s) %9.3f %cmaplabl\n", psString(axis.labels[i]).c_str(), axis.tics[i], name);
    }
}

void drawPlainFrame(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map, float fontSize, bool grid,
                    bool labels)
{
    const DEGREEAXIS lon = degreeAxis(map.lonMin, map.lonMax, map.xlen, false, fontSize);
    const DEGREEAXIS lat = degreeAxis(map.latMin, map.latMax, map.ylen, true, fontSize);
    if (p) {
        if (grid) paintGridLines(p, lon, lat);
        paintBorder(p, lon, lat, textPixels(p, mapBorderWidth * fontSize));
        if (labels) paintLabels(p, lon, lat, fontSize, textPixels(p, (mapBorderWidth + labelGap) * fontSize));
    }
    if (ps) {
        writeAxis(ps, lon, 'x', grid, labels);
        writeAxis(ps, lat, 'y', grid, labels);
    }
}

// --- the other projections

void drawOutline(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map)
{
    std::vector<float> x(outlinePoints), y(outlinePoints);
    const int n = MapOutline(x, y, map.id, map.lonMin, map.lonMax, map.latMin, map.latMax);
    if (n < 2) return;
    x.resize(static_cast<std::size_t>(n));
    y.resize(static_cast<std::size_t>(n));
    if (p) {
        SetPenWidth(p, LineWidth(outlineThickness));
        DrawPath(p, nullptr, x, y, false, pathLine);
    }
    if (ps) {
        DrawPath(nullptr, ps, x, y, false, 0);
        std::fprintf(ps, "gsave %s stroke grestore\n", thicknessProcedure(outlineThickness));
    }
}

int pointsFor(float from, float to)
{
    return std::clamp(static_cast<int>(std::abs(to - from)) + 1, 20, 361);
}

void drawLines(QPainter* p, std::FILE* ps, const GRATICULE& g)
{
    const RDrawStateGuard guard(p);
    if (p) drawState().currentColor = gridPen(p).color();
    for (const GRATICULEPIECE& piece : g.parallels) {
        DrawParallel(p, ps, piece.at, piece.from, piece.to, pointsFor(piece.from, piece.to), gridThickness);
    }
    for (const GRATICULEPIECE& piece : g.meridians) {
        DrawMeridian(p, ps, piece.at, piece.from, piece.to, pointsFor(piece.from, piece.to), gridThickness);
    }
}

// Letters on top of the map have an edge in the contrary of their own colour.
bool isDark(int color)
{
    return qGray(paletteColor(color).rgb()) < 128;
}

void paintLabel(QPainter* p, const DEGREELABEL& label, double dx, double dy, float fontSize)
{
    const USRSYS& u = usrSys();
    DrawLabel(p, nullptr, label.text, static_cast<float>(label.u + dx / u.x.pixelsPerUnit),
              static_cast<float>(label.v + dy / u.y.pixelsPerUnit), label.angle, fontSize);
}

void paintProjectedLabel(QPainter* p, const DEGREELABEL& label, float fontSize)
{
    SetLabelOrigin(p, label.lorg);
    if (label.inside) {
        const QColor ink = drawState().currentColor;
        const double reach = std::max(1.0, std::round(textPixels(p, haloWidth * fontSize)));
        drawState().currentColor = isDark(drawState().color[0]) ? Qt::white : Qt::black;
        for (const double dx : {-reach, 0.0, reach}) {
            for (const double dy : {-reach, 0.0, reach}) paintLabel(p, label, dx, dy, fontSize);
        }
        drawState().currentColor = ink;
    }
    paintLabel(p, label, 0, 0, fontSize);
}

void writeProjectedLabel(std::FILE* ps, const DEGREELABEL& label)
{
    const int halo = !label.inside ? -1 : isDark(drawState().color[0]) ? 1 : 0;
    std::fprintf(ps, "/halo %d def /lorg %d def /labl [(%s)] def %g %g %g rotlabl\n", halo, label.lorg,
                 psString(label.text).c_str(), double{label.angle}, double{label.u}, double{label.v});
}

void drawLabels(QPainter* p, std::FILE* ps, const GRATICULE& g, float fontSize)
{
    for (const DEGREELABEL& label : g.labels) {
        if (p) paintProjectedLabel(p, label, fontSize);
        if (ps) writeProjectedLabel(ps, label);
    }
    if (ps) std::fputs("/halo -1 def /lorg 0 def\n", ps);
}

void drawProjectedFrame(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map, float fontSize, bool grid,
                        bool labels)
{
    const GRATICULE g = makeGraticule(map, fontSize);
    drawOutline(p, ps, map);
    if (p) SetPenWidth(p, 1);
    if (grid) drawLines(p, ps, g);
    if (labels) drawLabels(p, ps, g, fontSize);
}

void beginObject(std::FILE* ps, float fontSize, int color)
{
    std::fputs("\n%%PS-OBJECT: MapFrame begin\ngsave\n/fill? false def /stroke? false def\n", ps);
    WritePsColor(ps, color);
    std::fprintf(ps, "%s %g SetMyFont\n", thicknessProcedure(gridThickness), double{fontSize});
}

} // namespace

void DrawMapFrame(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map, float fontSize, int axisColor,
                  bool grid, bool labels)
{
    if (axisColor < 0 || !(map.umin < map.umax) || !(map.vmin < map.vmax)) return;
    const RDrawStateGuard guard(p);
    SetClip(p, false);
    SetFill(p, false);
    SetLineStyle(p, 0);
    SetPenWidth(p, 1);
    SetColor(p, axisColor);
    if (ps) beginObject(ps, fontSize, axisColor);
    if (map.id == projectionDefault) {
        drawPlainFrame(p, ps, map, fontSize, grid, labels);
    } else {
        drawProjectedFrame(p, ps, map, fontSize, grid, labels);
    }
    if (ps) std::fputs("grestore\n%%PS-OBJECT: MapFrame end\n", ps);
}

} // namespace graphics
