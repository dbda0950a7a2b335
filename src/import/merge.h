#pragma once

#include "collection/stationdata.h"

namespace importing {

// How imported stations meet those that are there.
enum class ImportMode : int { addReplace = 1, merge = 2, update = 3 };

// Puts the data of `fresh` into `stored`, which keeps its header: levels that lie close to one another are
// the same, others are appended. merge: where both have a value their mean stands with the worse flag;
// update: a variable that `fresh` has replaces that of `stored`. False, with `stored` as it was, if the
// result has more levels or cells than a station can hold.
[[nodiscard]] bool mergeStation(const collection::STATIONDATA& fresh, collection::STATIONDATA& stored,
                                ImportMode mode, int variableCount);

} // namespace importing
