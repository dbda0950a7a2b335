#pragma once

#include <QFont>

namespace graphics {

// Fonts come in whole pixels; drawn with this scale they have the size that was asked for.
struct LABELFONT {
    QFont font;
    double scale = 1;
};

// The font of index 1 (text) or 2 (symbols) that is `points` high in canvas centimetres, 28.35 points to the
// centimetre, on the device of the drawing state.
[[nodiscard]] LABELFONT labelFont(int fontIndex, double points);

} // namespace graphics
