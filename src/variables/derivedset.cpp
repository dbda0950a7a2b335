// Derived variables on their way over a change of the collection's own ones.

#include <algorithm>

#include "variables/setup.h"

namespace variables {
namespace {

using collection::RCollection;
using collection::VARINFO;

bool hasFormula(const VARINFO& variable)
{
    return variable.id == idMacro || variable.id == idExpression;
}

// Gives the sources their new numbers. False if one is gone.
bool renumberSources(VARINFO& variable, const DERIVEDSET& set, std::span<const int> newNumbers,
                     std::span<const int> newDerived)
{
    const int sources = std::clamp(variable.nSources, 0, static_cast<int>(std::size(variable.sources)));
    for (int s = 0; s < sources; ++s) {
        std::int32_t& source = variable.sources[s];
        if (source == 0) continue; // a place that the calculator has no use for
        if (source < 0) return false;
        const auto number = static_cast<std::size_t>(source);
        const auto derived = static_cast<std::size_t>(source - set.firstNumber);
        if (source < set.firstNumber) {
            source = number < newNumbers.size() ? newNumbers[number] : 0;
        } else {
            source = derived < newDerived.size() ? newDerived[derived] : 0;
        }
        if (source == 0) return false;
    }
    return true;
}

// Takes the formula to the next free slot. False if there is none, or the variable has no formula.
bool placeFormula(VARINFO& variable, const DERIVEDSET& set, RCollection& collection)
{
    const bool isOfSet =
        variable.intParam >= 0 && variable.intParam < std::min(set.nMacros, common::maxFormulas);
    if (!isOfSet || collection.nMacros >= common::maxFormulas) return false;
    const auto slot = static_cast<std::size_t>(collection.nMacros);
    collection.formulas[slot] = set.formulas[static_cast<std::size_t>(variable.intParam)];
    variable.intParam = collection.nMacros++;
    return true;
}

} // namespace

DERIVEDSET derivedSet(const RCollection& collection)
{
    DERIVEDSET set;
    set.firstNumber = collection.variableCount + 1;
    set.nMacros = collection.nMacros;
    set.formulas = collection.formulas;
    for (int v = set.firstNumber; v <= std::min(collection.totalVariableCount, common::maxVariables); ++v) {
        set.variables.push_back(collection.variables[static_cast<std::size_t>(v)]);
        set.timeOrigins.push_back(collection.timeOrigins[static_cast<std::size_t>(v)]);
    }
    return set;
}

std::vector<int> restoreDerived(RCollection& collection, const DERIVEDSET& set,
                                std::span<const int> newNumbers)
{
    collection.forgetDerived();
    std::vector<int> placed(set.variables.size(), 0);
    for (std::size_t i = 0; i < set.variables.size(); ++i) {
        VARINFO variable = set.variables[i];
        if (collection.totalVariableCount >= common::maxVariables) break;
        if (!renumberSources(variable, set, newNumbers, placed)) continue;
        if (hasFormula(variable) && !placeFormula(variable, set, collection)) continue;
        const int number = ++collection.totalVariableCount;
        variable.position = number;
        collection.variables[static_cast<std::size_t>(number)] = variable;
        collection.timeOrigins[static_cast<std::size_t>(number)] =
            i < set.timeOrigins.size() ? set.timeOrigins[i] : 0;
        placed[i] = number;
    }
    return placed;
}

} // namespace variables
