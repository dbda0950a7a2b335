#pragma once

// How a time variable of the collection is read.

#include "variables/setup.h"

namespace variables {

struct TIMEREADING {
    int form = -1;     // row id of timeconversions.h
    double origin = 0; // day number of the "since" forms
};

// By the label of the variable, else by the settler. False, after a message unless the user cancelled, if it
// remains open.
[[nodiscard]] bool settleTime(const collection::RCollection& collection, int variable, const DRVVAR& row,
                              const SETUPTOOLS& tools, TIMEREADING& reading);

// Tells of dates that are larger than a cell can hold exactly.
void warnOfCells(const collection::RCollection& collection, int variable, const DRVVAR& row,
                 const TIMEREADING& reading, common::RUser& user);

} // namespace variables
