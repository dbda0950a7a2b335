#pragma once

// The widget that shows the picture: drawing goes into its pixmap, a paint event copies that to the screen.

#include <functional>

#include <QPixmap>
#include <QWidget>

#include "graphics/drawing.h"

namespace app {

class RCanvas : public QWidget {
    Q_OBJECT
public:
    explicit RCanvas(QWidget* parent = nullptr);

    // The canvas in pixels and centimetres for a desktop of which `available` pixels can be used.
    [[nodiscard]] static graphics::DEVICE deviceFor(QSize available);
    // Takes the size of the device; the pixmap is made, white, when something is first drawn.
    void setDevice(const graphics::DEVICE& device);

    // Runs `draw` with a painter on the pixmap; `erase` makes it white before.
    void paintPicture(bool erase, const std::function<void(QPainter&)>& draw);
    // Shows the picture as far as it is, at once.
    void showNow();
    [[nodiscard]] const QPixmap& picture() const { return pixmap_; }

    // Called with the pixel under the mouse.
    std::function<void(QPoint)> mouseMoved;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void makePixmap();

    QPixmap pixmap_;
    QSize size_;
};

} // namespace app
