#pragma once

// The import of a spreadsheet from start to end, and its use as the source of a new collection.

#include <optional>
#include <string>

#include "collection/rcollection.h"
#include "common/user.h"
#include "import/importrun.h"
#include "import/spreadsheet.h"

namespace importing {

// What a user settles about an import; without one the answers are found silently.
class RImportSettler : public RSpreadsheetSettler {
public:
    // Mode, check for existing stations, and the links of sources and targets (index 0 of each is no
    // variable), which come associated by label, or by number if they have the same labels in the same order.
    // False if the user cancels.
    [[nodiscard]] virtual bool settleImport(IMPORTSTATE& state, std::span<collection::VARINFO> sources,
                                            std::span<collection::VARINFO> targets) = 0;
};

struct IMPORTOPTIONS {
    ImportMode mode = ImportMode::addReplace;
    bool checkExisting = true;
    RUNOPTIONS run;
    RImportSettler* settler = nullptr; // not owned; null: nobody is asked
    // The header as spreadsheetVariables read it, when the collection was just made from this file.
    std::optional<SPREADSHEETHEADER> header;
};

enum class ImportEnd : int {
    done,      // also when single stations were passed over
    cancelled, // by the user, before or during the import
    failed     // told; stations that were stored before stay
};

struct IMPORTRESULT {
    ImportEnd end = ImportEnd::done;
    int stationsRead = 0, stationsStored = 0;
};

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
