#pragma once

// The layout templates: how many data windows a mode has, and where they and the map stand on the canvas.

#include <span>

#include "graphics/datawindow.h"

namespace graphics {

struct LAYOUTTEMPLATE {
    const char* menuText; // "" for a template that no menu offers
    const char* suffix;   // under which a layout's window settings are stored
    int mode;
    std::span<const BOX> windows; // cm on the reference canvas
    BOX map;
};

[[nodiscard]] std::span<const LAYOUTTEMPLATE> layoutTemplates();
[[nodiscard]] const LAYOUTTEMPLATE* layoutByName(std::string_view menuText); // case ignored; null if none
// The template of a mode that a new collection starts with. few: the one with two windows where there is one.
[[nodiscard]] const LAYOUTTEMPLATE& defaultLayout(int mode, bool few);

// The map's box where it has the canvas to itself.
[[nodiscard]] BOX fullMapBox();

void applyLayout(GRAPHICSSETUP& setup, const LAYOUTTEMPLATE& layout);

} // namespace graphics
