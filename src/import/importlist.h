#pragma once

// The import of several files in one run: one change of the collection, one report.

#include <functional>
#include <string>

#include "import/importoptions.h"

namespace importing {

// Imports one file with options of its own.
using ImportOne = std::function<IMPORTRESULT(const std::string& path, const IMPORTOPTIONS& options)>;

// Imports the files that `list` names, in their order. The first one that fails or is broken off ends the
// list; what was stored before stays unless the report is answered with undo, which takes back all files.
// Files of the layout of the one before are not asked about again, and empty ones are passed over with a
// note.
IMPORTRESULT importList(collection::RCollection& collection, const std::string& list,
                        const IMPORTOPTIONS& options, const ImportOne& importOne, common::RUser& user);

} // namespace importing
