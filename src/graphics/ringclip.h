#pragma once

// Cuts polygons and lines at straight sides. Plain geometry, in any units.

#include <cstddef>
#include <functional>
#include <vector>

namespace graphics {

struct POINT2D {
    double x = 0, y = 0;
};
using PATH2D = std::vector<POINT2D>;

struct RECT2D {
    double xmin = 0, xmax = 0, ymin = 0, ymax = 0;
    [[nodiscard]] bool isEmpty() const { return !(xmin < xmax && ymin < ymax); }
    [[nodiscard]] bool holds(const RECT2D& o) const
    {
        return o.xmin >= xmin && o.xmax <= xmax && o.ymin >= ymin && o.ymax <= ymax;
    }
    [[nodiscard]] bool overlaps(const RECT2D& o) const
    {
        return o.xmin <= xmax && o.xmax >= xmin && o.ymin <= ymax && o.ymax >= ymin;
    }
};
[[nodiscard]] RECT2D intersection(const RECT2D& a, const RECT2D& b);

// The part of a ring inside a rectangle, as rings. A ring is a closed polygon whose first point isn't
// repeated. Separate parts come out as separate rings, so that no side runs along the rectangle where the
// polygon doesn't; a ring that crosses itself may keep such sides.
[[nodiscard]] std::vector<PATH2D> clipRing(const PATH2D& ring, const RECT2D& rect);

// The part of a line inside a rectangle: `emit` gets each piece, of two points or more.
void clipLine(const PATH2D& line, const RECT2D& rect, const std::function<void(const PATH2D&)>& emit);

} // namespace graphics
