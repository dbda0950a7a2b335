#include "import/existingstations.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "common/calendar.h"
#include "common/text.h"

namespace importing {
namespace {

using collection::STATIONHDR;
using common::fieldText;

constexpr float positionTolerance = 0.2f; // degrees
constexpr std::int64_t dayTolerance = 1;

std::uint64_t joined(std::uint64_t key, std::string_view text)
{
    constexpr std::uint64_t odd = 0x9e3779b97f4a7c15;
    return (key ^ std::hash<std::string_view>{}(text)) * odd;
}

std::uint64_t cruiseKey(std::string_view cruise, std::string_view type)
{
    return joined(joined(0, cruise), type);
}

std::uint64_t labelsKey(const STATIONHDR& header)
{
    return joined(cruiseKey(fieldText(header.cruise), fieldText(header.type)), fieldText(header.station));
}

// Stations of one label are told apart by their days, so that a float of a thousand profiles isn't searched
// through for each of them.
std::uint64_t dayKey(const STATIONHDR& header, std::int64_t day)
{
    constexpr std::uint64_t odd = 0xbf58476d1ce4e5b9;
    return (labelsKey(header) ^ static_cast<std::uint64_t>(day)) * odd;
}

std::int64_t dayOf(const STATIONHDR& header)
{
    return common::dayNumber(header.year, std::clamp<int>(header.month, 1, 12), header.day);
}

bool sameLabels(const STATIONHDR& a, const STATIONHDR& b)
{
    return fieldText(a.cruise) == fieldText(b.cruise) && fieldText(a.type) == fieldText(b.type) &&
           fieldText(a.station) == fieldText(b.station);
}

} // namespace

bool RExistingStations::build()
{
    entries_.clear();
    cruises_.clear();
    removed_.clear();
    lastSlot_ = std::max(0, collection_.stationCount);
    entries_.reserve(static_cast<std::size_t>(lastSlot_));
    for (std::size_t i = 0; i < collection_.cruises.size(); ++i) {
        const collection::CRUISEINFO& cruise = collection_.cruises[i];
        cruises_.emplace(cruiseKey(fieldText(cruise.cruise), fieldText(cruise.type)), i);
    }
    const auto visit = [&](int number, const STATIONHDR& header, const collection::LEVELCOUNTS&) {
        add(header, number);
        return true;
    };
    return collection_.scanHeaders(1, collection_.stationCount, visit, [](int) {});
}

void RExistingStations::add(const STATIONHDR& header, int slot)
{
    const std::int64_t day = dayOf(header);
    entries_.emplace(
        dayKey(header, day),
        ENTRY{.slot = slot, .longitude = header.longitude, .latitude = header.latitude, .day = day});
}

// Calls `visit` with each entry that may have the labels of a header and a day close to its own, until one
// call is true.
template <typename Visit>
void RExistingStations::forEachClose(const STATIONHDR& header, Visit&& visit)
{
    const std::int64_t day = dayOf(header);
    for (std::int64_t near = day - dayTolerance; near <= day + dayTolerance; ++near) {
        const auto [first, last] = entries_.equal_range(dayKey(header, near));
        for (auto it = first; it != last; ++it) {
            if (visit(it)) return;
        }
    }
}

bool RExistingStations::isTheSame(const ENTRY& entry, const STATIONHDR& header) const
{
    const float longitude = header.longitude < 0 ? entry.longitude - 360 : entry.longitude;
    if (std::abs(entry.day - dayOf(header)) > dayTolerance ||
        !(std::abs(longitude - header.longitude) < positionTolerance) ||
        !(std::abs(entry.latitude - header.latitude) < positionTolerance)) {
        return false;
    }
    STATIONHDR there{}; // different labels may share a key
    return collection_.readStationHeader(numberOf(entry), there, nullptr) && sameLabels(there, header);
}

const collection::CRUISEINFO* RExistingStations::cruiseOf(const STATIONHDR& header) const
{
    const std::string_view cruise = fieldText(header.cruise), type = fieldText(header.type);
    const auto [first, last] = cruises_.equal_range(cruiseKey(cruise, type));
    for (auto it = first; it != last; ++it) {
        if (it->second >= collection_.cruises.size()) continue;
        const collection::CRUISEINFO& entry = collection_.cruises[it->second];
        if (fieldText(entry.cruise) == cruise && fieldText(entry.type) == type) return &entry;
    }
    return nullptr;
}

int RExistingStations::find(const STATIONHDR& header)
{
    const collection::CRUISEINFO* const cruise = cruiseOf(header);
    if (cruise == nullptr) return 0;
    int found = 0;
    forEachClose(header, [&](auto it) {
        const int number = numberOf(it->second);
        const bool inRange = number >= cruise->firstNumber && number <= cruise->lastNumber;
        if (inRange && (found == 0 || number < found) && isTheSame(it->second, header)) found = number;
        return false;
    });
    return found;
}

void RExistingStations::noteStored(int asked, int given, const STATIONHDR& header)
{
    if (asked == 0) {
        add(header, ++lastSlot_);
        return;
    }
    const int slot = removed_.slotOf(asked);
    const bool moved = given != asked; // it outgrew its place and went to the end
    if (moved) {
        removed_.remove(asked);
        ++lastSlot_;
    }
    forEachClose(header, [&](auto it) {
        if (it->second.slot != slot) return false;
        entries_.erase(it);
        return true;
    });
    add(header, moved ? lastSlot_ : slot);
}

} // namespace importing
