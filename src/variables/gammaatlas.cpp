#include "variables/gammaatlas.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <string_view>

#include "common/files.h"

namespace variables {
namespace {

using seawater::GAMMAATLAS;

constexpr std::size_t cells = seawater::atlasCells, levels = seawater::atlasLevels;
constexpr std::size_t gridBytes =
    4 * (seawater::atlasLongitudes + seawater::atlasLatitudes + levels + 2 * cells);
constexpr std::size_t markBytes = 4; // the length of the block, as some programs write it around it
constexpr std::size_t castBytes = 4 * 4 * levels * cells;

std::string readExactly(const std::string& path, std::initializer_list<std::size_t> sizes, std::string& fault)
{
    const std::int64_t size = common::fileSize(path);
    const auto isThis = [size](std::size_t wanted) { return size == static_cast<std::int64_t>(wanted); };
    if (size < 0)
        fault = path + ": is missing";
    else if (std::ranges::none_of(sizes, isThis))
        fault =
            path + ": has " + std::to_string(size) + " bytes instead of " + std::to_string(*sizes.begin());
    if (!fault.empty()) return {};
    std::optional<std::string> content = common::readFile(path, size);
    if (content && static_cast<std::int64_t>(content->size()) == size) return std::move(*content);
    fault = path + ": can't be read";
    return {};
}

// Takes the marks off; false if they don't tell the length.
bool takeMarks(std::string_view& content)
{
    if (content.size() == gridBytes) return true;
    std::uint32_t before = 0, after = 0;
    std::memcpy(&before, content.data(), markBytes);
    std::memcpy(&after, content.data() + markBytes + gridBytes, markBytes);
    content = content.substr(markBytes, gridBytes);
    return before == gridBytes && after == gridBytes;
}

template <typename Array>
void take(std::string_view& content, Array& array)
{
    const std::size_t bytes = array.size() * sizeof(array[0]);
    std::memcpy(array.data(), content.data(), bytes);
    content.remove_prefix(bytes);
}

// A comparison with what isn't a number is false.
template <typename Array>
bool isAscending(const Array& grid, double lowest, double highest)
{
    for (std::size_t n = 1; n < grid.size(); ++n) {
        if (!(grid[n] > grid[n - 1])) return false;
    }
    return grid.front() >= lowest && grid.back() <= highest;
}

std::string faultOfGrid(const GAMMAATLAS& atlas)
{
    if (!isAscending(atlas.longitudes, 0, 359.999) || atlas.longitudes.front() != 0)
        return "the longitudes don't ascend from 0 to below 360";
    if (!isAscending(atlas.latitudes, -90, 90) || atlas.latitudes.front() > -80 ||
        atlas.latitudes.back() <= 64)
        return "the latitudes don't ascend from -80 to beyond 64";
    if (!isAscending(atlas.pressures, 0, 10000)) return "the pressures don't ascend from 0 to 10000";
    for (std::size_t cell = 0; cell < cells; ++cell) {
        const std::int32_t n = atlas.depthIndex[cell], ocean = atlas.ocean[cell];
        const std::string which = " of cell " + std::to_string(cell + 1);
        if (n < 0 || n == 1 || n > static_cast<std::int32_t>(levels))
            return "the number of levels" + which + " is " + std::to_string(n);
        if (ocean < 0 || ocean > 6 || (n > 0 && ocean == 0))
            return "the ocean" + which + " is " + std::to_string(ocean);
    }
    return {};
}

// Salinity, temperature, label; what marks a missing value lies below all of them. The fourth may be
// anything.
constexpr struct {
    const char* name;
    float least, most;
} quantities[] = {
    {"salinity", 0, 50}, {"temperature", -5, 50}, {"neutral density", 1, 50}, {"coefficient", -1e6f, 1e6f}};

std::string faultOfCasts(const GAMMAATLAS& atlas)
{
    for (std::size_t cell = 0; cell < cells; ++cell) {
        const auto n = static_cast<std::size_t>(atlas.depthIndex[cell]);
        for (std::size_t q = 0; q < 4; ++q) {
            for (std::size_t k = 0; k < n; ++k) {
                const float value = atlas.casts[(cell * 4 + q) * levels + k];
                if (value >= quantities[q].least && value <= quantities[q].most) continue;
                return "the " + std::string(quantities[q].name) + " of level " + std::to_string(k + 1) +
                       " of cell " + std::to_string(cell + 1) + " can't be true";
            }
        }
    }
    return {};
}

bool readGrid(const std::string& path, GAMMAATLAS& atlas, std::string& fault)
{
    const std::string bytes = readExactly(path, {gridBytes, gridBytes + 2 * markBytes}, fault);
    if (!fault.empty()) return false;
    std::string_view content = bytes;
    if (!takeMarks(content)) {
        fault = path + ": the marks of its length don't agree with it";
        return false;
    }
    take(content, atlas.longitudes);
    take(content, atlas.latitudes);
    take(content, atlas.pressures);
    take(content, atlas.depthIndex);
    take(content, atlas.ocean);
    if (const std::string wrong = faultOfGrid(atlas); !wrong.empty()) fault = path + ": " + wrong;
    return fault.empty();
}

bool readCasts(const std::string& path, GAMMAATLAS& atlas, std::string& fault)
{
    const std::string bytes = readExactly(path, {castBytes}, fault);
    if (!fault.empty()) return false;
    std::string_view content = bytes;
    atlas.casts.resize(castBytes / sizeof(float));
    take(content, atlas.casts);
    if (const std::string wrong = faultOfCasts(atlas); !wrong.empty()) fault = path + ": " + wrong;
    return fault.empty();
}

} // namespace

std::string faultOfAtlas(const GAMMAATLAS& atlas)
{
    std::string fault = faultOfGrid(atlas);
    return fault.empty() ? faultOfCasts(atlas) : fault;
}

std::shared_ptr<const GAMMAATLAS> loadGammaAtlas(const std::string& directory, std::string& fault)
{
    const auto atlas = std::make_shared<GAMMAATLAS>();
    const std::string folder = directory.empty() || directory.back() == '/' ? directory : directory + '/';
    fault.clear();
    if (!readGrid(folder + "llp.fdt", *atlas, fault) || !readCasts(folder + "stga.fdt", *atlas, fault))
        return nullptr;
    return atlas;
}

} // namespace variables
