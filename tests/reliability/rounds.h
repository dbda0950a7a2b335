#pragma once

#include <algorithm>
#include <cstdlib>

namespace reliability {

// How often the random parts of these tests are gone through; more on request.
inline int rounds()
{
    const char* const wanted = std::getenv("NVQ_RELIABILITY_ROUNDS");
    return std::clamp(wanted ? std::atoi(wanted) : 1, 1, 10000);
}

} // namespace reliability
