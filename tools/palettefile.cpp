#include "palettefile.h"

#include <algorithm>
#include <cmath>

#include "common/text.h"
#include "rainbow.h"

namespace tools {
namespace {

// --- fixed roles

constexpr COLOR rgb(int red, int green, int blue)
{
    return {red / 255.0, green / 255.0, blue / 255.0};
}

// Station curves take these in the order 1, 4, 2, 5, 8, 6, 3, 9, 12, 13, 10, 11, 14: neighbours in that order
// are far apart, and all of them stand out from white paper.
constexpr std::array<COLOR, 16> namedColors = {
    rgb(0, 0, 0),       // 0 black: axes, coast
    rgb(214, 39, 40),   // 1 red: station dots
    rgb(44, 140, 44),   // 2 green
    rgb(23, 170, 190),  // 3 cyan
    rgb(31, 90, 200),   // 4 blue
    rgb(245, 130, 20),  // 5 orange
    rgb(110, 45, 20),   // 6 brown: gazetteer marks
    rgb(214, 214, 214), // 7 light grey: mask of the bathymetry overlay
    rgb(150, 50, 190),  // 8 violet: isopycnals
    rgb(190, 160, 0),   // 9 ochre
    rgb(0, 100, 110),   // 10 petrol
    rgb(130, 190, 30),  // 11 lime
    rgb(240, 30, 160),  // 12 magenta: marks of the current station
    rgb(15, 30, 110),   // 13 navy
    rgb(130, 120, 200), // 14 lavender
    rgb(255, 255, 255), // 15 white
};

// Shallow to deep: pale, so that dots and lines of any colour stand out on the map.
const std::vector<MAPPOINT> seaRamp = {
    {0, rgb(234, 246, 251)},  {25, rgb(200, 229, 243)}, {50, rgb(152, 200, 230)},
    {75, rgb(104, 162, 210)}, {100, rgb(66, 118, 182)},
};
// Low to high: green plains, ochre hills, brown mountains, light peaks.
const std::vector<MAPPOINT> landRamp = {
    {0, rgb(150, 190, 120)}, {25, rgb(205, 205, 130)}, {50, rgb(215, 175, 105)},
    {75, rgb(165, 115, 75)}, {90, rgb(175, 150, 135)}, {100, rgb(245, 242, 240)},
};
constexpr COLOR land = rgb(214, 208, 196), lowland = rgb(186, 214, 160);

COLOR darkened(const COLOR& c)
{
    constexpr double factor = 0.55;
    return {c.red * factor, c.green * factor, c.blue * factor};
}

// A cap must be seen beside its end of the scale: darker, or a grey where the end is dark itself.
COLOR capOf(const COLOR& end)
{
    return lightness(end) > 0.35 ? darkened(end) : rgb(150, 150, 150);
}

void fillRamp(std::span<COLOR> out, std::span<const MAPPOINT> map)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = colorAt(map, 100 * double(i) / double(out.size() - 1));
}

std::optional<MAPPOINT> parseMapLine(std::string_view line)
{
    double v[4];
    for (double& value : v)
        if (!common::takeDouble(line, value) || value < 0 || value > 100.001) return std::nullopt;
    if (!common::trimBlanks(line).empty()) return std::nullopt;
    return MAPPOINT{v[0], {std::min(v[1] / 100, 1.0), std::min(v[2] / 100, 1.0), std::min(v[3] / 100, 1.0)}};
}

} // namespace

std::optional<std::vector<MAPPOINT>> parseColorMap(std::string_view text, std::string& error)
{
    std::vector<MAPPOINT> map;
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = common::trimBlanks(text.substr(0, std::min(end, text.find('!'))));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || line == "RGB_Mapping Percent") continue;
        const auto point = parseMapLine(line);
        if (!point || (!map.empty() && point->percent <= map.back().percent)) {
            error = common::format("line %d: not a rising percentage with three colours of 0 to 100", number);
            return std::nullopt;
        }
        map.push_back(*point);
    }
    if (map.size() >= 2) return map;
    error = "fewer than two colours";
    return std::nullopt;
}

COLOR colorAt(std::span<const MAPPOINT> map, double percent)
{
    if (percent <= map.front().percent) return map.front().color;
    const auto behind =
        std::find_if(map.begin(), map.end(), [&](const MAPPOINT& p) { return p.percent >= percent; });
    if (behind == map.end()) return map.back().color;
    const MAPPOINT &a = *(behind - 1), &b = *behind;
    const double t = (percent - a.percent) / (b.percent - a.percent);
    return {a.color.red + t * (b.color.red - a.color.red),
            a.color.green + t * (b.color.green - a.color.green),
            a.color.blue + t * (b.color.blue - a.color.blue)};
}

std::array<COLOR, paletteSize> paletteAround(std::span<const MAPPOINT> scale)
{
    std::array<COLOR, paletteSize> colors{};
    std::copy(namedColors.begin(), namedColors.end(), colors.begin());
    for (int i = 0; i < 15; ++i) { // greys, dark to light
        const double g = 0.18 + (0.93 - 0.18) * i / 14;
        colors[std::size_t(i) + 16] = {g, g, g};
    }
    colors[31] = rgb(255, 255, 255);
    const std::span<COLOR> all(colors);
    fillRamp(all.subspan(scaleFirst, scaleSteps), scale);
    colors[scaleBelow] = capOf(colors[scaleFirst]);
    colors[scaleAbove] = capOf(colors[scaleAbove - 1]);
    fillRamp(all.subspan(145, 15), seaRamp);
    colors[160] = land;
    colors[161] = lowland;
    fillRamp(all.subspan(162, 15), landRamp);
    return colors;
}

std::string paletteText(std::span<const COLOR> colors)
{
    const auto written = [](double component) {
        const long byte = std::lround(component * 255);
        return byte == 0 ? 0.0 : std::min((double(byte) + 0.5) / 255, 1.0);
    };
    std::string text;
    for (std::size_t i = 0; i < colors.size(); ++i)
        text += common::format("%3zu %7.5f %7.5f %7.5f\n", i, written(colors[i].red),
                               written(colors[i].green), written(colors[i].blue));
    return text;
}

} // namespace tools
