#pragma once

// The Gregorian calendar, carried on before its introduction, as a count of days.

#include <cstdint>

namespace common {

struct CALENDARDATE {
    std::int64_t year;
    int month, day; // 1 to 12, 1 to 31
};

// Days from 1900-01-01, which is day 0. The day may lie outside the month (32 January is 1 February); the
// month is taken within 1 to 12.
// Source: Hinnant (2013), chrono-compatible low-level date algorithms.
[[nodiscard]] constexpr std::int64_t dayNumber(std::int64_t year, int month, int day)
{
    const std::int64_t y = month <= 2 ? year - 1 : year; // years begin in March, leap days end them
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yearOfEra = y - era * 400;
    const std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 693901;
}

// The date of a day number.
[[nodiscard]] constexpr CALENDARDATE dateOfDay(std::int64_t number)
{
    const std::int64_t z = number + 693901;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t dayOfEra = z - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shifted = static_cast<int>((5 * dayOfYear + 2) / 153);
    const int month = shifted < 10 ? shifted + 3 : shifted - 9;
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month,
            static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1)};
}

[[nodiscard]] constexpr bool isLeapYear(std::int64_t year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

static_assert(dayNumber(1900, 1, 1) == 0 && dayNumber(1970, 1, 1) == 25567);
static_assert(dateOfDay(0).year == 1900 && dateOfDay(59).month == 3 && dateOfDay(59).day == 1);

} // namespace common
