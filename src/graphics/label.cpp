// Labels on the painter, and the annotation object that a framed label is in PostScript.

#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include <QFontMetricsF>

#include "graphics/drawing.h"
#include "graphics/drawingpen.h"
#include "graphics/labelfonts.h"
#include "graphics/labeltext.h"
#include "graphics/palette.h"

namespace graphics {
namespace {

// Shares that the preamble's showstring uses as well.
constexpr double scriptSize = 0.65;
constexpr double subscriptShift = -0.08, superscriptShift = 0.35; // of the line height
constexpr double lineSpacing = 1.2;                               // of the font height
constexpr double baseline = 0.244;                                // of the font height, above the box bottom
constexpr double margin = 0.5, italicMargin = 0.4;                // of the width of an "I"

// A font for a character of a label, and its metrics in pixels of the font.
struct SIZEDFONT {
    LABELFONT font;
    QFontMetricsF metrics;
};

// The four fonts that a label can use, made when they are needed.
class RLabelFonts {
public:
    RLabelFonts(QPaintDevice* device, double points) : device_(device), points_(points) {}

    const SIZEDFONT& of(const LABELCHARACTER& character)
    {
        const bool script = character.script != 0;
        std::optional<SIZEDFONT>& entry =
            fonts_[(character.font == symbolFont ? 2u : 0u) + (script ? 1u : 0u)];
        if (!entry) {
            const LABELFONT font = labelFont(character.font, points_ * (script ? scriptSize : 1.0));
            entry.emplace(SIZEDFONT{font, metricsOf(font.font)});
        }
        return *entry;
    }

private:
    [[nodiscard]] QFontMetricsF metricsOf(const QFont& font) const
    {
        return device_ ? QFontMetricsF(font, device_) : QFontMetricsF(font);
    }

