#pragma once

// Finds the station of a collection that an imported one is.

#include <cstdint>
#include <unordered_map>

#include "collection/rcollection.h"
#include "collection/removedslots.h"

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
        int slot; // the station's place among all that there ever were in the run
        float longitude, latitude;
        std::int64_t day;
    };
    void add(const collection::STATIONHDR& header, int slot);
    template <typename Visit>
    void forEachClose(const collection::STATIONHDR& header, Visit&& visit);
    [[nodiscard]] int numberOf(const ENTRY& entry) const { return removed_.numberOf(entry.slot); }
    [[nodiscard]] const collection::CRUISEINFO* cruiseOf(const collection::STATIONHDR& header) const;
    [[nodiscard]] bool isTheSame(const ENTRY& entry, const collection::STATIONHDR& header) const;

    collection::RCollection& collection_;
    std::unordered_multimap<std::uint64_t, ENTRY> entries_;       // by labels and day
    std::unordered_multimap<std::uint64_t, std::size_t> cruises_; // place in the inventory by cruise and type
    collection::RRemovedSlots removed_; // where stations stood that outgrew their places
    int lastSlot_ = 0;
};

} // namespace importing
