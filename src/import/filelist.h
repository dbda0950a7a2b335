#pragma once

// A list of files to import: a text file with one path in each line.

#include <string>
#include <vector>

namespace importing {

// The paths in `list`, those that are relative taken from its folder; blank lines are passed over. False,
// with `fault` as "<file>:<line>: <what>", if it can't be read, names nothing, or a line is no path.
[[nodiscard]] bool readFileList(const std::string& list, std::vector<std::string>& paths, std::string& fault);

} // namespace importing
