#pragma once

// Base map layers: polygon files (`.cdt`) and the gridded relief.

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "common/user.h"
#include "graphics/cdt.h"
#include "graphics/datawindow.h"
#include "graphics/drawing.h"
#include "graphics/etopo.h"

namespace graphics {

// One file in the window `map`, with the drawing state's current colour, pen and line style. A file that
// can't be opened draws nothing. Returns what was read, with the damage that was found.
CDTSCAN DrawCdtFile(QPainter* p, std::FILE* ps, const std::string& path, const MAPGEOMETRY& map, bool fill,
                    bool line);

struct BASEMAPCONTEXT {
    const common::INSTALLATION& installation;
    common::RUser& user;
    bool onCanvas = true;   // false for printing and bitmap export: the outline clips
    bool colors = true;     // colour ramps for bathymetry and topography; else grey steps
    std::string title = {}; // the main window's title, for the stamp; empty for none
    // Damaged files that were told of already: each is told once while a context lives.
    mutable std::vector<std::string> told = {};
};
[[nodiscard]] std::string layerPath(const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind,
                                    const LAYERENTRY& entry);
// Colours of entry i of n of a kind; `ramp`: colour ramps, else greys. Result as palette index, -1 none.
[[nodiscard]] int automaticFill(int kind, int i, int n, bool topography, bool ramp);
[[nodiscard]] int automaticLine(int kind, int i, int n, bool ramp);
// Fill colour in force of entry i of a kind.
[[nodiscard]] int layerFillColor(const MAPWINDOW& map, int kind, int i, bool ramp);

// All entries of a kind: for each its fill, then its line. ESC ends it at the next entry.
void DrawLayerKind(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind,
                   bool ramp);
// The first coastline entry with its line only.
void DrawCoastLine(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map);
// The bathymetry layer nearest to, but not deeper than `depth` metres, filled in the mask colour over a
// field.
void DrawBathymetryOverlay(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map,
                           double depth);
// The map's parts on the painter, in their order; stations go between front and top. BaseMapBack puts the map
// into its box (SetupMapWindow) and sets user system, plot rectangle, palette and clip.
void BaseMapBack(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void BaseMapFront(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void BaseMapTop(QPainter* p, const BASEMAPCONTEXT& context, MAPWINDOW& map);
// The same in three PostScript blocks. PsBaseMap1 puts the map into its box, whose origin holds the page's
// offset already.
void PsBaseMap1(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void PsBaseMap2(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map);
void PsBaseMap3(std::FILE* ps, const BASEMAPCONTEXT& context, MAPWINDOW& map);
// One box for each bathymetry and topography entry, right of the map. `fontSize` is the window's, in points.
void DrawMapColorBar(QPainter* p, std::FILE* ps, const MAPWINDOW& map, float fontSize);
// Between the map and its bar, cm.
[[nodiscard]] double mapColorBarGap(const MAPGEOMETRY& g);

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

} // namespace graphics
