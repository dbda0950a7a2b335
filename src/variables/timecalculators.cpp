#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> timeCalculators()
{
    return {};
}

} // namespace variables
