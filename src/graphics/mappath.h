#pragma once

// From polygons and lines in degrees to paths in the plane of a map: what the map can't show is cut off, what
// runs over an edge of the projection is taken apart there, and long sides follow the curves of the
// projection.

#include <functional>
#include <span>
#include <vector>

#include "graphics/projection.h"
#include "graphics/ringclip.h"

namespace graphics {

// For one map in the projection in force.
class RMapPaths {
public:
    using Emit = std::function<void(std::span<const POINT2D>)>;

    explicit RMapPaths(const MAPGEOMETRY& map);

    // A closed polygon in degrees, its first point repeated as the last or not. Emits its visible parts as
    // rings in the plane, for filling; the last point isn't the first.
    void addRing(std::span<const float> lon, std::span<const float> lat, const Emit& emit);
    // A line in degrees. Emits its visible parts.
    void addLine(std::span<const float> lon, std::span<const float> lat, const Emit& emit);

private:
    using Visit = std::function<void(const RECT2D& view, double turn, bool whole)>;
    [[nodiscard]] bool isHidden(const RECT2D& bounds) const;
    void eachView(std::span<const float> lon, std::span<const float> lat, const Visit& visit);
    void load(std::span<const float> lon, std::span<const float> lat, double turn);
    void finishRing(const PATH2D& ring, const Emit& emit);
    void finishLine(const PATH2D& line, const Emit& emit);
    void divide(const PATH2D& path, bool closed);
    void project();

    MAPGEOMETRY map_;
    double centre_ = 0;          // the centre meridian, in the turn of the domain
    double step_ = 1;            // longest side in degrees
    std::vector<RECT2D> views_;  // parts of the domain that the projection shows in one piece
    PATH2D path_, plane_, part_; // scratch
    std::vector<double> depth_;  // of plane_: above 0 in front of the horizon
};

} // namespace graphics
