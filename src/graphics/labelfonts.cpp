// Fonts of labels.

#include <algorithm>
#include <map>

#include <QFontDatabase>
#include <QGuiApplication>
#include <QRawFont>
#include <QScreen>

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

// Points on this device in pixels, so that a text is as high in canvas centimetres on every device.
double pixelsOf(double points)
{
    return points * drawState().device.pixelsPerCm / pointsPerCm;
}

// What a font metric without a device assumes.
double screenDotsPerInch()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->logicalDotsPerInchY() : 96.0;
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

QFont labelFont(const QPaintDevice* device, int fontIndex, double points)
{
    const FONTSETTINGS& settings = fontSettings();
    const DRAWSTATE& state = drawState();
    double size = settings.factor * state.fontScale * points;
    if (state.printing) size *= 0.8;
    if (fontIndex == symbolFont) size *= symbolEnlargement;
    QFont font(familyOf(fontIndex));
    const double dotsPerInch = device ? device->logicalDpiY() : screenDotsPerInch();
    font.setPointSizeF(std::max(pixelsOf(size) * 72.0 / dotsPerInch, 0.1));
    font.setWeight(weightOf(settings.weight));
    font.setItalic(settings.italic);
    font.setUnderline(settings.underline);
    font.setHintingPreference(QFont::PreferNoHinting); // the same widths at every resolution
    return font;
}

void SelectFont(QPainter* p, int fontIndex, float points)
{
    DRAWSTATE& state = drawState();
    state.fontIndex = fontIndex;
    state.fontSize = points;
    if (p) p->setFont(labelFont(p->device(), fontIndex, points));
}

} // namespace graphics
