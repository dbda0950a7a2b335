#pragma once

// The stations of one cruise, for whoever marks them on the map.

#include <string_view>
#include <vector>

#include "collection/rcollection.h"
#include "selection/selectedlist.h"

namespace selection {

// The selected stations of a cruise and a station type ("*": any), in the order of the list. The inventory
// says between which numbers they lie; a cruise that it doesn't know has none.
[[nodiscard]] std::vector<SELECTEDSTATION> findCruiseStations(collection::RCollection& collection,
                                                              std::string_view cruise, std::string_view type);

// The cruise labels of the inventory, each once, in its order.
[[nodiscard]] std::vector<std::string> cruiseLabels(const collection::RCollection& collection);

} // namespace selection
