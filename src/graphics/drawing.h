#pragma once

// The drawing layer: every picture passes through these routines, for two sinks. `p` is a painter on any
// device, `ps` a PostScript stream; either may be null. The painter side turns user coordinates into pixels
// here and nowhere above; the PostScript side writes user coordinates as text, and the procedures of the
// preamble map them. A point with MISSING_VALUE in x or y is skipped, and a curve goes on across it.

#include <array>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include <QColor>
#include <QPainter>
#include <QString>

#include "common/limits.h"
#include "common/user.h"

namespace graphics {

inline constexpr float referenceWidth = 29.0f, referenceHeight = 20.2f; // cm
inline constexpr double pointsPerCm = 28.35;
inline constexpr int maxPathPoints = 1500;

// The device that a painter draws on: the canvas, an export image or a printer page.
struct DEVICE {
    int widthPx = 1160, heightPx = 808;
    float widthCm = referenceWidth, heightCm = referenceHeight;
    float pixelsPerCm = 40.0f; // the same for both axes
};

// The drawing state of the process: one record, copied out and restored whole around printing and export.
struct DRAWSTATE {
    bool clip = true;      // drawing returns to the plot-area clip after an element outside it
    bool usePixmap = true; // the map may come from its stored pixmap
    bool gridLines = true;
    bool textFrame = false; // labels get a frame
    bool fill = false;      // closed symbols are filled, labels get an opaque background
    bool printing = false;
    std::array<int, 4> color{}; // set together by SetColor
    QColor currentColor = Qt::black;
    int paletteColors = 0;
    int penWidth = 1;                           // pixels
    int penStyle = 1;                           // Qt::PenStyle
    float symbolScale = 1.0f, fontScale = 1.0f; // sizes follow the device's resolution by themselves
    float fontSize = 12.0f;                     // points, as asked for
    int fontIndex = 1;                          // 1 default family, 2 symbol family
    float labelFractionX = 0.5f,
          labelFractionY = 0.5f; // of the text box, from lower left, see SetLabelOrigin
    DEVICE device;
};
[[nodiscard]] DRAWSTATE& drawState();

// One axis of the user system. y: `low` is the bottom pixel, `high` the top pixel, pixelsPerUnit is negative.
struct USRAXIS {
    float canvasPx = 0, lowPx = 0, highPx = 0, canvasCm = 0;
    float userAtCanvasLow = 0, userAtCanvasHigh = 0;
    float lengthCm = 1, userMin = 0, userMax = 1, originCm = 0;
    float pixelsPerCm = 40, pixelsPerUnit = 1, unitsPerCm = 1;
};
struct USRSYS {
    USRAXIS x, y;
};
[[nodiscard]] USRSYS& usrSys();

// Saves the drawing state, the user system and the painter's state, and puts them back on every way out.
class [[nodiscard]] RDrawStateGuard {
public:
    explicit RDrawStateGuard(QPainter* p);
    ~RDrawStateGuard();
    RDrawStateGuard(const RDrawStateGuard&) = delete;
    RDrawStateGuard& operator=(const RDrawStateGuard&) = delete;

private:
    QPainter* painter_;
    DRAWSTATE state_;
    USRSYS usr_;
};

struct FONTSETTINGS {
    float referenceSize = 12.0f;
    float factor = 1.0f; // "fontScaleFac" of the settings
    std::string family = "Arial";
    std::string symbolFamily = "Symbol";
    std::string psFamily = "Helvetica-Bold"; // derived by postScriptFamily whenever the settings change
    int weight = 3;                          // index of 25, 50, 63, 75 on the old scale; 3 is bold
    bool italic = false, underline = false;
};
[[nodiscard]] FONTSETTINGS& fontSettings();
// The PostScript family for a screen font: Times, Courier, else Helvetica, with its style behind it.
[[nodiscard]] std::string postScriptFamily(std::string_view screenFamily, bool bold, bool italic);
// Whether the symbol family is installed; otherwise its letters are drawn as Unicode Greek.
[[nodiscard]] bool symbolFontInstalled();

// --- tables whose indices are stored in files
struct LINETYPE {
    const char* name;
    const char* procedure;
    Qt::PenStyle style;
};
[[nodiscard]] std::span<const LINETYPE> lineTypes(); // 0 to 4
struct THICKNESS {
    const char* name;
    const char* procedure;
    float millimetres;
};
[[nodiscard]] std::span<const THICKNESS> thicknesses(); // 0 to 5
struct SYMBOL {
    const char* name;
    const char* procedure;
};
[[nodiscard]] std::span<const SYMBOL> symbols(); // index 0 to 7 for symbols 1 to 8
// Pen width in pixels of a thickness index, and its width in cm. Outside 0 to 5: 1 pixel and 0.05.
int LineWidth(int thickness, float* widthCm = nullptr);
[[nodiscard]] const char* thicknessProcedure(int thickness); // outside 0 to 5: "very_thin_line"

// --- state
void SetUsrSys(float xmin, float xmax, float xlen, float xorg, float ymin, float ymax, float ylen,
               float yorg);
[[nodiscard]] int pixelX(double x); // of the current user system
[[nodiscard]] int pixelY(double y);
void SetClip(QPainter* p, bool plotOnly);
void SetColor(QPainter* p, int paletteIndex); // also the painter's pen, p may be null
void WritePsColor(std::FILE* ps, int paletteIndex);
void SetFill(QPainter* p, bool fill);
void SetLineStyle(QPainter* p, int lineType);
void SetPenWidth(QPainter* p, int pixels);
void SetLabelOrigin(QPainter* p, int lorg);
void SelectFont(QPainter* p, int fontIndex, float points);
// Base font size in points of a window of width w and height h in cm.
[[nodiscard]] float baseFontSize(float w, float h);

// --- primitives
// Curve through the good points, then symbols (0: none) of `symbolSize` mm.
void DrawCurve(QPainter* p, std::FILE* ps, std::span<const float> x, std::span<const float> y, float missing,
               int symbol, float symbolSize, int thickness);
// Symbols of `size` cm; 0 or less draws nothing.
void DrawSymbols(QPainter* p, std::FILE* ps, std::span<const float> x, std::span<const float> y, int symbol,
                 float size);
enum PathMode : int { pathLine = 1, pathFill = 2 };
// A path of at most 1500 points; the rest is ignored. project: through the current projection first.
void DrawPath(QPainter* p, std::FILE* ps, std::span<const float> x, std::span<const float> y, bool project,
              int mode);
// A meridian at `lon` between two latitudes, a parallel at `lat` between two longitudes, in n points.
void DrawMeridian(QPainter* p, std::FILE* ps, float lon, float latMin, float latMax, int n, int thickness);
void DrawParallel(QPainter* p, std::FILE* ps, float lat, float lonMin, float lonMax, int n, int thickness);

// --- labels. `text` is a label's bytes with "~" sequences ("~#" text font, "~$" symbol font, "~_x"
// subscript,
// "~^x" superscript); angle in degrees, counter-clockwise; size in points of the canvas, 28.35 to its
// centimetre, on every device. On the painter only: each writer of PostScript has its own words for a label.
void DrawLabel(QPainter* p, std::FILE* ps, std::string_view text, float x, float y, float angle, float size);
// In the current colour, with a box in two palette colours (outside the palette: none). In PostScript a whole
// NVQ_Annotation object.
void DrawFramedLabel(QPainter* p, std::FILE* ps, std::string_view text, float x, float y, float angle,
                     float size, int fillColor, int frameColor, int frameThickness, int lorg);
// Size in pixels of the label's box in the current font at `size` points.
[[nodiscard]] QSizeF labelSize(QPainter* p, std::string_view text, float size);

// "%g" or "%10.4f" text of a number trimmed by the label rule; degree labels, in both sinks' forms.
[[nodiscard]] std::string axisNumber(double value, double step); // below 1e-5 of the step: "0"
[[nodiscard]] std::string longitudeLabel(double lon); // "30°W", "0", "180°E"; Latin-1 degree sign
[[nodiscard]] std::string latitudeLabel(double lat);  // "30°S", "EQ"
// A label for a PostScript string in the encoding of the preamble's fonts: brackets and backslashes escaped,
// octal above 126, Greek letters in the symbol font.
[[nodiscard]] std::string psString(std::string_view text);
// Replaces umlauts, the degree sign and the sharp s by the sequences that text objects use.
[[nodiscard]] std::string psAnnotationText(std::string_view text);

// --- PostScript file
// Opens the output and writes start line, header text, preamble and page text. Messages go to `user`; null on
// failure, and then no file is left behind.
[[nodiscard]] std::FILE* OpenPsFile(const std::string& output, const std::string& preamble,
                                    std::string_view headerText, std::string_view pageText, bool eps,
                                    common::RUser& user);

} // namespace graphics
