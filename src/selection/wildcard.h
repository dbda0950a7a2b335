#pragma once

#include <string_view>

namespace selection {

// "*", "?" and bracket sets with ranges and "!" or "^" for the contrary, case-sensitive, the whole of
// `label`. Both are bytes as they stand in records; "?" stands for one character. A "[" without its end is
// itself.
[[nodiscard]] bool matchesWildcard(std::string_view pattern, std::string_view label);

} // namespace selection
