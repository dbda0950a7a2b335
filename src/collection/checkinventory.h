#pragma once

// The part of a check that compares the inventory files with what the headers give.

#include <string>

#include "collection/checkstations.h"
#include "collection/findings.h"

namespace collection {

// Whether the two files would be used by an opening: only then is there anything to compare.
[[nodiscard]] bool inventoryCounts(const std::string& basePath);
[[nodiscard]] bool cruiseIndicesCount(const std::string& basePath, int stationCount);

// Compare the files with the entries of `summary`. Each says a remark instead if the file is out of date.
void checkInventoryFile(const STATIONCHECK& check, const STATIONSUMMARY& summary, RFindings& findings);
void checkCruiseIndices(const STATIONCHECK& check, const STATIONSUMMARY& summary, RFindings& findings);

} // namespace collection
