#pragma once

// The atmosphere over a station at the time of its sampling.

#include <optional>

#include "collection/stationdata.h"
#include "variables/histories.h"

namespace variables {

// Mixing ratio of a gas, in the units of its history: that of the northern hemisphere from 30 N on, of the
// southern from 30 S on, mixed linearly by latitude in between. Nothing if the station's year lies outside of
// the history; within its last year the last values are carried on.
[[nodiscard]] std::optional<double> atmosphereOver(const collection::STATIONHDR& station,
                                                   const ATMHISTORY& history);

} // namespace variables
