#include "variables/formula.h"

#include <algorithm>

#include "common/limits.h"

namespace variables {

RFormula::RFormula(std::string_view text, int inputs) : text_(text), inputs_(inputs), isFaulty_(true) {}

int RFormula::evaluate(std::span<const std::span<const float>>, const STATIONTERMS&,
                       std::span<float> out) const
{
    std::fill(out.begin(), out.end(), common::MISSING_VALUE);
    return static_cast<int>(out.size());
}

} // namespace variables
