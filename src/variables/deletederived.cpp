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

bool dependsOn(const VARINFO& variable, const std::vector<int>& numbers)
{
    const int sources = std::clamp(variable.nSources, 0, static_cast<int>(std::size(variable.sources)));
    return std::any_of(variable.sources, variable.sources + sources, [&](int source) {
        return source != 0 && std::find(numbers.begin(), numbers.end(), source) != numbers.end();
    });
}

// Takes the slot of a formula out; those of later ones move up.
void closeSlot(RCollection& collection, int slot)
{
    if (slot < 0 || slot >= std::min(collection.nMacros, common::maxFormulas)) return;
    auto& formulas = collection.formulas;
    std::move(formulas.begin() + slot + 1, formulas.end(), formulas.begin() + slot);
    formulas.back().clear();
    --collection.nMacros;
    for (int v = collection.variableCount + 1; v <= collection.totalVariableCount; ++v) {
        VARINFO& variable = collection.variables[static_cast<std::size_t>(v)];
        if (hasFormula(variable) && variable.intParam > slot) --variable.intParam;
    }
}

// The number that stands for `number` when variable `gone` is no more; 0 for that itself.
int withoutVariable(int number, int gone)
{
    if (number == gone) return 0;
    return number > gone ? number - 1 : number;
}

void renumberVariables(RCollection& collection, int gone, int gonePosition)
{
    for (int v = 1; v <= collection.totalVariableCount; ++v) {
        VARINFO& variable = collection.variables[static_cast<std::size_t>(v)];
        if (variable.position > gonePosition) --variable.position;
        if (v <= collection.variableCount) continue;
        for (std::int32_t& source : variable.sources) source = withoutVariable(source, gone);
    }
}

// A range of values of a variable that is gone is one of no variable; requirements go with it.
void renumberCriteria(collection::SELECTIONCRITERIA& criteria, int gone)
{
    criteria.sampleVariable = withoutVariable(criteria.sampleVariable, gone);
    std::vector<int> required = collection::requiredVariables(criteria);
    for (int& number : required) number = withoutVariable(number, gone);
    collection::setRequiredVariables(criteria, required);
}

void removeVariable(RCollection& collection, int number)
{
    const auto place = static_cast<std::size_t>(number);
    const VARINFO gone = collection.variables[place];
    const int last = collection.totalVariableCount;
    if (hasFormula(gone)) closeSlot(collection, gone.intParam);
    const auto moveDown = [&](auto& table) {
        std::move(table.begin() + number + 1, table.begin() + last + 1, table.begin() + number);
    };
    moveDown(collection.variables);
    moveDown(collection.timeOrigins);
    moveDown(collection.neededMask);
    const auto end = static_cast<std::size_t>(last);
    collection.variables[end] = collection::emptyVariable(last);
    collection.timeOrigins[end] = 0;
    collection.neededMask[end] = 1;
    --collection.totalVariableCount;
    renumberVariables(collection, number, gone.position);
    renumberCriteria(collection.criteria, number);
}

} // namespace

std::vector<int> dependentVariables(const RCollection& collection, int number)
{
    if (number < 1 || number > collection.totalVariableCount) return {};
    std::vector<int> gone{number};
    // Sources may have larger numbers only where a file says so; going round until nothing comes is right
    // for these too.
    for (std::size_t known = 0; known != gone.size();) {
        known = gone.size();
        for (int v = collection.variableCount + 1; v <= collection.totalVariableCount; ++v) {
            const bool isGone = std::find(gone.begin(), gone.end(), v) != gone.end();
            if (!isGone && dependsOn(collection.variables[static_cast<std::size_t>(v)], gone))
                gone.push_back(v);
        }
    }
    gone.erase(gone.begin());
    std::sort(gone.begin(), gone.end());
    return gone;
}

int deleteDerivedVariable(RCollection& collection, int k)
{
    const int number = collection.variableCount + k;
    if (k < 1 || number > collection.totalVariableCount) return 0;
    std::vector<int> gone = dependentVariables(collection, number);
    gone.push_back(number);
    std::sort(gone.begin(), gone.end());
    std::for_each(gone.rbegin(), gone.rend(), [&](int v) { removeVariable(collection, v); });
    return static_cast<int>(std::count_if(gone.begin(), gone.end(), [&](int v) { return v <= number; }));
}

} // namespace variables
