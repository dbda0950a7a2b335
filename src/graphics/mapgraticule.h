#pragma once

// Where the lines and labels of a projected map's graticule stand; both sinks draw the same ones.

#include <string>
#include <vector>

#include "graphics/projection.h"

namespace graphics {

// A degree label at a point of the projected plane. `text` is in Latin-1.
struct DEGREELABEL {
    std::string text;
    float u = 0, v = 0, angle = 0; // degrees, 0 to below 90 or 270 to below 360: never upside down
    int lorg = 0;
    bool inside = false; // of the map, and so on top of its picture
};

// Part of a line of constant longitude or latitude that can be seen.
struct GRATICULEPIECE {
    float at = 0, from = 0, to = 0; // degrees
};

struct GRATICULE {
    std::vector<GRATICULEPIECE> meridians, parallels;
    std::vector<DEGREELABEL> labels; // none hidden behind the globe, none on top of another
};

// The graticule of the map in force (SetupMapWindow was called for it), labels at fontSize points.
[[nodiscard]] GRATICULE makeGraticule(const MAPGEOMETRY& map, float fontSize);

} // namespace graphics
