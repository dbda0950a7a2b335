#include <algorithm>
#include <cmath>
#include <vector>

#include "common/text.h"
#include "graphics/axes.h"
#include "graphics/palette.h"
#include "graphics/textsize.h"

namespace graphics {
namespace {

constexpr float textPoints = 7, initialPoints = 11.6f;
constexpr double lineStep = 1.3;                 // in units of textPoints
constexpr double initialBoxWidth = 1.3;          // in units of initialPoints
constexpr int plainFill = 15;                    // white letter
constexpr float pageTop = 0.4f, pageSide = 1.7f; // cm from the corner of the page
constexpr float pageLong = 29.7f, pageShort = 21.0f;

void paintStamp(QPainter* p, std::string_view title, float fontSize, int color, double gap)
{
    const RDrawStateGuard guard(p);
    SetClip(p, false);
    SetFill(p, false);
    SetColor(p, color);
    SetLabelOrigin(p, 5);
    const USRSYS& u = usrSys();
    const double x = u.x.userMax + gap / pointsPerCm * u.x.unitsPerCm;
    DrawLabel(p, nullptr, title, static_cast<float>(x), u.y.userMin, 90, fontSize);
}

void writeStamp(std::FILE* ps, std::string_view title, float fontSize, int color, double gap)
{
    std::fputs("\n%%PS-OBJECT: NVQ_Stamp begin\n/fill? false def /stroke? false def /lorg 5 def\n", ps);
    WritePsColor(ps, color);
    std::fprintf(ps, "%g dfltFont getfont\n", double{fontSize});
    std::fprintf(ps, "/labl [(%s)] def\n", psString(title).c_str());
    std::fprintf(ps, "xmax %g rxd-h smul add ymin 3 ryd-h smul sub vertlabl\n", gap);
    std::fprintf(ps, "/lorg 0 def 12 SetMyFont %s\n%%%%PS-OBJECT: NVQ_Stamp end\n\n", thicknessProcedure(0));
}

// --- collection stamp: two lines of text with the collection's initial in a box at their left

struct STAMPTEXT {
    std::string initial, who, what;
};

// The first character of a name, upper case if it is a plain letter.
std::string initialOf(const std::string& name)
{
    std::size_t end = std::min<std::size_t>(1, name.size());
    const bool multiByte = !name.empty() && (static_cast<unsigned char>(name[0]) & 0xc0) == 0xc0;
    while (multiByte && end < name.size() && (static_cast<unsigned char>(name[end]) & 0xc0) == 0x80) ++end;
    return common::toUpper(name.substr(0, end));
}

STAMPTEXT stampText(const FRAMECONTEXT& context)
{
    const collection::RCollection& c = context.collection;
    STAMPTEXT text{initialOf(c.name), context.user, c.name};
    if (!context.date.empty()) text.who += (text.who.empty() ? "" : " ") + context.date;
    if (!c.configName.empty()) text.what += " " + common::format("%s.cfg", c.configName.c_str());
    if (!context.section.empty()) text.what += " " + common::format("%s.sec", context.section.c_str());
    return text;
}

// Where the pieces stand, in cm; the corner is the upper right one.
struct STAMPPLACES {
    float right, top, textLeft, initialRight, secondLine;
};

double widestLine(const STAMPTEXT& text)
{
    return textCm(textPoints * std::max(textWidth(text.who), textWidth(text.what)));
}

STAMPPLACES placesOf(const STAMPTEXT& text, const QPointF& corner)
{
    STAMPPLACES at{};
    at.right = static_cast<float>(corner.x());
    at.top = static_cast<float>(corner.y());
    at.textLeft = static_cast<float>(at.right - widestLine(text));
    at.initialRight = at.textLeft - 0.05f;
    at.secondLine = static_cast<float>(at.top - textCm(lineStep * textPoints));
    return at;
}

void writeLine(std::FILE* ps, std::string_view text, float x, float y)
{
    std::fprintf(ps, "(%s)\n%g %g showstring\n", psString(text).c_str(), double{x}, double{y});
}

void writeCollectionStamp(std::FILE* ps, const STAMPTEXT& text, float scale, const QPointF& corner)
{
    const STAMPPLACES at = placesOf(text, corner);
    std::fputs("\n%%PS-OBJECT: NVQ_CollectionStamp begin\ngsave\n", ps);
    std::fprintf(ps, "%g magnify /fill? false def /stroke? false def /frame? false def\n",
                 1.0 / double{scale});
    std::fprintf(ps, "default_usrsys /lorg TA_RU def 7 dfltFont getfont 0 setgray %s\n",
                 thicknessProcedure(0));
    std::fprintf(ps, "(%s) %g %g showstring\n", psString(text.who).c_str(), double{at.right}, double{at.top});
    std::fputs("11.6 dfltFont getfont 0 0 0 setTextFrameColor 0 0 0 setTextFillColor\n", ps);
    std::fputs("/fill? true def /stroke? true def 1 setgray\n", ps);
    writeLine(ps, text.initial, at.initialRight, at.top);
    std::fputs("/fill? false def /stroke? false def 0 setgray\n7 dfltFont getfont /lorg TA_LU def\n", ps);
    writeLine(ps, text.what, at.textLeft, at.secondLine);
    std::fprintf(ps, "%g magnify 12 SetMyFont /lorg 0 def 0 setgray\n", double{scale});
    std::fputs("/fill? false def /stroke? false def\n0 0 0 setTextFrameColor 1 1 1 setTextFillColor\n", ps);
    std::fputs("grestore\n%%PS-OBJECT: NVQ_CollectionStamp end\n", ps);
}

void paintCollectionStamp(QPainter* p, const STAMPTEXT& text, const QPointF& corner)
{
    const RDrawStateGuard guard(p);
    const DEVICE& device = drawState().device;
    drawState().printing = false; // the stamp belongs to the page, not to its shrunk windows
    SetUsrSys(0, device.widthCm, device.widthCm, 0, 0, device.heightCm, device.heightCm, 0);
    SetClip(p, false);
    SetFill(p, false);
    SetColor(p, colorBlack);
    const STAMPPLACES at = placesOf(text, corner);
    SetLabelOrigin(p, 3);
    DrawLabel(p, nullptr, text.who, at.right, at.top, 0, textPoints);
    SetLabelOrigin(p, 5);
    DrawLabel(p, nullptr, text.what, at.textLeft, at.secondLine, 0, textPoints);
    SetColor(p, plainFill);
    DrawFramedLabel(p, nullptr, text.initial, at.initialRight, at.top, 0, initialPoints, colorBlack,
                    colorBlack, 0, 3);
}

} // namespace

void DrawStamp(QPainter* p, std::FILE* ps, std::string_view title, float fontSize, int color, float border)
{
    if (title.empty()) return;
    const double gap = border + stampGap * fontSize;
    if (p) paintStamp(p, title, fontSize, color, gap);
    if (ps) writeStamp(ps, title, fontSize, color, gap);
}

QSizeF collectionStampSize(const FRAMECONTEXT& context)
{
    const STAMPTEXT text = stampText(context);
    return {widestLine(text) + textCm(initialBoxWidth * initialPoints) + 0.05,
            textCm(2 * lineStep * textPoints)};
}

void DrawCollectionStamp(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, float scale,
                         const QPointF& corner)
{
    const STAMPTEXT text = stampText(context);
    if (p) paintCollectionStamp(p, text, corner);
    if (ps && scale > 0) writeCollectionStamp(ps, text, scale, corner);
}

void DrawCollectionStamp(QPainter* p, std::FILE* ps, const FRAMECONTEXT& context, float scale, bool landscape)
{
    const DEVICE& device = drawState().device;
    if (p)
        DrawCollectionStamp(p, nullptr, context, scale,
                            QPointF(device.widthCm - pageTop, device.heightCm - 0.1));
    const float width = landscape ? pageLong : pageShort, height = landscape ? pageShort : pageLong;
    if (ps) DrawCollectionStamp(nullptr, ps, context, scale, QPointF(width - pageSide, height - pageTop));
}

} // namespace graphics
