#include "import/datefields.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "common/text.h"

namespace importing {
namespace {

bool takeMark(std::string_view& rest, char mark)
{
    if (!rest.starts_with(mark)) return false;
    rest.remove_prefix(1);
    return true;
}

// Three numbers with `mark` between them; `rest` is moved only if they are there.
bool takeThree(std::string_view& rest, char mark, int (&numbers)[3])
{
    std::string_view look = rest;
    if (!common::takeInt(look, numbers[0]) || !takeMark(look, mark) || !common::takeInt(look, numbers[1]) ||
        !takeMark(look, mark) || !common::takeInt(look, numbers[2]))
        return false;
    rest = look;
    return true;
}

bool takeDate(std::string_view& rest, variables::HEADERTIME& time)
{
    const auto set = [&](int year, int month, int day) {
        time.year = year;
        time.month = month;
        time.day = day;
        return year >= std::numeric_limits<std::int16_t>::min() &&
               year <= std::numeric_limits<std::int16_t>::max();
    };
    const auto full = [](int year) { return year < 100 ? year + 1900 : year; };
    int n[3] = {};
    if (takeThree(rest, '/', n)) return set(full(n[2]), n[0], n[1]);
    if (rest.find('-') == 4 && takeThree(rest, '-', n)) return set(n[0], n[1], n[2]);
    return takeThree(rest, '.', n) && set(full(n[2]), n[1], n[0]);
}

bool takeWord(std::string_view& rest, std::string_view lowerWord)
{
    if (common::toLower(rest.substr(0, lowerWord.size())) != lowerWord) return false;
    rest.remove_prefix(lowerWord.size());
    return true;
}

// True for nothing, the names of Greenwich time, and zero hours and minutes.
bool isGreenwich(std::string_view zone)
{
    if (common::equalsIgnoreCase(zone, "Z") || common::equalsIgnoreCase(zone, "h")) return true;
    if (!takeWord(zone, "utc")) (void)takeWord(zone, "gmt");
    return zone.find_first_not_of("+-0:") == std::string_view::npos;
}

// The halves of a 12-hour clock. False if one stands behind an hour that it can't have.
bool takeHalf(std::string_view& rest, int& hour)
{
    const bool evening = takeWord(rest, "pm") || takeWord(rest, "p.m.");
    if (!evening && !takeWord(rest, "am") && !takeWord(rest, "a.m.")) return true;
    rest = common::trimBlanks(rest);
    if (hour > 12) return evening; // of 24 hours after all
    hour = hour % 12 + (evening ? 12 : 0);
    return true;
}

void skipFraction(std::string_view& rest)
{
    if (!rest.starts_with('.') && !rest.starts_with(',')) return;
    rest.remove_prefix(1);
    rest.remove_prefix(std::min(rest.find_first_not_of("0123456789"), rest.size()));
}

// What stands behind hours and minutes. False if it makes another time of them, or can't be understood.
bool takeRestOfTime(std::string_view rest, int& hour)
{
    int second = 0;
    if (takeMark(rest, ':')) (void)common::takeInt(rest, second);
    skipFraction(rest);
    rest = common::trimBlanks(rest);
    return takeHalf(rest, hour) && isGreenwich(rest);
}

// The time behind a date. False only if it is that of another place, or can't be understood.
bool takeTimeOfDay(std::string_view rest, variables::HEADERTIME& time)
{
    if (!takeMark(rest, 'T') && !takeMark(rest, 't') && !takeMark(rest, ' ')) return true;
    int hour = 0;
    std::string_view look = rest;
    if (!common::takeInt(look, hour)) return true;
    std::string_view half = common::trimBlanks(look);
    const bool isTime = look.starts_with(':') || takeWord(half, "am") || takeWord(half, "pm");
    return !isTime || scanTime(rest, time);
}

} // namespace

bool scanDate(std::string_view text, variables::HEADERTIME& time)
{
    std::string_view rest = common::trimBlanks(text);
    variables::HEADERTIME read = time;
    if (!takeDate(rest, read) || !takeTimeOfDay(rest, read)) return false;
    time = read;
    return true;
}

bool scanTime(std::string_view text, variables::HEADERTIME& time)
{
    int hour = 0, minute = 0;
    bool understood = true;
    if (common::takeInt(text, hour)) {
        if (takeMark(text, ':') && !common::takeInt(text, minute)) minute = 0;
        understood = takeRestOfTime(text, hour);
    }
    if (!understood) return false;
    time.hour = hour;
    time.minute = minute;
    return true;
}

} // namespace importing