    QPaintDevice* device_;
    double points_;
    std::array<std::optional<SIZEDFONT>, 4> fonts_;
};

struct PLACEDCHARACTER {
    QString text;
    LABELFONT font;
    double x = 0, rise = 0; // pixels from the text's start, and above the baseline
};

struct LAYOUT {
    std::vector<PLACEDCHARACTER> characters;
    double width = 0, lineHeight = 0; // of the box
    double fontHeight = 0, start = 0; // start: of the text inside the box
};

// Where no symbol font is installed, its letters are those of the text font.
LABELCHARACTER inInstalledFont(const LABELCHARACTER& character)
{
    if (character.font != symbolFont || symbolFontInstalled()) return character;
    return {symbolToUnicode(character.code), textFont, character.script};
}

double shiftOf(int script)
{
    return script < 0 ? subscriptShift : script > 0 ? superscriptShift : 0;
}

LAYOUT measure(QPaintDevice* device, std::string_view text, double points)
{
    RLabelFonts fonts(device, points);
    const SIZEDFONT& base = fonts.of({});
    const double wide = base.metrics.horizontalAdvance(QLatin1Char('I')) * base.font.scale;
    LAYOUT layout;
    layout.fontHeight = base.metrics.height() * base.font.scale;
    layout.lineHeight = layout.fontHeight * lineSpacing;
    layout.start = wide * (fontSettings().italic ? italicMargin : margin);
    double x = 0;
    for (const LABELCHARACTER& parsed : parseLabel(text)) {
        const LABELCHARACTER character = inInstalledFont(parsed);
        const SIZEDFONT& font = fonts.of(character);
        PLACEDCHARACTER placed{QString::fromUcs4(&character.code, 1), font.font, x,
                               shiftOf(character.script) * layout.lineHeight};
        x += font.metrics.horizontalAdvance(placed.text) * font.font.scale;
        if (character.code != U' ') layout.characters.push_back(std::move(placed));
    }
    layout.width = x + wide;
    return layout;
}

void drawCharacters(QPainter& p, const LAYOUT& layout, QPointF start)
{
    const QTransform before = p.transform();
    double scale = 0;
    for (const PLACEDCHARACTER& character : layout.characters) {
        if (character.font.scale != scale) {
            scale = character.font.scale;
            p.setTransform(QTransform::fromScale(scale, scale) * before);
        }
        p.setFont(character.font.font);
        p.drawText((start + QPointF(character.x, -character.rise)) / scale, character.text);
    }
    p.setTransform(before);
}

struct BOXSTYLE {
    std::optional<QColor> fill;
    std::optional<QPen> frame;
};

// The label with the drawing state's label origin at a pixel.
void drawAt(QPainter& p, const LAYOUT& layout, QPoint at, double angle, const BOXSTYLE& style)
{
    const DRAWSTATE& state = drawState();
    const QPointF lowerLeft(-state.labelFractionX * layout.width, state.labelFractionY * layout.lineHeight);
    const QRectF box(lowerLeft - QPointF(0, layout.lineHeight), QSizeF(layout.width, layout.lineHeight));
    p.save();
    p.translate(at);
    p.rotate(-angle);
    if (style.fill) p.fillRect(box, *style.fill);
    const double base = lowerLeft.y() - baseline * layout.fontHeight;
    p.setPen(state.currentColor);
    p.setBackgroundMode(Qt::TransparentMode); // the box is all the background that a label has
    drawCharacters(p, layout, QPointF(lowerLeft.x() + layout.start, base));
    if (style.frame) {
        p.setPen(*style.frame);
        const std::array<QPointF, 5> corners = {box.bottomLeft(), box.bottomRight(), box.topRight(),
                                                box.topLeft(), box.bottomLeft()};
        p.drawPolyline(corners.data(), static_cast<int>(corners.size()));
    }
    p.restore();
}

bool isPaletteIndex(int index)
{
    return index >= 0 && index < palette().count;
}

void paintFramed(QPainter& p, std::string_view text, QPoint at, float angle, float size, int fillColor,
                 int frameColor, int frameThickness)
{
    BOXSTYLE style;
    if (isPaletteIndex(fillColor)) style.fill = paletteColor(fillColor);
    if (isPaletteIndex(frameColor)) {
        style.frame = QPen(paletteColor(frameColor), LineWidth(frameThickness), Qt::SolidLine, Qt::SquareCap,
                           Qt::MiterJoin);
    }
    drawAt(p, measure(p.device(), text, size), at, angle, style);
}

void writeBoxColor(std::FILE* ps, int index, const char* procedure)
{
    const QColor color = paletteColor(index);
    std::fprintf(ps, "%g %g %g %s", color.red() / 256.0, color.green() / 256.0, color.blue() / 256.0,
                 procedure);
}

void writeAnnotation(std::FILE* ps, std::string_view text, float x, float y, float angle, float size,
                     int fillColor, int frameColor, int frameThickness, int lorg)
{
    std::fprintf(ps, "\n%%%%PS-OBJECT: NVQ_Annotation begin\ngsave /frame? false def\n");
    WritePsColor(ps, drawState().color[0]);
    std::fprintf(ps, "/lorg %d def %6.1f SetMyFont\n", lorg, size);
    if (isPaletteIndex(fillColor)) {
        std::fputs("/fill? true def ", ps);
        writeBoxColor(ps, fillColor, "setTextFillColor\n");
    } else {
        std::fputs("/fill? false def\n", ps);
    }
    if (isPaletteIndex(frameColor)) {
        std::fputs("/stroke? true def ", ps);
        writeBoxColor(ps, frameColor, "setTextFrameColor ");
        std::fprintf(ps, "%s\n", thicknessProcedure(frameThickness));
    } else {
        std::fputs("/stroke? false def\n", ps);
    }
    std::fprintf(ps, "(%s)\n%g %g %g rotatedText\n", psAnnotationText(text).c_str(), x, y, angle);
    std::fputs("grestore /lorg 0 def 0 setgray /fill? false def /stroke? false def\n"
               "0 0 0 setTextFrameColor 1 1 1 setTextFillColor\n%%PS-OBJECT: NVQ_Annotation end\n",
               ps);
}

} // namespace

void DrawLabel(QPainter* p, std::FILE*, std::string_view text, float x, float y, float angle, float size)
{
    if (!p) return;
    const DRAWSTATE& state = drawState();
    BOXSTYLE style;
    if (state.fill) style.fill = p->background().color();
    if (state.textFrame) style.frame = currentPen(state.penWidth);
    drawAt(*p, measure(p->device(), text, size), QPoint(pixelX(x), pixelY(y)), angle, style);
}

void DrawFramedLabel(QPainter* p, std::FILE* ps, std::string_view text, float x, float y, float angle,
                     float size, int fillColor, int frameColor, int frameThickness, int lorg)
{
    const RDrawStateGuard guard(p);
    SetLabelOrigin(p, lorg);
    if (p) {
        const QPoint at(pixelX(x), pixelY(y));
        paintFramed(*p, text, at, angle, size, fillColor, frameColor, frameThickness);
    }
    if (ps) writeAnnotation(ps, text, x, y, angle, size, fillColor, frameColor, frameThickness, lorg);
}

QSizeF labelSize(QPainter* p, std::string_view text, float size)
{
    const LAYOUT layout = measure(p ? p->device() : nullptr, text, size);
    return {layout.width, layout.lineHeight};
}

} // namespace graphics
