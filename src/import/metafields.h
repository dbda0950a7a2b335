#pragma once

// The metadata of one line of a spreadsheet.

#include <string>
#include <string_view>
#include <vector>

#include "collection/stationdata.h"
#include "import/spreadsheet.h"

namespace importing {

// The fields of the metavariables of one line; empty where the line has no such field.
struct METAFIELDS {
    std::array<std::string_view, metaCount> text;
    int count = 0; // fields of the line, as far as the last metavariable
};

struct METASPLIT {
    METAFIELDS fields;
    // Bytes of the line up to and with the separator behind the last metavariable; 0 if the line ends first.
    std::size_t length = 0;
};
// Splits off the metavariables. `separator` is that of the file, or of a line without its quotes.
[[nodiscard]] METASPLIT splitMeta(const SPREADSHEETDESC& desc, std::string_view line, char separator);

// True if neither a column nor a default labels the stations: then their running number in the file does.
[[nodiscard]] bool isLabelledByNumber(const SPREADSHEETDESC& desc);
void labelByNumber(collection::STATIONHDR& header, int runningNumber);

// The header that the fields give. `fileIsUtf8` becomes false with the first label that is not UTF-8. A date
// that can't be read, or whose year has no room, gives 0/0/0, a time that can't be understood -1:-1, a
// position that can't be read MISSING_VALUE: the header check refuses them.
[[nodiscard]] collection::STATIONHDR headerOf(const SPREADSHEETDESC& desc, const METAFIELDS& fields,
                                              int runningNumber, bool& fileIsUtf8);

// The first of the labels that is longer than its field, whole and as UTF-8; empty if all fit.
[[nodiscard]] std::string firstCutLabel(const METAFIELDS& fields, bool fileIsUtf8);

// The labels whole, as they stand in the file, in one text that differs if any of them does.
[[nodiscard]] std::string wholeLabels(const METAFIELDS& fields);

// The metavariables for which the header check refuses a header.
[[nodiscard]] std::vector<int> faultyMetas(const collection::STATIONHDR& header, const SPREADSHEETDESC& desc);

// True if a line with header `b` belongs to the same station as one with header `a`: labels, type, date and
// position are equal; time of day and bottom depth don't matter.
[[nodiscard]] bool isSameStation(const collection::STATIONHDR& a, const collection::STATIONHDR& b);

} // namespace importing
