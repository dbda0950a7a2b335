#include "selection/cruisestations.h"

#include <algorithm>
#include <span>
#include <unordered_set>

#include "common/text.h"

namespace selection {
namespace {

using collection::CRUISEINFO;

struct NUMBERSPAN {
    int first = 0, last = -1;
};

bool isOf(std::span<const char> cruise, std::span<const char> type, std::string_view wantedCruise,
          std::string_view wantedType)
{
    return common::fieldText(cruise) == wantedCruise &&
           (wantedType == "*" || common::fieldText(type) == wantedType);
}

// First to last station number of the cruise, over all its entries.
NUMBERSPAN spanOf(const std::vector<CRUISEINFO>& entries, std::string_view cruise, std::string_view type)
{
    NUMBERSPAN span;
    for (const CRUISEINFO& entry : entries) {
        if (!isOf(entry.cruise, entry.type, cruise, type)) continue;
        const bool isFirst = span.last < span.first;
        span.first = isFirst ? entry.firstNumber : std::min(span.first, entry.firstNumber);
        span.last = isFirst ? entry.lastNumber : std::max(span.last, entry.lastNumber);
    }
    return span;
}

} // namespace

std::vector<SELECTEDSTATION> findCruiseStations(collection::RCollection& collection, std::string_view cruise,
                                                std::string_view type, const MAPDOMAIN& domain)
{
    const NUMBERSPAN span = spanOf(collection.cruises, cruise, type);
    std::vector<SELECTEDSTATION> found;
    const auto visit = [&](int number, const collection::STATIONHDR& header, const auto&) {
        if (!isOf(header.cruise, header.type, cruise, type)) return true;
        const SELECTEDSTATION station = stationOn(domain, number, header);
        if (isWithin(domain, station)) found.push_back(station);
        return true;
    };
    // Headers that can't be true or can't be read are of no cruise; the building of the list has told them.
    static_cast<void>(collection.scanHeaders(span.first, span.last, visit, [](int) {}));
    return found;
}

std::vector<std::string> cruiseLabels(const collection::RCollection& collection)
{
    std::vector<std::string> labels;
    std::unordered_set<std::string> known;
    for (const CRUISEINFO& entry : collection.cruises) {
        std::string label(common::fieldText(entry.cruise));
        if (known.insert(label).second) labels.push_back(std::move(label));
    }
    return labels;
}

} // namespace selection
