#pragma once

// Points of a data window: dots and numbers, plain or coloured by a third variable.

#include <vector>

#include "graphics/plots.h"

namespace graphics {

// The points of one window, in its user units; MISSING_VALUE where there is none.
struct PLOTDATA {
    std::vector<float> x, y, z; // z: colour value; empty if the window has no colour variable
    [[nodiscard]] std::size_t count() const { return x.size(); }
};

// Pixel radius of a dot of `size` mm, the same as that of its PostScript dot.
[[nodiscard]] int dotRadius(float size);
// A value as style "Numbers" shows it: rounded to the variable's digits.
[[nodiscard]] std::string numberText(float value, int decimals);

// All points of the window in one pass. radius in pixels for dots on the painter, size in mm (letters: their
// height). color: the colours of z, else the colour that is set.
void PlotPoints(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, const PLOTDATA& data,
                const DATAWINDOW& window, int radius, float size, bool color);

// Shows the points by the window's style (arrows and fields have none yet: dots), with the colour bar before
// them if there is a colour variable.
void PlotMarks(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, const PLOTDATA& data,
               const DATAWINDOW& window, const PLOTOPTIONS& options);

} // namespace graphics
