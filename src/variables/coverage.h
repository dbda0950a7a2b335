#pragma once

// Whether a profile holds enough data for a quantity that is summed up from it.

#include <cstdint>

#include "collection/stationdata.h"

namespace variables {

// Criteria of good coverage, as the user sets them.
struct COVERAGECRITERIA {
    std::int32_t minLevels = 4;           // depths with a value, at least
    std::int32_t minFractionPercent = 60; // of the levels, to be exceeded
    // The gap between neighbours around depth z must be below min(gapOffset + gapSlope z, gapLimit); m.
    float gapOffset = 175.0f, gapSlope = 0.5f, gapLimit = 700.0f;

    bool operator==(const COVERAGECRITERIA&) const = default;
};

// withSurfaceAndBottom: the surface counts as a depth with a value, and so does the sea floor below the
// deepest one.
[[nodiscard]] bool hasGoodCoverage(const collection::STATIONDATA& station, int depthVariable, int variable,
                                   const COVERAGECRITERIA& criteria, bool withSurfaceAndBottom);

} // namespace variables
