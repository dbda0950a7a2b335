#include "selection/criteria.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "common/text.h"

namespace selection {
namespace {

using collection::DOMAINPOLYGON;
using collection::LEVELCOUNTS;
using collection::SELECTIONCRITERIA;
using collection::STATIONHDR;

using collection::anyDepth;

template <typename Number, typename Bound>
bool isWithin(Number value, Bound low, Bound high)
{
    return value >= low && value <= high;
}

bool passesNumber(int number, const SELECTIONCRITERIA& criteria)
{
    return number >= 1 && isWithin(number, criteria.internalMin, criteria.internalMax);
}

bool passesRectangle(const STATIONHDR& header, const SELECTIONCRITERIA& criteria)
{
    return isWithin(longitudeIn(header.longitude, criteria.lonMin, criteria.lonMax), criteria.lonMin,
                    criteria.lonMax) &&
           isWithin(header.latitude, criteria.latMin, criteria.latMax);
}

bool passesPolygon(const STATIONHDR& header, const SELECTIONCRITERIA& criteria, DOMAINPOLYGON& polygon)
{
    if (criteria.usePolygon != 1) return true;
    const std::size_t n = vertexCount(polygon);
    return pointInPolygon(std::span(polygon.lon).first(n), std::span(polygon.lat).first(n),
                          longitudeIn(header.longitude, criteria.lonMin, criteria.lonMax), header.latitude);
}

bool passesDate(const STATIONHDR& header, const SELECTIONCRITERIA& criteria)
{
    return isWithin(header.day, criteria.dayMin, criteria.dayMax) && isWithin(header.month, 1, 12) &&
           isWithin(header.year, criteria.yearMin, criteria.yearMax) &&
           criteria.months[header.month - 1] == '+';
}

// The default limits admit any depth, also one that is missing.
bool isDepthWithin(double depth, std::int32_t low, std::int32_t high)
{
    return (low == -anyDepth || depth >= low) && (high == anyDepth || depth <= high);
}

bool passesDepths(const STATIONHDR& header, const SELECTIONCRITERIA& criteria)
{
    return isDepthWithin(header.bottomDepth, criteria.bottomMin, criteria.bottomMax) &&
           isDepthWithin(header.lastSampleDepth, criteria.lastDepthMin, criteria.lastDepthMax);
}

bool hasRequired(const LEVELCOUNTS& counts, const SELECTIONCRITERIA& criteria)
{
    const int required = std::clamp(criteria.requiredCount, 0, common::maxVariables);
    return std::all_of(criteria.requiredList, criteria.requiredList + required, [&](std::int32_t v) {
        return v >= 1 && v <= common::maxVariables && counts[static_cast<std::size_t>(v)] >= 1;
    });
}

bool passesType(const STATIONHDR& header, const SELECTIONCRITERIA& criteria)
{
    return criteria.stationType[0] == '*' || criteria.stationType[0] == header.type[0];
}

bool isDigits(std::string_view text)
{
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Byte by byte, but of two labels of digits the shorter one comes first, so that 9 stands before 10.
bool isBelow(std::string_view a, std::string_view b)
{
    if (a.size() != b.size() && isDigits(a) && isDigits(b)) return a.size() < b.size();
    return a < b;
}

// The lengths of the bounds bind too. The default upper bound admits any label, also one behind "z".
bool isBetweenLabels(std::string_view label, std::string_view from, std::string_view to)
{
    return !isBelow(label, from) && (!isBelow(to, label) || to == collection::lastLabelBound) &&
           label.size() >= from.size() && label.size() <= to.size();
}

bool passesLabel(const STATIONHDR& header, const SELECTIONCRITERIA& criteria)
{
    const std::string_view label = common::fieldText(header.station);
    if (criteria.stationNumberMin >= 0 && criteria.stationNumberMax >= 0) {
        const std::optional<int> number = collection::numericLabel(label);
        return number && isWithin(*number, criteria.stationNumberMin, criteria.stationNumberMax);
    }
    return isBetweenLabels(label, common::fieldText(criteria.stationLabelFrom),
                           common::fieldText(criteria.stationLabelTo));
}

bool passesCruise(const STATIONHDR& header, const SELECTIONCRITERIA& criteria)
{
    return matchesWildcard(common::fieldText(criteria.cruisePattern), common::fieldText(header.cruise));
}

// What follows the domain, without the cruise.
bool passesTheRest(const STATIONHDR& header, const LEVELCOUNTS& counts, const SELECTIONCRITERIA& criteria)
{
    return passesDate(header, criteria) && passesDepths(header, criteria) && hasRequired(counts, criteria) &&
           passesType(header, criteria) && passesLabel(header, criteria);
}

} // namespace

float longitudeIn(float longitude, double lonMin, double lonMax)
{
    return lonMin < 0 && longitude > lonMax ? longitude - 360 : longitude;
}

void resetSelection(SELECTIONCRITERIA& criteria, const MAPDOMAIN& domain, int kind)
{
    criteria = collection::defaultCriteria();
    criteria.lonMin = static_cast<float>(domain.lonMin);
    criteria.lonMax = static_cast<float>(domain.lonMax);
    criteria.latMin = static_cast<float>(domain.latMin);
    criteria.latMax = static_cast<float>(domain.latMax);
    if (kind == 2) {
        criteria.yearMin = -40000;
        criteria.yearMax = 5000;
    }
}

bool passesSelection(int number, const STATIONHDR& header, const LEVELCOUNTS& counts,
                     const SELECTIONCRITERIA& criteria, DOMAINPOLYGON& polygon, bool checkCruise)
{
    return passesNumber(number, criteria) && passesRectangle(header, criteria) &&
           passesPolygon(header, criteria, polygon) && passesTheRest(header, counts, criteria) &&
           (!checkCruise || passesCruise(header, criteria));
}

RStationTest::RStationTest(const SELECTIONCRITERIA& criteria, DOMAINPOLYGON& polygon) : criteria_(criteria)
{
    if (criteria.usePolygon == 1) polygon_.emplace(polygon);
}

// The polygon is asked last, since that takes longest; but it is nudged by every station of the rectangle.
bool RStationTest::passes(int number, const STATIONHDR& header, const LEVELCOUNTS& counts)
{
    if (!passesNumber(number, criteria_) || !passesRectangle(header, criteria_)) return false;
    const float longitude = longitudeIn(header.longitude, criteria_.lonMin, criteria_.lonMax);
    if (polygon_) polygon_->nudge(longitude);
    return passesTheRest(header, counts, criteria_) &&
           (!polygon_ || polygon_->contains(longitude, header.latitude));
}

bool pointInPolygon(std::span<float> lon, std::span<const float> lat, float x, float y)
{
    for (float& vertex : lon) {
        if (vertex == x) vertex = nudged(vertex);
    }
    bool inside = false;
    for (std::size_t i = 1; i < lon.size(); ++i) {
        if (edgeCounts(lon[i - 1], lat[i - 1], lon[i], lat[i], x, y)) inside = !inside;
    }
    return inside;
}

} // namespace selection
