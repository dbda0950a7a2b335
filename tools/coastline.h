#pragma once

// Land polygons of a shapefile, made fit for charts of 0 to 360 degrees.

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "geos.h"
#include "plane.h"

namespace tools {

// All polygons of a shapefile (longitudes -180 to 180), repaired where they are invalid. Empty, with a
// message, if the file can't be read or holds something else.
[[nodiscard]] std::optional<std::vector<POLYGON>> readLand(const RGeos& geos, const std::string& path,
                                                           std::string& error);

// Longitudes 0 to 360: what the source cuts at 180 is joined, what lies across 0 is cut there. Points within
// a thousandth of a degree of 180, and within a hundredth of the south pole, are taken to be there: the
// source means it so.
[[nodiscard]] std::vector<POLYGON> toEastLongitudes(const RGeos& geos, std::span<const POLYGON> polygons);

} // namespace tools
