#pragma once

// Text helpers for bytes as they stand in files and records. None of them knows a locale.

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace common {

// The label rule: removes leading bytes below 33 or equal to 127 and trailing blanks; if only characters
// from '+' to '9' are left, also trailing zeros behind a decimal point and then a final point
// ("12.50" becomes "12.5", "12.000" becomes "12"). The result is a part of `text`.
[[nodiscard]] std::string_view trimLabel(std::string_view text);

// `text` without white space and control characters at both ends.
[[nodiscard]] std::string_view trimBlanks(std::string_view text);

// Cuts `line` at its first line feed and carriage return and splits it at `separator` into at most
// fields.size() fields; what lies beyond is dropped. With a blank as separator, runs of blanks count as
// one and leading blanks are dropped. Returns the number of fields; an empty line has none.
int splitFields(std::string_view line, char separator, std::span<std::string_view> fields);

// Takes a line from the front of `rest`, without its line feed and a carriage return in front of that; an
// empty one behind the last.
[[nodiscard]] std::string_view takeLine(std::string_view& rest);

// All occurrences of `from` (not empty) in `text` replaced by `to`.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

// `path` without its last "." and what follows; a point in a directory's name is left alone.
[[nodiscard]] std::string_view cutExtension(std::string_view path);

[[nodiscard]] bool equalsIgnoreCase(std::string_view a, std::string_view b); // ASCII letters
[[nodiscard]] std::string toLower(std::string_view text);                    // ASCII letters
[[nodiscard]] std::string toUpper(std::string_view text);                    // ASCII letters

// Takes a number from the front of `rest`, behind white space and an optional sign; nothing is moved if
// there is none, or if it is out of range or not finite. `takeFloat` reads "%g" forms, never hex.
[[nodiscard]] bool takeInt(std::string_view& rest, int& value);
[[nodiscard]] bool takeFloat(std::string_view& rest, float& value);
[[nodiscard]] bool takeDouble(std::string_view& rest, double& value);

// The whole of `text`, trimmed, as one number; empty if anything else stands there.
[[nodiscard]] std::optional<int> parseInt(std::string_view text);
[[nodiscard]] std::optional<double> parseDouble(std::string_view text);

// In quotation marks, for messages.
[[nodiscard]] std::string quoted(std::string_view text);

// A count with its noun: "1 station", "3 stations".
[[nodiscard]] std::string counted(int count, const char* one, const char* many);

// "%g" of a value, and printf-like formatting into a string.
[[nodiscard]] std::string formatG(double value);
[[nodiscard]] std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

// Copies `text` into a zero-terminated field of a record, cut to fit at a character's border (the text is
// UTF-8 or single-byte); the rest of the field is zeroed.
void copyText(std::span<char> field, std::string_view text);

// The text of a zero-terminated field of a record; a field without a terminator ends at its last byte.
[[nodiscard]] std::string_view fieldText(std::span<const char> field);

// `text` cut to at most `bytes` bytes, at a character's border if it is UTF-8.
[[nodiscard]] std::string_view cutAtCharacter(std::string_view text, std::size_t bytes);

} // namespace common
