#include "variables/timeconversions.h"

#include <algorithm>
#include <cmath>

#include "common/calendar.h"
#include "common/text.h"

namespace variables {
namespace {

constexpr double largestNumber = 1e15; // far beyond any date, and exact as a whole number

int truncated(double x)
{
    return static_cast<int>(std::clamp(x, -2e9, 2e9));
}

void setTimeOfDay(double fraction, HEADERTIME& time)
{
    time.hour = truncated(24 * fraction);
    time.minute = truncated((fraction - time.hour / 24.0) * 1440);
}

void setDayOfMonth(double fraction, HEADERTIME& time)
{
    time.day = std::max(1, truncated(30 * fraction));
    if (time.month == 2) time.day = std::min(time.day, 28);
}

// The digits YYYYMMDD of a whole number.
void setDateDigits(double whole, HEADERTIME& time)
{
    const auto digits = static_cast<std::int64_t>(whole);
    time.year = digits / 10000;
    time.month = static_cast<int>(digits / 100 % 100);
    time.day = static_cast<int>(digits % 100);
}

void setMonthAndDay(double monthsAndDays, HEADERTIME& time)
{
    time.month = truncated(monthsAndDays / 100);
    time.day = truncated(std::floor(monthsAndDays) - 100.0 * time.month);
}

void setFromDays(double days, HEADERTIME& time)
{
    const double whole = std::floor(days);
    const common::CALENDARDATE date = common::dateOfDay(static_cast<std::int64_t>(whole));
    const double hours = 24 * (days - whole);
    time.year = date.year;
    time.month = date.month;
    time.day = date.day;
    time.hour = truncated(hours);
    time.minute = truncated(60 * (hours - time.hour));
}

void convertDay(int id, double x, HEADERTIME& time)
{
    const double whole = std::floor(x);
    switch (id) {
    case 2:
        setDateDigits(x, time);
        return;
    case 3:
        setDateDigits(whole, time);
        break;
    case 4:
        setMonthAndDay(x, time);
        break;
    case 5:
        setMonthAndDay(x, time);
        return;
    default:
        time.day = truncated(whole);
        break;
    }
    ++time.day; // the fractional forms count from zero
    setTimeOfDay(x - whole, time);
}

void convertMonthOrYear(int id, double x, HEADERTIME& time)
{
    const double whole = std::floor(x);
    const double fraction = x - whole;
    if (id == 7 || id == 8) {
        if (id == 7) time.year = static_cast<std::int64_t>(x / 100);
        time.month = truncated(whole - (id == 7 ? 100.0 * static_cast<double>(time.year) : 0.0)) + 1;
        setDayOfMonth(fraction, time);
        return;
    }
    time.day = 15;
    switch (id) {
    case 9:
        time.year = static_cast<std::int64_t>(whole) + 1;
        time.month = std::max(1, truncated(12 * fraction));
        break;
    case 10:
        time.year = static_cast<std::int64_t>(whole);
        time.month = 6;
        break;
    default:
        time.year = 0;
        time.month = std::max(1, truncated(12 * x));
        break;
    }
}

void convertTimeOfDay(int id, double x, HEADERTIME& time)
{
    constexpr double unitsAnHour[] = {10000, 100, 1, 60, 3600}; // ids 12 to 16
    time.hour = truncated(x / unitsAnHour[id - 12]);
    switch (id) {
    case 12:
        time.minute = truncated(x / 100 - 100.0 * time.hour);
        break;
    case 13:
        time.minute = truncated(x - 100.0 * time.hour);
        break;
    case 14:
        time.minute = truncated(60 * (x - time.hour));
        break;
    case 15:
        time.minute = truncated(x - 60.0 * time.hour);
        break;
    default:
        time.minute = truncated((x - 3600.0 * time.hour) / 60);
        break;
    }
}

double daysOf(int id, double x)
{
    switch (id) {
    case hoursSinceRow:
        return x / 24;
    case minutesSinceRow:
        return x / 60 / 24;
    case secondsSinceRow:
        return x / 60 / 60 / 24;
    default:
        return x;
    }
}

// Takes a whole number and the character behind it, if that is one of `marks`.
bool takePart(std::string_view& rest, std::string_view marks, int& value)
{
    if (!common::takeInt(rest, value)) return false;
    if (!rest.empty() && marks.find(rest.front()) != std::string_view::npos) rest.remove_prefix(1);
    return true;
}

} // namespace

std::string headerRowLabel(const HEADERROW& row)
{
    return headerRowLabel(row, row.target);
}

std::string headerRowLabel(const HEADERROW& row, std::string_view target)
{
    std::string label(row.source);
    if (!target.empty()) label.append("-> ").append(target);
    return label;
}

int sinceRowOf(std::string_view label)
{
    const std::string lower = common::toLower(label);
    if (lower.find("since") == std::string::npos) return -1;
    constexpr std::string_view units[] = {"day", "hour", "minute", "second"};
    for (int i = 0; i < 4; ++i) {
        if (lower.find(units[i]) != std::string::npos) return daysSinceRow + i;
    }
    return -1;
}

bool referenceDayOf(std::string_view label, double& referenceDay)
{
    const std::size_t since = common::toLower(label).find("since");
    if (since == std::string::npos) return false;
    std::string_view rest = label.substr(since + 5);
    int year = 0, month = 0, day = 0, hour = 0, minute = 0;
    double second = 0;
    if (!takePart(rest, "-", year) || !takePart(rest, "-", month) || !takePart(rest, "T", day)) return false;
    if (month < 1 || month > 12 || day < 1 || day > 31) return false;
    if (takePart(rest, ":", hour) && takePart(rest, ":", minute) && !common::takeDouble(rest, second))
        second = 0;
    referenceDay =
        static_cast<double>(common::dayNumber(year, month, day)) + (hour + (minute + second / 60) / 60) / 24;
    return true;
}

bool convertHeaderTime(int id, double x, double referenceDay, HEADERTIME& time)
{
    if (!(std::abs(x) < largestNumber)) return false;
    HEADERTIME result = time;
    if (id >= 2 && id <= 6) {
        convertDay(id, x, result);
    } else if (id >= 7 && id <= 11) {
        convertMonthOrYear(id, x, result);
    } else if (id >= 12 && id <= 16) {
        convertTimeOfDay(id, x, result);
    } else if (id >= daysSinceRow && id <= secondsSinceRow) {
        setFromDays(daysOf(id, x) + referenceDay, result);
    } else {
        return false;
    }
    // Row 6 and the rows of the time of day leave the month to others.
    const bool givesMonth = givesDate(id) && id != 6;
    if (givesMonth && (result.month < 1 || result.month > 12)) return false;
    time = result;
    return true;
}

bool decodeTime(double value, int code, double origin, HEADERTIME& time)
{
    HEADERTIME result{time.year, time.month, time.day, 0, 0};
    if (!givesDate(code) || !convertHeaderTime(code, value, origin, result)) return false;
    if (result.month < 1 || result.month > 12) return false;
    time = result;
    return true;
}

std::int64_t dayOfYear(int month, int day, std::int64_t year)
{
    return common::dayNumber(year, month, day) - common::dayNumber(year, 1, 1) + 1;
}

double yearFraction(int month, int day, std::int64_t year, int hour, int minute)
{
    const double days = common::isLeapYear(year) ? 366 : 365;
    const double passed = static_cast<double>(dayOfYear(month, day, year) - 1) + (hour + minute / 60.0) / 24;
    return static_cast<double>(year) + passed / days;
}

int timeFormOf(std::string_view label)
{
    if (const int since = sinceRowOf(label); since >= 0) return since;
    const std::string lower = common::toLower(label);
    int found = -1;
    std::size_t longest = 0;
    for (const HEADERROW& row : timeRows) {
        const std::string form = common::toLower(common::trimBlanks(row.source));
        if (form.size() <= longest || lower.find(form) == std::string::npos) continue;
        longest = form.size();
        found = row.id;
    }
    return found;
}

} // namespace variables
