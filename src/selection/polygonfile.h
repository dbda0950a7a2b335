#pragma once

// Polygons of a domain: made whole, read from a text file.

#include <string>
#include <string_view>

#include "collection/selectioncriteria.h"

namespace selection {

// Repeats the first vertex behind the last unless that is done. Where there is no room for one more, the last
// gives way.
void closePolygon(collection::DOMAINPOLYGON& polygon);

// The domain becomes the polygon and the rectangle around it.
void setPolygonDomain(collection::SELECTIONCRITERIA& criteria, const collection::DOMAINPOLYGON& polygon);

// A polygon from a text: "longitude latitude" a line (blanks, TAB, comma or semicolon between them; "#"
// begins a comment); it is closed if it isn't. At least 3 corners, at most 1499. Longitudes run on over the
// date line (170 to 190, or -190 to -170) and span 360 degrees at most; a polygon that reaches beyond 360 is
// taken 360 degrees further west. False, with nothing changed, with `fault` as "<line>: <what>".
[[nodiscard]] bool parsePolygon(std::string_view content, collection::DOMAINPOLYGON& polygon,
                                std::string& fault);

// The same from a file; `fault` is "<file>:<line>: <what>".
[[nodiscard]] bool readPolygon(const std::string& path, collection::DOMAINPOLYGON& polygon,
                               std::string& fault);

} // namespace selection
