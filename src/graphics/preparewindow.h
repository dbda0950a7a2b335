#pragma once

// A data window before its data: its effective size, its user system, palette and background.

#include "graphics/plots.h"

namespace graphics {

// The effective size of window `number` (0: the map): a plain window's box, or the largest map in it. Equal
// limits of an axis are moved apart. True if a map's domain had to be changed.
bool SetupWindow(GRAPHICSSETUP& setup, int number);

// Makes window `number` the current user system, with its palette and colour mapping, and paints its
// background, or writes the opening of its PostScript block.
void PrepareWindow(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, int number);

[[nodiscard]] FRAMECONTEXT frameContext(const PLOTCONTEXT& context);
[[nodiscard]] BASEMAPCONTEXT baseMapContext(const PLOTCONTEXT& context);

// The windows of the mode that exist and are marked to be drawn.
[[nodiscard]] std::vector<int> windowsToDraw(GRAPHICSSETUP& setup);
// The variables on the axes of these windows, without 0 and signs.
[[nodiscard]] std::vector<int> variablesOf(GRAPHICSSETUP& setup, std::span<const int> numbers);

// "text     ESC aborts"
[[nodiscard]] std::string abortable(std::string_view text);

} // namespace graphics
