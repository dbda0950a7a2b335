#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "common/text.h"
#include "graphics/axes.h"
#include "graphics/textsize.h"

namespace graphics {
namespace {

constexpr float axisFontScale = 0.9f, stampFontScale = 0.65f; // of the window's base font size
constexpr double xLabelPoints = 2.0;                          // below the frame, in base font sizes
constexpr double zLabelHeight = 1.03;                         // of the window's height, above its origin
constexpr double ticsToYLabel = 1.95 * 1.25 * widthOfW;       // in sizes of the numbers' font
constexpr double labelOverhang = 0.8;                         // cm that a label may be longer than its axis
constexpr float smallestLabel = 0.6f;                         // of its proper size

constexpr float stampBesideBar = 7; // points that fit between a plot and its colour bar

// An automatic label: an annotation that the window makes for itself.
struct AUTOLABEL {
    std::string text;
    float x = 0, y = 0, angle = 0, size = 0;
    int lorg = 0;
};

struct FRAME {
    const FRAMECONTEXT& context;
    const DATAWINDOW& window;
    float fontSize; // base font size of the window
    TICS x, y;
    [[nodiscard]] float axisFont() const { return axisFontScale * fontSize; }
};

std::string variableLabel(const FRAMECONTEXT& context, int variable)
{
    const auto number = static_cast<std::size_t>(std::abs(variable));
    if (number == 0 || number >= context.collection.variables.size()) return {};
    return context.collection.variables[number].label;
}

// Label size that keeps a long name to its axis.
float fittedSize(const std::string& text, float size, double axisCm)
{
    const double needed = textCm(textWidth(text) * size);
    const double available = axisCm + labelOverhang;
    if (needed <= available) return size;
    return size * std::max(smallestLabel, static_cast<float>(available / needed));
}

// The window's user system as far as labels need it; that of the painter may be shrunk to a page's margin.
struct SCALE {
    double xMin, xMax, xPerCm, yMin, yMax, yPerCm;
};

SCALE painterScale()
{
    const USRSYS& u = usrSys();
    return {u.x.userMin, u.x.userMax, u.x.unitsPerCm, u.y.userMin, u.y.userMax, u.y.unitsPerCm};
}

SCALE pageScale(const DATAWINDOW& w)
{
    return {w.xMin, w.xMax, (double{w.xMax} - w.xMin) / w.xLen,
            w.yMin, w.yMax, (double{w.yMax} - w.yMin) / w.yLen};
}

AUTOLABEL xLabel(const FRAME& frame, const SCALE& s, double distance)
{
    const std::string text = variableLabel(frame.context, frame.window.xVar);
    return {text,
            static_cast<float>(0.5 * (s.xMin + s.xMax)),
            static_cast<float>(s.yMin - distance * s.yPerCm),
            0,
            fittedSize(text, frame.fontSize, frame.window.xLen),
            1};
}

AUTOLABEL yLabel(const FRAME& frame, const SCALE& s, double distance)
{
    const std::string text = variableLabel(frame.context, frame.window.yVar);
    return {text,
            static_cast<float>(s.xMin - distance * s.xPerCm),
            static_cast<float>(0.5 * (s.yMin + s.yMax)),
            90,
            fittedSize(text, frame.fontSize, frame.window.yLen),
            0};
}

AUTOLABEL zLabel(const FRAME& frame, const SCALE& s)
{
    const std::string text = variableLabel(frame.context, frame.window.zVar);
    return {text,
            static_cast<float>(0.5 * (s.xMin + s.xMax)),
            static_cast<float>(s.yMin + zLabelHeight * (s.yMax - s.yMin)),
            0,
            fittedSize(text, frame.fontSize, frame.window.xLen),
            2};
}

double widestNumber(const TICS& tics, float lo, float hi)
{
    double widest = 0;
    for (const double value : ticValues(tics.start, tics.major, lo, hi)) {
        widest = std::max(widest, textWidth(axisNumber(value, tics.major)));
    }
    return widest;
}

// How far left of the frame the middle of the y label stands on a page, as DrawYAxis has it on the painter.
double yLabelDistance(const FRAME& frame)
{
    const double numbers = widestNumber(frame.y, frame.window.yMin, frame.window.yMax);
    return textCm((ticsToYLabel + numbers) * frame.axisFont());
}

void drawLabels(QPainter* p, std::FILE* ps, const std::vector<AUTOLABEL>& labels, int color)
{
    constexpr int none = -1;
    SetColor(p, color);
    for (const AUTOLABEL& label : labels) {
        if (label.text.empty()) continue;
        DrawFramedLabel(p, ps, label.text, label.x, label.y, label.angle, label.size, none, none, 0,
                        label.lorg);
    }
}

// A number for the page: in six digits, unless the tics would leave their places.
std::string ticNumber(double value, double step)
{
    const std::string text = common::formatG(value);
    const bool holds = std::abs(std::strtod(text.c_str(), nullptr) - value) <= 1e-3 * std::abs(step);
    return holds ? text : common::format("%.9g", value);
}

std::string ticNumbers(const TICS& t)
{
    return ticNumber(t.start, t.major) + ' ' + ticNumber(t.minor, t.major) + ' ' +
           ticNumber(t.major, t.major);
}

void writeFrame(std::FILE* ps, const FRAME& frame)
{
    const int color = frame.window.axisColor;
    const float font = frame.axisFont();
    std::fputs("%%PS-OBJECT: WindowFrame start\n", ps);
    if (color >= 0) {
        WritePsColor(ps, color);
        std::fprintf(ps, "%s usrsys /fill? false def /stroke? false def\n%g SetMyFont\n",
                     thicknessProcedure(0), double{font});
        std::fputs(frame.window.grid ? "/grid? true def\n" : "/grid? false def\n", ps);
        WritePsColor(ps, color);
        std::fputs("dousrframe\n", ps);
        std::fprintf(ps, "%g SetMyFont\n/xtitle [()] def /title [()] def\n%s xaxlabl\n", double{font},
                     ticNumbers(frame.x).c_str());
        std::fprintf(ps, "%g SetMyFont\n/ytitle [()] def %s yaxlabl\n", double{font},
                     ticNumbers(frame.y).c_str());
    }
    std::fputs("%%PS-OBJECT: WindowFrame end\n\n", ps);
}

void drawPage(std::FILE* ps, const FRAME& frame, bool labels)
{
    writeFrame(ps, frame);
    if (!labels) return;
    const SCALE s = pageScale(frame.window);
    std::vector<AUTOLABEL> list;
    if (frame.window.zVar != 0) list.push_back(zLabel(frame, s));
    list.push_back(xLabel(frame, s, textCm(xLabelPoints * frame.fontSize)));
    list.push_back(yLabel(frame, s, yLabelDistance(frame)));
    drawLabels(nullptr, ps, list, frame.window.axisColor);
}

void drawScreen(QPainter* p, const FRAME& frame, bool labels)
{
    if (frame.window.axisColor < 0) return;
    const RDrawStateGuard guard(p);
    SetFill(p, false);
    SetColor(p, frame.window.axisColor);
    DrawFrame(p);
    const bool grid = frame.window.grid != 0;
    (void)DrawXAxis(p, frame.x, frame.axisFont(), grid, "");
    const double yDistance = DrawYAxis(p, frame.y, frame.axisFont(), grid, "");
    if (!labels) return;
    SetClip(p, false);
    const SCALE s = painterScale();
    std::vector<AUTOLABEL> list;
    if (frame.window.zVar != 0) list.push_back(zLabel(frame, s));
    list.push_back(
        xLabel(frame, s, textPixels(p, xLabelPoints * frame.fontSize) / drawState().device.pixelsPerCm));
    list.push_back(yLabel(frame, s, yDistance));
    drawLabels(p, nullptr, list, frame.window.axisColor);
}

float stampSize(const FRAME& frame)
{
    const float size = stampFontScale * frame.fontSize;
    const bool bar = frame.window.zVar != 0 && frame.window.colorBar != 0;
    return bar ? std::min(size, stampBesideBar) : size;
}

FRAME frameOf(const FRAMECONTEXT& context, const DATAWINDOW& w)
{
    const float fontSize = baseFontSize(w.xLen, w.yLen);
    const float font = axisFontScale * fontSize;
    return {context, w, fontSize, FitTics(w.xMin, w.xMax, w.xLen, font, false),
            FitTics(w.yMin, w.yMax, w.yLen, font, true)};
}

} // namespace

void DrawWindowFrame(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, int number, DATAWINDOW& window,
                     bool labels)
{
    const bool drawable = window.xMin != window.xMax && window.yMin != window.yMax;
    if (drawable) {
        const FRAME frame = frameOf(context, window);
        const bool wanted = labels && window.axisColor >= 0 && window.autoLabels != 0;
        DrawStamp(p, ps, context.windowTitle, stampSize(frame), std::max(window.axisColor, 0));
        if (ps) drawPage(ps, frame, wanted);
        if (p) drawScreen(p, frame, wanted);
    }
    if (p) {
        SetColor(p, 0);
        window.toDraw = 0;
    }
    if (ps) std::fprintf(ps, "\n%%%%PS-WINDOW: NVQ_Window_%d end\n\n", number);
}

} // namespace graphics
