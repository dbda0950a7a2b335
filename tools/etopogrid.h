#pragma once

// The relief grid that gives the sea floor along a section.

#include <cstdint>
#include <string>
#include <vector>

#include "relief.h"

namespace tools {

// Heights of the cells north-east of each node, row by row from the south: a lookup truncates the position to
// the node, so that the mean of the four nodes around the cell is nearer the truth than the node itself. In
// the northernmost row it is the mean of two. Whole metres.
[[nodiscard]] std::vector<std::int16_t> cellHeights(const GRID& relief);

// The file: a header of 36 bytes ("ETOPO01", a reserved word, cells per degree of longitude, cells per row,
// south edge plus 90, cells per degree of latitude, two reserved words), then the heights. False if it can't
// be written, and then nothing was changed.
[[nodiscard]] bool writeEtopo(const std::string& path, const GRID& relief);

} // namespace tools
