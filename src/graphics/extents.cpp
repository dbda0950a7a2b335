#include "graphics/extents.h"

#include <algorithm>
#include <cmath>

#include "graphics/mapplot.h"
#include "graphics/preparewindow.h"

namespace graphics {

namespace {

// Widths of a bold sans-serif face in shares of the font size.
constexpr double digitWidth = 0.556, pointWidth = 0.278, minusWidth = 0.333, wideWidth = 0.944;
constexpr double lineHeight = 1.2;
constexpr double barGap = 0.35, barWidth = 0.35; // cm, at least 3 % of the plot's width each
constexpr double axisShare = 0.9, titleShare = 1.2, stampShare = 0.65, barShare = 0.85, smallestBarFont = 5.5;

double cm(double points) { return points / pointsPerCm; }

double numberWidth(const std::string& text)
{
    double width = 0;
    for (const char c : text) width += c == '.' ? pointWidth : c == '-' ? minusWidth : digitWidth;
    return width;
}

// Of the numbers of an axis, in shares of the font size.
double widestNumber(float low, float high)
{
    const TICS tics = ChooseTics(low, high);
    const double step = static_cast<double>(tics.major);
    double widest = digitWidth;
    constexpr int most = 40;
    for (int i = 0; i < most; ++i) {
        const double value = static_cast<double>(tics.start) + i * step;
        if ((value - static_cast<double>(high)) * step > 0) break;
        widest = std::max(widest, numberWidth(axisNumber(value, step)));
    }
    return widest;
}

double colorBarRoom(const DATAWINDOW& w, double font)
{
    const double barFont = cm(std::max(barShare * font, smallestBarFont));
    const double least = 0.03 * static_cast<double>(w.xLen);
    return std::max(barGap, least) + 1.075 * std::max(barWidth, least) +
           (widestNumber(w.zMin, w.zMax) + 0.5) * barFont;
}

EXTENT plainExtent(const DATAWINDOW& w)
{
    const double font = static_cast<double>(baseFontSize(w.xLen, w.yLen));
    const double axis = cm(axisShare * font), tic = 1.25 * wideWidth * axis;
    EXTENT e{static_cast<double>(w.xOrg), static_cast<double>(w.yOrg), 0, 0};
    e.right = e.left + static_cast<double>(w.xLen);
    e.top = e.bottom + static_cast<double>(w.yLen);
    if (w.axisColor >= 0) {
        e.left -= tic * 1.95 + widestNumber(w.yMin, w.yMax) * axis + titleShare * axis * lineHeight;
        e.bottom -= tic * 1.1 + axis * lineHeight + titleShare * axis * lineHeight;
        e.top += axis * 0.6;
    }
    if (w.zVar != 0) e.top += 0.03 * static_cast<double>(w.yLen) + cm(font) * lineHeight;
    const double stamp = cm(0.25 * font) + cm(stampShare * font) * lineHeight;
    e.right += w.zVar != 0 && w.colorBar ? std::max(stamp, colorBarRoom(w, font)) : stamp;
    return e;
}

EXTENT mapExtent(const MAPWINDOW& map)
{
    constexpr double labelCharacters = 4.5; // "180°W"
    const MAPGEOMETRY& g = map.geometry;
    const double font = static_cast<double>(baseFontSize(g.xlen, g.ylen));
    const double label = cm(0.84 * font);
    EXTENT e{static_cast<double>(g.xorg), static_cast<double>(g.yorg), 0, 0};
    e.right = e.left + static_cast<double>(g.xlen);
    e.top = e.bottom + static_cast<double>(g.ylen);
    e.left -= (labelCharacters * digitWidth + 1) * label;
    e.bottom -= (lineHeight + 1.2) * label;
    e.top += 0.6 * label;
    e.right += std::max(labelCharacters * digitWidth * label / 2,
                        cm(0.25 * font) + cm(stampShare * font) * lineHeight);
    if (map.colorBar) {
        const double bar = std::max(barGap, 0.03 * static_cast<double>(g.xlen));
        e.right = std::max(e.right, static_cast<double>(g.xorg + g.xlen) + 2.1 * bar + 6 * digitWidth * label);
    }
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

EXTENT grow(const EXTENT& e, double cm) { return {e.left - cm, e.bottom - cm, e.right + cm, e.top + cm}; }

EXTENT clampToCanvas(const EXTENT& e)
{
    const DEVICE& device = drawState().device;
    return {std::max(e.left, 0.0), std::max(e.bottom, 0.0),
            std::min(e.right, static_cast<double>(device.widthCm)),
            std::min(e.top, static_cast<double>(device.heightCm))};
}

EXTENT windowExtent(const PLOTCONTEXT& context, int number)
{
    if (number == 0) return mapExtent(context.setup.map);
    return plainExtent(context.setup.window(number));
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
    const double ppcm = static_cast<double>(device.pixelsPerCm);
    const auto px = [ppcm](double cm) { return static_cast<int>(std::floor(cm * ppcm)); };
    const QRect rect(QPoint(px(e.left), device.heightPx - 1 - px(e.top)),
                     QPoint(px(e.right), device.heightPx - 1 - px(e.bottom)));
    return rect.intersected(QRect(0, 0, device.widthPx, device.heightPx));
}

} // namespace graphics
