#pragma once

// Numbers as "%g" and "%d" write them, many millions of them.

#include <array>
#include <cstddef>
#include <string>

namespace exporting {

// Writes `value` as "%g": six significant digits, rounded half to even of the exact value. Returns the end;
// room for largestG bytes must be there.
inline constexpr std::size_t largestG = 24;
[[nodiscard]] char* putG(char* out, float value);
void appendG(std::string& text, float value);

// Writes a flag or another byte as "%d". Returns the end; room for largestByte bytes must be there.
inline constexpr std::size_t largestByte = 4;
[[nodiscard]] char* putByte(char* out, unsigned char value);

// Writes `value` in as few digits as give the same float when they are read.
[[nodiscard]] char* putExact(char* out, float value);

} // namespace exporting
