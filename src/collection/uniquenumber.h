#pragma once

#include <cstdint>

namespace collection {

// A number that no two calls, of whatever process, share: time and process, well mixed.
[[nodiscard]] std::uint64_t uniqueNumber();

} // namespace collection
