#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> headerCalculators()
{
    return {};
}

} // namespace variables
