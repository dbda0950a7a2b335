#pragma once

// Taking a record out of a table of records and putting another one at its end, with the way back if a write
// fails. `File` is anything with the read, write and truncate of RBlockFile.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace collection {

template <typename File>
class RRecordMove {
public:
    // start: place in the file of record 1. count: records in the table.
    RRecordMove(File& file, std::int64_t start, std::size_t recordSize, int count)
        : file_(file), start_(start), size_(recordSize), count_(count)
    {
    }

    // Record `number` goes, the later ones move down by one, `replacement` becomes the last. It is written
    // first, beyond the table, so that a full disk is noticed before anything moves. False: a read or write
    // failed, and what was moved was moved back.
    [[nodiscard]] bool replace(int number, std::span<const std::byte> replacement)
    {
        std::vector<std::byte> removed(size_);
        if (!file_.read(placeOf(number), removed)) return false;
        bool complete = file_.write(placeOf(count_ + 1), replacement);
        if (complete) {
            const int moved = moveDown(number);
            complete = moved == count_ - number + 1;
            if (!complete) moveUp(number, moved, removed);
        }
        return file_.truncate(placeOf(count_ + 1)) && complete;
    }

private:
    static constexpr int recordsAMove = 4096;

    [[nodiscard]] std::int64_t placeOf(int number) const
    {
        return start_ + std::int64_t{number - 1} * static_cast<std::int64_t>(size_);
    }

    // Moves the records number + 1 to count + 1 one place down. Returns how many were moved: fewer if a read
    // or write failed.
    [[nodiscard]] int moveDown(int number)
    {
        int at = number;
        while (at <= count_) {
            const int step = std::min(recordsAMove, count_ - at + 1);
            block_.resize(static_cast<std::size_t>(step) * size_);
            if (!file_.read(placeOf(at + 1), block_)) break;
            if (!file_.write(placeOf(at), block_)) {
                static_cast<void>(file_.write(placeOf(at + 1), block_)); // it may have been half done
                break;
            }
            at += step;
        }
        return at - number;
    }

    // Takes back what moveDown did to the `moved` records at `number`.
    void moveUp(int number, int moved, std::span<const std::byte> removed)
    {
        while (moved > 0) {
            const int step = std::min(recordsAMove, moved);
            moved -= step;
            block_.resize(static_cast<std::size_t>(step) * size_);
            if (!file_.read(placeOf(number + moved), block_)) return;
            if (!file_.write(placeOf(number + moved + 1), block_)) return;
        }
        static_cast<void>(file_.write(placeOf(number), removed));
    }

    File& file_;
    std::int64_t start_;
    std::size_t size_;
    int count_;
    std::vector<std::byte> block_;
};

} // namespace collection
