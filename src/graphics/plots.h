#pragma once

// Plot drivers: from selected data to the windows of a mode.

#include <cstdio>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <QImage>
#include <QPainter>

#include "collection/rcollection.h"
#include "common/installation.h"
#include "common/user.h"
#include "graphics/axes.h"
#include "graphics/basemap.h"
#include "graphics/datawindow.h"
#include "selection/selectedlist.h"

namespace graphics {

// The map of the canvas with its dots, so that frame and marks can be drawn on it again without the layers.
// It says nothing of the domain that it shows: who changes the domain or a layer marks the map as to be
// drawn.
struct MAPCACHE {
    QImage picture; // null if there is none
    QRect area;     // where it belongs, pixels
};

struct PLOTCONTEXT {
    collection::RCollection& collection;
    collection::STATIONDATA& station; // scratch for loads
    GRAPHICSSETUP& setup;
    common::RUser& user;
    const common::INSTALLATION& installation;
    std::function<void()> repaint; // shows the canvas as far as it is; may be empty
    std::string title, version;    // the main window's title and the program's version text
    std::string sectionName;
    bool onCanvas = true;         // false for printing and bitmap export
    MAPCACHE* mapCache = nullptr; // of the canvas; null: the map is always drawn anew
};

// --- drivers on the painter. They draw the windows marked toDraw and poll ESC between them.
void PlotMap(QPainter* p, PLOTCONTEXT& context, bool full);
void PlotStationMode(QPainter* p, PLOTCONTEXT& context, bool full);
void PlotScatterMode(QPainter* p, PLOTCONTEXT& context, bool full);
// The one entry for a new picture: the map if it is marked, then the mode's windows, then the map's top.
void RedrawCanvas(QPainter* p, PLOTCONTEXT& context, bool full);

// Filled circles of `size` cm over the map as it stands on the painter, for stations that are no part of the
// picture. Longitudes are of any form.
void DrawStationDots(QPainter* p, GRAPHICSSETUP& setup, std::span<const selection::SELECTEDSTATION> stations,
                     float size, int color);

// The list of selected stations anew, without a picture, if the map is marked to be drawn.
void refreshSelection(PLOTCONTEXT& context);

// --- PostScript forms
void WriteMapWindow(std::FILE* ps, PLOTCONTEXT& context);
void WriteStationWindows(std::FILE* ps, PLOTCONTEXT& context);
void WriteDataWindows(std::FILE* ps, PLOTCONTEXT& context);

// --- ranges from the data
// Full ranges of the variables of window `number` (0: all windows of the mode) over the selected stations,
// widened to the tic rule's limits. Also keeps rangeMin and rangeMax of the collection's variables.
void fullRanges(PLOTCONTEXT& context, int number);

// --- export. window: -1 the whole canvas, 0 the map, else a data window of the mode.
[[nodiscard]] bool exportPostScript(PLOTCONTEXT& context, const std::string& path, int window);
// Bitmap by the path's extension (png, jpg, gif) at `dpi`, 1 or more.
[[nodiscard]] bool exportBitmap(PLOTCONTEXT& context, const std::string& path, int window, int dpi);
[[nodiscard]] bool writeGif(const QImage& image, const std::string& path);

// Colour, symbol and fill of stations in STATION mode, the same on the map and in the windows.
class RStationCycle {
public:
    int color = 0, symbol = 0;
    bool fill = false;
    void next(); // also the first one

private:
    int count_ = 0;
};

} // namespace graphics
