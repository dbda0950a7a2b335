#include "graphics/drawing.h"

#include <algorithm>
#include <cmath>

#include "graphics/drawingpen.h"
#include "graphics/palette.h"

namespace graphics {
namespace {

constexpr auto lineTypeTable = std::to_array<LINETYPE>({
    {"Solid", "solid_line", Qt::SolidLine},
    {"Dashed", "dashed_line", Qt::DashLine},
    {"Dotted", "dotted_line", Qt::DotLine},
    {"DashDot", "dashed_line", Qt::DashDotLine},
    {"DashDotDot", "dotted_line", Qt::DashDotLine},
});

constexpr auto thicknessTable = std::to_array<THICKNESS>({
    {"very Thin", "very_thin_line", 0.05f},
    {"Thin", "thin_line", 0.25f},
    {"Medium", "medium_line", 0.55f},
    {"Thick", "thick_line", 1.1f},
    {"very Thick", "very_thick_line", 2.2f},
    {"extra Thick", "extra_thick_line", 4.0f},
});

constexpr auto symbolTable = std::to_array<SYMBOL>({
    {"Dots", "dotr"},
    {"Squares", "square"},
    {"Diamonds", "diam"},
    {"Triangles", "trianr"},
    {"InvTriangles", "utrianr"},
    {"Stars", "starr"},
    {"Xs", "xr"},
    {"Crosses", "plusr"},
});

// Dashes count in pen widths; below this width they would be too short to be told apart.
constexpr float shortestDashUnit = 0.025f; // cm

// What is far outside the device stays far outside, and fits an integer.
int toPixel(double value)
{
    constexpr double far = 1e9;
    return static_cast<int>(std::clamp(value, -far, far)); // truncates
}

bool isThickness(int index)
{
    return index >= 0 && index < static_cast<int>(thicknessTable.size());
}

// In single precision: the last figure of pixelsPerUnit then goes where a limit of the axis hits its pixel.
int axisPixel(const USRAXIS& axis, double value)
{
    const float distance = static_cast<float>(value) - axis.userMin;
    return toPixel(distance * axis.pixelsPerUnit + axis.lowPx);
}

void shrinkForPrinter(float& length, float& origin)
{
    length *= 0.92f;
    origin = origin * 0.92f + 1.0f;
}

void setUserAtEdges(USRAXIS& axis)
{
    axis.unitsPerCm = (axis.userMax - axis.userMin) / axis.lengthCm;
    axis.userAtCanvasLow = axis.userMin - axis.originCm * axis.unitsPerCm;
    axis.userAtCanvasHigh = axis.userMin + (axis.canvasCm - axis.originCm) * axis.unitsPerCm;
}

} // namespace

DRAWSTATE& drawState()
{
    static DRAWSTATE state;
    return state;
}

USRSYS& usrSys()
{
    static USRSYS usr;
    return usr;
}

RDrawStateGuard::RDrawStateGuard(QPainter* p) : painter_(p), state_(drawState()), usr_(usrSys())
{
    if (painter_) painter_->save();
}

RDrawStateGuard::~RDrawStateGuard()
{
    if (painter_) painter_->restore();
    drawState() = state_;
    usrSys() = usr_;
}

std::span<const LINETYPE> lineTypes()
{
    return lineTypeTable;
}

std::span<const THICKNESS> thicknesses()
{
    return thicknessTable;
}

std::span<const SYMBOL> symbols()
{
    return symbolTable;
}

int LineWidth(int thickness, float* widthCm)
{
    if (!isThickness(thickness)) {
        if (widthCm) *widthCm = 0.05f;
        return 1;
    }
    const float cm = thicknessTable[static_cast<std::size_t>(thickness)].millimetres * 0.1f;
    if (widthCm) *widthCm = cm;
    return std::max(toPixel(cm * drawState().device.pixelsPerCm), std::min(thickness, 3));
}

const char* thicknessProcedure(int thickness)
{
    return thicknessTable[isThickness(thickness) ? static_cast<std::size_t>(thickness) : 0].procedure;
}

void SetUsrSys(float xmin, float xmax, float xlen, float xorg, float ymin, float ymax, float ylen, float yorg)
{
    if (drawState().printing) {
        shrinkForPrinter(xlen, xorg);
        shrinkForPrinter(ylen, yorg);
    }
    const DEVICE& device = drawState().device;
    USRAXIS x, y;
    x.userMin = xmin, x.userMax = xmax, x.lengthCm = xlen, x.originCm = xorg;
    y.userMin = ymin, y.userMax = ymax, y.lengthCm = ylen, y.originCm = yorg;
    x.pixelsPerCm = y.pixelsPerCm = device.pixelsPerCm;
    x.canvasPx = static_cast<float>(device.widthPx), x.canvasCm = device.widthCm;
    y.canvasPx = static_cast<float>(device.heightPx), y.canvasCm = device.heightCm;
    x.lowPx = std::trunc(xorg * device.pixelsPerCm);
    x.highPx = std::trunc((xorg + xlen) * device.pixelsPerCm);
    y.lowPx = std::trunc(y.canvasPx - yorg * device.pixelsPerCm);
    y.highPx = std::trunc(y.lowPx - ylen * device.pixelsPerCm);
    x.pixelsPerUnit = (x.highPx - x.lowPx + 1) / (xmax - xmin);
    y.pixelsPerUnit = (y.highPx - y.lowPx + 1) / (ymax - ymin);
    setUserAtEdges(x);
    setUserAtEdges(y);
    usrSys() = {x, y};
}

int pixelX(double x)
{
    return axisPixel(usrSys().x, x);
}

int pixelY(double y)
{
    return axisPixel(usrSys().y, y);
}

QPoint pathPixel(double x, double y)
{
    constexpr int limit = 32760; // of the toolkit's rasteriser
    return {std::clamp(pixelX(x), -limit, limit), std::clamp(pixelY(y), -limit, limit)};
}

void SetClip(QPainter* p, bool plotOnly)
{
    if (!p) return;
    const USRSYS& usr = usrSys();
    const DEVICE& device = drawState().device;
    const QRect canvas(0, 0, device.widthPx, device.heightPx);
    const QRect plot(QPoint(static_cast<int>(usr.x.lowPx), static_cast<int>(usr.y.highPx)),
                     QPoint(static_cast<int>(usr.x.highPx), static_cast<int>(usr.y.lowPx)));
    p->setClipRect(plotOnly ? plot : canvas);
}

QPen currentPen(int widthPx)
{
    const DRAWSTATE& state = drawState();
    const auto style = static_cast<Qt::PenStyle>(state.penStyle);
    const bool solid = style == Qt::SolidLine;
    QPen pen(state.currentColor, widthPx, style, solid ? Qt::RoundCap : Qt::FlatCap, Qt::RoundJoin);
    const float unit = shortestDashUnit * state.device.pixelsPerCm;
    const auto width = static_cast<float>(std::max(widthPx, 1));
    if (!solid && style != Qt::NoPen && unit >= 2 * width) {
        QList<qreal> pattern = pen.dashPattern();
        for (qreal& dash : pattern) dash *= unit / width;
        pen.setDashPattern(pattern);
    }
    return pen;
}

void SetColor(QPainter* p, int paletteIndex)
{
    DRAWSTATE& state = drawState();
    state.color.fill(paletteIndex);
    state.currentColor = paletteColor(paletteIndex);
    if (p) p->setPen(currentPen(state.penWidth));
}

void SetFill(QPainter* p, bool fill)
{
    drawState().fill = fill;
    if (p) p->setBackgroundMode(fill ? Qt::OpaqueMode : Qt::TransparentMode);
}

void SetLineStyle(QPainter* p, int lineType)
{
    const bool known = lineType >= 0 && lineType < static_cast<int>(lineTypeTable.size());
    DRAWSTATE& state = drawState();
    state.penStyle = lineTypeTable[known ? static_cast<std::size_t>(lineType) : 0].style;
    if (p) p->setPen(currentPen(state.penWidth));
}

void SetPenWidth(QPainter* p, int pixels)
{
    DRAWSTATE& state = drawState();
    state.penWidth = std::max(pixels, 0);
    if (p) p->setPen(currentPen(state.penWidth));
}

void SetLabelOrigin(QPainter*, int lorg)
{
    struct FRACTIONS {
        float x, y;
    };
    constexpr auto fractions = std::to_array<FRACTIONS>(
        {{0.5f, 0.5f}, {0.5f, 1}, {0.5f, 0}, {1, 1}, {1, 0}, {0, 1}, {0, 0}, {1, 0.5f}, {0, 0.5f}});
    const bool known = lorg >= 0 && lorg < static_cast<int>(fractions.size());
    const FRACTIONS& chosen = fractions[known ? static_cast<std::size_t>(lorg) : 0];
    drawState().labelFractionX = chosen.x;
    drawState().labelFractionY = chosen.y;
}

float baseFontSize(float w, float h)
{
    const DEVICE& device = drawState().device;
    double factor = 1.0;
    if (device.widthCm > referenceWidth) {
        factor = device.heightCm > referenceHeight ? std::sqrt(referenceHeight / device.heightCm)
                                                   : std::sqrt(referenceWidth / device.widthCm);
    }
    const double share = 0.75 * (w / device.widthCm + h / device.heightCm);
    return static_cast<float>(std::pow(share, 0.49) * factor * 14.0);
}

} // namespace graphics
