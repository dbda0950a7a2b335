#pragma once

// Frames, axis numbers and stamps; with them the rules for tics.

#include <cstdio>
#include <string>
#include <string_view>

#include <QPainter>
#include <QPointF>

#include "graphics/datawindow.h"
#include "graphics/drawing.h"
#include "graphics/tics.h"

namespace graphics {

struct FRAMECONTEXT {
    const collection::RCollection& collection;
    std::string windowTitle; // the main window's title, for the stamp
    std::string user, date;  // for the collection stamp; date as "MMM/dd/yyyy hh:mm:ss"
    std::string section;     // section file name without extension, may be empty
};

// The closing routine of a plain data window: stamp, frame, tics, numbers, axis labels. The window's user
// system is in force. An axis colour below 0 leaves out frame, numbers and labels. Clears toDraw on the
// painter; ends the window's PostScript block. labels: with the automatic axis labels, if the window has them
// on.
void DrawWindowFrame(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, int number, DATAWINDOW& window,
                     bool labels);

// Tics whose numbers fit on an axis of `length` cm from a to b at fontSize points: ChooseTics, with both
// steps doubled as often as the numbers need it. across: the numbers stand across the axis, one above the
// other.
[[nodiscard]] TICS FitTics(float a, float b, float length, float fontSize, bool across);

// The rectangle of the plot area in the current colour.
void DrawFrame(QPainter* p);

// Painter side of the axes, in the current user system and colour, below and left of the plot. fontSize is
// that of the numbers, in points; grid: each major tic is a line across the plot; title: along the axis, may
// be empty. They return the distance in cm from the frame at which a title stands: below the x axis the upper
// edge of its box, left of the y axis its middle.
float DrawXAxis(QPainter* p, const TICS& tics, float fontSize, bool grid, std::string_view title);
// rotated: numbers run upward along the axis.
float DrawYAxis(QPainter* p, const TICS& tics, float fontSize, bool grid, std::string_view title,
                bool rotated = false);
// Centred above the plot.
void DrawTitle(QPainter* p, float fontSize, std::string_view title);

// Frame, degree labels and, with the grid flag, graticule of a map whose user system is in force. The default
// projection gets a border of boxes in turn black and white, the others their outline. Nothing for an axis
// colour below 0.
void DrawMapFrame(QPainter* p, std::FILE* ps, const MAPGEOMETRY& map, float fontSize, int axisColor,
                  bool grid, bool labels);

// Width of the default projection's border, in sizes of the degree labels' font.
inline constexpr float mapBorderWidth = 0.4f;
// Between a plot, or its border, and the window's stamp, in font sizes of the stamp.
inline constexpr double stampGap = 0.25;

// Small vertical label with the main window's title, right of the plot; what stands there is `border` points
// wide.
void DrawStamp(QPainter* p, std::FILE* ps, std::string_view title, float fontSize, int color,
               float border = 0);

// Who, when, and which collection, configuration and section, with its upper right corner at `corner`: in cm
// on the page in PostScript, whatever the page's scale is, and in cm of the device on the painter.
void DrawCollectionStamp(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, float scale,
                         const QPointF& corner);
// The same at the upper right of the page (A4, above its picture area) or of the painter's device.
void DrawCollectionStamp(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, float scale,
                         bool landscape);
// Width and height in cm of the stamp.
[[nodiscard]] QSizeF collectionStampSize(const FRAMECONTEXT& context);

} // namespace graphics
