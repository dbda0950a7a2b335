#include "variables/calculators.h"

namespace variables {

std::span<const CALCULATORROW> neutralCalculators()
{
    return {};
}

} // namespace variables
