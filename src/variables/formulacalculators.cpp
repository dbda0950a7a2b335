#include <algorithm>
#include <array>
#include <iterator>

#include "variables/calculators.h"
#include "variables/registry.h"

namespace variables {
namespace {

constexpr std::size_t mostInputs = std::size(collection::VARINFO{}.sources);

// Every input must have data, whether the formula uses it or not.
bool takeInputs(const CALCULATION& calculation, std::span<std::span<const float>> inputs)
{
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        inputs[i] = calculation.source(static_cast<int>(i) + 1);
        if (inputs[i].empty()) return false;
    }
    return true;
}

// The largest flag of the inputs at each level.
void fillFlags(const CALCULATION& calculation, std::size_t inputs)
{
    std::fill(calculation.flags.begin(), calculation.flags.end(), collection::flagGood);
    for (std::size_t i = 0; i < inputs; ++i) {
        const std::span<const std::uint8_t> flags = calculation.sourceFlags(static_cast<int>(i) + 1);
        for (std::size_t k = 0; k < flags.size(); ++k)
            calculation.flags[k] = std::max(calculation.flags[k], flags[k]);
    }
}

int evaluateExpression(const CALCULATION& calculation)
{
    if (!calculation.formula) return absent;
    const auto count = static_cast<std::size_t>(calculation.formula->inputs());
    std::array<std::span<const float>, mostInputs> all;
    if (count > all.size()) return absent;
    const std::span inputs = std::span(all).first(count);
    if (!takeInputs(calculation, inputs)) return absent;
    fillFlags(calculation, count);
    return calculation.formula->evaluate(inputs, stationTerms(calculation.station.header),
                                         calculation.values);
}

constexpr std::array<CALCULATORROW, 2> rows = {
    {{idMacro, evaluateExpression}, {idExpression, evaluateExpression}}};

} // namespace

std::span<const CALCULATORROW> formulaCalculators()
{
    return rows;
}

} // namespace variables
