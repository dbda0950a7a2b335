#pragma once

#include <string>
#include <string_view>

namespace importing {

// The relative path under which a member of an archive may be written: no part of it is "..", empty or too
// long. junkPaths: only the last part of the name counts. Leading slashes are dropped. Empty if there is no
// such path; then `fault` says why in a few words.
[[nodiscard]] std::string memberPath(std::string_view name, bool junkPaths, std::string& fault);

// A name from outside as it may stand in a one-line message: UTF-8, at most 200 bytes, no control characters.
[[nodiscard]] std::string shownName(std::string_view name);

} // namespace importing
