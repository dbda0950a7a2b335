// Which samples of a station take part: the quality limit and the sample range.

#include <algorithm>
#include <cstring>
#include <vector>

#include "selection/criteria.h"

namespace selection {
namespace {

using collection::SELECTIONCRITERIA;
using collection::STATIONDATA;

int totalVariables(const STATIONDATA& station)
{
    const int total = station.collection ? station.collection->totalVariableCount : common::maxVariables;
    return std::clamp(total, 0, common::maxVariables);
}

// True where a range of samples is in force for this station.
bool hasRange(const STATIONDATA& station, const SELECTIONCRITERIA& criteria)
{
    return criteria.sampleVariable >= 1 && criteria.sampleVariable <= totalVariables(station);
}

// Scaled to the range, so that limits in reverse order serve too. Between equal limits the scale is infinite,
// and only a value equal to them isn't thrown out: it gives no number.
bool isInRange(float value, const SELECTIONCRITERIA& criteria)
{
    if (value == common::MISSING_VALUE) return false;
    const double r =
        (double{value} - criteria.sampleMin) * (1.0 / (double{criteria.sampleMax} - criteria.sampleMin));
    return !(r < 0 || r > 1);
}

// One mark a level: 1 in range. All 0 if the station lacks the variable.
std::vector<std::uint8_t> marksOf(const STATIONDATA& station, const SELECTIONCRITERIA& criteria)
{
    std::vector<std::uint8_t> marks(static_cast<std::size_t>(std::max(0, station.levels())));
    const std::int32_t offset = station.offset[static_cast<std::size_t>(criteria.sampleVariable)];
    if (offset < 0) return marks;
    for (std::size_t k = 0; k < marks.size(); ++k) {
        marks[k] = isInRange(station.values[static_cast<std::size_t>(offset) + k], criteria);
    }
    return marks;
}

// Moves the marked cells of a block to `to`, which isn't behind it. Returns how many of them aren't missing.
std::int16_t packBlock(STATIONDATA& station, const std::vector<std::uint8_t>& marks, std::int32_t from,
                       std::int32_t to)
{
    std::int16_t values = 0;
    auto target = static_cast<std::size_t>(to);
    for (std::size_t k = 0; k < marks.size(); ++k) {
        if (!marks[k]) continue;
        const std::size_t source = static_cast<std::size_t>(from) + k;
        station.values[target] = station.values[source];
        station.flags[target] = station.flags[source];
        if (station.values[target] != common::MISSING_VALUE) ++values;
        ++target;
    }
    return values;
}

// The variables that have a block, in the order of the blocks: packing moves cells to the front.
std::vector<std::size_t> variablesByBlock(const STATIONDATA& station)
{
    std::vector<std::size_t> variables;
    for (std::size_t v = 1; v < station.offset.size(); ++v) {
        if (station.offset[v] >= 0) variables.push_back(v);
    }
    std::stable_sort(variables.begin(), variables.end(),
                     [&](std::size_t a, std::size_t b) { return station.offset[a] < station.offset[b]; });
    return variables;
}

} // namespace

int applyQualityLimit(STATIONDATA& station, int limit, float missing)
{
    if (limit >= common::noQualityLimit) return 0;
    int blanked = 0;
    for (auto cell = static_cast<std::size_t>(station.levels());
         cell < static_cast<std::size_t>(station.header.valueCount); ++cell) {
        if (station.flags[cell] <= limit) continue;
        station.values[cell] = missing;
        ++blanked;
    }
    return blanked;
}

void applySampleRange(STATIONDATA& station, const SELECTIONCRITERIA& criteria, float missing)
{
    if (!hasRange(station, criteria)) return;
    const std::vector<std::uint8_t> marks = marksOf(station, criteria);
    for (int v = 2; v <= totalVariables(station); ++v) {
        const std::int32_t offset = station.offset[static_cast<std::size_t>(v)];
        if (offset < 0) continue;
        float* const values = station.values.get() + offset;
        for (std::size_t k = 0; k < marks.size(); ++k) {
            if (!marks[k]) values[k] = missing;
        }
    }
}

int compressToSampleRange(STATIONDATA& station, const SELECTIONCRITERIA& criteria)
{
    if (!hasRange(station, criteria)) return station.levels();
    const std::vector<std::uint8_t> marks = marksOf(station, criteria);
    const auto kept = static_cast<std::int32_t>(std::count(marks.begin(), marks.end(), 1));
    if (kept == station.levels()) return kept;
    std::int32_t running = 0;
    for (const std::size_t v : variablesByBlock(station)) {
        const std::int16_t values = packBlock(station, marks, station.offset[v], running);
        if (v == 1 || values > 0) {
            station.offset[v] = running;
            station.levelCount[v] = values;
            running += kept;
        } else {
            station.offset[v] = -1;
            station.levelCount[v] = 0;
        }
    }
    station.levelCount[1] = static_cast<std::int16_t>(kept);
    station.header.valueCount = running;
    return kept;
}

void RSelectionStages::applyQualityLimit(STATIONDATA& station)
{
    if (station.collection) {
        selection::applyQualityLimit(station, station.collection->qualityLimit, common::MISSING_VALUE);
    }
}

void RSelectionStages::applySampleRange(STATIONDATA& station)
{
    if (station.collection) {
        selection::applySampleRange(station, station.collection->criteria, common::MISSING_VALUE);
    }
}

} // namespace selection
