#pragma once

namespace graphics {

struct SINCOS {
    double sine, cosine;
};
// Sine and cosine of an angle in degrees to 1e-15, several times as fast as the library's: the map layers ask
// for them a million times a picture.
[[nodiscard]] SINCOS sinCosDegrees(double angle);

} // namespace graphics
