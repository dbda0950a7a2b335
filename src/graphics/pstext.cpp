#include "graphics/pstext.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace graphics {
namespace {

constexpr int digits = 6; // significant ones of "%g"
constexpr auto powersOfTen = std::to_array<double>({1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9});

int writeSlowly(char* out, double value)
{
    const auto end = std::to_chars(out, out + numberTextSize, value, std::chars_format::general, digits);
    return static_cast<int>(end.ptr - out);
}

int writeInteger(char* out, int value)
{
    return static_cast<int>(std::to_chars(out, out + numberTextSize, value).ptr - out);
}

// Decimal exponent of a value from 1e-4 to below 1e6.
int decimalExponent(double value)
{
    if (value < 1) return value >= 1e-1 ? -1 : value >= 1e-2 ? -2 : value >= 1e-3 ? -3 : -4;
    std::size_t exponent = 0;
    while (value >= powersOfTen[exponent + 1]) ++exponent;
    return static_cast<int>(exponent);
}

// The six digits with the point where the exponent wants it, and without zeros behind the last figure.
int writeDigits(char* out, int mantissa, int exponent)
{
    char figures[digits];
    for (int i = digits - 1; i >= 0; --i, mantissa /= 10) figures[i] = static_cast<char>('0' + mantissa % 10);
    int last = digits;
    while (last > 1 && figures[last - 1] == '0') --last;
    char* at = out;
    if (exponent < 0) {
        *at++ = '0';
        *at++ = '.';
        for (int i = -1; i > exponent; --i) *at++ = '0';
        for (int i = 0; i < last; ++i) *at++ = figures[i];
        return static_cast<int>(at - out);
    }
    for (int i = 0; i <= exponent; ++i) *at++ = figures[i];
    if (last > exponent + 1) {
        *at++ = '.';
        for (int i = exponent + 1; i < last; ++i) *at++ = figures[i];
    }
    return static_cast<int>(at - out);
}

} // namespace

int writeNumber(char* out, double value)
{
    if (value == 0 && !std::signbit(value)) {
        *out = '0';
        return 1;
    }
    const double size = std::fabs(value);
    if (!(size >= 1e-4 && size < 999999)) return writeSlowly(out, value);
    const auto whole = static_cast<int>(value);
    if (whole == value) return writeInteger(out, whole);
    int exponent = decimalExponent(size);
    // One rounding, so wrong by less than 1e-9; only near a half could that turn the last figure.
    const double scaled = size * powersOfTen[static_cast<std::size_t>(digits - 1 - exponent)];
    const auto truncated = static_cast<int>(scaled);
    const double rest = scaled - truncated;
    if (std::fabs(rest - 0.5) < 1e-6) return writeSlowly(out, value);
    int mantissa = truncated + (rest > 0.5 ? 1 : 0);
    if (mantissa == 1000000) {
        mantissa = 100000;
        ++exponent;
    }
    if (value > 0) return writeDigits(out, mantissa, exponent);
    *out = '-';
    return 1 + writeDigits(out + 1, mantissa, exponent);
}

RPsWriter& RPsWriter::number(double value)
{
    used_ += static_cast<std::size_t>(writeNumber(room(numberTextSize), value));
    return *this;
}

RPsWriter& RPsWriter::integer(int value)
{
    used_ += static_cast<std::size_t>(writeInteger(room(numberTextSize), value));
    return *this;
}

RPsWriter& RPsWriter::text(std::string_view text)
{
    if (text.size() > buffer_.size()) {
        flush();
        if (ps_) std::fwrite(text.data(), 1, text.size(), ps_);
        return *this;
    }
    std::memcpy(room(text.size()), text.data(), text.size());
    used_ += text.size();
    return *this;
}

RPsWriter& RPsWriter::point(double x, double y, std::string_view operation)
{
    return number(x).text(" ").number(y).text(" ").text(operation).text("\n");
}

RPsWriter& RPsWriter::gridPoint(int x, int y, std::string_view operation)
{
    return integer(x).text(" ").integer(y).text(" ").text(operation).text("\n");
}

void RPsWriter::flush()
{
    if (ps_ && used_ > 0) std::fwrite(buffer_.data(), 1, used_, ps_);
    used_ = 0;
}

} // namespace graphics
