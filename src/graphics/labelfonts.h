#pragma once

#include <QFont>
#include <QPaintDevice>

namespace graphics {

// The font of index 1 (text) or 2 (symbols) that is `points` high in canvas centimetres, 28.35 points to the
// centimetre, on `device`; null: for measuring without one.
[[nodiscard]] QFont labelFont(const QPaintDevice* device, int fontIndex, double points);

} // namespace graphics
