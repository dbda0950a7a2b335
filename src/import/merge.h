#pragma once

#include <cstdint>
#include <optional>

#include "collection/stationdata.h"

namespace importing {

// How imported stations meet those that are there.
enum class ImportMode : int { addReplace = 1, merge = 2, update = 3 };

// What became of the values of the fresh station.
struct MERGECOUNTS {
    std::int64_t stored = 0;   // they stand in the result as they came
    std::int64_t averaged = 0; // the result has the mean with another one
    std::int64_t matched = 0;  // of variable 1, and the level was there
    std::int64_t dropped = 0;  // of levels with nothing but depth, and where another one took the level
};

// Puts the data of `fresh` into `stored`, which keeps its header: levels that lie close to one another are
// the same, others are appended. merge: where both have a value their mean stands with the worse flag;
// update: a variable that `fresh` has replaces that of `stored`. Nothing, with `stored` as it was, if the
// result has more levels or cells than a station can hold.
[[nodiscard]] std::optional<MERGECOUNTS> mergeStation(const collection::STATIONDATA& fresh,
                                                      collection::STATIONDATA& stored, ImportMode mode,
                                                      int variableCount);

// The values of a station that aren't missing, over variables 1 to variableCount.
[[nodiscard]] std::int64_t countValues(const collection::STATIONDATA& station, int variableCount);

} // namespace importing
