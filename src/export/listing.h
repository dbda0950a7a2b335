#pragma once

// The selected stations as a listing in fixed columns: version 3 (`.o3x` with its description `.var`),
// without quality flags, or version 4 (`.o4x`), with them. Neither has the time of day.

#include <string>
#include <vector>

#include "collection/rcollection.h"
#include "common/user.h"

namespace exporting {

enum class ListingForm : int { version3 = 3, version4 = 4 };

// `variables`: numbers of those to write; empty: all collection variables. Text is single-byte, in the coding
// of labels. Files are replaced when they are complete. False if the user declined or aborted, or if a file
// can't be written, which is told.
[[nodiscard]] bool exportListing(ListingForm form, collection::RCollection& collection,
                                 collection::STATIONDATA& station, const std::string& path,
                                 const std::vector<int>& variables, common::RUser& user);

} // namespace exporting
