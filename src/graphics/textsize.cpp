#include "graphics/textsize.h"

#include <array>

#include "graphics/drawing.h"

namespace graphics {
namespace {

// Thousandths of the font size, from blank to tilde (Helvetica Bold, Adobe's font metrics of 1989).
constexpr std::array<short, 95> widths = {
    278, 333, 474, 556, 556, 889, 722, 238, 333, 333, 389, 584, 278, 333, 278, 278, 556, 556, 556,
    556, 556, 556, 556, 556, 556, 556, 333, 333, 584, 584, 584, 611, 975, 722, 722, 722, 722, 667,
    611, 778, 722, 278, 556, 722, 611, 833, 722, 778, 667, 778, 722, 667, 611, 722, 667, 944, 667,
    667, 611, 333, 278, 333, 584, 556, 333, 556, 611, 556, 611, 556, 333, 611, 611, 278, 278, 556,
    278, 889, 611, 611, 611, 611, 389, 556, 333, 611, 556, 778, 556, 556, 500, 389, 280, 389, 584};
static_assert(widths['W' - ' '] == 944 && widths['~' - ' '] == 584);

constexpr double scriptScale = 0.65; // of subscripts and superscripts

bool continuesCharacter(unsigned char byte)
{
    return (byte & 0xc0) == 0x80; // of UTF-8; in Latin-1 a rare sign, whose width is lost
}

double byteWidth(unsigned char byte)
{
    if (byte >= ' ' && byte <= '~') return 1e-3 * widths[static_cast<std::size_t>(byte - ' ')];
    if (byte == 0xb0) return 0.4; // the degree sign of Latin-1
    return byte < ' ' || byte == 0xc2 || continuesCharacter(byte) ? 0 : 0.6;
}

} // namespace

double textWidth(std::string_view label)
{
    double width = widths['I' - ' '] * 1e-3; // the box has half of it at either end
    for (std::size_t i = 0; i < label.size(); ++i) {
        const char next = label[i] == '~' && i + 1 < label.size() ? label[i + 1] : '\0';
        if (next == '#' || next == '$') {
            ++i;
        } else if ((next == '_' || next == '^') && i + 2 < label.size()) {
            width += scriptScale * byteWidth(static_cast<unsigned char>(label[i + 2]));
            i += 2;
        } else {
            width += byteWidth(static_cast<unsigned char>(label[i]));
        }
    }
    return width;
}

double textCm(double points)
{
    return points * fontSettings().factor / pointsPerCm;
}

double textPixels(QPainter* p, double points)
{
    constexpr float probe = 100;
    const RDrawStateGuard guard(p);
    SelectFont(p, 1, probe);
    return points / double{probe} * p->font().pointSizeF() * p->device()->logicalDpiY() / 72.0;
}

} // namespace graphics
