#include "export/numberformat.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace exporting {
namespace {

constexpr int significantDigits = 6;
constexpr double smallestFixed = 1e-4, largestFixed = 1e6; // %g writes exponents beyond
constexpr std::array<double, 10> powersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

// The nearest whole number, half to even, of a value below 2^51.
double rounded(double value)
{
    constexpr double shift = 4503599627370496.0; // 2^52: no bits are left behind the point
    return (value + shift) - shift;
}

// Decimal exponent of a value from smallestFixed up to below largestFixed.
int exponentOf(double value)
{
    if (value >= 1) {
        int exponent = 0;
        while (value >= powersOfTen[static_cast<std::size_t>(exponent) + 1]) ++exponent;
        return exponent;
    }
    constexpr double tenths[] = {1e-1, 1e-2, 1e-3};
    int exponent = -1;
    for (const double tenth : tenths) {
        if (value >= tenth) break;
        --exponent;
    }
    return exponent;
}

// Writes the six digits of `digits`, the first of which has weight 10^exponent, without zeros at the end.
char* putDigits(char* out, unsigned digits, int exponent)
{
    char reversed[significantDigits];
    for (int i = significantDigits; i-- > 0; digits /= 10) reversed[i] = static_cast<char>('0' + digits % 10);
    int count = significantDigits;
    while (count > 1 && reversed[count - 1] == '0') --count;
    if (exponent < 0) {
        *out++ = '0';
        *out++ = '.';
        for (int i = -1; i > exponent; --i) *out++ = '0';
    }
    for (int i = 0; i < count || i <= exponent; ++i) {
        if (i == exponent + 1 && i > 0) *out++ = '.';
        *out++ = i < count ? reversed[i] : '0';
    }
    return out;
}

void appendAny(std::string& text, float value)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                                      std::chars_format::general, significantDigits);
    text.append(buffer, result.ptr);
}

} // namespace

void appendG(std::string& text, float value)
{
    const double size = std::abs(static_cast<double>(value));
    if (!(size >= smallestFixed && size < largestFixed)) {
        if (value == 0 && !std::signbit(value)) {
            text += '0';
        } else {
            appendAny(text, value);
        }
        return;
    }
    // A float has 24 bits and the power at most 21 odd ones, so that the product is exact: one rounding.
    int exponent = exponentOf(size);
    double digits = rounded(size * powersOfTen[static_cast<std::size_t>(significantDigits - 1 - exponent)]);
    if (digits == largestFixed) {
        if (++exponent == significantDigits) {
            appendAny(text, value);
            return;
        }
        digits /= 10;
    }
    char buffer[24];
    char* out = buffer;
    if (value < 0) *out++ = '-';
    out = putDigits(out, static_cast<unsigned>(digits), exponent);
    text.append(buffer, static_cast<std::size_t>(out - buffer));
}

void appendByte(std::string& text, unsigned char value)
{
    if (value >= 100) text += static_cast<char>('0' + value / 100);
    if (value >= 10) text += static_cast<char>('0' + value / 10 % 10);
    text += static_cast<char>('0' + value % 10);
}

} // namespace exporting
