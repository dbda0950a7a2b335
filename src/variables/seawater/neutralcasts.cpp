#include "variables/seawater/neutralcasts.h"

#include <algorithm>
#include <limits>
#include <span>

namespace seawater {
namespace {

// The last grid line at or below a place.
std::size_t lineBelow(std::span<const float> grid, double place)
{
    const auto above = std::upper_bound(grid.begin(), grid.end(), place);
    return above == grid.begin() ? 0 : static_cast<std::size_t>(above - grid.begin()) - 1;
}

void fillLevels(ATLASCAST& cast, const GAMMAATLAS& atlas, std::size_t cell)
{
    constexpr std::size_t levels = atlasLevels;
    const float* salinity = atlas.casts.data() + cell * 4 * levels;
    const float *temperature = salinity + levels, *gamma = temperature + levels, *a = gamma + levels;
    for (std::size_t k = 0; k < cast.levels; ++k) {
        cast.water[k] = {salinity[k], temperature[k], atlas.pressures[k]};
        cast.gamma[k] = gamma[k];
        cast.a[k] = a[k];
        cast.potentialTemperature[k] = temperatureAt(cast.water[k], 0);
        cast.sigma[k] = sigmaOf(cast.water[k]);
    }
    for (std::size_t k = 0; k + 1 < cast.levels; ++k) {
        const double middle = (cast.pressure(k) + cast.pressure(k + 1)) / 2;
        cast.step[k] = sigmaAt(cast.water[k + 1], middle) - sigmaAt(cast.water[k], middle);
    }
}

} // namespace

std::size_t ATLASCAST::intervalOf(double pressure) const
{
    std::size_t k = 0;
    while (k + 2 < levels && water[k + 1].pressure <= pressure) ++k;
    return k;
}

WATER ATLASCAST::waterAt(double pressure, std::size_t level) const
{
    const WATER &above = water[level], &below = water[level + 1];
    const double part = (pressure - above.pressure) / (below.pressure - above.pressure);
    const double theta =
        potentialTemperature[level] + part * (potentialTemperature[level + 1] - potentialTemperature[level]);
    const double salinity = above.salinity + part * (below.salinity - above.salinity);
    return {salinity, temperatureAt({salinity, theta, 0}, pressure), pressure};
}

double ATLASCAST::gammaAt(double pressure) const
{
    const std::size_t k = intervalOf(pressure);
    const double thickness = water[k + 1].pressure - water[k].pressure;
    const double below = (pressure - water[k + 1].pressure) / thickness;
    const double above = (pressure - water[k].pressure) / thickness;
    return (a[k] * below + gamma[k + 1] - gamma[k]) * above + gamma[k];
}

NEIGHBOURHOOD castsAround(const GAMMAATLAS& atlas, double longitude, double latitude)
{
    // So that the only cast counts even where its weight is 0.
    constexpr double least = 1e-6;
    const std::size_t west = lineBelow(atlas.longitudes, longitude);
    const std::size_t south = std::min<std::size_t>(lineBelow(atlas.latitudes, latitude), atlasLatitudes - 2);
    const bool last = west + 1 == atlasLongitudes;
    const double westernLine = atlas.longitudes[west], southernLine = atlas.latitudes[south];
    const double width = (last ? 360.0 : atlas.longitudes[west + 1]) - westernLine;
    const double height = atlas.latitudes[south + 1] - southernLine;
    const double rx = (longitude - westernLine) / width, ry = (latitude - southernLine) / height;

    NEIGHBOURHOOD around;
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t n = 0; n < 4; ++n) {
        const bool eastern = n % 2 == 1, northern = n >= 2;
        const std::size_t i = !eastern ? west : last ? 0 : west + 1;
        const std::size_t j = south + (northern ? 1 : 0);
        const std::size_t cell = i + j * atlasLongitudes;
        const int levels = std::min(atlas.depthIndex[cell], atlasLevels);
        if (levels < 2) continue;
        ATLASCAST cast;
        cast.longitude = atlas.longitudes[i];
        cast.latitude = atlas.latitudes[j];
        cast.weight = (eastern ? rx : 1 - rx) * (northern ? ry : 1 - ry) + least;
        cast.ocean = atlas.ocean[cell];
        cast.levels = static_cast<std::size_t>(levels);
        fillLevels(cast, atlas, cell);
        // The first meridian isn't met again behind the last grid line: its distance is that from 0.
        const double dx = cast.longitude - longitude, dy = cast.latitude - latitude;
        if (dx * dx + dy * dy < nearest) {
            nearest = dx * dx + dy * dy;
            around.ocean = cast.ocean;
        }
        around.casts.push_back(cast);
    }
    return around;
}

} // namespace seawater
