#pragma once

// What the set-up of each row asks.

#include <vector>

#include "variables/setup.h"

namespace variables {

// The questions of a row in their order; none for macros and expressions, which ask in their own way.
[[nodiscard]] std::vector<SETUPQUESTION> setupQuestions(const collection::RCollection& collection,
                                                        const DRVVAR& row);

// Which history a tracer needs; -1 for calculators of anything else.
[[nodiscard]] int gasOf(int id);

// How many sources the calculator has.
[[nodiscard]] int sourceCountOf(int id);

} // namespace variables
