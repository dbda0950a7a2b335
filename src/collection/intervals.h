#pragma once

// A set of places in a file, kept as the stretches that they make.

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace collection {

class RIntervals {
public:
    using Interval = std::pair<std::int64_t, std::int64_t>; // begin, end

    // The parts of [begin, end) that are not in the set, in order.
    [[nodiscard]] std::vector<Interval> gaps(std::int64_t begin, std::int64_t end) const;
    void add(std::int64_t begin, std::int64_t end);

private:
    std::map<std::int64_t, std::int64_t> ends_; // by begin; they neither overlap nor touch
};

} // namespace collection
