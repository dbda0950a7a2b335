#include "import/fieldscan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

namespace importing {
namespace {

// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint64_t exactLimit = std::uint64_t{1} << 53; // whole numbers up to here are exact doubles
constexpr int mantissaDigits = 19;                           // decimal digits that fit into 64 bits

inline bool isDigit(char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

inline const char* skipBlanks(const char* p, char separator)
{
    while ((*p == ' ' || *p == '\t' || *p == '\v' || *p == '\f') && *p != separator) ++p;
    return p;
}

// The decimal digits in front of an exponent.
struct DECIMAL {
    std::uint64_t mantissa = 0;
    int digits = 0;   // leading zeros included
    int fraction = 0; // of them behind the point
    bool negative = false;
};

inline const char* takeDecimal(const char* p, DECIMAL& decimal)
{
    decimal.negative = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    const char* const whole = p;
    std::uint64_t mantissa = 0; // may wrap where there are too many digits; it isn't used then
    for (; isDigit(*p); ++p) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
    decimal.digits = static_cast<int>(std::min<std::ptrdiff_t>(p - whole, 1000));
    if (*p == '.' || *p == ',') {
        const char* const fraction = ++p;
        for (; isDigit(*p); ++p) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
        decimal.fraction = static_cast<int>(std::min<std::ptrdiff_t>(p - fraction, 1000));
        decimal.digits += decimal.fraction;
    }
    decimal.mantissa = mantissa;
    return p;
}

// The value of a decimal whose mantissa and power of ten are exact doubles: one rounding.
inline bool isExact(const DECIMAL& decimal)
{
    return decimal.digits <= mantissaDigits && decimal.mantissa <= exactLimit && decimal.fraction <= 22;
}

inline double valueOf(const DECIMAL& decimal)
{
    const auto mantissa = static_cast<double>(decimal.mantissa);
    const double value =
        decimal.fraction > 0 ? mantissa / powersOfTen[static_cast<std::size_t>(decimal.fraction)] : mantissa;
    return decimal.negative ? -value : value;
}

// Halfway between two floats the rounding to double may have hidden on which side the decimal lay. On every
// other double the second rounding can't go wrong.
inline bool isHalfway(double value)
{
    constexpr std::uint64_t droppedBits = (std::uint64_t{1} << 29) - 1;
    return (std::bit_cast<std::uint64_t>(value) & droppedBits) == (droppedBits + 1) / 2;
}

// Beyond the range of Number at its small end a value is zero, at its large end there is none.
bool roundsToZero(const char* begin, const char* end, float& value)
{
    double wide = 0;
    if (std::from_chars(begin, end, wide).ec != std::errc{} || std::abs(wide) > 1) return false;
    value = static_cast<float>(wide);
    return true;
}

bool roundsToZero(const char* begin, const char* end, double& value)
{
    const char* const mark = std::find_if(begin, end, [](char c) { return c == 'e' || c == 'E'; });
    const bool small = mark + 1 < end && mark[1] == '-';
    if (small) value = 0;
    return small;
}

// Any number, from a copy of the field in which the first comma is a point.
template <typename Number>
bool scanSlowly(const char*& p, const char* end, char separator, Number& value)
{
    const char* const fieldEnd = std::find(p, end, separator);
    std::string field(p, fieldEnd);
    const std::size_t comma = field.find(',');
    if (comma != std::string::npos) field[comma] = '.';
    const char* begin = field.data();
    const char* const stop = begin + field.size();
    if (*begin == '+') ++begin;
    Number read{};
    const auto [next, error] = std::from_chars(begin, stop, read);
    if (error == std::errc::invalid_argument || !std::isfinite(read)) return false;
    if (error != std::errc{} && !roundsToZero(begin, next, read)) return false;
    p += next - field.data();
    value = read;
    return true;
}

inline bool hasExponent(const char* p)
{
    return *p == 'e' || *p == 'E';
}

} // namespace

bool scanFloat(const char*& p, const char* end, char separator, float& value)
{
    const char* const start = skipBlanks(p, separator);
    DECIMAL decimal;
    const char* const next = takeDecimal(start, decimal);
    if (decimal.digits == 0) return false;
    if (isExact(decimal) && !hasExponent(next)) {
        const double wide = valueOf(decimal);
        if (!isHalfway(wide)) {
            value = static_cast<float>(wide);
            p = next;
            return true;
        }
    }
    p = start;
    return scanSlowly(p, end, separator, value);
}

bool scanDouble(const char*& p, const char* end, char separator, double& value)
{
    const char* const start = skipBlanks(p, separator);
    DECIMAL decimal;
    const char* const next = takeDecimal(start, decimal);
    if (decimal.digits == 0) return false;
    if (isExact(decimal) && !hasExponent(next)) {
        value = valueOf(decimal);
        p = next;
        return true;
    }
    p = start;
    return scanSlowly(p, end, separator, value);
}

bool scanInt(const char*& p, const char* end, char separator, int& value)
{
    const char* next = skipBlanks(p, separator);
    const bool negative = *next == '-';
    if (*next == '-' || *next == '+') ++next;
    if (next >= end || !isDigit(*next)) return false;
    std::int64_t number = 0;
    for (; isDigit(*next); ++next)
        number = std::min<std::int64_t>(number * 10 + (*next - '0'), INT64_MAX / 100);
    p = next;
    if (negative) number = -number;
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) return false;
    value = static_cast<int>(number);
    return true;
}

} // namespace importing
