#include "graphics/palette.h"

#include <algorithm>

#include "common/files.h"
#include "common/text.h"
#include "graphics/drawing.h"

namespace graphics {
namespace {

constexpr const char* noFile = "DUMMY"; // never the path of a palette, so that a later load tries again

// The index of a colour is not used: any whole number will do, however large.
bool skipIndex(std::string_view& rest)
{
    const std::size_t begin = std::min(rest.find_first_not_of(" \t\v\f"), rest.size());
    std::size_t end = begin;
    if (end < rest.size() && (rest[end] == '+' || rest[end] == '-')) ++end;
    const std::size_t figures = end;
    while (end < rest.size() && rest[end] >= '0' && rest[end] <= '9') ++end;
    rest.remove_prefix(end);
    return end > figures;
}

std::uint8_t colorByte(float component)
{
    return static_cast<std::uint8_t>(std::clamp(component * 255.0f, 0.0f, 255.0f));
}

bool addColor(std::string_view line, PALETTE& out)
{
    float red = 0, green = 0, blue = 0;
    if (!skipIndex(line) || !common::takeFloat(line, red) || !common::takeFloat(line, green) ||
        !common::takeFloat(line, blue)) {
        return false;
    }
    const auto at = static_cast<std::size_t>(out.count++);
    out.red[at] = colorByte(red);
    out.green[at] = colorByte(green);
    out.blue[at] = colorByte(blue);
    return true;
}

PALETTE withoutFile()
{
    PALETTE table = builtInPalette();
    table.path = noFile;
    return table;
}

void install(const PALETTE& chosen)
{
    palette() = chosen;
    drawState().paletteColors = chosen.count;
}

void writeComponent(std::FILE* ps, const char* name, const std::array<std::uint8_t, maxPaletteColors>& bytes)
{
    std::fprintf(ps, "/%s [\n", name);
    for (int i = 0; i < palette().count; ++i) {
        std::fprintf(ps, "%6.3f", bytes[static_cast<std::size_t>(i)] / 255.0);
        if (i % 13 == 12) std::fputc('\n', ps);
    }
    std::fputs(" ] def\n", ps);
}

} // namespace

PALETTE& palette()
{
    static PALETTE current = withoutFile();
    return current;
}

QColor paletteColor(int index)
{
    const PALETTE& current = palette();
    if (index < 0 || index >= current.count) return Qt::black;
    const auto at = static_cast<std::size_t>(index);
    return {current.red[at], current.green[at], current.blue[at]};
}

int parsePalette(std::string_view content, PALETTE& out)
{
    out = PALETTE{};
    while (!content.empty() && out.count < maxPaletteColors) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        if (!addColor(content.substr(0, end), out)) break;
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return out.count;
}

void LoadPalette(const std::string& path)
{
    if (path == palette().path && path != noFile) return;
    constexpr std::int64_t limit = 1 << 20; // far more than 288 lines
    const std::optional<std::string> content = common::readFile(path, limit);
    PALETTE read;
    if (content && parsePalette(*content, read) > 0) {
        read.path = path;
        install(read);
    } else {
        install(withoutFile());
    }
}

std::string PalettePath(const common::INSTALLATION& installation, std::string_view name)
{
    std::string file(name);
    if (common::toLower(name).find(".pal") == std::string::npos) file += ".pal";
    std::string own = installation.palettes + file;
    if (common::fileExists(own)) return own;
    return installation.root + "palettes/" + file;
}

void WritePsColor(std::FILE* ps, int paletteIndex)
{
    if (!ps) return;
    const QColor color = paletteColor(paletteIndex);
    const double red = color.red() / 256.0, green = color.green() / 256.0, blue = color.blue() / 256.0;
    if (red == green && green == blue) {
        std::fprintf(ps, "%g setgray\n", red);
    } else {
        std::fprintf(ps, "%g %g %g S\n", red, green, blue);
    }
}

void WritePsColorTable(std::FILE* ps)
{
    if (!ps) return;
    std::fputs("\n%%PS-OBJECT: ColorTable begin\n", ps);
    writeComponent(ps, "red", palette().red);
    writeComponent(ps, "gre", palette().green);
    writeComponent(ps, "blu", palette().blue);
    std::fputs("%%PS-OBJECT: ColorTable end\n\n", ps);
}

} // namespace graphics
