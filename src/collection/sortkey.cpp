#include "collection/sortkey.h"

#include <charconv>
#include <limits>

#include "common/text.h"

namespace collection {

std::int64_t sortKey(std::string_view label)
{
    label = common::trimBlanks(label);
    const bool negative = label.starts_with('-');
    if (negative || label.starts_with('+')) label.remove_prefix(1);
    if (label.empty() || label.front() < '0' || label.front() > '9') return 0;
    std::int64_t key = 0;
    const auto [end, error] = std::from_chars(label.data(), label.data() + label.size(), key);
    if (error != std::errc{}) key = std::numeric_limits<std::int64_t>::max(); // more digits than it holds
    return negative ? -key : key;
}

} // namespace collection
