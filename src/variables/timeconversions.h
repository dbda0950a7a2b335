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

// What a column gives the station whose header is `time`: only the date and the time of day that it tells,
// the year or month that row `code` (one where givesDate holds) leaves open from `time`, and 0:00 where it
// tells no time of day. `origin` is the day number of the "since" rows. False, with `time` as it was, where
// convertHeaderTime is, or if the month is outside 1 to 12.
[[nodiscard]] bool decodeTime(double value, int code, double origin, HEADERTIME& time);

// Day of the year of a date, 1 on 1 January; month 1 to 12.
[[nodiscard]] std::int64_t dayOfYear(int month, int day, std::int64_t year);
// The year and what has passed of it, as a part of its 365 or 366 days; month 1 to 12.
[[nodiscard]] double yearFraction(int month, int day, std::int64_t year, int hour, int minute);

// --- how a time variable of a collection is read

inline constexpr std::string_view yearTarget = "Time [yr]", dayOfYearTarget = "Day of Year [days]";

// The rows that give a date, in the order of their list; headerRowLabel(row, yearTarget) or with
// dayOfYearTarget is the line of the list.
inline constexpr int timeRowCount = 15;
inline constexpr auto timeRows = [] {
    std::array<HEADERROW, timeRowCount> rows{};
    std::size_t n = 0;
    for (const HEADERROW& row : headerRows) {
        if (givesDate(row.id)) rows[n++] = row;
    }
    return rows;
}();
static_assert(timeRows.back().id == secondsSinceRow);

// The id of the row by which a variable of this label is read: that of sinceRowOf, else of the longest source
// form that stands in the label (case ignored). -1 if there is none.
[[nodiscard]] int timeFormOf(std::string_view label);

// True for the rows whose numbers, as YYYYMMDD, are too large for the 24 bits of a stored value: odd ones
// after 1677 become their neighbours, and a fraction is lost.
[[nodiscard]] constexpr bool exceedsCell(int id)
{
    return id == 2 || id == 3;
}

} // namespace variables
