#pragma once

// The descriptor of a variable and the forms of its label.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace collection {

struct VARINFO {
    char label[61];           // full label with units in square brackets, with drawing markup
    char plainLabel[61];      // without markup
    char shortLabel[61];      // cut at the first "[" and trimmed
    char source[61];          // "built-in" for table variables; the macro path for macro variables
    float param;              // reference pressure, integration start, denominator limit, or 0
    float rangeMin, rangeMax; // smallest and largest value seen; start at +1.0e10 and -1.0e10
    std::int32_t id;          // calculator number, for derived variables only
    std::int32_t intParam;
    std::int32_t width;       // format: field width
    std::int32_t decimals;    // format: digits behind the point
    std::int32_t position;    // place in lists, 1-based
    std::int32_t nSources;    // input variables
    std::int32_t sources[10]; // their numbers
    std::int32_t qualifier;
    float resolution, resolution2;

    // An import run and the variable editor keep their links here; never stored.
    std::int32_t assoc;       // source side: 0 not associated, else the target variable
    std::int32_t assocSource; // target side: 0 no source, -1 the default value, else the source variable
    std::int32_t column;      // column or slot of the variable in the file
    std::int32_t qfColumn;    // column of its quality flags, 0 none
    float scale, offset;      // conversion: y = scale x + offset; offset MISSING_VALUE marks a special one
    float defaultValue;       // target side, used where assocSource is -1
};

// An empty variable at place `number`: no labels, format 8.2, no range yet, nothing associated.
[[nodiscard]] VARINFO emptyVariable(int number);

// Sets the label, cut at 60 bytes, and the two forms that derive from it.
void setLabel(VARINFO& variable, std::string_view label);

// `label` without markup: a "~" and the character behind it are dropped; "~$m" gives the letter u and drops
// the rest of that sequence ("~$m~#mol/l" becomes "umol/l"); a byte 0xF2 becomes 0xA6.
[[nodiscard]] std::string plainLabelOf(std::string_view label);
// `label` cut at the first "[" and trimmed of blanks.
[[nodiscard]] std::string shortLabelOf(std::string_view label);

// The variable that `text` names among variables 1 to count (index 0 of the span is no variable): its number,
// or its whole, plain or short label, or the plain one without its units, case ignored; 0 if there is none. A
// whole label wins over a short one.
[[nodiscard]] int findVariable(std::span<const VARINFO> variables, int count, std::string_view text);

} // namespace collection
