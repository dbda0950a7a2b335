// The colour bar of a data window.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "graphics/axes.h"
#include "graphics/drawing.h"
#include "graphics/drawingpen.h"
#include "graphics/palette.h"
#include "graphics/pstext.h"

namespace graphics {
namespace {

constexpr int steps = 199;
constexpr int capSteps = 3;          // height of a cap
constexpr int capColorDistance = 10; // value steps beyond the range

struct BARLABEL {
    std::string text;
    float y = 0;
};

// All that both sinks need.
struct BAR {
    float left = 0, right = 0, bottom = 0, top = 0; // user coordinates
    float stepHeight = 0, labelX = 0;
    float fontSize = 0, titleSize = 0; // points
    float titleX = 0, titleY = 0;
    std::vector<int> colors; // of the steps, from the low end
    int lowColor = 0, highColor = 0;
    std::vector<BARLABEL> labels;
};

// Labels at start + k step on the bar; a little beyond its ends they still count.
std::vector<BARLABEL> labelsEvery(double step, double start, const BAR& bar, double vmin, double vmax)
{
    std::vector<BARLABEL> labels;
    const auto index = [&](double value) { return static_cast<int>((value - start) / step); };
    const int first = std::min(index(vmin), index(vmax)) - 1, last = std::max(index(vmin), index(vmax)) + 1;
    for (int k = first; k <= last; ++k) {
        const double value = start + k * step;
        const double place = (value - vmin) / (vmax - vmin);
        if (!(place > -0.02 && place < 1.02)) continue;
        const double y = bar.bottom + place * (static_cast<double>(bar.top) - bar.bottom);
        labels.push_back({axisNumber(value, step), static_cast<float>(y)});
    }
    return labels;
}

std::vector<BARLABEL> barLabels(const BAR& bar, float vmin, float vmax)
{
    const TICS tics = ChooseTics(vmin, vmax);
    std::vector<BARLABEL> labels = labelsEvery(tics.major, tics.start, bar, vmin, vmax);
    if (labels.size() < 4) labels = labelsEvery(tics.major * 0.5, tics.start, bar, vmin, vmax);
    return labels;
}

BAR makeBar(float fontSize, float xmin, float xmax, float plotWidth, float ymin, float ymax, float vmin,
            float vmax)
{
    BAR bar;
    const float share = std::max(0.35f / plotWidth, 0.03f);
    const float gap = (xmax - xmin) * share;
    bar.left = xmax + gap;
    bar.right = bar.left + gap;
    bar.bottom = ymin;
    bar.top = ymax;
    bar.stepHeight = (ymax - ymin) / steps;
    bar.labelX = bar.right + 0.075f * (bar.right - bar.left);
    bar.titleX = bar.left - 0.2f * (bar.right - bar.left);
    bar.titleY = ymax + bar.stepHeight;
    bar.fontSize = std::max(0.85f * fontSize, 5.5f);
    bar.titleSize = 1.15f * bar.fontSize;
    const double valueStep = (static_cast<double>(vmax) - vmin) / steps;
    for (int k = 0; k < steps; ++k) bar.colors.push_back(ValueToColor(vmin + k * valueStep));
    bar.lowColor = ValueToColor(vmin - capColorDistance * valueStep);
    bar.highColor = ValueToColor(vmax + capColorDistance * valueStep);
    bar.labels = barLabels(bar, vmin, vmax);
    return bar;
}

void paintCap(QPainter& p, const BAR& bar, float base, float tip, int color)
{
    const QPoint corners[3] = {pathPixel(bar.left, base), pathPixel(bar.right, base),
                               pathPixel((bar.left + bar.right) / 2, tip)};
    SetColor(&p, color);
    p.setBrush(drawState().currentColor);
    p.drawPolygon(corners, 3);
    p.setBrush(Qt::NoBrush);
}

void paintBar(QPainter& p, const BAR& bar, std::string_view title)
{
    const RDrawStateGuard guard(&p);
    SetFill(&p, false);
    SetClip(&p, false);
    SetPenWidth(&p, 1);
    SetLineStyle(&p, 0);
    const int left = pixelX(bar.left), right = pixelX(bar.right);
    for (int k = 0; k < steps; ++k) {
        const int low = pixelY(bar.bottom + static_cast<float>(k) * bar.stepHeight);
        const int high = pixelY(bar.bottom + static_cast<float>(k + 1) * bar.stepHeight);
        p.fillRect(QRect(QPoint(std::min(left, right), std::min(low, high)),
                         QPoint(std::max(left, right), std::max(low, high))),
                   paletteColor(bar.colors[static_cast<std::size_t>(k)]));
    }
    paintCap(p, bar, bar.top, bar.top + capSteps * bar.stepHeight, bar.highColor);
    paintCap(p, bar, bar.bottom, bar.bottom - capSteps * bar.stepHeight, bar.lowColor);
    SetColor(&p, colorBlack);
    SetLabelOrigin(&p, 8);
    for (const BARLABEL& label : bar.labels)
        DrawLabel(&p, nullptr, label.text, bar.labelX, label.y, 0, bar.fontSize);
    SetLabelOrigin(&p, 6);
    if (!title.empty()) DrawLabel(&p, nullptr, title, bar.titleX, bar.titleY, 0, bar.titleSize);
}

void writeSteps(std::FILE* ps, const BAR& bar)
{
    for (int k = 0; k < steps; ++k) {
        std::fprintf(ps, "%d T ", bar.colors[static_cast<std::size_t>(k)]);
        if (k % 12 == 11) std::fputc('\n', ps);
    }
}

void writeBar(std::FILE* ps, const BAR& bar, std::string_view title)
{
    std::fputs("\n%%PS-OBJECT: ColorBar begin\ngsave /fill? false def /stroke? false def /lorg 8 def\n", ps);
    std::fprintf(ps, "/xll %g def /xur %g def\n/dely %g def %g\n", bar.left, bar.right, bar.stepHeight,
                 bar.bottom);
    writeSteps(ps, bar);
    std::fprintf(ps, "\n/yp xdef %d C newpath xll yp M xur yp L xll xur mean yp %d dely mul add L fill\n",
                 bar.highColor, capSteps);
    std::fprintf(ps, "/yp %g def %d C newpath xll yp M xur yp L xll xur mean yp %d dely mul sub L fill\n",
                 bar.bottom, bar.lowColor, capSteps);
    std::fprintf(ps, "0 setgray\n%g SetMyFont /xur %g def\n", bar.fontSize, bar.labelX);
    for (const BARLABEL& label : bar.labels)
        std::fprintf(ps, "(%s) xur %g showstring\n", psString(label.text).c_str(), label.y);
    if (!title.empty()) {
        std::fprintf(ps, "\n/lorg 6 def %g SetMyFont 0 setgray\n(%s) %g %g showstring\n", bar.titleSize,
                     psString(title).c_str(), bar.titleX, bar.titleY);
    }
    std::fputs("grestore /lorg 0 def\n%%PS-OBJECT: ColorBar end\n\n", ps);
}

} // namespace

void DrawColorBar(QPainter* p, std::FILE* ps, std::string_view title, float fontSize, float xmin, float xmax,
                  float plotWidth, float ymin, float ymax, float vmin, float vmax, float a, float b)
{
    if (vmin == vmax || !std::isfinite(vmin) || !std::isfinite(vmax) || !(plotWidth > 0)) return;
    const COLORMAPPING before = colorMapping();
    SetColorMapping(vmin, vmax, a, b);
    const BAR bar = makeBar(fontSize, xmin, xmax, plotWidth, ymin, ymax, vmin, vmax);
    if (p) paintBar(*p, bar, title);
    if (ps) writeBar(ps, bar, title);
    colorMapping() = before;
}

} // namespace graphics
