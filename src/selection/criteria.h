#pragma once

// Which stations and which samples take part.

#include <optional>
#include <span>

#include "collection/rcollection.h"
#include "selection/polygonscan.h"
#include "selection/selectedlist.h"
#include "selection/wildcard.h"

namespace selection {

// The defaults on the map domain; for a netCDF collection (kind 2) years -40000 to 5000.
void resetSelection(collection::SELECTIONCRITERIA& criteria, const MAPDOMAIN& domain, int kind);

// The station test; the first failure ends it. The polygon's vertices may be nudged by a relative 1e-6.
[[nodiscard]] bool passesSelection(int number, const collection::STATIONHDR& header,
                                   const collection::LEVELCOUNTS& counts,
                                   const collection::SELECTIONCRITERIA& criteria,
                                   collection::DOMAINPOLYGON& polygon, bool checkCruise);

// The same test without that of the cruise, prepared for many stations: the same answers, and the same nudges
// of the polygon's vertices, if all stations are given to it in the same order.
class RStationTest {
public:
    RStationTest(const collection::SELECTIONCRITERIA& criteria, collection::DOMAINPOLYGON& polygon);
    [[nodiscard]] bool passes(int number, const collection::STATIONHDR& header,
                              const collection::LEVELCOUNTS& counts);

private:
    const collection::SELECTIONCRITERIA& criteria_;
    std::optional<RPolygonScan> polygon_;
};

// A longitude of 0 to 360 as it stands in a domain: 360 less where lonMin is negative and it lies beyond
// lonMax.
[[nodiscard]] float longitudeIn(float longitude, double lonMin, double lonMax);

// Even-odd rule by crossing count; the last vertex must repeat the first. A vertex with a longitude of
// exactly x is moved in the array, by a relative 1e-6.
[[nodiscard]] bool pointInPolygon(std::span<float> lon, std::span<const float> lat, float x, float y);

// Blanks the values whose flag exceeds `limit`, never those of variable 1; counts stay. Returns how many.
int applyQualityLimit(collection::STATIONDATA& station, int limit, float missing);

// Blanks, in variables 2 and up, the samples outside the sample range of the criteria.
void applySampleRange(collection::STATIONDATA& station, const collection::SELECTIONCRITERIA& criteria,
                      float missing);

// Takes the samples outside the sample range out of the station: blocks, counts and valueCount are made anew.
// Returns the samples that remain; 0 if the station lacks the variable of the range. Without such a variable
// in the criteria, or with all samples in range, nothing changes.
int compressToSampleRange(collection::STATIONDATA& station, const collection::SELECTIONCRITERIA& criteria);

// The stages of a load, as the program joins them to a collection.
class RSelectionStages : public collection::RLoadStages {
public:
    void applyQualityLimit(collection::STATIONDATA& station) override;
    void applySampleRange(collection::STATIONDATA& station) override;
};

} // namespace selection
