#include <algorithm>
#include <string_view>

#include "common/text.h"
#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/timeconversions.h"

namespace variables {
namespace {

using collection::CRUISEINFO;
using collection::STATIONHDR;
using common::fieldText;

// All levels hold the same, and all count as present.
int fill(const CALCULATION& calculation, float value)
{
    std::fill(calculation.values.begin(), calculation.values.end(), value);
    std::fill(calculation.flags.begin(), calculation.flags.end(), collection::flagGood);
    return static_cast<int>(calculation.levels());
}

bool hasMonth(const STATIONHDR& header)
{
    return header.month >= 1 && header.month <= 12;
}

int headerTime(const CALCULATION& calculation)
{
    const STATIONHDR& header = calculation.station.header;
    return fill(calculation, hasMonth(header) ? cellOf(yearFraction(header.month, header.day, header.year,
                                                                    header.hour, header.minute))
                                              : common::MISSING_VALUE);
}

int headerDayOfYear(const CALCULATION& calculation)
{
    const STATIONHDR& header = calculation.station.header;
    return fill(calculation, hasMonth(header)
                                 ? static_cast<float>(dayOfYear(header.month, header.day, header.year))
                                 : common::MISSING_VALUE);
}

// Counted as the map counts, which may begin in the western hemisphere.
int longitude(const CALCULATION& calculation)
{
    const float value = calculation.station.header.longitude;
    const bool isBeyondMap = calculation.with.mapWest < 0 && value > calculation.with.mapEast;
    return fill(calculation, isBeyondMap ? value - 360 : value);
}

int latitude(const CALCULATION& calculation)
{
    return fill(calculation, calculation.station.header.latitude);
}

// The number at the front of the label.
int stationNumber(const CALCULATION& calculation)
{
    std::string_view label = fieldText(calculation.station.header.station);
    float number = common::MISSING_VALUE;
    if (!common::takeFloat(label, number)) number = common::MISSING_VALUE;
    return fill(calculation, number);
}

bool isOf(const CRUISEINFO& entry, const STATIONHDR& header)
{
    return fieldText(entry.cruise) == fieldText(header.cruise) &&
           fieldText(entry.type) == fieldText(header.type);
}

bool comesBefore(const CRUISEINFO& entry, const STATIONHDR& header)
{
    const int order = fieldText(entry.cruise).compare(fieldText(header.cruise));
    return order != 0 ? order < 0 : fieldText(entry.type) < fieldText(header.type);
}

// Index of the station's entry, or of another of its cruise; the count of entries if there is none. The
// entries are in order unless a file says otherwise, so that all are looked through only where the search
// fails.
std::size_t entryOf(const std::vector<CRUISEINFO>& entries, const STATIONHDR& header)
{
    const auto indexOf = [&](auto place) { return static_cast<std::size_t>(place - entries.begin()); };
    const auto likely = std::lower_bound(entries.begin(), entries.end(), header, comesBefore);
    if (likely != entries.end() && isOf(*likely, header)) return indexOf(likely);
    const auto same = std::find_if(entries.begin(), entries.end(),
                                   [&](const CRUISEINFO& entry) { return isOf(entry, header); });
    if (same != entries.end()) return indexOf(same);
    return indexOf(std::find_if(entries.begin(), entries.end(), [&](const CRUISEINFO& entry) {
        return fieldText(entry.cruise) == fieldText(header.cruise);
    }));
}

int cruiseNumber(const CALCULATION& calculation)
{
    const std::vector<CRUISEINFO>& entries = calculation.collection().cruises;
    const std::size_t index = entryOf(entries, calculation.station.header);
    return fill(calculation, index < entries.size() ? static_cast<float>(index + 1) : common::MISSING_VALUE);
}

} // namespace

std::span<const CALCULATORROW> headerCalculators()
{
    static constexpr CALCULATORROW rows[] = {
        {idHeaderTime, headerTime}, {idHeaderDayOfYear, headerDayOfYear}, {idLongitude, longitude},
        {idLatitude, latitude},     {idStationNumber, stationNumber},     {idCruiseNumber, cruiseNumber}};
    return rows;
}

} // namespace variables
