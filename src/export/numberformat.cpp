#include "export/numberformat.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace exporting {
namespace {

constexpr int significantDigits = 6;
constexpr double smallestFixed = 1e-4, largestFixed = 1e6; // %g writes exponents beyond
constexpr std::array<double, 10> powersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

// A number of three digits, and how many of them are written.
struct TRIPLE {
    char digits[3];
    std::uint8_t used;
};

// 0 to 999 as the end of a fraction: without zeros behind.
constexpr std::array<TRIPLE, 1000> makeTriples()
{
    std::array<TRIPLE, 1000> triples{};
    for (unsigned n = 0; n < 1000; ++n) {
        TRIPLE& triple = triples[n];
        triple.digits[0] = static_cast<char>('0' + n / 100);
        triple.digits[1] = static_cast<char>('0' + n / 10 % 10);
        triple.digits[2] = static_cast<char>('0' + n % 10);
        triple.used = n == 0 ? 0 : n % 100 == 0 ? 1 : n % 10 == 0 ? 2 : 3;
    }
    return triples;
}

constexpr std::array<TRIPLE, 1000> triples = makeTriples();

// The bytes without leading zeros.
constexpr std::array<TRIPLE, 256> makeBytes()
{
    std::array<TRIPLE, 256> bytes{};
    for (unsigned n = 0; n < 256; ++n) {
        const unsigned zeros = n < 10 ? 2 : n < 100 ? 1 : 0;
        for (unsigned i = zeros; i < 3; ++i) bytes[n].digits[i - zeros] = triples[n].digits[i];
        bytes[n].used = static_cast<std::uint8_t>(3 - zeros);
    }
    return bytes;
}

constexpr std::array<TRIPLE, 256> byteTexts = makeBytes();

// The nearest whole number, half to even, of a value below 2^51.
double rounded(double value)
{
    constexpr double shift = 4503599627370496.0; // 2^52: no bits are left behind the point
    return (value + shift) - shift;
}

// Decimal exponent of a value from smallestFixed up to below largestFixed.
int exponentOf(double value)
{
    // of the power of two below the value, and the power of ten above that
    constexpr int smallestBinary = -14;
    constexpr std::array<int, 34> exponents = {-5, -4, -4, -4, -4, -3, -3, -3, -2, -2, -2, -1,
                                               -1, -1, 0,  0,  0,  0,  1,  1,  1,  2,  2,  2,
                                               3,  3,  3,  3,  4,  4,  4,  5,  5,  5};
    constexpr std::array<double, 11> next = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
    const int binary = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1023;
    const int exponent = exponents[static_cast<std::size_t>(binary - smallestBinary)];
    const int place = exponent + 5;
    return exponent + (value >= next[static_cast<std::size_t>(place)] ? 1 : 0);
}

// Writes a number of six digits, the first of which has weight 10^exponent, without zeros at its end.
char* putDigits(char* out, unsigned number, int exponent)
{
    const TRIPLE& high = triples[number / 1000];
    const TRIPLE& low = triples[number % 1000];
    const int used = low.used > 0 ? 3 + low.used : high.used;
    if (exponent < 0) {
        std::fill_n(out, 5, '0');
        out[1] = '.';
        out += 1 - exponent;
        std::memcpy(out, high.digits, 3);
        std::memcpy(out + 3, low.digits, 3);
        return out + used;
    }
    // What stands behind the point is put in its place at once: bytes just written are slow to move.
    const int point = exponent + 1;
    const int shift = used > point ? 1 : 0;
    std::memcpy(out + shift, high.digits, 3);
    std::memcpy(out + shift + 3, low.digits, 3);
    if (shift == 0) return out + point;
    for (int i = 0; i < point; ++i) out[i] = i < 3 ? high.digits[i] : low.digits[i - 3];
    out[point] = '.';
    return out + used + 1;
}

char* putAny(char* out, float value)
{
    return std::to_chars(out, out + largestG, static_cast<double>(value), std::chars_format::general,
                         significantDigits)
        .ptr;
}

} // namespace

char* putG(char* out, float value)
{
    const double size = std::abs(static_cast<double>(value));
    if (!(size >= smallestFixed && size < largestFixed)) {
        if (value != 0 || std::signbit(value)) return putAny(out, value);
        *out++ = '0';
        return out;
    }
    // A float has 24 bits and the power at most 21 odd ones, so that the product is exact: one rounding.
    int exponent = exponentOf(size);
    double digits = rounded(size * powersOfTen[static_cast<std::size_t>(significantDigits - 1 - exponent)]);
    if (digits == largestFixed) {
        if (++exponent == significantDigits) return putAny(out, value);
        digits /= 10;
    }
    if (value < 0) *out++ = '-';
    return putDigits(out, static_cast<unsigned>(digits), exponent);
}

void appendG(std::string& text, float value)
{
    char buffer[largestG];
    text.append(buffer, static_cast<std::size_t>(putG(buffer, value) - buffer));
}

char* putByte(char* out, unsigned char value)
{
    const TRIPLE& text = byteTexts[value];
    std::memcpy(out, text.digits, 3);
    return out + text.used;
}

char* putExact(char* out, float value)
{
    return std::to_chars(out, out + largestG, value).ptr;
}

} // namespace exporting
