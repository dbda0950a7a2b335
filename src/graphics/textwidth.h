#pragma once

// The width of a label without a device: what both sinks of a picture may agree on.

#include <string_view>

namespace graphics {

// Width of a label ("~" sequences understood) in units of its font size, from the published widths of the
// bold sans-serif face that PostScript files use; other faces come near it.
[[nodiscard]] double textWidth(std::string_view label);

// Width of "W" in the same units: what the lengths of tics are measured in.
inline constexpr double widthOfW = 0.944;
// Height of a label's box in units of its font size.
inline constexpr double labelHeight = 1.38;

} // namespace graphics
