#pragma once

// The palette of a picture, the mapping of values to its colours, and the colour bar.

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include <QColor>
#include <QPainter>

#include "common/installation.h"

namespace graphics {

inline constexpr int maxPaletteColors = 288;
// Index roles that the plot code depends on.
inline constexpr int colorBlack = 0, colorMask = 7, colorMark = 12, colorWhite = 15, colorBackground = 31;
inline constexpr int colorBelow = 32, colorScaleFirst = 33, colorScaleLast = 143, colorAbove = 144;
inline constexpr int bathymetryFirst = 145, bathymetryLast = 159, colorLand = 160, colorLandLow = 161;
inline constexpr int topographyFirst = 162, topographyLast = 176;

struct PALETTE {
    std::array<std::uint8_t, maxPaletteColors> red{}, green{}, blue{};
    int count = 0;
    std::string path; // "DUMMY" while the built-in table is in force
};
[[nodiscard]] PALETTE& palette();
[[nodiscard]] QColor paletteColor(int index); // black outside the palette

// Loads a palette file, unless it is the one already loaded; a file that can't be opened, or gives no colour,
// installs the built-in table. Colours beyond 288 are left out.
void LoadPalette(const std::string& path);
// Reads the colours of a file; the number read. The core that tests and fuzzing call.
int parsePalette(std::string_view content, PALETTE& out);
[[nodiscard]] const PALETTE& builtInPalette();
// Path of a palette by name, ".pal" appended unless the lower-cased name holds it: the user's own file if it
// exists, else the installed one.
[[nodiscard]] std::string PalettePath(const common::INSTALLATION& installation, std::string_view name);

// Mapping of values to colours; vmin and vmax must differ.
struct COLORMAPPING {
    double vmin = 0, vmax = 1, inverseRange = 1;
    double lo = -0.1, hi = 0.1, span = 0.2;
    double tanhLo = 0, tanhHi = 0, inverseTanhSpan = 1;
};
[[nodiscard]] COLORMAPPING& colorMapping();
void SetColorMapping(double vmin, double vmax, double a, double b);
[[nodiscard]] double ValueToFraction(double v); // may lie outside 0 to 1
[[nodiscard]] double FractionToValue(double u);
[[nodiscard]] int ValueToColor(double v); // palette index

// Vertical scale right of the plot: title (may be empty), base font size in points, x range and plot width in
// cm, y range, value range, mapping parameters.
void DrawColorBar(QPainter* p, std::FILE* ps, std::string_view title, float fontSize, float xmin, float xmax,
                  float plotWidth, float ymin, float ymax, float vmin, float vmax, float a, float b);
// The palette as the ColorTable object of a PostScript window.
void WritePsColorTable(std::FILE* ps);

} // namespace graphics
