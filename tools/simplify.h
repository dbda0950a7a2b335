#pragma once

#include <span>
#include <vector>

#include "geos.h"
#include "plane.h"

namespace tools {

// The polygons with fewer points, none further from the old outline than the tolerance (degrees); 0 leaves
// them as they are. Points on the chart's edges (longitudes 0 and 360, the poles) stay, so that both halves
// of what was cut there still meet, and so does every ring. Polygons that don't come out valid are repaired.
[[nodiscard]] std::vector<POLYGON> simplify(const RGeos& geos, std::span<const POLYGON> polygons,
                                            double tolerance);

} // namespace tools
