#include "graphics/extents.h"

#include <algorithm>
#include <cmath>

#include "graphics/axes.h"
#include "graphics/mapplot.h"
#include "graphics/preparewindow.h"
#include "graphics/textsize.h"

namespace graphics {

namespace {

constexpr double barGap = 0.35, barWidth = 0.35, leastBar = 0.03; // cm, and share of the plot's width
constexpr double axisShare = 0.9, stampShare = 0.65, barShare = 0.85, mapShare = 0.84;
constexpr double smallestBarFont = 5.5;
constexpr double ticLength = 1.25 * widthOfW, ticsToYLabel = 1.95 * ticLength; // sizes of the numbers' font
constexpr double xLabelDistance = 2.0;                                         // base font sizes
constexpr double descent = 0.2;                                                // of brackets, font sizes
constexpr double zLabelHeight = 1.03;                                          // of the plot's height

// Of the numbers of an axis, in font sizes.
double widestNumber(const TICS& tics, float high)
{
    const double step = tics.major, end = high + step / 100;
    const double first = tics.start;
    double widest = textWidth(axisNumber(first, step));
    constexpr int most = 100;
    for (int i = 1; i < most && (end - first - i * step) * step > 0; ++i) {
        widest = std::max(widest, textWidth(axisNumber(first + i * step, step)));
    }
    return widest;
}

double colorBarRoom(const DATAWINDOW& w, double font)
{
    const double barFont = textCm(std::max(barShare * font, smallestBarFont));
    const double least = leastBar * w.xLen;
    const double numbers = widestNumber(ChooseTics(w.zMin, w.zMax), w.zMax) + 0.5;
    return std::max(barGap, least) + 1.075 * std::max(barWidth, least) + numbers * barFont;
}

double stampRoom(double font)
{
    return textCm(font) * (stampGap + stampShare * labelHeight);
}

EXTENT plotArea(float x, float y, float width, float height)
{
    const auto d = [](float value) { return value; };
    return {d(x), d(y), d(x) + d(width), d(y) + d(height)};
}

EXTENT plainExtent(const DATAWINDOW& w, bool colorBar)
{
    EXTENT e = plotArea(w.xOrg, w.yOrg, w.xLen, w.yLen);
    const double font = static_cast<double>(baseFontSize(w.xLen, w.yLen));
    const float axisFont = static_cast<float>(axisShare * font);
    const double axis = textCm(axisShare * font), label = labelHeight * textCm(font);
    double right = stampRoom(font);
    if (w.axisColor >= 0) {
        const TICS x = FitTics(w.xMin, w.xMax, w.xLen, axisFont, false);
        const TICS y = FitTics(w.yMin, w.yMax, w.yLen, axisFont, true);
        e.left -= (ticsToYLabel + widestNumber(y, w.yMax)) * axis + label / 2;
        e.bottom -= (xLabelDistance + descent) * textCm(font) + label;
        right = std::max(right, widestNumber(x, w.xMax) / 2 * axis);
    }
    if (w.zVar != 0) {
        e.top += (zLabelHeight - 1) * w.yLen + label;
        if (colorBar) right = std::max(right, colorBarRoom(w, font));
    } else {
        e.top += labelHeight * axis / 2;
    }
    e.right += right;
    return e;
}

EXTENT mapExtent(const MAPWINDOW& map)
{
    const double widestDegrees = textWidth("180\260W");
    const MAPGEOMETRY& g = map.geometry;
    const double font = static_cast<double>(baseFontSize(map.box.width, map.box.height));
    const double label = textCm(mapShare * font);
    EXTENT e = plotArea(g.xorg, g.yorg, g.xlen, g.ylen);
    double right = std::max(widestDegrees / 2 * label, stampRoom(font));
    if (map.colorBar) {
        const double bar = std::max(barGap, leastBar * g.xlen);
        right = std::max(right, 2.075 * bar + textWidth("6000 m ") * 0.75 * textCm(font));
    }
    e.left -= (ticLength + widestDegrees / 2 + 2 * descent) * label;
    e.bottom -= (ticLength + labelHeight / 2) * label;
    e.top += (labelHeight / 2 + 2 * descent) * label;
    e.right += right;
    return e;
}

} // namespace

EXTENT unite(const EXTENT& a, const EXTENT& b)
{
    if (a.empty()) return b;
    if (b.empty()) return a;
    return {std::min(a.left, b.left), std::min(a.bottom, b.bottom), std::max(a.right, b.right),
            std::max(a.top, b.top)};
}

EXTENT grow(const EXTENT& e, double by)
{
    return {e.left - by, e.bottom - by, e.right + by, e.top + by};
}

EXTENT clampToCanvas(const EXTENT& e)
{
    const DEVICE& device = drawState().device;
    return {std::max(e.left, 0.0), std::max(e.bottom, 0.0), std::min<double>(e.right, device.widthCm),
            std::min<double>(e.top, device.heightCm)};
}

EXTENT windowExtent(const PLOTCONTEXT& context, int number)
{
    if (number == 0) return mapExtent(context.setup.map);
    const DATAWINDOW& window = context.setup.window(number);
    return plainExtent(window, window.colorBar && context.setup.mode != modeStation); // profiles have no bar
}

EXTENT usedExtent(const PLOTCONTEXT& context)
{
    EXTENT used;
    if (mapIsShown(context.setup)) used = windowExtent(context, 0);
    for (int n = 1; n <= context.setup.count(); ++n) {
        if (context.setup.window(n).exists) used = unite(used, windowExtent(context, n));
    }
    return used;
}

QRect toPixels(const EXTENT& e)
{
    const DEVICE& device = drawState().device;
    const double ppcm = device.pixelsPerCm;
    const auto px = [ppcm](double length) { return static_cast<int>(std::floor(length * ppcm)); };
    const QRect rect(QPoint(px(e.left), device.heightPx - 1 - px(e.top)),
                     QPoint(px(e.right), device.heightPx - 1 - px(e.bottom)));
    return rect.intersected(QRect(0, 0, device.widthPx, device.heightPx));
}

} // namespace graphics
