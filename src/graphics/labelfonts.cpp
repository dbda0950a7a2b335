// Fonts of labels.

#include <algorithm>
#include <cmath>
#include <map>

#include <QFontDatabase>
#include <QRawFont>

#include "graphics/drawing.h"
#include "graphics/labelfonts.h"
#include "graphics/labeltext.h"

namespace graphics {
namespace {

constexpr float symbolEnlargement = 1.25f;

QFont::Weight weightOf(int index)
{
    constexpr auto weights =
        std::to_array<QFont::Weight>({QFont::Light, QFont::Normal, QFont::DemiBold, QFont::Bold});
    return weights[static_cast<std::size_t>(std::clamp(index, 0, 3))];
}

// A family of that name whose letters are the symbols: not a substitute under the same request.
bool holdsSymbolCodes(const QString& family)
{
    if (!QFontDatabase::families().contains(family, Qt::CaseInsensitive)) return false;
    return QRawFont::fromFont(QFont(family)).supportsCharacter(QLatin1Char('s'));
}

QString familyOf(int fontIndex)
{
    const FONTSETTINGS& settings = fontSettings();
    const bool symbols = fontIndex == symbolFont && symbolFontInstalled();
    return QString::fromStdString(symbols ? settings.symbolFamily : settings.family);
}

// Points as asked for in pixels of this device, so that a text is as high in canvas centimetres on every one.
double pixelsOf(int fontIndex, double points)
{
    const DRAWSTATE& state = drawState();
    double size = fontSettings().factor * state.fontScale * points;
    if (state.printing) size *= 0.8;
    if (fontIndex == symbolFont) size *= symbolEnlargement;
    return std::clamp(size * state.device.pixelsPerCm / pointsPerCm, 0.1, 20000.0);
}

QFont styledFont(int fontIndex)
{
    const FONTSETTINGS& settings = fontSettings();
    QFont font(familyOf(fontIndex));
    font.setWeight(weightOf(settings.weight));
    font.setItalic(settings.italic);
    font.setUnderline(settings.underline);
    font.setHintingPreference(QFont::PreferNoHinting); // the same widths at every resolution
    return font;
}

} // namespace

FONTSETTINGS& fontSettings()
{
    static FONTSETTINGS settings;
    return settings;
}

std::string postScriptFamily(std::string_view screenFamily, bool bold, bool italic)
{
    const auto holds = [&](std::string_view part) {
        return screenFamily.find(part) != std::string_view::npos;
    };
    const bool courier = holds("Courier"), times = !courier && holds("Times");
    if (!bold && !italic) return "Helvetica";
    const char* slanted = times ? "Italic" : "Oblique";
    std::string name = times ? "Times-" : courier ? "Courier-" : "Helvetica-";
    if (bold) name += "Bold";
    if (italic) name += slanted;
    return name;
}

bool symbolFontInstalled()
{
    static std::map<std::string, bool> known; // asking the font database takes long
    const std::string& family = fontSettings().symbolFamily;
    const auto found = known.find(family);
    if (found != known.end()) return found->second;
    return known[family] = holdsSymbolCodes(QString::fromStdString(family));
}

LABELFONT labelFont(int fontIndex, double points)
{
    LABELFONT result{styledFont(fontIndex), 1};
    const double wanted = pixelsOf(fontIndex, points);
    const int whole = std::max(static_cast<int>(std::lround(wanted)), 1);
    result.font.setPixelSize(whole);
    result.scale = wanted / whole;
    return result;
}

void SelectFont(QPainter* p, int fontIndex, float points)
{
    DRAWSTATE& state = drawState();
    state.fontIndex = fontIndex;
    state.fontSize = points;
    if (!p) return;
    QFont font = styledFont(fontIndex);
    font.setPointSizeF(pixelsOf(fontIndex, points) * 72.0 / p->device()->logicalDpiY());
    p->setFont(font);
}

} // namespace graphics
