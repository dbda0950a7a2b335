#pragma once

// Fields in quotes. A field is quoted if it begins with a quote and ends with the next single one: then it
// may hold the separator, and two quotes for one. Every other quote is a character like any.

#include <span>
#include <string>
#include <string_view>

namespace importing {

// Divides the fields of a line whose quotes are gone.
inline constexpr char fieldMark = '\x1F';

// Puts the fields of `line` into `fields`, without quotes and divided by fieldMark. False if none is quoted;
// `fields` is then of no use.
[[nodiscard]] bool unquoteLine(std::string_view line, char separator, std::string& fields);

// The fields of a line as common::splitFields gives them, without quotes. `buffer` holds what they refer to.
int splitQuoted(std::string_view line, char separator, std::string& buffer,
                std::span<std::string_view> fields);

} // namespace importing
