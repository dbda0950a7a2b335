#include "import/datefields.h"

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

bool takeDate(std::string_view& rest, HEADERTIME& time)
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

// True for nothing, a "Z", and zero hours and minutes.
bool isGreenwich(std::string_view zone)
{
    if (!zone.starts_with('+') && !zone.starts_with('-')) return true;
    return zone.find_first_of("123456789") == std::string_view::npos;
}

// The time behind a date. False only if it is that of another place.
bool takeTimeOfDay(std::string_view rest, HEADERTIME& time)
{
    if (!takeMark(rest, 'T') && !takeMark(rest, 't') && !takeMark(rest, ' ')) return true;
    int hour = 0, minute = 0;
    double second = 0;
    if (!common::takeInt(rest, hour) || !takeMark(rest, ':') || !common::takeInt(rest, minute)) return true;
    if (takeMark(rest, ':')) (void)common::takeDouble(rest, second);
    time.hour = hour;
    time.minute = minute;
    return isGreenwich(common::trimBlanks(rest));
}

} // namespace

bool scanDate(std::string_view text, HEADERTIME& time)
{
    std::string_view rest = common::trimBlanks(text);
    HEADERTIME read = time;
    if (!takeDate(rest, read) || !takeTimeOfDay(rest, read)) return false;
    time = read;
    return true;
}

void scanTime(std::string_view text, HEADERTIME& time)
{
    int hour = 0, minute = 0;
    if (common::takeInt(text, hour) && takeMark(text, ':') && !common::takeInt(text, minute)) minute = 0;
    time.hour = hour;
    time.minute = minute;
}

} // namespace importing
