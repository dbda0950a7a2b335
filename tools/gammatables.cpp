#include "gammatables.h"

#include <algorithm>
#include <cstdio>

#include "common/files.h"
#include "netcdffile.h"
#include "variables/gammaatlas.h"

namespace tools {
namespace {

using seawater::GAMMAATLAS;

constexpr std::size_t longitudes = seawater::atlasLongitudes, latitudes = seawater::atlasLatitudes,
                      levels = seawater::atlasLevels;

// Copies what was read; nothing was read after an error.
template <typename Values, typename Array>
void fill(const Values& values, Array& array)
{
    if (values.size() == array.size()) std::ranges::copy(values, array.begin());
}

void readGrids(RNetcdfFile& file, GAMMAATLAS& atlas)
{
    fill(file.floats("lon", {longitudes}), atlas.longitudes);
    fill(file.floats("lat", {latitudes}), atlas.latitudes);
    fill(file.floats("pressure", {levels}), atlas.pressures);
    fill(file.integers("n", {latitudes, longitudes}), atlas.depthIndex);
    fill(file.integers("iocean", {latitudes, longitudes}), atlas.ocean);
}

// The quantities stand one behind the other in each cast.
void readCasts(RNetcdfFile& file, GAMMAATLAS& atlas)
{
    constexpr const char* names[] = {"s", "t", "gamma", "a"};
    constexpr std::size_t quantities = std::size(names);
    atlas.casts.resize(seawater::atlasCells * quantities * levels);
    for (std::size_t q = 0; q < quantities; ++q) {
        const std::vector<float> values = file.floats(names[q], {latitudes, longitudes, levels});
        for (std::size_t n = 0; n < values.size(); ++n)
            atlas.casts[(n / levels * quantities + q) * levels + n % levels] = values[n];
    }
}

template <typename Array>
bool write(std::FILE* stream, const Array& array)
{
    return std::fwrite(array.data(), sizeof(array[0]), array.size(), stream) == array.size();
}

} // namespace

std::optional<GAMMAATLAS> readGammaTables(const std::string& path, std::string& error)
{
    RNetcdfFile file(path);
    GAMMAATLAS atlas;
    readGrids(file, atlas);
    readCasts(file, atlas);
    error = file.error();
    if (error.empty()) error = variables::faultOfAtlas(atlas);
    if (error.empty()) return atlas;
    error = path + ": " + error;
    return std::nullopt;
}

bool writeGammaTables(const std::string& folder, const GAMMAATLAS& atlas)
{
    const std::string castsPath = folder + "/stga.fdt";
    const bool hadCasts = common::existsAtAll(castsPath);
    common::RReplacementFile grid(folder + "/llp.fdt"), casts(castsPath);
    if (!grid.stream() || !casts.stream()) return false;
    const bool written = write(grid.stream(), atlas.longitudes) && write(grid.stream(), atlas.latitudes) &&
                         write(grid.stream(), atlas.pressures) && write(grid.stream(), atlas.depthIndex) &&
                         write(grid.stream(), atlas.ocean) && write(casts.stream(), atlas.casts);
    // What can fail for want of room has happened before the first name changes.
    if (!written || !grid.prepare() || !casts.prepare() || !casts.commit()) return false;
    if (grid.commit()) return true;
    if (!hadCasts) std::remove(castsPath.c_str());
    return false;
}

} // namespace tools
