#pragma once

// Whether a file that was made from another one is still its image, by the times of their last changes.

#include <string>

namespace collection {

// True if `file` is there and `source` was not changed later.
[[nodiscard]] bool isCurrent(const std::string& file, const std::string& source);

// Waits until a change of `source` would give it a later time than it has now: a few milliseconds at most,
// since times of files go in steps. What is written after that counts as current only until the next change.
void letTimePass(const std::string& source);

} // namespace collection
