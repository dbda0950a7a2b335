#pragma once

// The text of an `.idv` file: which variable plays which role, one a line, "<role>=<number>".

#include <span>
#include <string>
#include <string_view>

namespace collection {

// The roles as they read for another list of variables: origins[v] is the old number of the new variable v, 0
// for one that is new (index 0 is no variable). A role whose variable is gone is left out; of several new
// variables with the same origin the first one takes it. A tab may stand for the "=".
[[nodiscard]] std::string renumberedVariableIds(std::string_view text, std::span<const int> origins);

} // namespace collection
