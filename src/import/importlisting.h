#pragma once

// The import of a listing from start to end, and its use as the source of a new collection.

#include <string>

#include "import/importfile.h"

namespace importing {

// Imports a listing (Format::listing3 or listing4) into the open, writable collection. `station` is the
// buffer through which stations go. Afterwards description and inventory are up to date; lists of selected
// stations are not.
IMPORTRESULT importListing(Format form, collection::RCollection& collection, collection::STATIONDATA& station,
                           const std::string& path, const IMPORTOPTIONS& options, common::RUser& user);

// Makes the variables of a listing those of a collection that is yet to be created: sets variables, counts,
// type and record size. `header` receives what is known about the listing, for the import that follows. False
// if the user cancelled or nothing can be made of it, which was told.
[[nodiscard]] bool listingVariables(Format form, const std::string& path, RImportSettler* settler,
                                    collection::RCollection& target, LISTINGHEADER& header,
                                    common::RUser& user);

} // namespace importing
