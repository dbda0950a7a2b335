#include "graphics/points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>

#include <QImage>
#include <QPaintEngine>

#include "common/limits.h"
#include "common/text.h"
#include "graphics/palette.h"
#include "graphics/pstext.h"

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

// Draws dots in many colours. On a raster device each colour's dot is painted once and copied from then on.
class RDotPainter {
public:
    RDotPainter(QPainter& p, int radius)
        : p_(p), radius_(radius),
          copies_(p.paintEngine()->type() == QPaintEngine::Raster && p.worldTransform().isIdentity())
    {
    }
    void setColor(int paletteIndex)
    {
        SetColor(&p_, paletteIndex);
        p_.setBrush(drawState().currentColor);
        if (!copies_) return;
        dot_ = &dots_[paletteIndex];
        if (dot_->isNull()) *dot_ = picture();
    }
    void draw(int x, int y)
    {
        if (dot_) {
            p_.drawImage(QPoint(x - reach(), y - reach()), *dot_);
        } else {
            paintDot(p_, x, y, radius_);
        }
    }

private:
    [[nodiscard]] int reach() const { return radius_ + 2; }
    [[nodiscard]] QImage picture() const
    {
        QImage image(2 * reach() + 1, 2 * reach() + 1, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter p(&image);
        p.setRenderHints(p_.renderHints());
        p.setPen(p_.pen());
        p.setBrush(p_.brush());
        paintDot(p, reach(), reach(), radius_);
        return image;
    }
    QPainter& p_;
    const int radius_;
    const bool copies_;
    QImage* dot_ = nullptr; // in the current colour; null: none is copied
    std::map<int, QImage> dots_;
};

// --- one pass over the points

struct PASS {
    QPainter* p;
    std::FILE* ps;
    const PLOTDATA& data;
    int decimals;
    bool color, numbers;
    RDotPainter* dots; // null without a painter
    RPsWriter out;
    int lastColor = -1;
};

void openPsPoints(std::FILE* ps, float size, bool numbers)
{
    const double dot = size * dotShare;
    std::fprintf(ps,
                 "\n%%%%PS-OBJECT: NVQ_ScatterData begin\ngsave\n"
                 "/d { C %5.3f dotr } bind def /e { %5.3f dotr } bind def\n"
                 "/A { C arrow } bind def /a { arrow } bind def\n"
                 "/stroke? false def /fill? true def\n",
                 dot, dot);
    if (numbers) {
        std::fprintf(ps, "%g SetMyFont /lorg 0 def /fill? false def 0 setgray\n", size * pointsPerMm);
    } else {
        std::fputs("dousrclip\n0.01 smul setlinewidth\n", ps);
    }
}

void preparePainter(QPainter* p, bool numbers, float points)
{
    SetClip(p, !numbers);
    if (!numbers) return;
    SetColor(p, colorBlack);
    SetFill(p, false);
    SetLabelOrigin(p, 0);
    SelectFont(p, 1, points);
}

void setPainterColor(PASS& pass, int color)
{
    if (!pass.dots || color == pass.lastColor) return;
    pass.dots->setColor(color);
    pass.lastColor = color;
}

void plotDot(PASS& pass, std::size_t i, int color)
{
    const float x = pass.data.x[i], y = pass.data.y[i];
    if (pass.dots) pass.dots->draw(pixelX(x), pixelY(y));
    if (!pass.ps) return;
    if (pass.color) {
        std::array<char, 16> operation{};
        std::snprintf(operation.data(), operation.size(), "%3d d", color);
        pass.out.point(x, y, operation.data());
    } else {
        pass.out.point(x, y, "e");
    }
}

void plotNumber(PASS& pass, std::size_t i, float points)
{
    const float x = pass.data.x[i], y = pass.data.y[i];
    const std::string text = numberText(pass.data.z[i], pass.decimals);
    if (pass.p) DrawLabel(pass.p, nullptr, text, x, y, 0, points);
    if (pass.ps) pass.out.text("(").text(text).text(") ").point(x, y, "showstring");
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
    const float points = static_cast<float>(size * pointsPerMm);
    if (p) preparePainter(p, numbers, points);
    std::optional<RDotPainter> dots;
    if (p) dots.emplace(*p, radius).setColor(drawState().color[0]);
    if (ps) openPsPoints(ps, size, numbers);
    {
        PASS pass{p,
                  ps,
                  data,
                  decimalsOf(context.collection, window.zVar),
                  color,
                  numbers,
                  dots ? &*dots : nullptr,
                  RPsWriter(ps)};
        runPass(pass, window, points, context.user);
    }
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
