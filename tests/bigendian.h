#pragma once

// Station files as a big-endian host writes them, made by hand.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include "common/byteorder.h"
#include "common/limits.h"

namespace testing_support {

template <typename Number>
void putBig(std::string& out, Number value)
{
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    if (common::hostIsLittleEndian) std::reverse(std::begin(bytes), std::end(bytes));
    out.append(bytes, sizeof bytes);
}

inline void putLabel(std::string& out, std::string text, std::size_t width)
{
    text.resize(width, '\0');
    out += text;
}

// One station of two levels and two variables: cruise "BIG", 3 July 1995, 14:25.
inline std::string bigEndianHob()
{
    std::string out = "NVQsol";
    putLabel(out, "BIG", 21);
    putLabel(out, "7", 21);
    putLabel(out, "B", 2);
    for (const float value : {350.5f, -12.25f, 4000.0f, 20.0f}) putBig(out, value);
    // pairs exchanged: minute, day, hour, month, reserved, year
    for (const int value : {25, 3, 14, 7, 99, 1995}) putBig(out, static_cast<std::int16_t>(value));
    putBig(out, std::int32_t{0});
    putBig(out, std::int32_t{4});
    putBig(out, std::int16_t{2});
    putBig(out, std::int16_t{1});
    return out;
}

inline std::string bigEndianDob()
{
    std::string out;
    for (const float value : {10.0f, 20.0f, 3.5f, common::MISSING_VALUE}) putBig(out, value);
    return out + std::string("\0\1\4\10", 4);
}

} // namespace testing_support
