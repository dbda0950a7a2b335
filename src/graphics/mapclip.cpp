// The overlay grid, the clip to a map's outline, and the white around it.

#include <array>
#include <cmath>

#include <QPainterPath>
#include <QPolygon>
#include <QRegion>

#include "graphics/basemap.h"
#include "graphics/gridpath.h"
#include "graphics/palette.h"

namespace graphics {

namespace {

constexpr int outlinePoints = 361, coarseOutlinePoints = 181;
constexpr float fineDevice = 90; // pixels per cm
constexpr int frameThickness = 2, thick = 3;

struct OUTLINE {
    std::array<float, outlinePoints> x, y;
    int n = 0;
};

OUTLINE outlineOf(const MAPGEOMETRY& map, int points)
{
    OUTLINE line;
    line.n = MapOutline(std::span(line.x).first(std::size_t(points)), line.y, map.id, map.lonMin, map.lonMax,
                        map.latMin, map.latMax);
    return line;
}

OUTLINE painterOutline(const MAPGEOMETRY& map)
{
    const bool fine = drawState().device.pixelsPerCm >= fineDevice;
    return outlineOf(map, fine ? outlinePoints : coarseOutlinePoints);
}

QPolygon pixelsOf(const OUTLINE& line)
{
    QPolygon polygon;
    for (int i = 0; i < line.n; ++i)
        polygon << QPoint(pixelX(line.x[std::size_t(i)]), pixelY(line.y[std::size_t(i)]));
    return polygon;
}

// The window's rectangle in pixels, grown on all sides.
QRect plotRect(int grown)
{
    const USRSYS& usr = usrSys();
    const QRect r(QPoint(int(usr.x.lowPx), int(usr.y.highPx)), QPoint(int(usr.x.highPx), int(usr.y.lowPx)));
    return r.normalized().adjusted(-grown, -grown, grown, grown);
}

QRegion regionOf(const MAPGEOMETRY& map, const OUTLINE& line)
{
    return map.id == projectionDefault ? QRegion(plotRect(0)) : QRegion(pixelsOf(line));
}

void clipPainter(QPainter& p, const MAPGEOMETRY& map, bool frame)
{
    const OUTLINE line = painterOutline(map);
    if (frame && map.id != projectionDefault && line.n > 0) {
        SetClip(&p, false);
        SetColor(&p, colorBlack);
        const auto n = std::size_t(line.n);
        DrawCurve(&p, nullptr, std::span(line.x).first(n), std::span(line.y).first(n), common::MISSING_VALUE,
                  0, 0, frameThickness);
    }
    p.setClipRegion(regionOf(map, line));
}

void writeOutline(std::FILE* ps, const MAPGEOMETRY& map)
{
    const OUTLINE line = outlineOf(map, outlinePoints);
    std::vector<float> x, y;
    for (std::size_t i = 0; i < std::size_t(line.n); ++i) {
        x.push_back(float(overlayX(map, line.x[i])));
        y.push_back(float(overlayY(map, line.y[i])));
    }
    DrawPath(nullptr, ps, x, y, false, 0);
}

void clipPostScript(std::FILE* ps, const MAPGEOMETRY& map, bool frame)
{
    std::fputs("\n%%PS-OBJECT: MapClipPath begin\n", ps);
    beginOverlayGrid(ps, map);
    writeOutline(ps, map);
    if (frame && map.id != projectionDefault) std::fputs("gsave medium_line stroke grestore\n", ps);
    std::fputs("clip\n", ps);
    endOverlayGrid(ps, map);
    std::fputs("%%PS-OBJECT: MapClipPath end\n", ps);
}

int overlayAt(double w, double low, double high)
{
    return int((w - low) * overlayGrid / (high - low));
}

} // namespace

void beginOverlayGrid(std::FILE* ps, const MAPGEOMETRY& map)
{
    std::fprintf(ps, "0 %d %g %g 0 %d %g %g SetupUsrSys\n", overlayGrid, map.xlen, map.xorg, overlayGrid,
                 map.ylen, map.yorg);
}

void endOverlayGrid(std::FILE* ps, const MAPGEOMETRY& map)
{
    std::fprintf(ps, "%g %g %g %g %g %g %g %g SetupUsrSys\n", map.umin, map.umax, map.xlen, map.xorg,
                 map.vmin, map.vmax, map.ylen, map.yorg);
}

int overlayX(const MAPGEOMETRY& map, double u)
{
    return overlayAt(u, map.umin, map.umax);
}

int overlayY(const MAPGEOMETRY& map, double v)
{
    return overlayAt(v, map.vmin, map.vmax);
}

void ClipToMap(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map, bool frame)
{
    if (p) clipPainter(*p, map, frame);
    if (ps) clipPostScript(ps, map, frame);
}

void EraseOutsideMap(QPainter* p, const MAPGEOMETRY& map)
{
    if (!p || map.id == projectionDefault) return;
    const QRegion outside = QRegion(plotRect(LineWidth(thick))).xored(regionOf(map, painterOutline(map)));
    p->save();
    p->setClipRegion(outside);
    p->fillRect(outside.boundingRect(), Qt::white);
    p->restore();
}

} // namespace graphics
