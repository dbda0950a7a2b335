#include "selection/criteriachange.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace selection {
namespace {

using collection::DOMAINPOLYGON;
using collection::RCollection;
using collection::SELECTIONCRITERIA;

// The four fields of the samples stand together inside the record; what is in front of them and behind is the
// stations'.
constexpr std::size_t samplesBegin = offsetof(SELECTIONCRITERIA, qualityLimit);
constexpr std::size_t samplesEnd = offsetof(SELECTIONCRITERIA, bottomMin);
static_assert(samplesEnd - samplesBegin == 16);

bool bytesDiffer(const SELECTIONCRITERIA& a, const SELECTIONCRITERIA& b, std::size_t begin, std::size_t end)
{
    const auto* const first = reinterpret_cast<const std::byte*>(&a);
    const auto* const second = reinterpret_cast<const std::byte*>(&b);
    return std::memcmp(first + begin, second + begin, end - begin) != 0;
}

bool polygonsDiffer(const DOMAINPOLYGON& a, const DOMAINPOLYGON& b)
{
    if (a.nPoints != b.nPoints) return true;
    const int count = std::clamp(a.nPoints, 0, static_cast<std::int32_t>(a.lon.size()));
    return !std::equal(a.lon.begin(), a.lon.begin() + count, b.lon.begin()) ||
           !std::equal(a.lat.begin(), a.lat.begin() + count, b.lat.begin());
}

} // namespace

bool stationCriteriaDiffer(const SELECTIONCRITERIA& a, const SELECTIONCRITERIA& b)
{
    return bytesDiffer(a, b, 0, samplesBegin) || bytesDiffer(a, b, samplesEnd, sizeof a);
}

bool sampleCriteriaDiffer(const SELECTIONCRITERIA& a, const SELECTIONCRITERIA& b)
{
    return bytesDiffer(a, b, samplesBegin, samplesEnd);
}

CRITERIACHANGE changeBetween(const SELECTIONCRITERIA& oldCriteria, const DOMAINPOLYGON& oldPolygon,
                             const SELECTIONCRITERIA& newCriteria, const DOMAINPOLYGON& newPolygon)
{
    const bool otherPolygon = newCriteria.usePolygon == 1 && polygonsDiffer(oldPolygon, newPolygon);
    return {.stations = otherPolygon || stationCriteriaDiffer(oldCriteria, newCriteria),
            .samples = sampleCriteriaDiffer(oldCriteria, newCriteria)};
}

CRITERIACHANGE putInForce(RCollection& collection, const SELECTIONCRITERIA& criteria,
                          const DOMAINPOLYGON& polygon)
{
    CRITERIACHANGE change = changeBetween(collection.criteria, collection.polygon, criteria, polygon);
    change.samples = change.samples || collection.qualityLimit != criteria.qualityLimit;
    if (!change.any()) return change;
    collection.criteria = criteria;
    collection.polygon = polygon;
    collection.qualityLimit = criteria.qualityLimit;
    collection.configChanged = true;
    return change;
}

} // namespace selection
