#pragma once

// Which stations and which samples take part.

#include <span>

#include "collection/rcollection.h"
#include "selection/selectedlist.h"

namespace selection {

// The defaults on the map domain; for a netCDF collection (kind 2) years -40000 to 5000.
void resetSelection(collection::SELECTIONCRITERIA& criteria, const MAPDOMAIN& domain, int kind);

// The station test; the first failure ends it. The polygon's vertices may be nudged by a relative 1e-6.
[[nodiscard]] bool passesSelection(int number, const collection::STATIONHDR& header,
                                   const collection::LEVELCOUNTS& counts,
                                   const collection::SELECTIONCRITERIA& criteria,
                                   collection::DOMAINPOLYGON& polygon, bool checkCruise);

// "*", "?" and bracket sets, case-sensitive, the whole of `label`.
[[nodiscard]] bool matchesWildcard(std::string_view pattern, std::string_view label);

// Even-odd rule by crossing count; the last vertex must repeat the first.
[[nodiscard]] bool pointInPolygon(std::span<float> lon, std::span<const float> lat, float x, float y);

// Blanks the values whose flag exceeds `limit`, never those of variable 1. Returns how many.
int applyQualityLimit(collection::STATIONDATA& station, int limit, float missing);

// Blanks, in variables 2 and up, the samples outside the sample range of the criteria.
void applySampleRange(collection::STATIONDATA& station, const collection::SELECTIONCRITERIA& criteria,
                      float missing);

// Takes the samples outside the sample range out of the station. Returns the samples that remain.
int compressToSampleRange(collection::STATIONDATA& station, const collection::SELECTIONCRITERIA& criteria);

// The stages of a load, as the program joins them to a collection.
class RSelectionStages : public collection::RLoadStages {
public:
    void applyQualityLimit(collection::STATIONDATA& station) override;
    void applySampleRange(collection::STATIONDATA& station) override;
};

} // namespace selection
