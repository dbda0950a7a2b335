#pragma once

#include <QPainter>
#include <QPen>

namespace graphics {

// The painter's pen for a very thin line: a line thinner than a pixel is a pixel of less weight, as a page
// shows it.
[[nodiscard]] QPen gridPen(QPainter* p);

} // namespace graphics
