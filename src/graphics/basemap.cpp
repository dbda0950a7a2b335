// The order in which the parts of a map are drawn.

#include "graphics/basemap.h"

#include "graphics/axes.h"
#include "graphics/palette.h"
#include "graphics/textsize.h"

namespace graphics {

namespace {

constexpr float frameFont = 0.84f, stampFont = 0.65f; // of the window's base font size

void drawKinds(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map, int first,
               int last)
{
    for (int kind = first; kind <= last; ++kind) DrawLayerKind(p, ps, context, map, kind, context.colors);
}

void setUp(const BASEMAPCONTEXT& context, MAPWINDOW& map)
{
    SetupMapWindow(map.geometry, map.box);
    LoadPalette(PalettePath(context.installation, map.palette));
}

void setUserSystem(MAPWINDOW& map)
{
    const MAPGEOMETRY& g = map.geometry;
    SetUsrSys(g.umin, g.umax, g.xlen, g.xorg, g.vmin, g.vmax, g.ylen, g.yorg);
    const USRSYS& usr = usrSys();
    map.plotRect = {int(usr.x.lowPx), int(usr.y.highPx), int(usr.x.highPx), int(usr.y.lowPx)};
}

void clipPainter(QPainter& p, const BASEMAPCONTEXT& context, const MAPGEOMETRY& map)
{
    if (context.onCanvas)
        SetClip(&p, true);
    else
        ClipToMap(&p, nullptr, map, false);
}

void paintBackground(QPainter& p, const MAPWINDOW& map)
{
    if (map.background < 0) return;
    const auto& [left, top, right, bottom] = map.plotRect;
    p.fillRect(QRect(QPoint(left, top), QPoint(right, bottom)), paletteColor(map.background));
}

void writeBackground(std::FILE* ps, const MAPWINDOW& map)
{
    if (map.background < 0) return;
    std::fputs("\n%%PS-OBJECT: NVQ_WindowBackground begin\n", ps);
    WritePsColor(ps, map.background);
    std::fputs("np xmin ymin M xmax ymin L\nxmax ymax L xmin ymax L xmin ymin L fill 0 setgray\n"
               "%%PS-OBJECT: NVQ_WindowBackground end\n\n",
               ps);
}

// Beside a colour bar the stamp is no larger than the gap in front of the bar allows.
float stampSize(const MAPWINDOW& map, float base, float border)
{
    const float size = stampFont * base;
    if (!map.colorBar) return size;
    const double room = mapColorBarGap(map.geometry) * pointsPerCm - border;
    return std::min(size, static_cast<float>(room / (stampGap + labelHeight * fontSettings().factor)));
}

// Frame, colour bar and stamp, on either sink.
void drawSurround(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map)
{
    const float base = baseFontSize(map.box.width, map.box.height);
    if (map.axisColor >= 0)
        DrawMapFrame(p, ps, map.geometry, frameFont * base, map.axisColor, map.grid != 0, true);
    if (map.colorBar) DrawMapColorBar(p, ps, map, base);
    const bool bordered = map.axisColor >= 0 && map.geometry.id == projectionDefault;
    const float border = bordered ? mapBorderWidth * frameFont * base * fontSettings().factor : 0;
    if (!context.title.empty())
        DrawStamp(p, ps, context.title, stampSize(map, base, border),
                  map.axisColor >= 0 ? map.axisColor : colorBlack, border);
}

} // namespace

void BaseMapBack(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map)
{
    setUp(context, map);
    setUserSystem(map);
    if (!p) return;
    clipPainter(*p, context, map.geometry);
    paintBackground(*p, map);
    drawKinds(p, nullptr, context, map, layerPreBathymetry, layerBathymetry);
}

void BaseMapFront(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map)
{
    if (!p) return;
    if (!context.onCanvas) {
        EraseOutsideMap(p, map.geometry);
        ClipToMap(p, nullptr, map.geometry, true);
    }
    drawKinds(p, nullptr, context, map, layerPreCoastlines, layerPostTopography);
}

void BaseMapTop(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map)
{
    if (!p) return;
    setUp(context, map); // other windows may have been drawn since
    setUserSystem(map);
    clipPainter(*p, context, map.geometry);
    DrawCoastLine(p, nullptr, context, map);
    if (context.onCanvas) EraseOutsideMap(p, map.geometry);
    SetClip(p, false);
    drawSurround(p, nullptr, context, map);
}

void PsBaseMap1(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map)
{
    setUp(context, map);
    std::fputs("\n%%PS-OBJECT: PSBaseMap1 begin\ngsave\n", ps);
    ClipToMap(nullptr, ps, map.geometry, false);
    writeBackground(ps, map);
    drawKinds(nullptr, ps, context, map, layerPreBathymetry, layerBathymetry);
    std::fputs("\ngrestore\n%%PS-OBJECT: PSBaseMap1 end\n\n", ps);
}

void PsBaseMap2(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map)
{
    std::fputs("\n%%PS-OBJECT: PSBaseMap2 begin\ngsave\n", ps);
    ClipToMap(nullptr, ps, map.geometry, false);
    drawKinds(nullptr, ps, context, map, layerPreCoastlines, layerPostTopography);
    std::fputs("\ngrestore\n%%PS-OBJECT: PSBaseMap2 end\n\n", ps);
}

void PsBaseMap3(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map)
{
    std::fputs("gsave  %saving unclipped status\n", ps);
    ClipToMap(nullptr, ps, map.geometry, true);
    DrawCoastLine(nullptr, ps, context, map);
    std::fputs("\ngrestore % clipping switched off\n\n", ps);
    endOverlayGrid(ps, map.geometry);
    drawSurround(nullptr, ps, context, map);
}

} // namespace graphics
