#include "rainbow.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tools {
namespace {

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

// --- the curve

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

} // namespace tools
