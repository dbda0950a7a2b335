#include "import/merge.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <span>
#include <unordered_map>
#include <vector>

#include "common/limits.h"

namespace importing {
namespace {

using collection::STATIONDATA;
using common::MISSING_VALUE;

constexpr double smallestTolerance = 10.0, relativeTolerance = 0.02;

std::size_t at(int i)
{
    return static_cast<std::size_t>(i);
}

bool hasData(const STATIONDATA& station, int variable)
{
    return station.offset[at(variable)] >= 0;
}

float valueOf(const STATIONDATA& station, int variable, int level)
{
    return station.values[at(station.offset[at(variable)] + level)];
}

std::uint8_t flagOf(const STATIONDATA& station, int variable, int level)
{
    return station.flags[at(station.offset[at(variable)] + level)];
}

// Finds the level of a station that is nearest to a given one; among equals the first.
class RNearestLevel {
public:
    explicit RNearestLevel(const STATIONDATA& station) : station_(station), order_(at(station.levels()))
    {
        std::iota(order_.begin(), order_.end(), 0);
        std::stable_sort(order_.begin(), order_.end(), [this](int a, int b) { return depth(a) < depth(b); });
    }

    // -1 if the station has no levels.
    [[nodiscard]] int of(float z) const
    {
        const auto above = std::lower_bound(order_.begin(), order_.end(), z,
                                            [this](int level, float value) { return depth(level) < value; });
        if (order_.empty()) return -1;
        if (above == order_.begin()) return *above;
        // The first level of the same depth as the one below: equal depths stand in their order.
        const int below = *std::lower_bound(order_.begin(), above, depth(*(above - 1)),
                                            [this](int level, float value) { return depth(level) < value; });
        if (above == order_.end()) return below;
        const double up = distance(*above, z), down = distance(below, z);
        if (up == down) return std::min(*above, below);
        return up < down ? *above : below;
    }
    // The levels of exactly this depth, in their order.
    [[nodiscard]] std::span<const int> levelsAt(float z) const
    {
        const auto first = std::lower_bound(order_.begin(), order_.end(), z,
                                            [this](int level, float value) { return depth(level) < value; });
        const auto last = std::find_if(first, order_.end(), [&](int level) { return depth(level) != z; });
        return {first, last};
    }
    [[nodiscard]] bool isClose(int level, float z) const
    {
        const double tolerance = std::max(smallestTolerance, std::abs(relativeTolerance * depth(level)));
        return distance(level, z) < tolerance;
    }

private:
    [[nodiscard]] float depth(int level) const { return valueOf(station_, 1, level); }
    [[nodiscard]] double distance(int level, float z) const
    {
        return std::abs(static_cast<double>(z) - static_cast<double>(depth(level)));
    }

