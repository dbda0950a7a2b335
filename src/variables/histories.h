#pragma once

// The atmospheric histories of the transient tracers, as the installation holds them.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "variables/seawater/solubility.h"

namespace variables {

inline constexpr int maxHistoryRows = 200;

struct ATMHISTORY {
    int n = 0;                                                // rows, 0 to 200
    std::array<float, maxHistoryRows> years{};                // decimal years, in the file's order
    std::array<float, maxHistoryRows> northern{}, southern{}; // value of each hemisphere, in the file's units
};

using ATMHISTORIES = std::array<ATMHISTORY, seawater::gasCount>; // by seawater::Gas

// The file of each history.
inline constexpr std::array<std::string_view, seawater::gasCount> historyFiles = {
    "atmcfc11.his", "atmcfc12.his", "atmcfc10.his", "atmcfc113.his", "atmch4.his"};

struct HISTORYFAULT {
    int line = 0; // from 1
    std::string text;
};

// Rows of "year north south" behind a heading line, up to the first line that doesn't give three numbers;
// rows beyond the 200th are dropped. faults: text that is left behind the last row, the first year that isn't
// later than that before it, or that there are no rows.
[[nodiscard]] ATMHISTORY parseHistory(std::string_view content, std::vector<HISTORYFAULT>* faults = nullptr);

// Reads the five files of a folder; a missing file leaves its table empty. Returns what is wrong with those
// that are there, each as "path:line: what".
[[nodiscard]] std::vector<std::string> loadHistories(const std::string& atmhistFolder,
                                                     ATMHISTORIES& histories);

} // namespace variables
