#pragma once

// A small spreadsheet of casts along a meridian, for tests.

#include <fstream>
#include <string>

#include "common/text.h"

namespace testing_support {

inline std::string castText(int stations, int levels)
{
    std::string text = "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]\t"
                       "Depth [m]\tQF\tTemperature [°C]\tQF\tSalinity [psu]\tQF\n";
    for (int s = 1; s <= stations; ++s) {
        for (int k = 0; k < levels; ++k) {
            text += common::format("TEST\t%d\tC\t5/%d/1999\t10:30\t%d\t%d\t4000\t%d\t0\t%g\t0\t%g\t%d\n", s,
                                   1 + s % 28, -25, -60 + 5 * s, 100 * k, 20.0 - k, 34.0 + 0.1 * k,
                                   k == 1 ? 8 : 0);
        }
    }
    return text;
}

inline void writeText(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace testing_support
