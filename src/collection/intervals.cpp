#include "collection/intervals.h"

#include <algorithm>

namespace collection {

std::vector<RIntervals::Interval> RIntervals::gaps(std::int64_t begin, std::int64_t end) const
{
    std::vector<Interval> found;
    auto next = ends_.upper_bound(begin);
    if (next != ends_.begin()) begin = std::max(begin, std::prev(next)->second);
    for (; begin < end; ++next) {
        const std::int64_t until = next == ends_.end() ? end : std::min(end, next->first);
        if (begin < until) found.emplace_back(begin, until);
        if (next == ends_.end()) break;
        begin = std::max(begin, next->second);
    }
    return found;
}

void RIntervals::add(std::int64_t begin, std::int64_t end)
{
    if (begin >= end) return;
    auto next = ends_.upper_bound(begin);
    if (next != ends_.begin() && std::prev(next)->second >= begin) {
        --next;
        begin = next->first;
    }
    while (next != ends_.end() && next->first <= end) {
        end = std::max(end, next->second);
        next = ends_.erase(next);
    }
    ends_.emplace_hint(next, begin, end);
}

} // namespace collection
