// The table of colours that is in force while no palette file could be read.

#include <cmath>

#include "graphics/palette.h"

namespace graphics {
namespace {

struct RGB {
    int red, green, blue;
};

// A colour at a place between 0 and 1 of a ramp; between two of them the components run linearly.
struct RAMPCOLOR {
    double place;
    RGB color;
};

constexpr auto baseColors = std::to_array<RGB>({
    {0, 0, 0},       // 0 black
    {220, 30, 30},   // 1 red
    {0, 150, 60},    // 2 green
    {245, 190, 0},   // 3 yellow
    {30, 70, 215},   // 4 blue
    {0, 175, 195},   // 5 cyan
    {200, 40, 190},  // 6 magenta
    {170, 170, 170}, // 7 grey of masks
    {95, 95, 95},    // 8 dark grey
    {150, 85, 30},   // 9 brown
    {125, 140, 0},   // 10 olive
    {0, 110, 105},   // 11 sea green
    {255, 0, 110},   // 12 marks
    {250, 125, 0},   // 13 orange
    {105, 55, 165},  // 14 violet
    {255, 255, 255}, // 15 white
});
constexpr int firstGrey = 16, lastGrey = 31; // black to white

constexpr auto rainbow = std::to_array<RAMPCOLOR>({
    {0.00, {130, 20, 150}},
    {0.10, {85, 45, 205}},
    {0.22, {25, 100, 245}},
    {0.34, {0, 175, 240}},
    {0.44, {10, 205, 180}},
    {0.54, {60, 200, 70}},
    {0.64, {175, 220, 20}},
    {0.74, {250, 225, 0}},
    {0.84, {255, 155, 0}},
    {0.93, {240, 60, 10}},
    {1.00, {175, 0, 20}},
});
constexpr RGB below = {225, 185, 235}, above = {105, 0, 15};
constexpr RGB land = {205, 195, 165}, landLow = {175, 205, 145};

constexpr auto bathymetry = std::to_array<RAMPCOLOR>({
    // shallow to deep
    {0.0, {225, 243, 252}},
    {0.4, {155, 208, 238}},
    {0.7, {90, 155, 215}},
    {1.0, {35, 80, 160}},
});
constexpr auto topography = std::to_array<RAMPCOLOR>({
    // low to high
    {0.0, {190, 212, 140}},
    {0.3, {232, 218, 150}},
    {0.6, {200, 155, 95}},
    {0.85, {155, 110, 75}},
    {1.0, {245, 245, 245}},
});

template <std::size_t count>
RGB colorAt(const std::array<RAMPCOLOR, count>& ramp, double place)
{
    std::size_t i = 1;
    while (i + 1 < count && place > ramp[i].place) ++i;
    const RAMPCOLOR &low = ramp[i - 1], &high = ramp[i];
    const double share = (place - low.place) / (high.place - low.place);
    const auto mix = [share](int a, int b) { return static_cast<int>(std::lround(a + share * (b - a))); };
    return {mix(low.color.red, high.color.red), mix(low.color.green, high.color.green),
            mix(low.color.blue, high.color.blue)};
}

void set(PALETTE& table, int index, const RGB& color)
{
    const auto at = static_cast<std::size_t>(index);
    table.red[at] = static_cast<std::uint8_t>(color.red);
    table.green[at] = static_cast<std::uint8_t>(color.green);
    table.blue[at] = static_cast<std::uint8_t>(color.blue);
}

template <std::size_t count>
void setRamp(PALETTE& table, int first, int last, const std::array<RAMPCOLOR, count>& ramp)
{
    for (int i = first; i <= last; ++i)
        set(table, i, colorAt(ramp, static_cast<double>(i - first) / (last - first)));
}

PALETTE makeTable()
{
    PALETTE table;
    for (std::size_t i = 0; i < baseColors.size(); ++i) set(table, static_cast<int>(i), baseColors[i]);
    for (int i = firstGrey; i <= lastGrey; ++i) {
        const int level = (i - firstGrey) * 255 / (lastGrey - firstGrey);
        set(table, i, {level, level, level});
    }
    set(table, colorBelow, below);
    setRamp(table, colorScaleFirst, colorScaleLast, rainbow);
    set(table, colorAbove, above);
    setRamp(table, bathymetryFirst, bathymetryLast, bathymetry);
    set(table, colorLand, land);
    set(table, colorLandLow, landLow);
    setRamp(table, topographyFirst, topographyLast, topography);
    table.count = topographyLast + 1;
    return table;
}

} // namespace

const PALETTE& builtInPalette()
{
    static const PALETTE table = makeTable();
    return table;
}

} // namespace graphics
