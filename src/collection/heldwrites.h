#pragma once

// Bytes that are meant for a file and wait in memory: what was put last at a place holds.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <vector>

namespace collection {

class RHeldWrites {
public:
    void put(std::int64_t offset, std::span<const std::byte> bytes);
    [[nodiscard]] bool isEmpty() const { return pieces_.empty(); }
    [[nodiscard]] std::size_t bytes() const { return pool_.size(); } // memory that they take
    [[nodiscard]] std::size_t pieces() const { return pieces_.size(); }

    // Lays what is held over `out`, which has the bytes of the place `offset` on, the first `got` of them
    // from the file. Returns how many are known then, up to the first gap.
    [[nodiscard]] std::size_t overlay(std::int64_t offset, std::span<std::byte> out, std::size_t got) const;

    // Hands over the pieces in the order of their places, until one is refused: then it returns false.
    [[nodiscard]] bool
    forEach(const std::function<bool(std::int64_t offset, std::span<const std::byte>)>& visit) const;
    // Keeps the memory for what comes next.
    void clear();

private:
    struct PIECE {
        std::size_t length, at; // at: place in the pool
    };
    using Pieces = std::map<std::int64_t, PIECE>; // by place in the file; they don't overlap
    [[nodiscard]] Pieces::const_iterator firstBehind(std::int64_t offset) const;
    [[nodiscard]] bool extendsLast(std::int64_t offset, std::size_t length) const;
    [[nodiscard]] bool replaces(std::int64_t offset, std::span<const std::byte> bytes);
    void carve(std::int64_t offset, std::int64_t end);

    Pieces pieces_;
    Pieces::iterator last_ = pieces_.end(); // the piece that was put last
    std::vector<std::byte> pool_;
};

} // namespace collection
