#pragma once

#include <cstdint>

namespace collection {

// A number that calls at different times or of different processes hardly ever share: the time in
// nanoseconds and the process, well mixed over all 64 bits.
[[nodiscard]] std::uint64_t uniqueNumber();

} // namespace collection
