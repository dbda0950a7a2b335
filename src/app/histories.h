#pragma once

// The atmospheric histories of the transient tracers, as the installation holds them.

#include <array>
#include <string>
#include <string_view>

namespace app {

inline constexpr int maxHistoryRows = 200;

struct ATMHISTORY {
    int count = 0;                                      // rows, 0 to 200
    std::array<float, maxHistoryRows> year{};           // decimal years, in the file's order
    std::array<float, maxHistoryRows> north{}, south{}; // value of each hemisphere, in the file's units
};

enum HistoryGas : int { gasCfc11 = 0, gasCfc12 = 1, gasCfc10 = 2, gasCfc113 = 3, gasCh4 = 4, gasCount = 5 };
using ATMHISTORIES = std::array<ATMHISTORY, gasCount>;

// Rows of "year north south" behind a heading line, up to the first line that doesn't give three numbers;
// rows beyond the 200th are dropped.
[[nodiscard]] ATMHISTORY parseHistory(std::string_view content);

// Reads the five files of a folder; a missing file leaves its table empty.
void loadHistories(const std::string& atmhistFolder, ATMHISTORIES& histories);

} // namespace app
