#pragma once

// What the windows show when the variables of their collection have become others.

#include <array>
#include <bitset>
#include <span>

#include "common/limits.h"
#include "graphics/datawindow.h"

namespace app {

// Windows whose axes have their ranges, by mode and window number.
using RANGEDWINDOWS = std::array<std::bitset<common::maxDataWindows + 1>, graphics::modeCount>;

// Windows follow their variables to their new numbers (newNumbers[old], 0: gone). One that has lost an axis,
// and one that had none, takes the variables of `defaults`, and its ranges are to be found again.
void followVariables(graphics::GRAPHICSSETUP& setup, std::span<const int> newNumbers,
                     const graphics::GRAPHICSSETUP& defaults, RANGEDWINDOWS& ranged);

} // namespace app
