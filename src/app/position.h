#pragma once

// What stands under a pixel of the canvas.

#include <string>

#include <QPoint>

#include "collection/rcollection.h"
#include "graphics/datawindow.h"

namespace app {

// "Map:  30°W/12.5°N" over the map, "Win 2:  35.1/12.25" over a data window, with the decimals of its
// variables; empty elsewhere. UTF-8.
[[nodiscard]] std::string positionText(graphics::GRAPHICSSETUP& setup,
                                       const collection::RCollection& collection, QPoint pixel);

} // namespace app
