#pragma once

#include <span>

#include "collection/rcollection.h"

namespace variables {

// Which variables a plot needs, set in the collection's neededMask.
void needAllVariables(collection::RCollection& collection);
// Only these numbers (their signs, and 0, are ignored), the variable of the sample range, and all that they
// are computed from.
void needVariables(collection::RCollection& collection, std::span<const int> numbers);

// Extends the mask by the sources of needed variables, to any depth. Returns how many were added.
int addDependencies(collection::RCollection& collection);

} // namespace variables
