#pragma once

// Labels of samples that are lighter or denser than all of a cast.

#include "variables/seawater/neutralcrossing.h"

namespace seawater {

// The label that a cast gives to a sample, and the bounds of its error.
struct CASTLABEL {
    double gamma = 0;
    double alongPath = 0;               // because the path isn't quite neutral
    double byMixLow = 0, byMixHigh = 0; // because density in situ was compared at another pressure
    [[nodiscard]] bool valid() const { return gamma > 0; }
};

// Thermobaric coefficient [1/(degC dbar)].
inline constexpr double thermobaric = 2.7e-8;

// The label of a sample whose neutral surface doesn't meet the cast: the cast is continued downward or
// upward by steps of temperature and salinity until it does. Not valid if the sample isn't beyond either end.
[[nodiscard]] CASTLABEL labelBeyondCast(const NEUTRALSAMPLE& sample, const ATLASCAST& cast);

} // namespace seawater
