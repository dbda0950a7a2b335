#pragma once

// Frames, axis numbers and stamps; with them the rules for tics.

#include <cstdio>
#include <string>

#include <QPainter>

#include "graphics/datawindow.h"
#include "graphics/drawing.h"
#include "graphics/tics.h"

namespace graphics {

struct FRAMECONTEXT {
    const collection::RCollection& collection;
    std::string windowTitle; // the main window's title, for the stamp
    std::string user, date;  // for the collection stamp; date as "MMM/dd/yyyy hh:mm:ss"
    std::string section;     // section file name, may be empty
};
// The closing routine of a plain data window: stamp, frame, tics, numbers, axis labels. Clears toDraw on the
// painter; ends the window's PostScript block.
void DrawWindowFrame(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, int number, DATAWINDOW& window,
                     bool labels);
// Painter side of the axes, in the current user system. They return the distance in cm from the frame to the
// outer edge of the numbers, so that the caller can place a label.
float DrawXAxis(QPainter* p, const TICS& tics, float fontSize, bool grid, std::string_view title);
float DrawYAxis(QPainter* p, const TICS& tics, float fontSize, bool grid, std::string_view title);
void DrawMapFrame(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map, float fontSize, int axisColor,
                  bool grid, bool labels);
// Small vertical label with the main window's title, right of the plot.
void DrawStamp(QPainter* p, std::FILE* ps, std::string_view title, float fontSize, int color);
// At the upper right of the page: who, when, and which collection, configuration and section.
void DrawCollectionStamp(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, float scale,
                         bool landscape);

} // namespace graphics
