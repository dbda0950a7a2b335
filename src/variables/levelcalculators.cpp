#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> levelCalculators()
{
    return {};
}

} // namespace variables
