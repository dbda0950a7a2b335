#pragma once

// Base map layers: polygon files (`.cdt`) and the gridded relief.

#include <cstdint>
#include <cstdio>
#include <functional>
#include <span>
#include <string>

#include "common/files.h"
#include "common/user.h"
#include "graphics/datawindow.h"
#include "graphics/drawing.h"

namespace graphics {

// One polygon of a `.cdt` file, degrees.
struct CDTRECORD {
    std::span<const float> lon, lat; // n points, 1 to 1500
    int outline = 0;                 // the first `outline` points are stroked
    [[nodiscard]] bool closed() const { return lon.front() == lon.back() && lat.front() == lat.back(); }
};
// Calls visit for each record until it returns false, or a record is impossible in both byte orders, or the
// file ends. Returns the number of records visited, -1 if the file can't be opened.
int readCdtFile(const std::string& path, const std::function<bool(const CDTRECORD&)>& visit);

// One file in the window `map`, with the drawing state's current colour, pen and line style.
void DrawCdtFile(QPainter* p, std::FILE* ps, const std::string& path, const MAPGEOMETRY& map, bool fill,
                 bool line);

struct BASEMAPCONTEXT {
    const common::INSTALLATION& installation;
    common::RUser& user;
    bool onCanvas = true; // false for printing and bitmap export: the outline clips
};
[[nodiscard]] std::string layerPath(const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind,
                                    const LAYERENTRY& entry);
// Colours of entry i of n of a kind; `ramp`: colour ramps, else greys. Result as palette index, -1 none.
[[nodiscard]] int automaticFill(int kind, int i, int n, bool topography, bool ramp);
[[nodiscard]] int automaticLine(int kind, int i, int n, bool ramp);

void DrawLayerKind(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind,
                   bool ramp);
// The map's parts on the painter, in their order.
void BaseMapBack(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void BaseMapFront(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void BaseMapTop(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map);
// The same in three PostScript blocks.
void PsBaseMap1(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void PsBaseMap2(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void PsBaseMap3(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void DrawMapColorBar(QPainter* p, std::FILE* ps, const MAPWINDOW& map, float fontSize);

// The overlay grid of PostScript base map geometry: whole numbers 0 to 5000 across each axis of the map.
inline constexpr int overlayGrid = 5000;
void beginOverlayGrid(std::FILE* ps, const MAPGEOMETRY& map);
void endOverlayGrid(std::FILE* ps, const MAPGEOMETRY& map); // back to the window's user system
[[nodiscard]] int overlayX(const MAPGEOMETRY& map, double u);
[[nodiscard]] int overlayY(const MAPGEOMETRY& map, double v);

// Clip to the map's outline, with its frame if a projection is active and a frame is wanted.
void ClipToMap(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map, bool frame);
// Fills the area of the window outside the projection with white.
void EraseOutsideMap(QPainter* p, const MAPGEOMETRY& map);

// --- gridded relief
struct ETOPOHEADER {
    char magic[8];
    std::int32_t reserved1;
    float cellsPerLon;
    std::int32_t cellsPerRow; // 1 to 6999
    float southEdge;          // south edge of the data plus 90, degrees
    float cellsPerLat;
    std::int32_t reserved2;
    bool swap; // of the file; not stored
};
[[nodiscard]] common::FilePtr OpenEtopo(const std::string& path, ETOPOHEADER& header); // null if it isn't one
// Height in metres at a position in degrees; 0 where the file holds none.
[[nodiscard]] float EtopoHeight(std::FILE* file, const ETOPOHEADER& header, double lon, double lat);

} // namespace graphics
