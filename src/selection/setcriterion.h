#pragma once

// Criteria given as words and values.

#include <span>
#include <string>
#include <string_view>

#include "collection/selectioncriteria.h"
#include "collection/varinfo.h"

namespace selection {

// What criteria are set on.
struct CRITERIATARGET {
    collection::SELECTIONCRITERIA& criteria;
    collection::DOMAINPOLYGON& polygon;
    std::span<const collection::VARINFO> variables; // index 0 is no variable
    int variableCount = 0;                          // those of the collection; derived ones follow
};

// Sets one criterion: cruise, type, label_from, label_to, number_from, number_to (station labels as numbers),
// station=a:b (internal numbers), day, month, year, lon, lat, bottom, last_depth (each a or a:b), quality
// (0, 1, 4, 8 or good, unknown, questionable, all), sample=variable:a:b, require=variable[:variable ...] or
// none, polygon=file. An end of a range that is left out is no limit. Returns what is wrong, empty if nothing
// is; then everything is as it was.
[[nodiscard]] std::string setCriterion(CRITERIATARGET target, std::string_view key, std::string_view value);

// What two records differ in, for whoever has to build the list or the plots anew.
[[nodiscard]] bool stationCriteriaDiffer(const collection::SELECTIONCRITERIA& a,
                                         const collection::SELECTIONCRITERIA& b);
[[nodiscard]] bool sampleCriteriaDiffer(const collection::SELECTIONCRITERIA& a,
                                        const collection::SELECTIONCRITERIA& b);

// A polygon from a text file, "longitude latitude" a line (blanks, TAB, comma or semicolon between them; "#"
// begins a comment); it is closed if it isn't. At least 3 corners, at most 1499. False with `fault` as
// "<file>:<line>: <what>".
[[nodiscard]] bool readPolygon(const std::string& path, collection::DOMAINPOLYGON& polygon,
                               std::string& fault);

} // namespace selection
