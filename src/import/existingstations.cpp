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

std::string cruiseKey(std::string_view cruise, std::string_view type)
{
    std::string key(cruise);
    key += '\t';
    return key.append(type);
}

std::uint64_t labelsKey(const STATIONHDR& header)
{
    std::string key = cruiseKey(fieldText(header.cruise), fieldText(header.type));
    key += '\t';
    return std::hash<std::string>{}(key.append(fieldText(header.station)));
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
    numbers_.clear();
    byLabels_.clear();
    cruises_.clear();
    const auto count = static_cast<std::size_t>(std::max(0, collection_.stationCount));
    entries_.reserve(count);
    numbers_.reserve(count);
    byLabels_.reserve(count);
    for (std::size_t i = 0; i < collection_.cruises.size(); ++i) {
        const collection::CRUISEINFO& cruise = collection_.cruises[i];
        cruises_.emplace(cruiseKey(fieldText(cruise.cruise), fieldText(cruise.type)), i);
    }
    const auto visit = [&](int number, const STATIONHDR& header, const collection::LEVELCOUNTS&) {
        add(number, header);
        return true;
    };
    return collection_.scanHeaders(1, collection_.stationCount, visit, [](int) {});
}

void RExistingStations::add(int number, const STATIONHDR& header)
{
    byLabels_.emplace(labelsKey(header), static_cast<std::uint32_t>(entries_.size()));
    numbers_.push_back(number);
    entries_.emplace_back();
    fill(entries_.size() - 1, header);
}

void RExistingStations::fill(std::size_t entry, const STATIONHDR& header)
{
    entries_[entry] = {dayOf(header), header.longitude, header.latitude};
}

bool RExistingStations::isTheSame(std::size_t entry, const STATIONHDR& header) const
{
    const ENTRY& stored = entries_[entry];
    const float longitude = header.longitude < 0 ? stored.longitude - 360 : stored.longitude;
    if (std::abs(stored.day - dayOf(header)) > dayTolerance ||
        !(std::abs(longitude - header.longitude) < positionTolerance) ||
        !(std::abs(stored.latitude - header.latitude) < positionTolerance)) {
        return false;
    }
    STATIONHDR there{}; // different labels may share a key
    return collection_.readStationHeader(numbers_[entry], there, nullptr) && sameLabels(there, header);
}

int RExistingStations::find(const STATIONHDR& header)
{
    const auto place = cruises_.find(cruiseKey(fieldText(header.cruise), fieldText(header.type)));
    if (place == cruises_.end() || place->second >= collection_.cruises.size()) return 0;
    const collection::CRUISEINFO& cruise = collection_.cruises[place->second];
    int found = 0;
    const auto [first, last] = byLabels_.equal_range(labelsKey(header));
    for (auto it = first; it != last; ++it) {
        const int number = numbers_[it->second];
        const bool inRange = number >= cruise.firstNumber && number <= cruise.lastNumber;
        if (inRange && (found == 0 || number < found) && isTheSame(it->second, header)) found = number;
    }
    return found;
}

void RExistingStations::noteStored(int asked, int given, const STATIONHDR& header)
{
    if (asked == 0) {
        add(given, header);
        return;
    }
    const auto [first, last] = byLabels_.equal_range(labelsKey(header));
    for (auto it = first; it != last; ++it) {
        if (numbers_[it->second] == asked) fill(it->second, header);
    }
    if (given == asked) return;
    for (std::int32_t& number : numbers_) { // the station outgrew its place: it went to the end
        if (number == asked) {
            number = given;
        } else if (number > asked) {
            --number;
        }
    }
}

} // namespace importing
