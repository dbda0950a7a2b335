#pragma once

#include <string>

#include "collection/stationdata.h"

namespace importing {

// The validity check of every import: date, time, position. An hour of 24 with minute 0 first becomes hour 0
// of the same date. What is wrong is appended to `message`, a line each; false if anything is.
[[nodiscard]] bool checkHeader(collection::STATIONHDR& header, std::string& message);

} // namespace importing
