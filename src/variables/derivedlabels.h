#pragma once

// The labels of derived variables.

#include <span>
#include <string>

#include "collection/rcollection.h"
#include "variables/registry.h"

namespace variables {

// The label of a variable of a row, as bytes of a record (not cut). `sources[0]` is source 1; `param` the
// number that was entered. Not for expressions and macros, which bring their own.
[[nodiscard]] std::string derivedLabel(const collection::RCollection& collection, const DRVVAR& row,
                                       std::span<const int> sources, float param);

} // namespace variables
