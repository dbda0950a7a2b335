#include "graphics/points.h"

#include <algorithm>
#include <cmath>

#include "common/limits.h"
#include "common/text.h"
#include "graphics/palette.h"

namespace graphics {

namespace {

using common::MISSING_VALUE;

constexpr float dotShare = 0.8f; // a point's dot is this much of the size of a symbol
constexpr double pointsPerMm = pointsPerCm / 10;

// Inside the window, or outside by less than 1 % of its range.
bool nearWindow(const DATAWINDOW& w, float x, float y)
{
    if (x == MISSING_VALUE || y == MISSING_VALUE) return false;
    const float fx = (x - w.xMin) / (w.xMax - w.xMin);
    const float fy = (y - w.yMin) / (w.yMax - w.yMin);
    return fx > -0.01f && fx < 1.01f && fy > -0.01f && fy < 1.01f;
}

void paintDot(QPainter& p, int x, int y, int radius)
{
    if (radius >= 2) {
        p.drawEllipse(QPoint(x, y), radius, radius);
    } else if (radius == 1) {
        p.drawLine(x - 1, y, x + 1, y);
        p.drawLine(x, y - 1, x, y + 1);
    } else {
        p.drawPoint(x, y);
    }
}

// --- one pass over the points

struct PASS {
    QPainter* p;
    std::FILE* ps;
    const PLOTDATA& data;
    int decimals, radius;
    bool color, numbers;
    int lastColor = -1;
};

void openPsPoints(const PASS& pass, float size)
{
    const double dot = size * dotShare;
    std::fprintf(pass.ps,
                 "\n%%%%PS-OBJECT: NVQ_ScatterData begin\ngsave\n"
                 "/d { C %5.3f dotr } bind def /e { %5.3f dotr } bind def\n"
                 "/A { C arrow } bind def /a { arrow } bind def\n"
                 "/stroke? false def /fill? true def\n",
                 dot, dot);
    if (pass.numbers) {
        std::fprintf(pass.ps, "%g SetMyFont /lorg 0 def /fill? false def 0 setgray\n", size * pointsPerMm);
        return;
    }
    std::fputs("dousrclip\n0.01 smul setlinewidth\n", pass.ps);
}

void setPainterColor(PASS& pass, int color)
{
    if (!pass.p || color == pass.lastColor) return;
    SetColor(pass.p, color);
    pass.p->setBrush(drawState().currentColor);
    pass.lastColor = color;
}

void plotDot(PASS& pass, std::size_t i, int color)
{
    const float x = pass.data.x[i], y = pass.data.y[i];
    if (pass.p) paintDot(*pass.p, pixelX(x), pixelY(y), pass.radius);
    if (!pass.ps) return;
    if (pass.color) {
        std::fprintf(pass.ps, "%g %g %3d d\n", x, y, color);
    } else {
        std::fprintf(pass.ps, "%g %g e\n", x, y);
    }
}

void plotNumber(PASS& pass, std::size_t i, float points)
{
    const float x = pass.data.x[i], y = pass.data.y[i];
    const std::string text = numberText(pass.data.z[i], pass.decimals);
    if (pass.p) DrawLabel(pass.p, nullptr, text, x, y, 0, points);
    if (pass.ps) {
        std::fprintf(pass.ps, "(%s) %g %g showstring\n", text.c_str(), x, y);
    }
}

void plotPoint(PASS& pass, std::size_t i, float points)
{
    int color = 0;
    if (pass.color) {
        if (pass.data.z[i] == MISSING_VALUE) return;
        if (!pass.numbers) color = ValueToColor(pass.data.z[i]);
        setPainterColor(pass, color);
    }
    if (pass.numbers) {
        plotNumber(pass, i, points);
    } else {
        plotDot(pass, i, color);
    }
}

void runPass(PASS& pass, const DATAWINDOW& window, float points, common::RUser& user)
{
    const std::size_t n = pass.data.count(), step = n / 20 + 1;
    for (std::size_t i = 0; i < n; ++i) {
        if ((i + 1) % step == 0) {
            user.setProgress(100.0 * static_cast<double>(i + 1) / n);
            if (user.abortRequested()) return;
        }
        if (nearWindow(window, pass.data.x[i], pass.data.y[i])) plotPoint(pass, i, points);
    }
}

int decimalsOf(const collection::RCollection& collection, int variable)
{
    const auto v = static_cast<std::size_t>(std::abs(variable));
    return v < collection.variables.size() ? collection.variables[v].decimals : 2;
}

} // namespace

int dotRadius(float size)
{
    constexpr float radiusShare = 0.42f;
    const DRAWSTATE& state = drawState();
    const float cm = size * dotShare / 10 * state.symbolScale;
    return static_cast<int>(std::lround(radiusShare * cm * state.device.pixelsPerCm));
}

std::string numberText(float value, int decimals)
{
    const double factor = std::pow(10.0, std::clamp(decimals, 0, 4));
    const double rounded = std::round(value * factor) / factor;
    const std::string text = common::format("%20.4f", rounded == 0 ? 0.0 : rounded);
    return std::string(common::trimLabel(text));
}

void PlotPoints(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, const PLOTDATA& data,
                const DATAWINDOW& window, int radius, float size, bool color)
{
    const bool numbers = window.style == styleNumbers && color; // without values there are none to write
    PASS pass{p, ps, data, decimalsOf(context.collection, window.zVar), radius, color, numbers};
    const float points = static_cast<float>(size * pointsPerMm);
    if (p) {
        SetClip(p, !numbers);
        p->setBrush(drawState().currentColor);
        if (numbers) {
            SetColor(p, colorBlack);
            SetFill(p, false);
            SetLabelOrigin(p, 0);
            SelectFont(p, 1, points);
        }
    }
    if (ps) openPsPoints(pass, size);
    runPass(pass, window, points, context.user);
    if (ps) std::fputs("grestore\n%%PS-OBJECT: NVQ_ScatterData end\n", ps);
    if (p) p->setBrush(Qt::NoBrush);
}

namespace {

void plotPlain(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, const PLOTDATA& data,
               const DATAWINDOW& window, int color, float size)
{
    SetColor(p, color);
    if (ps) WritePsColor(ps, color);
    PlotPoints(p, ps, context, data, window, dotRadius(size), size, false);
}

void drawWindowColorBar(QPainter* p, std::FILE* ps, const DATAWINDOW& w)
{
    DrawColorBar(p, ps, {}, baseFontSize(w.xLen, w.yLen), w.xMin, w.xMax, w.xLen, w.yMin, w.yMax, w.zMin,
                 w.zMax, w.mapLo, w.mapHi);
}

} // namespace

void PlotMarks(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, const PLOTDATA& data,
               const DATAWINDOW& window, const PLOTOPTIONS& options)
{
    if (!(window.symbolSize > 0)) return;
    if (window.zVar == 0) {
        plotPlain(p, ps, context, data, window, options.dotColor, window.dotSize);
        return;
    }
    if (window.colorBar) drawWindowColorBar(p, ps, window);
    if (options.allPoints) {
        plotPlain(p, ps, context, data, window, options.allPointsColor, options.allPointsSize);
    }
    PlotPoints(p, ps, context, data, window, dotRadius(window.symbolSize), window.symbolSize, true);
}

} // namespace graphics
