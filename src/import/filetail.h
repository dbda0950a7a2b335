#pragma once

#include <cstdint>
#include <string>

namespace importing {

// Where the last byte of a file stands that is neither white space, a control character nor `separator`; -1
// if there is none or the file can't be read.
[[nodiscard]] std::int64_t lastFilledByte(const std::string& path, char separator);

} // namespace importing
