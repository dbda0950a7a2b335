#pragma once

#include "graphics/plots.h"

namespace graphics {

// The map has no place beside windows that are maps themselves.
[[nodiscard]] bool mapIsShown(const GRAPHICSSETUP& setup);

// On a map that stands: the plotted stations in the colours and symbols of their profiles.
void DrawMapMarks(QPainter* p, PLOTCONTEXT& context);

} // namespace graphics
