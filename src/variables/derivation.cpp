#include "variables/derivation.h"

#include <algorithm>
#include <cmath>

#include "variables/calculators.h"
#include "variables/registry.h"

namespace variables {
namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::VARINFO;

using CALCULATORTABLE = std::array<Calculator, calculatorEnd>;

CALCULATORTABLE allCalculators()
{
    CALCULATORTABLE table{};
    for (const auto family :
         {levelCalculators(), headerCalculators(), timeCalculators(), profileCalculators(),
          tracerCalculators(), carbonateCalculators(), neutralCalculators(), formulaCalculators()}) {
        for (const CALCULATORROW& row : family) table[static_cast<std::size_t>(row.id)] = row.calculate;
    }
    return table;
}

Calculator calculatorOf(int id)
{
    static const CALCULATORTABLE table = allCalculators();
    return id >= 0 && id < calculatorEnd ? table[static_cast<std::size_t>(id)] : nullptr;
}

// The number of a source; 0 if the variable has no such source, or it isn't one that was computed before.
int sourceNumber(const CALCULATION& calculation, int n)
{
    if (n < 1 || n > calculation.variable.nSources ||
        n > static_cast<int>(std::size(calculation.variable.sources)))
        return 0;
    const int number = calculation.variable.sources[n - 1];
    return number >= 1 && number < calculation.number ? number : 0;
}

template <typename Cell>
std::span<const Cell> blockOf(const CALCULATION& calculation, int n, const Cell* cells)
{
    const int number = sourceNumber(calculation, n);
    const std::int32_t offset =
        number == 0 ? -1 : calculation.station.offset[static_cast<std::size_t>(number)];
    if (offset < 0) return {};
    return {cells + offset, calculation.levels()};
}

} // namespace

std::span<const float> CALCULATION::source(int n) const
{
    return blockOf<float>(*this, n, station.values.get());
}

std::span<const std::uint8_t> CALCULATION::sourceFlags(int n) const
{
    return blockOf<std::uint8_t>(*this, n, station.flags.get());
}

int CALCULATION::sourceCount(int n) const
{
    return source(n).empty() ? 0 : station.levelCount[static_cast<std::size_t>(sourceNumber(*this, n))];
}

std::uint8_t maxFlagOf(const CALCULATION& calculation, std::size_t level)
{
    const auto flag = [&](int n) {
        const std::span<const std::uint8_t> flags = calculation.sourceFlags(n);
        return flags.empty() ? collection::flagBad : flags[level];
    };
    return std::max(std::max(flag(1), flag(2)), flag(3));
}

float cellOf(double result)
{
    const auto cell = static_cast<float>(result);
    return std::isfinite(cell) ? cell : common::MISSING_VALUE;
}

void RDerivation::computeDerived(STATIONDATA& station)
{
    const RCollection& collection = *station.collection;
    const int last = std::min(collection.totalVariableCount, common::maxVariables);
    for (int k = collection.variableCount + 1; k <= last; ++k) {
        const auto number = static_cast<std::size_t>(k);
        station.levelCount[number] = 0;
        station.offset[number] = -1;
        if (collection.neededMask[number]) computeOne(station, k);
    }
}

void RDerivation::computeOne(STATIONDATA& station, int number)
{
    const RCollection& collection = *station.collection;
    const VARINFO& variable = collection.variables[static_cast<std::size_t>(number)];
    const Calculator calculate = calculatorOf(variable.id);
    const int levels = station.levels(), used = station.header.valueCount;
    if (!calculate || levels <= 0 || levels + used >= station.capacity) return;
    const auto block = static_cast<std::size_t>(used), cells = static_cast<std::size_t>(levels);
    ++calculations_;
    const int count = calculate({station, variable, number, with_, formulaOf(collection, variable),
                                 std::span(station.values.get() + block, cells),
                                 std::span(station.flags.get() + block, cells)});
    if (count == absent) return;
    station.offset[static_cast<std::size_t>(number)] = used;
    station.levelCount[static_cast<std::size_t>(number)] = static_cast<std::int16_t>(count);
    station.header.valueCount = used + levels;
}

// Formulas are compiled anew only when they have become others.
const RFormula* RDerivation::formulaOf(const RCollection& collection, const VARINFO& variable)
{
    if (variable.id != idMacro && variable.id != idExpression) return nullptr;
    if (variable.intParam < 0 || variable.intParam >= common::maxFormulas) return nullptr;
    const auto slot = static_cast<std::size_t>(variable.intParam);
    RFormula& formula = formulas_[slot];
    if (formula.text() != collection.formulas[slot] || formula.inputs() != variable.nSources)
        formula = RFormula(collection.formulas[slot], variable.nSources);
    return &formula;
}

} // namespace variables
