// Makes the palettes from packaged colour maps.

#include <string_view>

#include "command.h"
#include "common/files.h"
#include "palettefile.h"

namespace {

using namespace tools;

struct PALETTEROW {
    std::string_view name;   // of the palette
    std::string_view source; // colour map, without its extension
};
constexpr PALETTEROW rows[] = {
    {"Algae", "cmocean_algae"},   {"Amp", "cmocean_amp"},       {"Balance", "cmocean_balance"},
    {"Cividis", "cividis"},       {"Curl", "cmocean_curl"},     {"Deep", "cmocean_deep"},
    {"Delta", "cmocean_delta"},   {"Dense", "cmocean_dense"},   {"Gray", "cmocean_gray"},
    {"Haline", "cmocean_haline"}, {"Ice", "cmocean_ice"},       {"Inferno", "inferno"},
    {"Magma", "magma"},           {"Matter", "cmocean_matter"}, {"Oxygen", "cmocean_oxy"},
    {"Phase", "cmocean_phase"},   {"Plasma", "plasma"},         {"Solar", "cmocean_solar"},
    {"Speed", "cmocean_speed"},   {"Tempo", "cmocean_tempo"},   {"Thermal", "cmocean_thermal"},
    {"Turbid", "cmocean_turbid"}, {"Viridis", "viridis"},
};

std::optional<std::vector<MAPPOINT>> readColorMap(const std::string& path, std::string& error)
{
    constexpr std::int64_t limit = 100000; // bytes
    const auto text = common::readFile(path, limit);
    auto map = text ? parseColorMap(*text, error) : std::nullopt;
    if (!text) error = "can't be read";
    if (!map) error = path + ": " + error;
    return map;
}

bool writePalette(const std::string& path, std::span<const MAPPOINT> scale)
{
    const std::string text = paletteText(paletteAround(scale));
    common::RReplacementFile file(path);
    return file.stream() && std::fwrite(text.data(), 1, text.size(), file.stream()) == text.size() &&
           file.commit();
}

} // namespace

int main(int argc, char** argv)
{
    constexpr const char* name = "make_palettes";
    if (argc != 3) return fail(name, "usage: make_palettes COLOURMAPDIRECTORY PALETTEDIRECTORY");
    const std::string source = std::string(argv[1]) + "/", target = std::string(argv[2]) + "/";
    if (!makeDirectory(target)) return fail(name, target + ": can't be made");
    std::string error;
    if (!writePalette(target + "Nvq.pal", rainbow())) return fail(name, target + ": can't be written");
    for (const PALETTEROW& row : rows) {
        const auto scale = readColorMap(source + std::string(row.source) + ".spk", error);
        if (!scale) return fail(name, error);
        if (!writePalette(target + std::string(row.name) + ".pal", *scale))
            return fail(name, target + ": can't be written");
    }
}
