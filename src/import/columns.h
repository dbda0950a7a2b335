#pragma once

// Lines whose fields stand in fixed columns.

#include <cstddef>
#include <string_view>

namespace importing {

// Bytes of `line` in front of a column, where each UTF-8 character has one column.
[[nodiscard]] std::size_t bytesToColumn(std::string_view line, std::size_t column);

// The fields of a line, by columns from 0. Columns are bytes; in a line that an editor has turned into UTF-8
// they are characters.
class RColumns {
public:
    RColumns(std::string_view line, bool areCharacters) : line_(line), areCharacters_(areCharacters) {}
    // As much of a field as there is.
    [[nodiscard]] std::string_view field(std::size_t column, std::size_t width) const;
    // What stands from a column on.
    [[nodiscard]] std::string_view rest(std::size_t column) const;

private:
    std::string_view line_;
    bool areCharacters_;
};

// True if a line has characters of more than one byte.
[[nodiscard]] bool hasWideCharacters(std::string_view line);

} // namespace importing
