#pragma once

// Pictures compared by their ink: what isn't the white of the paper.

#include <QImage>

namespace testing_support {

// Share of the ink of `a` that has ink of `b` within `reach` pixels; 0 if there is no ink.
[[nodiscard]] double inkCovered(const QImage& a, const QImage& b, int reach);
// Pixels of ink within a rectangle.
[[nodiscard]] int inkIn(const QImage& image, const QRect& area);

} // namespace testing_support
