#pragma once

// What is settled about an import before it begins, and who settles it.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/rcollection.h"
#include "common/user.h"
#include "import/importrun.h"
#include "import/listing.h"
#include "import/spreadsheet.h"

namespace importing {

// What the options of an import decide about. The links of sources and targets (index 0 of each is no
// variable) come associated by label, or by number if they have the same labels in the same order.
struct IMPORTCHOICES {
    std::string file; // path, for messages
    ImportMode mode = ImportMode::addReplace;
    bool checkExisting = true;
    std::vector<CRUISEASSOCIATION>
        cruises; // one for each inventory entry, sourceLabel empty if there is none
    std::span<collection::VARINFO> sources, targets;
    bool emptyCollection = false; // merge and update are not possible
    bool mayUseDefaults = false;  // a target may take its default value (spreadsheets)
    // The collection's variable that `meaning` is, for `task`: by `.idv`, else by the settler, whose answer
    // is noted there; 0 if it is refused.
    std::function<int(std::string_view task, std::string_view meaning)> identify;
};

// Settles what the file itself does not tell; false or nothing if the user cancels.
class RImportSettler : public RSpreadsheetSettler {
public:
    [[nodiscard]] virtual bool settleImport(IMPORTCHOICES& choices) = 0;
    // The collection's variable that `meaning` ("Depth [m]") is, for `task`; 0 if it is refused. Asked only
    // where `.idv` does not tell.
    [[nodiscard]] virtual int identify(std::string_view task, std::string_view meaning,
                                       std::span<const collection::VARINFO> variables) = 0;
    // The description of a 3.0 listing; `proposal` is the one beside it.
    [[nodiscard]] virtual std::optional<std::string> chooseDescription(std::string_view listing,
                                                                       const std::string& proposal) = 0;
};

struct IMPORTOPTIONS {
    ImportMode mode = ImportMode::addReplace;
    bool checkExisting = true;
    RUNOPTIONS run;
    RImportSettler* settler = nullptr; // not owned; null: nobody is asked
    // The header of a spreadsheet, when the collection was just made from it.
    std::optional<SPREADSHEETHEADER> header;
    std::optional<LISTINGHEADER> listing; // the same of a listing
};

enum class ImportEnd : int {
    done,      // also when single stations were passed over
    cancelled, // by the user, before or during the import
    failed     // told; stations that were stored before stay
};

struct IMPORTRESULT {
    ImportEnd end = ImportEnd::done;
    int stationsRead = 0, stationsStored = 0;
    int stationsAdded = 0; // of those stored; all others may have got another number, and so later ones
};

} // namespace importing
