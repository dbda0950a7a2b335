#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> carbonateCalculators()
{
    return {};
}

} // namespace variables
