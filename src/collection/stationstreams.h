#pragma once

// What an open collection holds of its two station files. Internal to the members of RCollection.

#include <vector>

#include "collection/blockfile.h"
#include "collection/rcollection.h"
#include "collection/stationrecord.h"

namespace collection {

struct RCollection::Files {
    RBlockFile hob, dob;
    RECORDFORM form;
    std::vector<std::byte> record;   // one header record, packed
    std::vector<float> valueScratch; // cells on their way through a sort or a byte reversal
    std::vector<std::uint8_t> flagScratch;
    std::vector<std::byte> oldBlock;

    [[nodiscard]] std::int64_t placeOf(int number) const
    {
        return magicSize + std::int64_t{number - 1} * form.recordSize();
    }
};

} // namespace collection
