#include "palettefile.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "common/text.h"

namespace tools {
namespace {

// --- Oklab (B. Ottosson, 2020, "A perceptual color space for image processing")

struct OKLAB {
    double l = 0, a = 0, b = 0;
};

double linearOf(double s)
{
    return s <= 0.04045 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4);
}

double gammaOf(double linear)
{
    const double s = linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
    return std::clamp(s, 0.0, 1.0);
}

OKLAB oklabOf(const COLOR& c)
{
    const double r = linearOf(c.red), g = linearOf(c.green), b = linearOf(c.blue);
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

struct LINEARRGB {
    double red = 0, green = 0, blue = 0; // outside 0 to 1 beyond the gamut
    [[nodiscard]] bool inGamut() const
    {
        return std::min({red, green, blue}) >= 0 && std::max({red, green, blue}) <= 1;
    }
};

LINEARRGB linearRgbOf(const OKLAB& c)
{
    const double l = std::pow(c.l + 0.3963377774 * c.a + 0.2158037573 * c.b, 3);
    const double m = std::pow(c.l - 0.1055613458 * c.a - 0.0638541728 * c.b, 3);
    const double s = std::pow(c.l - 0.0894841775 * c.a - 1.2914855480 * c.b, 3);
    return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
            -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
            -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

// The colour of this lightness and hue (degrees), with the chroma wanted or the largest that a screen can
// show.
COLOR colorOf(double l, double hue, double chroma)
{
    const double a = std::cos(hue * std::numbers::pi / 180), b = std::sin(hue * std::numbers::pi / 180);
    double low = 0, high = chroma;
    if (linearRgbOf({l, high * a, high * b}).inGamut()) low = high;
    for (int i = 0; i < 40 && low < high; ++i) {
        const double middle = (low + high) / 2;
        (linearRgbOf({l, middle * a, middle * b}).inGamut() ? low : high) = middle;
    }
    const LINEARRGB c = linearRgbOf({l, low * a, low * b});
    return {gammaOf(c.red), gammaOf(c.green), gammaOf(c.blue)};
}

// --- the rainbow

struct RAINBOWPOINT {
    double place, lightness, hue; // place 0 to 1, hue in degrees
};
// The lightness rises evenly to the yellow and falls evenly behind it.
constexpr std::array<RAINBOWPOINT, 8> rainbowPoints = {{{0.00, 0.34, 308},
                                                        {0.16, 0.47, 272},
                                                        {0.30, 0.58, 240},
                                                        {0.44, 0.69, 190},
                                                        {0.56, 0.78, 145},
                                                        {0.70, 0.89, 103},
                                                        {0.85, 0.68, 55},
                                                        {1.00, 0.44, 24}}};
constexpr double rainbowChroma = 0.16;

RAINBOWPOINT brokenRainbowAt(double place)
{
    place = std::clamp(place, 0.0, 1.0);
    const auto behind = std::find_if(rainbowPoints.begin() + 1, rainbowPoints.end() - 1,
                                     [&](const RAINBOWPOINT& p) { return p.place >= place; });
    const RAINBOWPOINT &a = *(behind - 1), &b = *behind;
    const double t = (place - a.place) / (b.place - a.place);
    return {place, a.lightness + t * (b.lightness - a.lightness), a.hue + t * (b.hue - a.hue)};
}

// The mean over a neighbourhood that shrinks to nothing at the ends: corners would show as bands.
RAINBOWPOINT rainbowAt(double place)
{
    constexpr int samples = 10; // on each side
    const double reach = std::min({0.07, place, 1 - place});
    RAINBOWPOINT sum{place, 0, 0};
    for (int i = -samples; i <= samples; ++i) {
        const RAINBOWPOINT p = brokenRainbowAt(place + reach * i / samples);
        sum.lightness += p.lightness / (2 * samples + 1);
        sum.hue += p.hue / (2 * samples + 1);
    }
    return sum;
}

// Means over up to eleven colours: the edges of what a screen can show would be seen as bands too.
std::vector<MAPPOINT> smoothed(const std::vector<MAPPOINT>& map)
{
    std::vector<MAPPOINT> out = map;
    const int last = int(map.size()) - 1;
    for (int i = 0; i <= last; ++i) {
        const int reach = std::min({5, i, last - i});
        COLOR sum;
        for (int j = i - reach; j <= i + reach; ++j) {
            const COLOR& c = map[std::size_t(j)].color;
            sum = {sum.red + c.red, sum.green + c.green, sum.blue + c.blue};
        }
        const double n = 2 * reach + 1;
        out[std::size_t(i)].color = {sum.red / n, sum.green / n, sum.blue / n};
    }
    return out;
}

// The same colours in the same order, each as far along the map as along its way through the Oklab space.
std::vector<MAPPOINT> evenlySpaced(std::vector<MAPPOINT> map)
{
    map.front().percent = 0;
    for (std::size_t i = 1; i < map.size(); ++i)
        map[i].percent = map[i - 1].percent + distance(map[i - 1].color, map[i].color);
    const double whole = map.back().percent;
    for (MAPPOINT& point : map) point.percent *= 100 / whole;
    return map;
}

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

double distance(const COLOR& a, const COLOR& b)
{
    const OKLAB p = oklabOf(a), q = oklabOf(b);
    return std::hypot(p.l - q.l, p.a - q.a, p.b - q.b);
}

double lightness(const COLOR& color)
{
    return oklabOf(color).l;
}

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

std::vector<MAPPOINT> rainbow()
{
    constexpr int points = 111;
    std::vector<MAPPOINT> map;
    for (int i = 0; i < points; ++i) {
        const double place = double(i) / (points - 1);
        const RAINBOWPOINT p = rainbowAt(place);
        map.push_back({100 * place, colorOf(p.lightness, p.hue, rainbowChroma)});
    }
    return evenlySpaced(smoothed(smoothed(map)));
}

std::array<COLOR, paletteSize> paletteAround(std::span<const MAPPOINT> scale)
{
    std::array<COLOR, paletteSize> colors{};
    std::copy(namedColors.begin(), namedColors.end(), colors.begin());
    for (int i = 0; i < 15; ++i) { // greys, dark to light
        const double g = 0.18 + (0.93 - 0.18) * i / 14;
        colors[std::size_t(16 + i)] = {g, g, g};
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
