#pragma once

// The values of a list of stations, loaded in one pass for all the windows that are to be drawn.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "collection/damage.h"
#include "collection/rcollection.h"
#include "common/user.h"
#include "selection/selectedlist.h"

namespace graphics {

// The load of a station in a scan: what can't be loaded is noted once, at the end of the scan.
class RStationScan {
public:
    // Only `variables` (signs and 0 ignored) and what they are computed from are provided until the end.
    RStationScan(collection::RCollection& collection, collection::STATIONDATA& station,
                 std::span<const int> variables, common::RUser& user);
    ~RStationScan();
    RStationScan(const RStationScan&) = delete;
    RStationScan& operator=(const RStationScan&) = delete;

    [[nodiscard]] bool load(int number); // with the stages of a load; false if the station is damaged

private:
    collection::RCollection& collection_;
    collection::STATIONDATA& station_;
    common::RUser& user_;
    std::array<std::int32_t, 51> savedMask_;
    collection::RDamageReport damaged_;
};

struct PLOTVALUES {
    struct STATION {
        int number = 0, levels = 0;
        char type = '*';
    };
    std::vector<int> variables;    // numbers, ascending
    std::vector<STATION> stations; // in list order, damaged ones with no levels
    std::vector<float> values;
    std::vector<std::int64_t> starts; // [station][variable]: first value, -1 if the station has none

    // The levels of a variable (its sign is ignored) in station i of the list; empty if it has none.
    [[nodiscard]] std::span<const float> column(std::size_t i, int variable) const;
};

// Loads `variables` of the listed stations. Progress runs over `share` percent from `from`; an abort ends it,
// and then the result is false.
[[nodiscard]] bool loadPlotValues(collection::RCollection& collection, collection::STATIONDATA& station,
                                  std::span<const selection::SELECTEDSTATION> list,
                                  std::span<const int> variables, double share, common::RUser& user,
                                  PLOTVALUES& out);

} // namespace graphics
