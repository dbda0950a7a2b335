#pragma once

// Colours, and the default scale made of them.

#include <vector>

namespace tools {

struct COLOR {
    double red = 0, green = 0, blue = 0; // 0 to 1
};

// A colour map as points of rising position.
struct MAPPOINT {
    double percent = 0; // 0 to 100
    COLOR color;
};
// The rainbow of the default palette: violet, blue, cyan, green, yellow, orange, red. Its lightness rises to
// the yellow and falls behind it, and equal steps are equally far in the Oklab space (B. Ottosson, 2020, "A
// perceptual color space for image processing"), so that no band stands out.
[[nodiscard]] std::vector<MAPPOINT> rainbow();

// Lightness of a colour, and how far two colours are apart, in the Oklab space; black to white is 1.
[[nodiscard]] double lightness(const COLOR& color);
[[nodiscard]] double distance(const COLOR& a, const COLOR& b);

} // namespace tools
