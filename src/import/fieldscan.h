#pragma once

// Numbers of a spreadsheet's fields, at the speed of the file. All of them read from `p`, which moves past
// what was read and stays within the field. `end` is the end of the line: the byte there must be readable and
// must be neither a digit nor a blank (a line end). The field ends at `separator` or at `end`.

#include <cstdint>

namespace importing {

// A number as "%f" reads it, where the first comma of the field stands for a point; exactly rounded. False if
// the field holds no number in front, or one beyond the range of float.
[[nodiscard]] bool scanFloat(const char*& p, const char* end, char separator, float& value);

// The same in double precision.
[[nodiscard]] bool scanDouble(const char*& p, const char* end, char separator, double& value);

// A whole number as "%d" reads it; false if there is none, or one beyond the range of int.
[[nodiscard]] bool scanInt(const char*& p, const char* end, char separator, int& value);

} // namespace importing
