#pragma once

// The text of a `.var` file, the description of a collection.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "collection/rcollection.h"

namespace collection {

struct VARDESCRIPTION {
    std::string name, type;
    int stationCount = 0, variableCount = 0;
    int describedCount = 0; // variables that have a line; the others have empty labels
    std::array<VARINFO, common::variableSlots> variables{}; // 1 to variableCount
};

// What is wrong with a description: an empty text if nothing is.
struct VARFAULT {
    int line = 0; // from 1
    std::string text;
};

// Reads a description. `out` changes only on ok; otherwise `fault` tells line and reason.
[[nodiscard]] VarFileResult parseVarFile(std::string_view bytes, VARDESCRIPTION& out, VARFAULT& fault);

// The variable of a line: the label in its first 60 bytes, as it stands there, and behind it the format as
// "width.decimals". What is no format gives the smallest one.
[[nodiscard]] VARINFO parseVariableLine(std::string_view line, int number);

[[nodiscard]] std::string formatVarFile(std::string_view name, std::string_view type, int stationCount,
                                        int variableCount, std::span<const VARINFO> variables);

// Width and decimals as they stand in the line of a variable, before they are brought into their limits; 0
// for what isn't there.
[[nodiscard]] std::pair<int, int> formatOfLine(std::string_view line);

inline constexpr std::int64_t largestDescription = 1 << 20; // bytes; a full one has about 4 kB
inline constexpr std::string_view oldFormatText = "Collection is of pre-NVQ4.0 Format";

// The number of stations that the description `file` tells of; -1 if it can't be read.
[[nodiscard]] int describedStations(const std::string& file);

} // namespace collection
