#pragma once

// The list of selected stations: the `.val` file of the open collection, one record a station.

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "collection/rcollection.h"

namespace selection {

struct SELECTEDSTATION {
    std::int32_t number;         // internal station number
    std::int16_t pixelX, pixelY; // in the map window in which the list was built
    float longitude, latitude;   // longitude after the date-line correction
};
static_assert(sizeof(SELECTEDSTATION) == 16);

struct MAPDOMAIN {
    double lonMin = 0, lonMax = 360, latMin = -90, latMax = 90; // degrees; lonMin may be negative
};

// A station as it stands on a map, with pixels 0.
[[nodiscard]] SELECTEDSTATION stationOn(const MAPDOMAIN& domain, int number,
                                        const collection::STATIONHDR& header);
// Limits are inclusive, and compared as floats, as the criteria hold them.
[[nodiscard]] bool isWithin(const MAPDOMAIN& domain, const SELECTEDSTATION& station);

// How a list is built. `place` sets the pixels of a station and says whether it is to be seen at all (null:
// every station, pixels 0); `group` receives each group of selected stations as it is complete, for drawing.
struct LISTBUILD {
    MAPDOMAIN domain;
    std::function<bool(SELECTEDSTATION&)> place;
    std::function<void(std::span<const SELECTEDSTATION>)> group;
};

// Scans all stations, writes `.val` and sets selectedStationCount. Groups have stationCount / 100 stations,
// at least 100; after each one progress is shown and ESC asks "Really Want to Abort?" under `title`. After an
// abort the list stays as far as it got. Damaged headers are told once, in one note. Returns the count.
int buildSelectedList(collection::RCollection& collection, const LISTBUILD& build, std::string_view title,
                      common::RUser& user);

// The n-th selected station, from 1; false if there is none.
[[nodiscard]] bool readSelected(const collection::RCollection& collection, int position,
                                SELECTEDSTATION& record);
// The whole list.
[[nodiscard]] std::vector<SELECTEDSTATION> readSelectedList(const collection::RCollection& collection);

// The list of plotted stations of STATION mode (`.sel`): appends, reads, empties.
[[nodiscard]] bool appendPlotted(collection::RCollection& collection, const SELECTEDSTATION& record);
[[nodiscard]] std::vector<SELECTEDSTATION> readPlottedList(const collection::RCollection& collection);
void clearPlotted(collection::RCollection& collection);

} // namespace selection
