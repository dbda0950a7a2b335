#pragma once

// The part of a check that goes through the header table and the data blocks.

#include <cstdint>
#include <string>
#include <vector>

#include "collection/cruiseinfo.h"
#include "collection/findings.h"
#include "collection/varfile.h"
#include "common/user.h"

namespace collection {

struct STATIONSUMMARY {
    bool opened = false;  // both files could be read, and the magic is known
    bool complete = true; // false if the user broke it off
    bool swapBytes = false;
    int records = 0; // stations whose headers are there
    std::int64_t dataBytes = 0, deadBytes = 0;
    std::vector<CRUISEINFO> entries;   // of the inventory, if wanted
    std::vector<std::int32_t> entryOf; // index of the entry of each station, if wanted; 0 of damaged ones
};
struct STATIONCHECK {
    std::string basePath; // of the station files
    const VARDESCRIPTION& description;
    bool wantsEntries = false, wantsEntryOf = false;
};
[[nodiscard]] STATIONSUMMARY checkStationFiles(const STATIONCHECK& check, RFindings& findings,
                                               common::RUser& user);

} // namespace collection
