#pragma once

// The text of a `.var` file, the description of a collection.

#include <array>
#include <string>
#include <string_view>

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

inline constexpr std::string_view oldFormatText = "Collection is of pre-NVQ4.0 Format";

} // namespace collection
