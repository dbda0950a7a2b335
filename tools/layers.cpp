#include "layers.h"

#include <algorithm>
#include <cmath>

#include "simplify.h"

namespace tools {

std::vector<POLYGON> areaAbove(const RGeos& geos, const GRID& grid, int height, const RESOLUTION& resolution)
{
    std::vector<RING> rings = contourRings(grid, height - 0.5);
    std::erase_if(rings,
                  [&](const RING& ring) { return std::abs(signedArea(ring)) < resolution.smallestRing; });
    return simplify(geos, geos.enclosed(rings), resolution.reliefTolerance);
}

} // namespace tools
