#pragma once

// Criteria given as words and values.

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "collection/selectioncriteria.h"
#include "collection/varinfo.h"
#include "selection/criteriachange.h"
#include "selection/polygonfile.h"

namespace selection {

// What criteria are set on.
struct CRITERIATARGET {
    collection::SELECTIONCRITERIA& criteria;
    collection::DOMAINPOLYGON& polygon;
    std::span<const collection::VARINFO>
        variables;         // index 0 is no variable; it ends with the last derived one
    int variableCount = 0; // those of the collection; derived ones follow
};

// Sets one criterion:
//   cruise      a wildcard pattern for the cruise label
//   type        *, B, C, X, or any, bottle, ctd, xbt
//   label_from, label_to     bounds of the station label; no text is no bound
//   number_from, number_to   bounds of the station label as a number, 0 or above; no text is no bound, and
//               without either the label is no number again
//   station     internal numbers
//   day, year, bottom, last_depth   whole numbers
//   month       numbers, English names (three letters do), ranges of these that may run over the new year,
//               winter, spring, summer, fall, all; several with commas between them
//   lon         -360 to 720, at most 360 wide; a range whose end is below its beginning runs eastward over 0
//               or the date line
//   lat         -90 to 90
//   quality     0, 1, 4, 8 or good, unknown, questionable, all
//   sample      variable:a:b or none; any variable
//   require     variable[:variable ...] or none; those of the collection
//   polygon     a file (see polygonfile.h), or none
// Ranges are a:b or a alone; an end that is left out is no limit. Variables go by number or label; a label
// may be put in double quotes. Returns what is wrong, empty if nothing is; then everything is as it was.
[[nodiscard]] std::string setCriterion(CRITERIATARGET target, std::string_view key, std::string_view value);

// The longitudes of the domain, from west to east; brought to where stations are found. False, with nothing
// changed, if they span more than 360 degrees.
[[nodiscard]] bool setLongitudes(collection::SELECTIONCRITERIA& criteria, double west, double east);

// Stands in stationNumberMax for labels that are numbers of any size, and at either end of the sample range
// for no limit.
inline constexpr std::int32_t anyLabelNumber = std::numeric_limits<std::int32_t>::max();
inline constexpr float anyValue = std::numeric_limits<float>::max(); // also negative

} // namespace selection
