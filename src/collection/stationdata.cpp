#include "collection/stationdata.h"

#include <charconv>

#include "collection/rcollection.h"

namespace collection {
namespace {

// Index of a cell, -1 if it doesn't exist.
int cellOf(const STATIONDATA& station, int variable, int level)
{
    const int variables = station.collection ? station.collection->totalVariableCount : common::maxVariables;
    if (variable < 1 || variable > variables || variable > common::maxVariables) return -1;
    if (level < 0 || level >= station.levels()) return -1;
    const int offset = station.offset[static_cast<std::size_t>(variable)];
    return offset < 0 ? -1 : offset + level;
}

} // namespace

std::string_view flagName(int flag)
{
    switch (flag) {
    case flagGood:
        return "good";
    case flagUnknown:
        return "unknown";
    case flagQuestionable:
        return "questionable";
    case flagBad:
        return "bad";
    default:
        return {};
    }
}

double dateNumber(const STATIONHDR& header)
{
    return header.year * 10000.0 + header.month * 100.0 + header.day;
}

std::optional<int> numericLabel(std::string_view label)
{
    int number = 0;
    const char* const end = label.data() + label.size();
    const auto [stop, error] = std::from_chars(label.data(), end, number);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return number;
}

void STATIONDATA::clear()
{
    number = 0;
    levelCount.fill(0);
    offset.fill(-1);
    header = STATIONHDR{};
}

float valueAt(const STATIONDATA& station, int variable, int level, float fallback)
{
    const int cell = cellOf(station, variable, level);
    return cell < 0 ? fallback : station.values[static_cast<std::size_t>(cell)];
}

int flagAt(const STATIONDATA& station, int variable, int level)
{
    const int cell = cellOf(station, variable, level);
    return cell < 0 ? flagBad : station.flags[static_cast<std::size_t>(cell)];
}

} // namespace collection
