#pragma once

// Criteria that take the place of those in force.

#include "collection/rcollection.h"

namespace selection {

// What two records differ in, for whoever has to build the list or the plots anew: in what the station test
// reads, or in the quality limit and the sample range.
[[nodiscard]] bool stationCriteriaDiffer(const collection::SELECTIONCRITERIA& a,
                                         const collection::SELECTIONCRITERIA& b);
[[nodiscard]] bool sampleCriteriaDiffer(const collection::SELECTIONCRITERIA& a,
                                        const collection::SELECTIONCRITERIA& b);

struct CRITERIACHANGE {
    bool stations = false; // the list is to be built anew
    bool samples = false;  // the plots are to be drawn anew

    [[nodiscard]] bool any() const { return stations || samples; }
};

// What differs between two pairs; a polygon counts only where it is used.
[[nodiscard]] CRITERIACHANGE changeBetween(const collection::SELECTIONCRITERIA& oldCriteria,
                                           const collection::DOMAINPOLYGON& oldPolygon,
                                           const collection::SELECTIONCRITERIA& newCriteria,
                                           const collection::DOMAINPOLYGON& newPolygon);

// Puts criteria in force, with their quality limit; a change of them is one of the configuration. Where
// nothing differs nothing is touched.
CRITERIACHANGE putInForce(collection::RCollection& collection, const collection::SELECTIONCRITERIA& criteria,
                          const collection::DOMAINPOLYGON& polygon);

} // namespace selection
