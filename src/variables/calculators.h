#pragma once

// The calculators, by family. `derivation.cpp` finds them by their ids.

#include <span>

#include "variables/derivation.h"

namespace variables {

// Level by level from depth, temperature, salinity: ids 0, 1, 2, 5, 6, 9, 40, 42, 43, 47.
[[nodiscard]] std::span<const CALCULATORROW> levelCalculators();
// From the header: ids 13, 14, 15, 16, 41, 46.
[[nodiscard]] std::span<const CALCULATORROW> headerCalculators();
// From a time variable: ids 48 and 49.
[[nodiscard]] std::span<const CALCULATORROW> timeCalculators();
// From the whole profile: ids 3, 4, 10, 11, 50.
[[nodiscard]] std::span<const CALCULATORROW> profileCalculators();
// Saturations and partial pressures of tracers: ids 7, 8, 24 to 31.
[[nodiscard]] std::span<const CALCULATORROW> tracerCalculators();
// The carbonate system: ids 19 to 23.
[[nodiscard]] std::span<const CALCULATORROW> carbonateCalculators();
// Neutral density: id 44.
[[nodiscard]] std::span<const CALCULATORROW> neutralCalculators();
// Formulas: ids 12 and 45.
[[nodiscard]] std::span<const CALCULATORROW> formulaCalculators();

} // namespace variables
