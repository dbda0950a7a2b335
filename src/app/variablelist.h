#pragma once

// The text file that gives a collection another list of variables: one a line, as label, width.decimals and
// number of the variable that its data come from (0: none), divided by tabs. Empty lines and lines that begin
// with "#" are passed over.

#include <string>
#include <string_view>
#include <vector>

#include "collection/varinfo.h"

namespace app {

// The variables of a list, numbered from 1 (index 0 is no variable), with the numbers of the old ones in
// assocSource. oldCount: variables that the collection has. Empty, with `fault` as "<name>:<line>: <what>",
// if anything is wrong.
[[nodiscard]] std::vector<collection::VARINFO> parseVariableList(std::string_view text, std::string_view name,
                                                                 int oldCount, std::string& fault);
// The same from a file.
[[nodiscard]] std::vector<collection::VARINFO> readVariableList(const std::string& path, int oldCount,
                                                                std::string& fault);

} // namespace app
