#include "variables/needed.h"

#include <algorithm>
#include <cstdlib>

namespace variables {
namespace {

void mark(collection::RCollection& collection, int number)
{
    if (number >= 1 && number <= std::min(collection.totalVariableCount, common::maxVariables)) {
        collection.neededMask[static_cast<std::size_t>(number)] = 1;
    }
}

int marked(const collection::RCollection& collection)
{
    return static_cast<int>(std::count(collection.neededMask.begin(), collection.neededMask.end(), 1));
}

} // namespace

void needAllVariables(collection::RCollection& collection)
{
    collection.neededMask.fill(1);
}

void needVariables(collection::RCollection& collection, std::span<const int> numbers)
{
    collection.neededMask.fill(0);
    for (const int number : numbers) {
        if (number > -common::variableSlots) mark(collection, std::abs(number));
    }
    mark(collection, collection.criteria.sampleVariable);
    addDependencies(collection);
}

int addDependencies(collection::RCollection& collection)
{
    const int before = marked(collection);
    int known = -1;
    while (known != marked(collection)) {
        known = marked(collection);
        for (int v = 1; v <= std::min(collection.totalVariableCount, common::maxVariables); ++v) {
            if (!collection.neededMask[static_cast<std::size_t>(v)]) continue;
            const collection::VARINFO& variable = collection.variables[static_cast<std::size_t>(v)];
            const int sources = std::clamp(variable.nSources, 0, 10);
            for (int s = 0; s < sources; ++s) mark(collection, variable.sources[s]);
        }
    }
    return known - before;
}

} // namespace variables
