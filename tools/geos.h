#pragma once

// The plane operations of the geometry library, on the converters' own polygons.

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "plane.h"

namespace tools {

// One thread at a time. An operation that the library refuses, even after a repair of its input, gives an
// empty result and is remembered: a converter asks failed() once at its end.
class RGeos {
public:
    RGeos();
    ~RGeos();
    RGeos(const RGeos&) = delete;
    RGeos& operator=(const RGeos&) = delete;

    // The polygon as it is if it is valid, otherwise what its lines enclose.
    [[nodiscard]] std::vector<POLYGON> repaired(const POLYGON& polygon) const;
    // What lies inside the box; lines and points of contact are left out.
    [[nodiscard]] std::vector<POLYGON> clipped(const POLYGON& polygon, const BOX& box) const;
    [[nodiscard]] std::vector<POLYGON> united(std::span<const POLYGON> polygons) const;
    // Rings that don't cross, as polygons: what lies inside an odd number of them.
    [[nodiscard]] std::vector<POLYGON> enclosed(std::span<const RING> rings) const;
    // Fewer points, none further from the old line than the tolerance (degrees); ends stay where they are,
    // closed chains stay closed, and chains that didn't cross still don't.
    [[nodiscard]] std::vector<CHAIN> simplified(std::span<const CHAIN> chains, double tolerance) const;

    [[nodiscard]] bool failed() const;
    [[nodiscard]] const std::string& message() const; // the library's first complaint

private:
    struct STATE;
    std::unique_ptr<STATE> state_;
};

} // namespace tools
