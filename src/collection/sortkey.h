#pragma once

#include <cstdint>
#include <string_view>

namespace collection {

// The number by which sorting orders stations of one cruise: the decimal integer that a label begins with,
// behind white space and a sign. "12A" is 12; a label that begins with anything else is 0.
[[nodiscard]] std::int64_t sortKey(std::string_view label);

} // namespace collection
