#include "graphics/axes.h"

#include <algorithm>
#include <cmath>

#include "graphics/gridpen.h"
#include "graphics/textsize.h"

namespace graphics {
namespace {

constexpr double haloCm = 0.015;
constexpr double ticWidths = 1.25;  // length of a major tic in widths of a "W"
constexpr double xTitleTics = 1.1;  // from the tics' ends to the x title, in tics
constexpr double yTitleTics = 1.95; // from the frame to the y title, in tics, and the widest number
constexpr float axisTitleScale = 1.2f, plotTitleScale = 1.3f;
constexpr double ticTolerance = 2; // pixels that a tic may lie outside the plot

// One axis of the current user system as the drawing of its tics sees it.
struct AXIS {
    const USRAXIS& along;  // the tics' values
    const USRAXIS& across; // the tics stick out at its low end
    bool horizontal;
};

AXIS xAxis()
{
    return {usrSys().x, usrSys().y, true};
}

AXIS yAxis()
{
    return {usrSys().y, usrSys().x, false};
}

// Pixels outside the frame, at the low end of `axis`, to a user value of it.
float userOutside(const USRAXIS& axis, bool horizontal, double pixels)
{
    const double outside = horizontal ? -pixels : pixels; // y pixels run down
    return static_cast<float>(axis.userMin + outside / axis.pixelsPerUnit);
}

// The last value of an axis falls on the pixel behind the frame.
double pixelOf(const AXIS& axis, double value)
{
    const double pixel = axis.horizontal ? pixelX(value) : pixelY(value);
    const auto [low, high] = std::minmax(axis.along.lowPx, axis.along.highPx);
    return std::clamp<double>(pixel, low, high);
}

double ticLength(QPainter* p, float fontSize)
{
    SelectFont(p, 1, fontSize);
    return ticWidths * QFontMetricsF(p->font(), p->device()).horizontalAdvance(QLatin1Char('W'));
}

std::vector<double> ticsInside(const AXIS& axis, double start, double step)
{
    const double slack = ticTolerance / std::abs(axis.along.pixelsPerUnit);
    const double low = std::min(axis.along.userMin, axis.along.userMax) - slack;
    const double high = std::max(axis.along.userMin, axis.along.userMax) + slack;
    return ticValues(start, step, low, high);
}

void drawLine(QPainter* p, const AXIS& axis, double along, double from, double to)
{
    if (axis.horizontal) {
        p->drawLine(QPointF(along, from), QPointF(along, to));
    } else {
        p->drawLine(QPointF(from, along), QPointF(to, along));
    }
}

void drawTics(QPainter* p, const AXIS& axis, const std::vector<double>& values, double length)
{
    const double frame = axis.across.lowPx, outward = axis.horizontal ? length : -length;
    for (const double value : values) drawLine(p, axis, pixelOf(axis, value), frame, frame + outward);
}

void drawGrid(QPainter* p, const AXIS& axis, const std::vector<double>& values)
{
    const QPen before = p->pen();
    p->setPen(gridPen(p));
    for (const double value : values) {
        drawLine(p, axis, pixelOf(axis, value), axis.across.lowPx, axis.across.highPx);
    }
    p->setPen(before);
}

void drawNumber(QPainter* p, const AXIS& axis, const std::string& text, double value, double distance,
                float angle, float fontSize)
{
    const float outside = userOutside(axis.across, !axis.horizontal, distance);
    const float along = static_cast<float>(value);
    DrawLabel(p, nullptr, text, axis.horizontal ? along : outside, axis.horizontal ? outside : along, angle,
              fontSize);
}

// Tics, grid and numbers; returns the widest number in pixels.
double drawAxis(QPainter* p, const AXIS& axis, const TICS& tics, float fontSize, bool grid, bool rotated)
{
    const double length = ticLength(p, fontSize);
    const std::vector<double> major = ticsInside(axis, tics.start, tics.major);
    if (grid) drawGrid(p, axis, major);
    drawTics(p, axis, ticsInside(axis, tics.start, tics.minor), 0.5 * length);
    drawTics(p, axis, major, length);
    SetLabelOrigin(p, axis.horizontal ? 1 : rotated ? 2 : 7);
    double widest = 0;
    for (const double value : major) {
        const std::string text = axisNumber(value, tics.major);
        drawNumber(p, axis, text, value, length, rotated ? 90.0f : 0.0f, fontSize);
        const QSizeF size = labelSize(p, text, fontSize);
        widest = std::max(widest, rotated ? size.height() : size.width());
    }
    return widest;
}

float middle(const USRAXIS& axis)
{
    return static_cast<float>(0.5 * (double{axis.userMin} + axis.userMax));
}

// What is drawn outside the plot is drawn outside its clip, and unfilled.
class [[nodiscard]] ROutsideGuard {
public:
    explicit ROutsideGuard(QPainter* p) : state_(p)
    {
        SetClip(p, false);
        SetFill(p, false);
        SetLineStyle(p, 0);
        SetPenWidth(p, 1);
    }

private:
    RDrawStateGuard state_;
};

} // namespace

QPen gridPen(QPainter* p)
{
    constexpr double lightest = 0.35;
    QPen pen = p->pen();
    const double pixels = 0.1 * thicknesses()[0].millimetres * drawState().device.pixelsPerCm;
    QColor color = pen.color();
    color.setAlphaF(static_cast<float>(std::clamp(pixels, lightest, 1.0)));
    pen.setColor(color);
    pen.setWidthF(std::max(1.0, pixels));
    return pen;
}

TICS FitTics(float a, float b, float length, float fontSize, bool across)
{
    TICS tics = ChooseTics(a, b);
    const double cmPerRange = length / std::abs(double{b} - a);
    constexpr int mostDoublings = 4;
    for (int i = 0; i < mostDoublings && std::isfinite(cmPerRange); ++i) {
        double needed = across ? labelHeight : 0; // in units of the font size
        const std::vector<double> values = ticValues(tics.start, tics.major, a, b);
        for (const double value : values) {
            if (!across) needed = std::max(needed, textWidth(axisNumber(value, tics.major)));
        }
        if (values.size() < 2 || needed * fontSize / pointsPerCm <= std::abs(tics.major) * cmPerRange) break;
        tics.minor *= 2;
        tics.major *= 2;
        const std::vector<double> left = ticValues(0, tics.major, a, b);
        if (left.empty()) break;
        tics.start = static_cast<float>(left.front());
    }
    return tics;
}

void DrawFrame(QPainter* p)
{
    if (!p) return;
    const ROutsideGuard guard(p);
    const USRSYS& u = usrSys();
    const int halo = static_cast<int>(haloCm * drawState().device.pixelsPerCm);
    p->setBrush(Qt::NoBrush);
    for (int i = -halo; i <= halo; ++i) {
        p->drawRect(QRectF(u.x.lowPx, u.y.highPx, u.x.highPx - u.x.lowPx, u.y.lowPx - u.y.highPx)
                        .adjusted(-i, -i, i, i));
    }
}

float DrawXAxis(QPainter* p, const TICS& tics, float fontSize, bool grid, std::string_view title)
{
    if (!p) return 0;
    const ROutsideGuard guard(p);
    const AXIS axis = xAxis();
    drawAxis(p, axis, tics, fontSize, grid, false);
    const double distance = (1 + xTitleTics) * ticLength(p, fontSize);
    if (!title.empty()) {
        SetLabelOrigin(p, 1);
        DrawLabel(p, nullptr, title, middle(axis.along), userOutside(axis.across, false, distance), 0,
                  axisTitleScale * fontSize);
    }
    return static_cast<float>(distance / drawState().device.pixelsPerCm);
}

float DrawYAxis(QPainter* p, const TICS& tics, float fontSize, bool grid, std::string_view title,
                bool rotated)
{
    if (!p) return 0;
    const ROutsideGuard guard(p);
    const AXIS axis = yAxis();
    const double widest = drawAxis(p, axis, tics, fontSize, grid, rotated);
    const double distance = yTitleTics * ticLength(p, fontSize) + widest;
    if (!title.empty()) {
        SetLabelOrigin(p, 0);
        DrawLabel(p, nullptr, title, userOutside(axis.across, true, distance), middle(axis.along), 90,
                  axisTitleScale * fontSize);
    }
    return static_cast<float>(distance / drawState().device.pixelsPerCm);
}

void DrawTitle(QPainter* p, float fontSize, std::string_view title)
{
    if (!p || title.empty()) return;
    const ROutsideGuard guard(p);
    const USRSYS& u = usrSys();
    SetLabelOrigin(p, 2);
    const double above = u.y.userMax + 0.01 * (double{u.y.userMax} - u.y.userMin);
    DrawLabel(p, nullptr, title, middle(u.x), static_cast<float>(above), 0, plotTitleScale * fontSize);
}

} // namespace graphics
