#pragma once

// Palette files (`.pal`): 177 colours in fixed roles. All files share everything but the scale.

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "rainbow.h"

namespace tools {

inline constexpr int paletteSize = 177;
inline constexpr int scaleFirst = 33, scaleSteps = 111, scaleBelow = 32, scaleAbove = 144;

// The text of a packaged colour map: "!" begins a comment, else percent, red, green and blue of 0 to 100 a
// line; the mapping by percent may be named. Empty, with a message, if it reads otherwise.
[[nodiscard]] std::optional<std::vector<MAPPOINT>> parseColorMap(std::string_view text, std::string& error);

// The map's colour at a percentage: linear between neighbours, the end colours beyond the ends.
[[nodiscard]] COLOR colorAt(std::span<const MAPPOINT> map, double percent);

// A whole palette around a scale.
[[nodiscard]] std::array<COLOR, paletteSize> paletteAround(std::span<const MAPPOINT> scale);

// The file's text: index, red, green and blue a line. A reader multiplies by 255 and truncates; the values
// are such that it gets the nearest bytes.
[[nodiscard]] std::string paletteText(std::span<const COLOR> colors);

} // namespace tools
