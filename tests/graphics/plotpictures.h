#pragma once

// What tests look for in pictures and in PostScript text.

#include <string_view>

#include <QImage>
#include <QPainter>

#include "graphics/drawing.h"

namespace testing_support {

// A white canvas of the reference size with a painter on it.
class RTestCanvas {
public:
    RTestCanvas() : RTestCanvas(graphics::drawState().device) {}
    explicit RTestCanvas(const graphics::DEVICE& device)
        : image(device.widthPx, device.heightPx, QImage::Format_RGB32)
    {
        image.fill(Qt::white);
        painter.begin(&image);
    }
    QImage image;
    QPainter painter;
};

inline int countOf(std::string_view text, std::string_view part)
{
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++n;
    return n;
}

// Pixels of `area` that aren't `color`.
inline int pixelsOtherThan(const QImage& image, const QRect& area, QRgb color)
{
    int n = 0;
    const QRect inside = area.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            n += (image.pixel(x, y) & RGB_MASK) != (color & RGB_MASK) ? 1 : 0;
        }
    }
    return n;
}

inline int pixelsOf(const QImage& image, const QRect& area, QRgb color)
{
    const QRect inside = area.intersected(image.rect());
    return inside.width() * inside.height() - pixelsOtherThan(image, inside, color);
}

} // namespace testing_support
