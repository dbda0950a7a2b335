#pragma once

// Dates and times that stand in a column as one number. A row of the table tells how such a number is read;
// the same forms serve a date in a station's header, a fractional year, and a day of the year.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace variables {

struct HEADERROW {
    int id;                  // the same for all rows of one reading
    std::string_view source; // what stands in the file, padded as the lists show it
    std::string_view target; // what a station's header takes from it
};

inline constexpr int identityRow = 0, linearRow = 1;
inline constexpr int daysSinceRow = 31, hoursSinceRow = 32, minutesSinceRow = 33, secondsSinceRow = 34;

inline constexpr auto headerRows = std::to_array<HEADERROW>({
    {0, "Identity Transformation", ""},
    {1, "General Linear Transformation", ""},
    {2, "date as YYYYMMDD   ", "mon/day/year"},
    {2, "day as %Y%m%d      ", "mon/day/year"},
    {3, "day as %Y%m%d.%f   ", "mon/day/year hh:mm"},
    {4, "day as %m%d.%f     ", "mon/day/year hh:mm"},
    {5, "day as %m%d        ", "mon/day/year"},
    {6, "day as .%f         ", "mon/day/year hh:mm"},
    {7, "month as %Y%m.%f   ", "mon/day/year"},
    {8, "month as %m.%f     ", "mon/day/year"},
    {9, "year as %Y.%f      ", "mon/day/year"},
    {10, "year as %Y         ", "mon/day/year"},
    {11, "year as .%f        ", "mon/day/year"},
    {12, "time as hhmmss     ", "hh:mm"},
    {13, "time as hhmm       ", "hh:mm"},
    {14, "hour as %H.%f      ", "hh:mm"},
    {15, "minute as %M.%f    ", "hh:mm"},
    {16, "second as %S.%f    ", "hh:mm"},
    {31, "days since yyyy-mm-dd hh:mm:ss  ", "mon/day/year hh:mm"},
    {32, "hours since yyyy-mm-dd hh:mm:ss ", "mon/day/year hh:mm"},
    {33, "minutes since yyyy-mm-dd hh:mm:ss ", "mon/day/year hh:mm"},
    {34, "seconds since yyyy-mm-dd hh:mm:ss ", "mon/day/year hh:mm"},
});
static_assert(headerRows.size() == 22);

// True for the rows that also stand in the tables for "Time [yr]" and "Day of Year [days]".
[[nodiscard]] constexpr bool givesDate(int id)
{
    return (id >= 2 && id <= 11) || (id >= daysSinceRow && id <= secondsSinceRow);
}

// A row as the list of header conversions shows it, and with another target behind the arrow.
[[nodiscard]] std::string headerRowLabel(const HEADERROW& row);
[[nodiscard]] std::string headerRowLabel(const HEADERROW& row, std::string_view target);

// The id of the row for a column label that holds "day", "hour", "minute" or "second" together with "since"
// (case ignored); -1 for any other label.
[[nodiscard]] int sinceRowOf(std::string_view label);

// The origin behind "since" in a label, "yyyy-mm-dd hh:mm:ss" with the time left out if it is 0:00, as a day
// number (common/calendar.h) with its fraction. False if no date stands there.
[[nodiscard]] bool referenceDayOf(std::string_view label, double& referenceDay);

// What a conversion works on; a row changes only the parts that it gives.
struct HEADERTIME {
    std::int64_t year = 0;
    int month = 0, day = 0, hour = 0, minute = 0;

    bool operator==(const HEADERTIME&) const = default;
};

// Reads `x` as row `id` tells. `referenceDay` is the origin of the "since" rows. False, with `time` as it
// was, for rows 0 and 1, for numbers that are not finite or beyond any date, and for a month outside 1 to 12.
[[nodiscard]] bool convertHeaderTime(int id, double x, double referenceDay, HEADERTIME& time);

// The same as a fractional year, and as a day of the year (1 on 1 January); for rows where givesDate holds.
[[nodiscard]] bool convertToYears(int id, double x, double referenceDay, double& years);
[[nodiscard]] bool convertToDayOfYear(int id, double x, double referenceDay, double& day);

} // namespace variables
