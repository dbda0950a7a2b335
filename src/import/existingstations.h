#pragma once

// Finds the station of a collection that an imported one is.

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "collection/rcollection.h"

namespace importing {

// An index over the labels of a collection's stations. It answers what a walk through the inventory would: of
// the inventory entry with the cruise label and type, the first station in the entry's range of numbers that
// has the same label, a date at most one day away, and a position less than 0.2 degrees away.
class RExistingStations {
public:
    explicit RExistingStations(collection::RCollection& collection) : collection_(collection) {}

    // Reads all headers; damaged ones are left out. The inventory must be in memory. False if the headers
    // can't be read.
    [[nodiscard]] bool build();
    // The number of the station that `header` is, 0 if there is none.
    [[nodiscard]] int find(const collection::STATIONHDR& header);
    // After a station was stored: at number `asked` (0: appended), where it got `given`.
    void noteStored(int asked, int given, const collection::STATIONHDR& header);

private:
    struct ENTRY {
        std::int64_t day;
        float longitude, latitude;
    };
    void add(int number, const collection::STATIONHDR& header);
    void fill(std::size_t entry, const collection::STATIONHDR& header);
    [[nodiscard]] bool isTheSame(std::size_t entry, const collection::STATIONHDR& header) const;

    collection::RCollection& collection_;
    std::vector<ENTRY> entries_;        // in the order in which they were added
    std::vector<std::int32_t> numbers_; // station number of each entry
    std::unordered_multimap<std::uint64_t, std::uint32_t> byLabels_;
    std::unordered_map<std::string, std::size_t> cruises_; // place in the inventory by cruise and type
};

} // namespace importing
