#pragma once

// What an open collection holds of its two station files. Internal to the members of RCollection.

#include <optional>
#include <string>
#include <vector>

#include "collection/blockfile.h"
#include "collection/intervals.h"
#include "collection/rcollection.h"
#include "collection/removedslots.h"
#include "collection/stationrecord.h"

namespace collection {

// What a collection has in memory of its contents.
struct CONTENTS {
    std::string type;
    int stationCount = 0, cruiseCount = 0, sampleCount = 0;
    int variableCount = 0, totalVariableCount = 0, headerRecordSize = 80;
    std::array<VARINFO, common::variableSlots> variables{};
    std::vector<CRUISEINFO> cruises;
};

// A change that has begun and is not yet decided.
struct CHANGE {
    int depth = 1;
    std::string operation;
    CONTENTS contents;     // at the beginning
    bool hadFiles = false; // the station files were open at the beginning
    std::int64_t hobSize = 0, dobSize = 0;
    // What stations refer to: bytes below are saved before they are overwritten. Settled by the first write.
    std::optional<JOURNALSTATE> before;
    RIntervals savedHob, savedDob;
    RJournal journal;
    bool written = false; // something has gone to the station files
    std::vector<std::string> aside;
};

// The ends of the data blocks. A block that isn't the last station's never ends behind `others`.
struct DATAENDS {
    std::int64_t others = 0, last = 0;
    [[nodiscard]] std::int64_t end() const { return std::max(others, last); }
};

struct RCollection::Files {
    RBlockFile hob, dob;
    RECORDFORM form;
    RRemovedSlots removed; // only within a change
    std::optional<DATAENDS> ends;
    std::unique_ptr<CHANGE> change;
    int describedCount = 0;          // stations that `.var` tells of
    std::vector<std::byte> record;   // one header record, packed
    std::vector<float> valueScratch; // cells on their way through a sort or a byte reversal
    std::vector<std::uint8_t> flagScratch;

    [[nodiscard]] std::int64_t placeOfSlot(std::int64_t slot) const
    {
        return magicSize + (slot - 1) * form.recordSize();
    }
    [[nodiscard]] std::int64_t placeOf(int number) const
    {
        return placeOfSlot(removed.isEmpty() ? number : removed.slotOf(number));
    }
    [[nodiscard]] RBlockFile& stream(JournalFile file) { return file == JournalFile::hob ? hob : dob; }
};

} // namespace collection
