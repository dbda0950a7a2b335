#pragma once

// One import into an open collection: what happens to each station that a reader delivers, and what is told,
// logged and written at the end.

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "collection/rcollection.h"
#include "common/user.h"
#include "import/account.h"
#include "import/existingstations.h"
#include "import/merge.h"

namespace importing {

// The state of the one import run of a collection.
struct IMPORTSTATE {
    ImportMode mode = ImportMode::addReplace;
    bool checkExisting = false;
    std::int64_t totalBytes = 0; // of the input, for the progress
    int lineNumber = 0;          // last line read, for messages
    std::int64_t bytesRead = 0;
    int stationsRead = 0, stationsStored = 0, stationsAtStart = 0;
    std::int64_t lastProgressBytes = 0;
    bool replaceAll = false; // no more questions about single stations
    bool undoRequested = false;
    bool logFault = false; // the log has no normal IMPORT line
    bool aborted = false;  // by the user
    bool failed = false;   // a station could not be written, or all of them at the end
    collection::SELECTIONCRITERIA savedCriteria{};
    std::string file;       // path of the input
    std::string fileName;   // short name for the report; empty for lists
    std::string lineBuffer; // the line last read
    STOREACCOUNT account;
};

// Stations of cruise `sourceLabel` and this type are those of cruise `name`.
struct CRUISEASSOCIATION {
    std::string sourceLabel, type, name;
};

// What happens in mode addReplace to a station that is there.
enum class Existing : int {
    ask,     // the user
    replace, // without a question
    keep,    // the stored one stays
    abort    // the import ends at the first one
};

struct RUNOPTIONS {
    Existing existing = Existing::ask;
    std::vector<CRUISEASSOCIATION> cruises; // as takeCruises() takes them
    // Called for each station that was stored, to draw it; may be null.
    std::function<void(const collection::STATIONHDR&)> stationStored;
};

class RImportRun {
public:
    RImportRun(collection::RCollection& collection, common::RUser& user, RUNOPTIONS options);
    ~RImportRun();
    RImportRun(const RImportRun&) = delete;
    RImportRun& operator=(const RImportRun&) = delete;

    IMPORTSTATE state;

    // Opens the run: until closeImport() it is one change of the collection. Returns the bytes of the input,
    // 0 if it can't be read or is empty: then nothing happens, unless `evenIfEmpty`. 0 too, after a message
    // and with `failed` set, if the collection can't be changed.
    [[nodiscard]] std::int64_t openImport(const std::string& file, const std::string& shortName,
                                          int firstLine, ImportMode mode, bool evenIfEmpty = false);
    // Decides about a station and stores it. `stored` says how often progress is shown: every n stations or
    // bytes. True if the run is to be broken off.
    [[nodiscard]] bool importStation(collection::STATIONDATA& station, int everyStations,
                                     std::int64_t everyBytes);
    // Reports; undoes or commits; logs, and with `final` builds the inventory anew.
    void closeImport(bool final);
    // Stations of these cruises take the label of the one in the collection; those without a source label
    // are left out.
    void takeCruises(std::span<const CRUISEASSOCIATION> cruises);
    // Tells of a ReadCode that is about a line.
    void reportReadError(std::int64_t code);

private:
    [[nodiscard]] int findExisting(collection::STATIONHDR& header);
    void applyCruises(collection::STATIONHDR& header) const;
    [[nodiscard]] bool mayStore(const collection::STATIONHDR& header, int existing);
    [[nodiscard]] bool askReplace(const collection::STATIONHDR& header);
    [[nodiscard]] bool tellNotFound(const collection::STATIONHDR& header);
    [[nodiscard]] bool storeMerged(const collection::STATIONDATA& station, int existing);
    [[nodiscard]] bool store(collection::STATIONDATA& station, int existing);
    void showProgress(int everyStations, std::int64_t everyBytes);
    void report();
    void tellWriteError(collection::WriteResult result);
    void undo();
    void commit();
    void writeLog();
    void endBusy();

    collection::RCollection& collection_;
    common::RUser& user_;
    const RUNOPTIONS options_;
    std::vector<CRUISEASSOCIATION> cruises_;
    std::unique_ptr<RExistingStations> existing_;
    std::unique_ptr<collection::STATIONDATA> merged_;
    bool open_ = false;
};

// "Imported", "Merged", "Updated".
[[nodiscard]] std::string_view pastTense(ImportMode mode);

} // namespace importing
