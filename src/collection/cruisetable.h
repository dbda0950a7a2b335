#pragma once

// The inventory as a table: how entries grow from stations, and the text of an `.inv` file.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/cruiseinfo.h"
#include "collection/stationdata.h"

namespace collection {

// Collects stations into entries, one for each pair of cruise label and station type. The entry of a pair is
// found by an index.
class RCruiseTable {
public:
    explicit RCruiseTable(int variableCount);
    ~RCruiseTable();
    RCruiseTable(const RCruiseTable&) = delete;
    RCruiseTable& operator=(const RCruiseTable&) = delete;

    // Adds a station. Returns the index of its entry, in the order in which entries came.
    int add(int number, const STATIONHDR& header, const LEVELCOUNTS& counts);
    // Index of the entry of a pair, -1 if there is none.
    [[nodiscard]] int find(std::string_view cruise, std::string_view type) const;
    // The entries in the order of cruise and type. `places`, if not null, gets the new index of each old one.
    // The table is empty then.
    [[nodiscard]] std::vector<CRUISEINFO> takeSorted(std::vector<std::int32_t>* places = nullptr);

private:
    struct Index;
    int newEntry(const STATIONHDR& header);

    std::size_t variables_;
    std::unique_ptr<Index> index_;
    std::vector<CRUISEINFO> entries_;
    std::vector<std::int64_t> values_; // sums of counts, variables_ for each entry
    int last_ = -1;                    // entry of the last station: the next one is mostly of the same cruise
};

// Sum of the counts of variable 1, at most what an int holds.
[[nodiscard]] int samplesOf(std::span<const CRUISEINFO> entries);

// Fill levels of variables 2 to variableCount in tenths of variable 1's count, with a tick each five.
[[nodiscard]] std::string coverageText(const CRUISEINFO& entry, int variableCount);

[[nodiscard]] std::string formatInventory(std::span<const CRUISEINFO> entries, int stationCount, int samples,
                                          int variableCount);

struct INVENTORY {
    std::vector<CRUISEINFO> entries;
    int stations = 0, samples = 0; // as line 2 tells
};
// False, with `out` unchanged, if the text isn't of the form or contradicts itself.
[[nodiscard]] bool parseInventory(std::string_view text, INVENTORY& out);

// Bytes that an `.inv` file can have at most: a line has 500, and no entry is without a station.
[[nodiscard]] constexpr std::int64_t largestInventory(int stationCount)
{
    return (std::int64_t{stationCount} + 2) * 500;
}

inline constexpr std::string_view inventoryVersion = "INV1.05";

} // namespace collection
