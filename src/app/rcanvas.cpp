#include "app/rcanvas.h"

#include <algorithm>

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace app {

RCanvas::RCanvas(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("canvas"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
}

graphics::DEVICE RCanvas::deviceFor(QSize available)
{
    constexpr float smallest = 10; // pixels per cm
    graphics::DEVICE device;
    const auto width = static_cast<float>(available.width()), height = static_cast<float>(available.height());
    device.pixelsPerCm =
        std::max(std::min(width / graphics::referenceWidth, height / graphics::referenceHeight), smallest);
    device.widthCm = std::max(width / device.pixelsPerCm, graphics::referenceWidth);
    device.heightCm = std::max(height / device.pixelsPerCm, graphics::referenceHeight);
    device.widthPx = static_cast<int>(device.widthCm * device.pixelsPerCm);
    device.heightPx = static_cast<int>(device.heightCm * device.pixelsPerCm);
    return device;
}

void RCanvas::setDevice(const graphics::DEVICE& device)
{
    size_ = QSize(device.widthPx, device.heightPx);
    pixmap_ = QPixmap();
    setFixedSize(size_);
}

void RCanvas::makePixmap()
{
    if (!pixmap_.isNull()) return;
    pixmap_ = QPixmap(size_);
    pixmap_.fill(Qt::white);
}

void RCanvas::paintPicture(bool erase, const std::function<void(QPainter&)>& draw)
{
    makePixmap();
    if (erase) pixmap_.fill(Qt::white);
    {
        QPainter painter(&pixmap_);
        draw(painter);
    }
    update();
}

void RCanvas::showNow()
{
    if (isVisible()) repaint();
}

void RCanvas::paintEvent(QPaintEvent* event)
{
    makePixmap();
    QPainter painter(this);
    painter.drawPixmap(event->rect(), pixmap_, event->rect());
}

void RCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (mouseMoved) mouseMoved(event->pos());
}

} // namespace app
