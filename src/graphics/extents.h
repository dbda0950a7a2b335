#pragma once

// What a window takes on the canvas with all that stands around its plot.

#include <QRect>

#include "graphics/plots.h"

namespace graphics {

struct EXTENT {
    double left = 0, bottom = 0, right = 0, top = 0; // cm, from the canvas's lower left corner
    [[nodiscard]] bool empty() const { return right <= left || top <= bottom; }
};
[[nodiscard]] EXTENT unite(const EXTENT& a, const EXTENT& b); // an empty one adds nothing
[[nodiscard]] EXTENT grow(const EXTENT& extent, double cm);
[[nodiscard]] EXTENT clampToCanvas(const EXTENT& extent);

// The plot of window `number` (0: the map) with its numbers, labels, colour bar and stamp. The window must
// have been set up.
[[nodiscard]] EXTENT windowExtent(const PLOTCONTEXT& context, int number);
// Those of all windows that exist, and the map if it is shown.
[[nodiscard]] EXTENT usedExtent(const PLOTCONTEXT& context);

// On the device of the drawing state.
[[nodiscard]] QRect toPixels(const EXTENT& extent);

} // namespace graphics
