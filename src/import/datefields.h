#pragma once

// Dates and times that stand in a field as text.

#include <string_view>

#include "variables/timeconversions.h"

namespace importing {

// Reads 07/15/1995 (month, day, year), 1995-07-15 or 15.07.1995; a year below 100 is of the last century,
// except in the second form, whose year has four digits. A time behind it, divided by a blank or a "T", is
// taken too. False, with `time` as it was, if there is no such date, or if its time is not that of Greenwich.
[[nodiscard]] bool scanDate(std::string_view text, variables::HEADERTIME& time);

// Reads hours and minutes, 12:34, also of a 12-hour clock, 1:30 PM; what isn't there is 0. False, with `time`
// as it was, if text follows that names another zone than Greenwich or can't be understood.
[[nodiscard]] bool scanTime(std::string_view text, variables::HEADERTIME& time);

} // namespace importing
