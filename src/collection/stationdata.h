#pragma once

// The station: its 80-byte header, the same in memory and on disk, and one station in memory.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>

#include "common/limits.h"

namespace collection {

class RCollection;

struct STATIONHDR {
    char cruise[21]; // labels, zero-terminated; in coding see common/textcoding.h
    char station[21];
    char type[2];          // one letter: "B" bottle, "C" CTD, "X" XBT, any other; "*" not yet known
    float longitude;       // degrees east, 0 <= longitude < 360 on disk
    float latitude;        // degrees north
    float bottomDepth;     // m
    float lastSampleDepth; // last value of the primary variable
    std::int16_t day;      // the order of the time fields is the file's
    std::int16_t minute;
    std::int16_t month; // 1 to 12
    std::int16_t hour;
    std::int16_t year;       // four digits
    std::int16_t reserved;   // carried along
    std::int32_t dataOffset; // byte offset of the data block in the `.dob` file
    std::int32_t valueCount; // float cells of the data block, over all variables
};
static_assert(std::is_trivially_copyable_v<STATIONHDR> && sizeof(STATIONHDR) == 80);
static_assert(offsetof(STATIONHDR, station) == 21 && offsetof(STATIONHDR, type) == 42);
static_assert(offsetof(STATIONHDR, longitude) == 44 && offsetof(STATIONHDR, lastSampleDepth) == 56);
static_assert(offsetof(STATIONHDR, day) == 60 && offsetof(STATIONHDR, year) == 68);
static_assert(offsetof(STATIONHDR, dataOffset) == 72 && offsetof(STATIONHDR, valueCount) == 76);

// Quality flags, one byte a value; a larger flag is a worse one.
inline constexpr std::uint8_t flagGood = 0, flagUnknown = 1, flagQuestionable = 4, flagBad = 8;
// "good", "unknown", "questionable", "bad"; empty for values without a name.
[[nodiscard]] std::string_view flagName(int flag);

// The date as one number, year * 10000 + month * 100 + day, as dates are compared everywhere.
[[nodiscard]] double dateNumber(const STATIONHDR& header);

// A station label as a number, if it is one from its first to its last character.
[[nodiscard]] std::optional<int> numericLabel(std::string_view label);

// levelCount[v]: non-missing values of variable v; [1] is the number of levels and the length of every block.
using LEVELCOUNTS = std::array<std::int16_t, 52>;

// One station in memory. The value of variable v at level k is cell offset[v] + k, its flag the same cell of
// `flags`. Variable 1 comes first; only variables with at least one value have a block.
struct STATIONDATA {
    std::int32_t number = 0; // 1 to stationCount; 0 when nothing is loaded
    std::int32_t capacity = common::maxCells;
    RCollection* collection = nullptr;     // set by each load
    LEVELCOUNTS levelCount{};              // index 0 is not used
    std::array<std::int32_t, 51> offset{}; // first cell of variable v, -1 if it has no block; 0 not used
    STATIONHDR header{};
    std::unique_ptr<float[]> values = std::make_unique<float[]>(common::maxCells);
    std::unique_ptr<std::uint8_t[]> flags = std::make_unique<std::uint8_t[]>(common::maxCells);

    [[nodiscard]] int levels() const { return levelCount[1]; }
    // Empties the record: no labels, no levels, all offsets -1.
    void clear();
};

// Value and flag of a cell. `fallback` and flagBad for a variable outside 1 to the collection's total
// variable count, a level outside 0 to levels - 1, or a variable without data in the station.
[[nodiscard]] float valueAt(const STATIONDATA& station, int variable, int level, float fallback);
[[nodiscard]] int flagAt(const STATIONDATA& station, int variable, int level);

} // namespace collection
