#pragma once

// The text of an `.idv` file: which variable plays which role, one a line, "<role>=<number>"; it is read with
// a tab for the "=" too.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace collection {

// The length of a line's key: up to "=", for which a tab may stand; that of the line if there is neither.
[[nodiscard]] std::size_t idKeyLength(std::string_view line);

// The roles as they read for another list of variables: origins[v] is the old number of the new variable v, 0
// for one that is new (index 0 is no variable). A role whose variable is gone is left out; of several new
// variables with the same origin the first one takes it.
[[nodiscard]] std::string renumberedVariableIds(std::string_view text, std::span<const int> origins);

} // namespace collection
