#pragma once

// The size of text: without a device, which is what both sinks of a picture can agree on, and on a painter.

#include <string_view>

#include <QPainter>

namespace graphics {

// Width of a label ("~" sequences understood) in units of its font size, from the published widths of the
// bold sans-serif face that PostScript files use; other faces come near it.
[[nodiscard]] double textWidth(std::string_view label);

// Width of "W" in the same units: what the lengths of tics are measured in.
inline constexpr double widthOfW = 0.944;
// Height of a label's box in units of its font size.
inline constexpr double labelHeight = 1.34;

// A length of `points` of text, in cm on a page and in pixels on a painter's device.
[[nodiscard]] double textCm(double points);
[[nodiscard]] double textPixels(QPainter* p, double points);

} // namespace graphics
