#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> tracerCalculators()
{
    return {};
}

} // namespace variables
