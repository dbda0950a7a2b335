#pragma once

// Whether a file that was made from another one is still its image, by the times of their last changes.

#include <string>

namespace collection {

// True if `file` is there and `source` was not changed later.
[[nodiscard]] bool isCurrent(const std::string& file, const std::string& source);

// For a file that was just written: waits until what is changed from now on gets a later time, a few
// milliseconds at most, since times of files go in steps. Without that a source that changes at once would
// seem to be as old as its image.
void letTimePass(const std::string& file);

} // namespace collection
