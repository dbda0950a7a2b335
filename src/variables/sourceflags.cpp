#include "variables/sourceflags.h"

#include <algorithm>

namespace variables {

void setSourceFlags(const CALCULATION& calculation)
{
    std::fill(calculation.flags.begin(), calculation.flags.end(), collection::flagGood);
    for (int n = 1; n <= calculation.variable.nSources; ++n) {
        const auto flags = calculation.sourceFlags(n);
        for (std::size_t k = 0; k < flags.size(); ++k)
            calculation.flags[k] = std::max(calculation.flags[k], flags[k]);
    }
}

} // namespace variables
