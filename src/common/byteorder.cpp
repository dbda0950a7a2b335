#include "common/byteorder.h"

#include <cstring>

namespace common {
namespace {

template <typename Word, Word (*swap)(Word)>
void reverseWords(const std::byte* source, std::size_t count, std::byte* destination)
{
    for (std::size_t i = 0; i < count; ++i) {
        Word word;
        std::memcpy(&word, source + i * sizeof(Word), sizeof(Word));
        word = swap(word);
        std::memcpy(destination + i * sizeof(Word), &word, sizeof(Word));
    }
}

std::uint16_t swap16(std::uint16_t word)
{
    return __builtin_bswap16(word);
}
std::uint32_t swap32(std::uint32_t word)
{
    return __builtin_bswap32(word);
}
std::uint64_t swap64(std::uint64_t word)
{
    return __builtin_bswap64(word);
}

} // namespace

void reverseBytes(const void* source, std::size_t count, std::size_t itemSize, void* destination)
{
    const auto* from = static_cast<const std::byte*>(source);
    auto* to = static_cast<std::byte*>(destination);
    switch (itemSize) {
    case 2:
        reverseWords<std::uint16_t, swap16>(from, count, to);
        return;
    case 4:
        reverseWords<std::uint32_t, swap32>(from, count, to);
        return;
    case 8:
        reverseWords<std::uint64_t, swap64>(from, count, to);
        return;
    default:
        break;
    }
    for (std::size_t i = 0; i < count; ++i, from += itemSize, to += itemSize) {
        for (std::size_t a = 0, b = itemSize; a < b--; ++a) {
            const std::byte low = from[a];
            to[a] = from[b];
            to[b] = low;
        }
    }
}

} // namespace common
