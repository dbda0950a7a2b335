// Palette files: whatever the bytes are, at most 288 colours come out, and a palette that is written again in
// the same format reads back as the same colours.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "common/text.h"
#include "graphics/palette.h"

namespace {

std::string asFile(const graphics::PALETTE& palette)
{
    const auto component = [](std::uint8_t byte) { return (byte + 0.5) / 255.0; };
    std::string text;
    for (int i = 0; i < palette.count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        text += common::format("%d %.6f %.6f %.6f\n", i, component(palette.red[at]),
                               component(palette.green[at]), component(palette.blue[at]));
    }
    return text;
}

bool sameColors(const graphics::PALETTE& a, const graphics::PALETTE& b)
{
    return a.count == b.count && a.red == b.red && a.green == b.green && a.blue == b.blue;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    graphics::PALETTE palette, again;
    const int count = graphics::parsePalette(content, palette);
    if (count < 0 || count > graphics::maxPaletteColors || count != palette.count) std::abort();
    if (graphics::parsePalette(asFile(palette), again) != count || !sameColors(palette, again)) std::abort();
    return 0;
}
