#pragma once

#include "variables/derivation.h"

namespace variables {

// For quantities without a rule of their own: the flag of a level is the largest of those of the sources that
// have data in the station, 0 if none has.
void setSourceFlags(const CALCULATION& calculation);

} // namespace variables
