#pragma once

// The places of variables in lists.

#include <span>
#include <vector>

#include "collection/varinfo.h"

namespace dialogs {

// Index 0 of the variables is no variable; their positions are 1 to their count, each once. Gives one of them
// another place; those in between move by one. A place beyond the ends is the end.
void moveToPosition(std::span<collection::VARINFO> variables, int number, int position);
// Where positions aren't 1 to the count, each once, they become so: in the order of the positions, then of
// the numbers.
void settlePositions(std::span<collection::VARINFO> variables);
// The numbers of the variables in the order of their positions.
[[nodiscard]] std::vector<int> numbersByPosition(std::span<const collection::VARINFO> variables);

} // namespace dialogs
