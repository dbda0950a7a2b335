#pragma once

// Pieces that the drawing layer's own files share; plot code has no use for them.

#include <QPen>
#include <QPoint>

namespace graphics {

// Pixel of a point of the current user system, each coordinate clamped to -32760 to 32760.
[[nodiscard]] QPoint pathPixel(double x, double y);

// The pen of the drawing state in another width (pixels; 0 is the thinnest line). Dashes are scaled up on
// devices where a thin pen's dashes would be shorter than those of the screen and of PostScript.
[[nodiscard]] QPen currentPen(int widthPx);

} // namespace graphics
