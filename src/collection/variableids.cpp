#include "collection/variableids.h"

#include <algorithm>

#include "common/text.h"

namespace collection {
namespace {

// The first new variable that takes its data from an old one; 0 if none does.
int newNumberOf(int old, std::span<const int> origins)
{
    if (old < 1 || origins.empty()) return 0;
    const auto place = std::find(origins.begin() + 1, origins.end(), old);
    return place == origins.end() ? 0 : static_cast<int>(place - origins.begin());
}

} // namespace

std::size_t idKeyLength(std::string_view line)
{
    return std::min(line.find_first_of("=\t"), line.size());
}

std::string renumberedVariableIds(std::string_view text, std::span<const int> origins)
{
    std::string ids;
    while (!text.empty()) {
        const std::string_view line = common::takeLine(text);
        const std::size_t length = idKeyLength(line);
        if (length == line.size()) continue;
        std::string_view value = line.substr(length + 1);
        int old = 0;
        const int number = common::takeInt(value, old) ? newNumberOf(old, origins) : 0;
        if (number > 0) ids += std::string(line.substr(0, length)) + common::format("=%d\n", number);
    }
    return ids;
}

} // namespace collection
