#include "graphics/mapplot.h"

#include <algorithm>
#include <cmath>

#include <QPixmap>

#include "common/text.h"
#include "common/textcoding.h"
#include "graphics/extents.h"
#include "graphics/palette.h"
#include "graphics/preparewindow.h"
#include "graphics/pstext.h"
#include "graphics/textsize.h"
#include "selection/criteria.h"
#include "selection/selectedlist.h"

namespace graphics {

namespace {

using selection::SELECTEDSTATION;

constexpr const char* mapCaption = "Drawing Station-Map ...";
constexpr const char* noStationText = "No Valid Station Found!\n\nUse\n Configuration->Selection Criteria to "
                                      "Open Criteria\n\nor select\n Global "
                                      "Map from the Map-Menu.";
constexpr float markSize = 0.23f;     // cm, symbols of the plotted stations
constexpr float psDotShare = 1.3f;    // of the dot size, of dots in PostScript
constexpr float labelShiftX = 0.075f; // of the dot size, cm, from a dot to its label
constexpr float labelShiftY = 0.025f;

selection::MAPDOMAIN domainOf(const MAPGEOMETRY& map)
{
    return {map.lonMin, map.lonMax, map.latMin, map.latMax};
}

void setMapUserSystem(MAPWINDOW& map)
{
    const MAPGEOMETRY& g = map.geometry;
    SetUsrSys(g.umin, g.umax, g.xlen, g.xorg, g.vmin, g.vmax, g.ylen, g.yorg);
    const USRSYS& usr = usrSys();
    map.plotRect = {static_cast<std::int32_t>(usr.x.lowPx), static_cast<std::int32_t>(usr.y.highPx),
                    static_cast<std::int32_t>(usr.x.highPx), static_cast<std::int32_t>(usr.y.lowPx)};
}

// The projected place of a station; false if it is hidden behind the globe.
bool placeOf(const SELECTEDSTATION& station, float& x, float& y)
{
    if (!IsVisible(station.longitude, station.latitude)) return false;
    x = station.longitude;
    y = station.latitude;
    ProjectPoint(x, y);
    return true;
}

// A plotted station on the map as it is now: the list was made for the domain of its time.
bool moveIntoDomain(SELECTEDSTATION& station, const MAPGEOMETRY& map)
{
    const float eastward = station.longitude < 0 ? station.longitude + 360 : station.longitude;
    station.longitude = selection::longitudeIn(eastward, map.lonMin, static_cast<float>(map.lonMax));
    return station.longitude >= map.lonMin && station.longitude <= map.lonMax &&
           station.latitude >= map.latMin && station.latitude <= map.latMax;
}

std::int16_t storedPixel(int pixel)
{
    return static_cast<std::int16_t>(std::clamp(pixel, -32768, 32767));
}

// A hidden station is selected, but no click can hit it.
bool setPixels(SELECTEDSTATION& station)
{
    float x = 0, y = 0;
    const bool visible = placeOf(station, x, y);
    station.pixelX = visible ? storedPixel(pixelX(x)) : std::int16_t{-1};
    station.pixelY = visible ? storedPixel(pixelY(y)) : std::int16_t{-1};
    return true;
}

// --- dots on the painter

// Draws groups of stations. A dot on a pixel that has one already would change nothing and is left out.
class RDotPainter {
public:
    RDotPainter(QPainter* p, const MAPWINDOW& map)
        : p_(p), map_(map), width_(std::max(1, drawState().device.widthPx)),
          taken_(static_cast<std::size_t>(width_) *
                 static_cast<std::size_t>(std::max(1, drawState().device.heightPx)))
    {
    }
    void draw(std::span<const SELECTEDSTATION> group)
    {
        x_.clear();
        y_.clear();
        for (const SELECTEDSTATION& station : group) add(station);
        SetColor(p_, map_.dotColor);
        SetFill(p_, true);
        DrawSymbols(p_, nullptr, x_, y_, 1, map_.dotSize * 0.1f);
        SetFill(p_, false);
    }

private:
    void add(const SELECTEDSTATION& station)
    {
        float x = 0, y = 0;
        if (!placeOf(station, x, y)) return;
        const int px = pixelX(x), py = pixelY(y);
        if (px < 0 || px >= width_ || py < 0) return;
        const std::size_t place =
            static_cast<std::size_t>(py) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(px);
        if (place >= taken_.size() || taken_[place]) return;
        taken_[place] = true;
        x_.push_back(x);
        y_.push_back(y);
    }
    QPainter* const p_;
    const MAPWINDOW& map_;
    const int width_;
    std::vector<bool> taken_;
    std::vector<float> x_, y_;
};

void buildWithDots(QPainter* p, PLOTCONTEXT& context)
{
    RDotPainter dots(p, context.setup.map);
    const auto group = [&](std::span<const SELECTEDSTATION> stations) {
        dots.draw(stations);
        if (context.repaint) context.repaint();
    };
    selection::buildSelectedList(context.collection, {domainOf(context.setup.map.geometry), setPixels, group},
                                 mapCaption, context.user);
}

void drawDots(QPainter* p, PLOTCONTEXT& context)
{
    RDotPainter(p, context.setup.map).draw(selection::readSelectedList(context.collection));
}

// --- station labels

std::string stationLabel(PLOTCONTEXT& context, int number)
{
    constexpr int cruiseAndStation = 2;
    collection::STATIONHDR header{};
    if (!context.collection.readStationHeader(number, header, nullptr)) return {};
    std::string station(common::fieldText(header.station));
    if (context.setup.map.annotation != cruiseAndStation) return station;
    return std::string(common::fieldText(header.cruise)) + " " + station;
}

struct LABELPLACE {
    int lorg;
    float dx, dy; // from the dot, cm
};
constexpr int upperRight = 6, upperLeft = 4, lowerRight = 5, lowerLeft = 3; // label origins, seen from a dot

// To the upper right of a dot, unless the map's right or upper edge is too near.
LABELPLACE labelPlace(const MAPWINDOW& map, const std::string& label, float u, float v)
{
    const MAPGEOMETRY& g = map.geometry;
    const float right = (g.umax - u) / (g.umax - g.umin) * g.xlen;
    const float top = (g.vmax - v) / (g.vmax - g.vmin) * g.ylen;
    const float dx = labelShiftX * map.dotSize, dy = labelShiftY * map.dotSize;
    const bool west = dx + textCm(textWidth(label) * map.annotationSize) > right;
    const bool south = dy + textCm(labelHeight * map.annotationSize) > top;
    if (south) return {west ? lowerLeft : lowerRight, west ? -dx : dx, -dy};
    return {west ? upperLeft : upperRight, west ? -dx : dx, dy};
}

void paintStationLabels(QPainter* p, PLOTCONTEXT& context)
{
    const MAPWINDOW& map = context.setup.map;
    if (map.annotation == 0) return;
    SetClip(p, false);
    SetColor(p, colorBlack);
    SelectFont(p, 1, map.annotationSize);
    float x = 0, y = 0;
    for (const SELECTEDSTATION& station : selection::readSelectedList(context.collection)) {
        if (!placeOf(station, x, y)) continue;
        const std::string label = stationLabel(context, station.number);
        const LABELPLACE place = labelPlace(map, label, x, y);
        SetLabelOrigin(p, place.lorg);
        DrawLabel(p, nullptr, label, x + place.dx * usrSys().x.unitsPerCm,
                  y + place.dy * usrSys().y.unitsPerCm, 0, map.annotationSize);
    }
    SetClip(p, true);
}

void paintNoStationText(QPainter* p, const MAPGEOMETRY& map)
{
    const float size = baseFontSize(map.xlen, map.ylen);
    SetColor(p, colorBlack);
    SelectFont(p, 1, size);
    SetLabelOrigin(p, 0);
    DrawLabel(p, nullptr, "  No Station Satisfies Selection Criteria!", (map.umin + map.umax) / 2,
              (map.vmin + map.vmax) / 2, 0, size);
}

// --- the map with its dots, without what BaseMapTop draws on and around it

void storePicture(QPainter* p, PLOTCONTEXT& context)
{
    if (!context.mapCache || !context.onCanvas) return;
    context.user.status("Storing pixmap...");
    context.mapCache->area = toPixels(windowExtent(context, 0));
    if (const auto* const image = dynamic_cast<const QImage*>(p->device())) {
        context.mapCache->picture = image->copy(context.mapCache->area);
    } else if (const auto* const pixmap = dynamic_cast<const QPixmap*>(p->device())) {
        context.mapCache->picture = pixmap->copy(context.mapCache->area).toImage();
    }
}

bool restorePicture(QPainter* p, const PLOTCONTEXT& context)
{
    if (!context.onCanvas || !drawState().usePixmap || !context.mapCache) return false;
    const MAPCACHE& cache = *context.mapCache;
    if (cache.picture.isNull() || cache.area != toPixels(windowExtent(context, 0))) return false;
    p->drawImage(cache.area.topLeft(), cache.picture);
    return true;
}

void drawFullMap(QPainter* p, PLOTCONTEXT& context)
{
    MAPWINDOW& map = context.setup.map;
    const common::RBusyGuard busy(context.user, abortable(mapCaption));
    if (context.mapCache && context.onCanvas) *context.mapCache = MAPCACHE{};
    SetupWindow(context.setup, 0);
    const BASEMAPCONTEXT baseMap = baseMapContext(context);
    BaseMapBack(p, baseMap, map);
    BaseMapFront(p, baseMap, map);
    setMapUserSystem(map);
    if (context.user.abortRequested()) return;
    if (context.onCanvas) {
        buildWithDots(p, context);
    } else {
        drawDots(p, context);
    }
    if (context.user.abortRequested()) return;
    paintStationLabels(p, context);
    const bool none = context.collection.selectedStationCount == 0 && context.collection.stationCount > 0;
    if (none) paintNoStationText(p, map.geometry);
    storePicture(p, context);
    BaseMapTop(p, baseMap, map);
    map.toDraw = 0;
    map.complete = 1;
    if (none) context.user.about(mapCaption, noStationText);
}

void drawPartialMap(QPainter* p, PLOTCONTEXT& context)
{
    setMapUserSystem(context.setup.map);
    SetClip(p, false);
    if (!restorePicture(p, context)) {
        drawFullMap(p, context);
    } else {
        BaseMapTop(p, baseMapContext(context), context.setup.map);
    }
    DrawMapMarks(p, context);
}

// --- PostScript

bool gridPlace(const MAPGEOMETRY& map, const SELECTEDSTATION& station, int& x, int& y)
{
    float u = 0, v = 0;
    if (!placeOf(station, u, v)) return false;
    x = overlayX(map, u);
    y = overlayY(map, v);
    return true;
}

void writePsDots(std::FILE* ps, const MAPGEOMETRY& map, std::span<const SELECTEDSTATION> stations)
{
    RPsWriter out(ps);
    int x = 0, y = 0;
    for (const SELECTEDSTATION& station : stations) {
        if (gridPlace(map, station, x, y)) out.gridPoint(x, y, "D");
    }
}

void writePsMarks(std::FILE* ps, PLOTCONTEXT& context)
{
    if (context.setup.mode > modeStation) return;
    const MAPGEOMETRY& map = context.setup.map.geometry;
    RStationCycle cycle;
    int x = 0, y = 0;
    for (SELECTEDSTATION& station : selection::readPlottedList(context.collection)) {
        cycle.next();
        if (!moveIntoDomain(station, map) || !gridPlace(map, station, x, y)) continue;
        WritePsColor(ps, cycle.color);
        const bool open = !cycle.fill;
        std::fprintf(ps, "/fill? %s def %d %d %g %s\n", open ? "false" : "true", x, y, markSize * 10,
                     symbols()[static_cast<std::size_t>(cycle.symbol - 1)].procedure);
    }
    std::fputs("/fill? true def\n", ps);
}

void writePsLabels(std::FILE* ps, PLOTCONTEXT& context, std::span<const SELECTEDSTATION> stations)
{
    const MAPWINDOW& map = context.setup.map;
    if (map.annotation == 0) return;
    const MAPGEOMETRY& g = map.geometry;
    int lorg = upperRight;
    std::fprintf(ps, "0 setgray\n%d SetMyFont /fill? false def /lorg %d def\n",
                 static_cast<int>(std::lround(map.annotationSize)), lorg);
    float u = 0, v = 0;
    for (const SELECTEDSTATION& station : stations) {
        if (!placeOf(station, u, v)) continue;
        const std::string label = stationLabel(context, station.number);
        const LABELPLACE place = labelPlace(map, label, u, v);
        if (place.lorg != lorg) std::fprintf(ps, "/lorg %d def\n", lorg = place.lorg);
        std::fprintf(ps, "(%s) %d %d showstring\n", psString(label).c_str(),
                     overlayX(g, u) + static_cast<int>(place.dx / g.xlen * overlayGrid),
                     overlayY(g, v) + static_cast<int>(place.dy / g.ylen * overlayGrid));
    }
    std::fputs("/lorg 0 def\n", ps);
}

void writePsStations(std::FILE* ps, PLOTCONTEXT& context)
{
    const MAPWINDOW& map = context.setup.map;
    const MAPGEOMETRY& g = map.geometry;
    const std::vector<SELECTEDSTATION> stations = selection::readSelectedList(context.collection);
    std::fputs("\n%%PS-OBJECT: StationPositions begin\n", ps);
    WritePsColor(ps, map.dotColor);
    std::fprintf(ps, "/D { %5.3f dotr } bind def\n", static_cast<double>(psDotShare * map.dotSize));
    beginOverlayGrid(ps, g);
    std::fprintf(ps, "\n/fill? true def /stroke? false def %s\n", thicknessProcedure(0));
    writePsDots(ps, g, stations);
    writePsMarks(ps, context);
    writePsLabels(ps, context, stations);
    std::fputs("/fill? true def\n", ps);
    endOverlayGrid(ps, g);
    std::fputs("\n%%PS-OBJECT: StationPositions end\n", ps);
}

} // namespace

bool mapIsShown(const GRAPHICSSETUP& setup)
{
    return setup.map.exists && setup.mode != modeSurface;
}

void refreshSelection(PLOTCONTEXT& context)
{
    if (!context.setup.map.toDraw) return;
    const RDrawStateGuard guard(nullptr);
    SetupWindow(context.setup, 0);
    setMapUserSystem(context.setup.map);
    selection::buildSelectedList(context.collection,
                                 {domainOf(context.setup.map.geometry), setPixels, nullptr}, mapCaption,
                                 context.user);
}

void DrawMapMarks(QPainter* p, PLOTCONTEXT& context)
{
    if (context.setup.mode > modeStation) return;
    setMapUserSystem(context.setup.map);
    SetClip(p, true);
    RStationCycle cycle;
    for (SELECTEDSTATION& station : selection::readPlottedList(context.collection)) {
        cycle.next();
        float x = 0, y = 0;
        if (!moveIntoDomain(station, context.setup.map.geometry) || !placeOf(station, x, y)) continue;
        SetColor(p, cycle.color);
        SetFill(p, cycle.fill);
        DrawSymbols(p, nullptr, std::span(&x, 1), std::span(&y, 1), cycle.symbol, markSize);
    }
    SetFill(p, false);
}

void DrawStationDots(QPainter* p, GRAPHICSSETUP& setup, std::span<const SELECTEDSTATION> stations, float size,
                     int color)
{
    if (!mapIsShown(setup)) return;
    const RDrawStateGuard guard(p);
    SetupWindow(setup, 0);
    setMapUserSystem(setup.map);
    std::vector<float> x, y;
    for (SELECTEDSTATION station : stations) {
        float u = 0, v = 0;
        if (!moveIntoDomain(station, setup.map.geometry) || !placeOf(station, u, v)) continue;
        x.push_back(u);
        y.push_back(v);
    }
    SetClip(p, true);
    SetColor(p, color);
    SetFill(p, true);
    DrawSymbols(p, nullptr, x, y, 1, size);
}

void PlotMap(QPainter* p, PLOTCONTEXT& context, bool full)
{
    if (!mapIsShown(context.setup)) return;
    if (full) {
        drawFullMap(p, context);
    } else {
        drawPartialMap(p, context);
    }
}

void WriteMapWindow(std::FILE* ps, PLOTCONTEXT& context)
{
    MAPWINDOW& map = context.setup.map;
    SetupWindow(context.setup, 0);
    setMapUserSystem(map);
    const BASEMAPCONTEXT baseMap = baseMapContext(context);
    std::fputs("\n%%PS-WINDOW: NVQ_MapWindow begin\n", ps);
    PsBaseMap1(ps, baseMap, map);
    PsBaseMap2(ps, baseMap, map);
    writePsStations(ps, context);
    PsBaseMap3(ps, baseMap, map);
    std::fputs("%%PS-WINDOW: NVQ_MapWindow end\n\n", ps);
}

} // namespace graphics
