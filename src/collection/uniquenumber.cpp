#include "collection/uniquenumber.h"

#include <chrono>
#include <unistd.h>

namespace collection {

std::uint64_t uniqueNumber()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    std::uint64_t x = static_cast<std::uint64_t>(now) + (static_cast<std::uint64_t>(::getpid()) << 40U);
    x = (x ^ (x >> 30U)) * 0xbf58476d1ce4e5b9U;
    x = (x ^ (x >> 27U)) * 0x94d049bb133111ebU;
    return x ^ (x >> 31U);
}

} // namespace collection
