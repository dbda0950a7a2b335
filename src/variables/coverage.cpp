#include "variables/coverage.h"

#include <algorithm>
#include <vector>

namespace variables {
namespace {

using collection::STATIONDATA;

bool hasData(const STATIONDATA& station, int variable)
{
    if (variable < 1 || variable > common::maxVariables) return false;
    const auto v = static_cast<std::size_t>(variable);
    return station.offset[v] >= 0 && station.levelCount[v] > 0;
}

// The depths at which the variable has a value, in stored order.
std::vector<double> coveredDepths(const STATIONDATA& station, int depthVariable, int variable)
{
    const float* const depth = station.values.get() + station.offset[static_cast<std::size_t>(depthVariable)];
    const float* const value = station.values.get() + station.offset[static_cast<std::size_t>(variable)];
    std::vector<double> depths;
    for (int k = 0; k < station.levels(); ++k) {
        if (depth[k] != common::MISSING_VALUE && value[k] != common::MISSING_VALUE)
            depths.push_back(depth[k]);
    }
    return depths;
}

bool isGapTooWide(double z1, double z2, const COVERAGECRITERIA& criteria)
{
    const double allowed = std::min(criteria.gapOffset + criteria.gapSlope * (z1 + z2) / 2,
                                    static_cast<double>(criteria.gapLimit));
    return !(z2 - z1 < allowed);
}

} // namespace

bool hasGoodCoverage(const STATIONDATA& station, int depthVariable, int variable,
                     const COVERAGECRITERIA& criteria, bool withSurfaceAndBottom)
{
    if (station.levels() <= 0 || !hasData(station, depthVariable) || !hasData(station, variable))
        return false;
    const int filled = station.levelCount[static_cast<std::size_t>(variable)];
    if (filled * 100 / station.levels() <= criteria.minFractionPercent) return false;
    std::vector<double> depths = coveredDepths(station, depthVariable, variable);
    if (withSurfaceAndBottom) {
        depths.insert(depths.begin(), 0.0);
        if (depths.back() < station.header.bottomDepth) depths.push_back(station.header.bottomDepth);
    }
    if (depths.size() < static_cast<std::size_t>(std::max(criteria.minLevels, 0))) return false;
    return std::adjacent_find(depths.begin(), depths.end(), [&](double z1, double z2) {
               return isGapTooWide(z1, z2, criteria);
           }) == depths.end();
}

} // namespace variables
