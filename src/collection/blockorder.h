#pragma once

// How the data blocks of the stations lie in the `.dob` file.

#include <cstdint>
#include <vector>

#include "collection/damage.h"

namespace collection {

class RBlockOrder {
public:
    // A block of a station, in the order of station numbers.
    void add(int number, std::int64_t offset, std::int64_t bytes);
    // The station that was added last; 0 if there is none.
    [[nodiscard]] int lastNumber() const { return lastNumber_; }

    struct LAYOUT {
        std::int64_t dataBytes = 0; // up to the end of the block that reaches farthest
        std::int64_t usedBytes = 0; // of these, in blocks
        int lastNumber = 0;         // the station whose block reaches farthest
        RDamageReport overlapping;  // stations that share bytes with another one
    };
    // Sorts what was added if it wasn't in order.
    [[nodiscard]] LAYOUT layout();

private:
    struct BLOCK {
        std::int64_t offset;
        std::int32_t bytes, number;
    };
    std::vector<BLOCK> blocks_;
    int lastNumber_ = 0;
    bool inOrder_ = true;
};

} // namespace collection
