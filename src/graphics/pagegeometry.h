#pragma once

// Where a part of the canvas comes to stand on a PostScript page.

#include <string>

#include "graphics/extents.h"

namespace graphics {

struct PAGEGEOMETRY {
    bool landscape = true;
    double scale = 0.9;
    double xOffset = 2, yOffset = 2; // cm, added to every origin on the canvas
};
struct PAGEBOX {
    int left = 0, bottom = 0, right = 0, top = 0; // points
};

// The geometry for a region of the canvas, cm, on a canvas of this size.
[[nodiscard]] PAGEGEOMETRY pageGeometry(const PSSETTINGS& settings, const EXTENT& region, double canvasWidth,
                                        double canvasHeight);
// The region in points on the page, before the page is turned.
[[nodiscard]] EXTENT pagePoints(const PAGEGEOMETRY& page, const EXTENT& region);
// Such points as the bounding box of the file: turned for a landscape page, and on the page.
[[nodiscard]] PAGEBOX boundingBox(const PAGEGEOMETRY& page, const EXTENT& points);

} // namespace graphics
