#pragma once

// The import of a spreadsheet from start to end, and its use as the source of a new collection.

#include <string>

#include "import/importoptions.h"

namespace importing {

// Imports a file into the open, writable collection. `station` is the buffer through which stations go.
// Afterwards description and inventory are up to date; lists of selected stations are not.
IMPORTRESULT importSpreadsheet(collection::RCollection& collection, collection::STATIONDATA& station,
                               const std::string& path, const IMPORTOPTIONS& options, common::RUser& user);

// Makes the variables of a file those of a collection that is yet to be created: sets variables, counts, type
// and record size. `header` receives what is known about the file, for the import that follows. False if the
// user cancelled or nothing can be made of the file, which was told.
[[nodiscard]] bool spreadsheetVariables(const std::string& path, RSpreadsheetSettler* settler,
                                        collection::RCollection& target, SPREADSHEETHEADER& header,
                                        common::RUser& user);

} // namespace importing
