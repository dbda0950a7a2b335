#pragma once

// Numbers as "%g" and "%d" write them, many millions of them.

#include <string>

namespace exporting {

// Appends `value` as "%g": six significant digits, rounded half to even of the exact value.
void appendG(std::string& text, float value);

// Appends a flag or another byte as "%d".
void appendByte(std::string& text, unsigned char value);

} // namespace exporting