    const STATIONDATA& station_;
    std::vector<int> order_;
};

// True if a variable has any value: a conversion may have taken all of a block.
bool hasValues(const STATIONDATA& station, int variable)
{
    if (!hasData(station, variable)) return false;
    const float* const values = station.values.get() + station.offset[at(variable)];
    return std::any_of(values, values + station.levels(), [](float v) { return v != MISSING_VALUE; });
}

bool hasSamples(const STATIONDATA& station, int level, int variableCount)
{
    for (int v = 2; v <= variableCount; ++v) {
        if (hasData(station, v) && valueOf(station, v, level) != MISSING_VALUE) return true;
    }
    return false;
}

// For each new level the level of the result that it goes to, -1 if it is dropped. `levels` is the number of
// levels of the result.
std::vector<int> mapLevels(const STATIONDATA& fresh, const STATIONDATA& stored, int variableCount,
                           int& levels)
{
    const RNearestLevel nearest(stored);
    std::vector<int> map(at(fresh.levels()), -1);
    levels = stored.levels();
    std::unordered_map<float, std::size_t> seen; // new levels of a depth
    for (int k = 0; k < fresh.levels(); ++k) {
        if (!hasSamples(fresh, k, variableCount)) continue;
        const float z = valueOf(fresh, 1, k);
        const std::span<const int> same = nearest.levelsAt(z);
        const std::size_t nth = seen[z]++;
        if (nth < same.size()) { // several samples of one depth keep apart
            map[at(k)] = same[nth];
            continue;
        }
        const int level = z == MISSING_VALUE ? -1 : nearest.of(z);
        map[at(k)] = level >= 0 && nearest.isClose(level, z) ? level : levels++;
    }
    return map;
}

struct BLOCK {
    std::vector<float> values;
    std::vector<std::uint8_t> flags;
};

BLOCK emptyBlock(int levels)
{
    return {std::vector<float>(at(levels), MISSING_VALUE),
            std::vector<std::uint8_t>(at(levels), collection::flagUnknown)};
}

void copyStored(const STATIONDATA& stored, int variable, BLOCK& block)
{
    const int offset = stored.offset[at(variable)];
    std::copy_n(stored.values.get() + offset, stored.levels(), block.values.begin());
    std::copy_n(stored.flags.get() + offset, stored.levels(), block.flags.begin());
}

BLOCK primaryBlock(const STATIONDATA& fresh, const STATIONDATA& stored, const std::vector<int>& map,
                   int levels, MERGECOUNTS& counts)
{
    BLOCK block = emptyBlock(levels);
    copyStored(stored, 1, block);
    for (int k = 0; k < fresh.levels(); ++k) {
        const bool isNew = map[at(k)] >= stored.levels();
        if (valueOf(fresh, 1, k) != MISSING_VALUE)
            ++(map[at(k)] < 0 ? counts.dropped : isNew ? counts.stored : counts.matched);
        if (!isNew) continue;
        block.values[at(map[at(k)])] = valueOf(fresh, 1, k);
        block.flags[at(map[at(k)])] = flagOf(fresh, 1, k);
    }
    return block;
}

// An update finds a value there only if an earlier level of the fresh station has come to the same one.
void putValue(float value, std::uint8_t flag, ImportMode mode, float& there, std::uint8_t& flagThere,
              MERGECOUNTS& counts)
{
    if (there != MISSING_VALUE && mode == ImportMode::merge) {
        there = (value + there) * 0.5f;
        flagThere = std::max(flagThere, flag);
        ++counts.averaged;
        return;
    }
    ++(there == MISSING_VALUE ? counts.stored : counts.dropped);
    there = value;
    flagThere = flag;
}

BLOCK sampleBlock(const STATIONDATA& fresh, const STATIONDATA& stored, int variable, ImportMode mode,
                  const std::vector<int>& map, int levels, MERGECOUNTS& counts)
{
    BLOCK block = emptyBlock(levels);
    const bool isNew = hasValues(fresh, variable);
    if (hasData(stored, variable) && (mode == ImportMode::merge || !isNew))
        copyStored(stored, variable, block);
    for (int k = 0; isNew && k < fresh.levels(); ++k) {
        const int level = map[at(k)];
        const float value = valueOf(fresh, variable, k);
        if (level < 0 || value == MISSING_VALUE) continue;
        putValue(value, flagOf(fresh, variable, k), mode, block.values[at(level)], block.flags[at(level)],
                 counts);
    }
    return block;
}

} // namespace

std::optional<MERGECOUNTS> mergeStation(const STATIONDATA& fresh, STATIONDATA& stored, ImportMode mode,
                                        int variableCount)
{
    int levels = 0;
    const std::vector<int> map = mapLevels(fresh, stored, variableCount, levels);
    int variables = 1;
    for (int v = 2; v <= variableCount; ++v) variables += hasValues(fresh, v) || hasData(stored, v) ? 1 : 0;
    if (levels > common::maxLevels || levels > common::maxCells / variables) return std::nullopt;

    MERGECOUNTS counts;
    std::vector<BLOCK> blocks;
    std::array<std::int32_t, 51> offset{};
    offset.fill(-1);
    for (int v = 1; v <= variableCount; ++v) {
        if (v > 1 && !hasValues(fresh, v) && !hasData(stored, v)) continue;
        offset[at(v)] = static_cast<int>(blocks.size()) * levels;
        blocks.push_back(v == 1 ? primaryBlock(fresh, stored, map, levels, counts)
                                : sampleBlock(fresh, stored, v, mode, map, levels, counts));
    }
    stored.offset = offset;
    stored.levelCount[1] = static_cast<std::int16_t>(levels);
    stored.header.valueCount = static_cast<int>(blocks.size()) * levels;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        std::copy(blocks[b].values.begin(), blocks[b].values.end(), stored.values.get() + b * at(levels));
        std::copy(blocks[b].flags.begin(), blocks[b].flags.end(), stored.flags.get() + b * at(levels));
    }
    return counts;
}

std::int64_t countValues(const STATIONDATA& station, int variableCount)
{
    std::int64_t count = 0;
    for (int v = 1; v <= variableCount; ++v) {
        if (!hasData(station, v)) continue;
        const float* const first = station.values.get() + station.offset[at(v)];
        count += station.levels() - std::count(first, first + station.levels(), MISSING_VALUE);
    }
    return count;
}

} // namespace importing
