#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> profileCalculators()
{
    return {};
}

} // namespace variables
