#pragma once

// The header table while stations are taken out of it: their records stay in place until the table is
// compacted, and the later stations already have the lower numbers. Slots and numbers are from 1.

#include <algorithm>
#include <vector>

namespace collection {

class RRemovedSlots {
public:
    [[nodiscard]] bool isEmpty() const { return slots_.empty(); }
    [[nodiscard]] int count() const { return static_cast<int>(slots_.size()); }
    [[nodiscard]] const std::vector<int>& slots() const { return slots_; } // ascending

    // Where the record of a station stands.
    [[nodiscard]] int slotOf(int number) const
    {
        // slots_[k] - k is one more than the stations in front of the removed slot k, so it ascends
        std::size_t low = 0, high = slots_.size();
        while (low < high) {
            const std::size_t middle = (low + high) / 2;
            if (slots_[middle] - static_cast<int>(middle) <= number) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        return number + static_cast<int>(low);
    }
    // The number of the station whose record stands in a slot that was not removed.
    [[nodiscard]] int numberOf(int slot) const
    {
        const auto above = std::upper_bound(slots_.begin(), slots_.end(), slot);
        return slot - static_cast<int>(above - slots_.begin());
    }
    void remove(int number)
    {
        const int slot = slotOf(number);
        slots_.insert(std::upper_bound(slots_.begin(), slots_.end(), slot), slot);
    }
    void clear() { slots_.clear(); }

private:
    std::vector<int> slots_;
};

} // namespace collection
