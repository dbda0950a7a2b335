#pragma once

// The selected stations as a new collection.

#include <string>
#include <vector>

#include "collection/rcollection.h"
#include "common/user.h"

namespace exporting {

// Makes the collection `target` (path without ".var") of the chosen variables, at most 50; derived ones
// become variables of the new collection. `variables` empty: all collection variables. What stood under the
// name is replaced when the new collection is complete; after an abort or a failure it is as it was. The new
// one has the byte order, the type and the user of the old. False if the user declined or aborted, or if the
// collection can't be made, which is told.
[[nodiscard]] bool exportCollection(collection::RCollection& collection, collection::STATIONDATA& station,
                                    const std::string& target, const std::vector<int>& variables,
                                    common::RUser& user);

} // namespace exporting
