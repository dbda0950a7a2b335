#pragma once

// The stations of one cruise, for whoever marks them on the map.

#include <string>
#include <string_view>
#include <vector>

#include "collection/rcollection.h"
#include "selection/selectedlist.h"

namespace selection {

// The stations of a cruise and a station type ("*": any) that lie in `domain`, with its longitudes, in order
// of their numbers. The inventory says between which numbers they are; a cruise that it doesn't know has
// none.
[[nodiscard]] std::vector<SELECTEDSTATION> findCruiseStations(collection::RCollection& collection,
                                                              std::string_view cruise, std::string_view type,
                                                              const MAPDOMAIN& domain);

// The cruise labels of the inventory, each once, in its order.
[[nodiscard]] std::vector<std::string> cruiseLabels(const collection::RCollection& collection);

} // namespace selection
