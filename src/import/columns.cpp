#include "import/columns.h"

#include <algorithm>

#include "common/textcoding.h"

namespace importing {

std::size_t bytesToColumn(std::string_view line, std::size_t column)
{
    std::size_t at = 0;
    for (; at < line.size(); ++at) {
        const bool begins = (static_cast<unsigned char>(line[at]) & 0xc0) != 0x80;
        if (begins && column-- == 0) break;
    }
    return at;
}

std::string_view RColumns::rest(std::size_t column) const
{
    return line_.substr(areCharacters_ ? bytesToColumn(line_, column) : std::min(column, line_.size()));
}

std::string_view RColumns::field(std::size_t column, std::size_t width) const
{
    const std::string_view from = rest(column);
    return from.substr(0, areCharacters_ ? bytesToColumn(from, width) : width);
}

bool hasWideCharacters(std::string_view line)
{
    const auto isWide = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    return std::any_of(line.begin(), line.end(), isWide) && common::isValidUtf8(line);
}

} // namespace importing
