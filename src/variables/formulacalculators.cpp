#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> formulaCalculators()
{
    return {};
}

} // namespace variables
