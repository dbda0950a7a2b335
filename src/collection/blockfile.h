#pragma once

// A binary file that is read and written at given places: reads that go forward through the file are served
// from a large read-ahead, single ones fetch what they need and no more. Writes reach the file at once, or
// wait in memory where they may; reads see both.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "collection/heldwrites.h"

namespace collection {

class RBlockFile {
public:
    enum class Mode { read, update, create }; // create: empties the file, or makes it

    RBlockFile() = default;
    ~RBlockFile() { close(); }
    RBlockFile(const RBlockFile&) = delete;
    RBlockFile& operator=(const RBlockFile&) = delete;

    // False if the file can't be opened in this way or is no regular file.
    [[nodiscard]] bool open(const std::string& path, Mode mode);
    void close(); // what is held back is dropped
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    // True if this is the file that stands under the name, and nobody has cut it short.
    [[nodiscard]] bool isAt(const std::string& path) const;
    // Bytes, as they were when the file was opened, and with what was written and held back since.
    [[nodiscard]] std::int64_t size() const { return size_; }

    // The bytes of a place, valid until the next call; null if the file doesn't hold them all.
    [[nodiscard]] const std::byte* view(std::int64_t offset, std::size_t length);
    // Reads past the read-ahead, for blocks that are large anyway.
    [[nodiscard]] bool read(std::int64_t offset, std::span<std::byte> out);
    // Writes two pieces one behind the other, after what is held back.
    [[nodiscard]] bool write(std::int64_t offset, std::span<const std::byte> first,
                             std::span<const std::byte> second = {});
    // The same, but they wait in memory until flush().
    void hold(std::int64_t offset, std::span<const std::byte> first, std::span<const std::byte> second = {});
    [[nodiscard]] std::size_t heldBytes() const { return held_.bytes(); }
    [[nodiscard]] std::size_t heldPieces() const { return held_.pieces(); }
    // Writes what is held back. False: it may have been written in part, and is held on.
    [[nodiscard]] bool flush();
    // Forgets what is held back.
    void drop();
    // Cuts what lies behind `size`.
    [[nodiscard]] bool truncate(std::int64_t size);
    // True when everything written and held back is on the disk.
    [[nodiscard]] bool sync();

private:
    [[nodiscard]] std::size_t readSome(std::int64_t offset, std::span<std::byte> out) const;
    [[nodiscard]] std::size_t readFile(std::int64_t offset, std::span<std::byte> out) const;
    [[nodiscard]] bool writeFile(std::int64_t offset, std::span<const std::byte> first,
                                 std::span<const std::byte> second);
    void patch(std::int64_t offset, std::span<const std::byte> bytes);

    int descriptor_ = -1;
    std::int64_t size_ = 0;     // with what is held back
    std::int64_t fileSize_ = 0; // without
    RHeldWrites held_;
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t capacity_ = 0;
    std::int64_t start_ = 0;    // place in the file of the buffer's first byte
    std::size_t valid_ = 0;     // bytes in the buffer
    std::int64_t expected_ = 0; // where a read that continues the last one begins
};

} // namespace collection
