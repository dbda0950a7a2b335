#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace common {

// Reverses the bytes of `count` items of `itemSize` bytes each. Source and destination may be the same.
void reverseBytes(const void* source, std::size_t count, std::size_t itemSize, void* destination);

inline constexpr bool hostIsLittleEndian = std::endian::native == std::endian::little;

} // namespace common
