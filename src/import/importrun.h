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
    bool failed = false; // ended at a station that could not or was not to be written, or not written at all
    collection::SELECTIONCRITERIA savedCriteria{};
    std::string file;       // path of the input
    std::string fileName;   // short name for the report; empty for lists
    std::string lineBuffer; // the line last read
    READACCOUNT read;       // what the reader did
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

class RImportRun;

struct RUNOPTIONS {
    Existing existing = Existing::ask;
    // The run of the list that the file belongs to; not owned, null if it stands alone. Then the end of this
    // run only hands over what was done: the list's run reports, decides and logs.
    RImportRun* list = nullptr;
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
    // Reports with the account; undoes or commits; logs, and with `final` builds the inventory anew.
    void closeImport(bool final);
    // Of the run of a list: the files whose runs were closed.
    [[nodiscard]] std::size_t filesDone() const { return files_.size(); }
    // The stations of the collection, which all files of a list share.
    [[nodiscard]] RExistingStations& existingStations();
    // Stations of these cruises take the label of the one in the collection; those without a source label
    // are left out.
    void takeCruises(std::span<const CRUISEASSOCIATION> cruises);
    // Tells of a ReadCode that is about a line.
    void reportReadError(std::int64_t code);

private:
    [[nodiscard]] int findExisting(collection::STATIONHDR& header);
    void applyCruises(collection::STATIONHDR& header) const;
    [[nodiscard]] bool mayStore(const collection::STATIONHDR& header, int existing);
    [[nodiscard]] bool mayReplace(const collection::STATIONHDR& header);
    [[nodiscard]] bool askReplace(const collection::STATIONHDR& header);
    void tellExisting(const collection::STATIONHDR& header);
    void tellNotFound(const collection::STATIONHDR& header);
    [[nodiscard]] bool decide(collection::STATIONDATA& station, std::int64_t values);
    [[nodiscard]] bool storeOwn(collection::STATIONDATA& station, int existing, std::int64_t values);
    [[nodiscard]] bool storeMerged(const collection::STATIONDATA& station, int existing, std::int64_t values);
    [[nodiscard]] bool store(collection::STATIONDATA& station, int existing);
    void drop(int& reason, std::int64_t values);
    void showProgress(int everyStations, std::int64_t everyBytes);
    void report();
    void tellWriteError(collection::WriteResult result);
    void undo();
    void commit();
    void handOver();
    void takeFile(const RImportRun& file);
    void writeLog();
    void writeLogLine(const std::string& file, int stationsStored);
    void endBusy();

    collection::RCollection& collection_;
    common::RUser& user_;
    const RUNOPTIONS options_;
    std::vector<CRUISEASSOCIATION> cruises_;
    std::unique_ptr<RExistingStations> existing_;
    struct LISTEDFILE {
        std::string path;
        int stationsStored;
    };
    std::vector<LISTEDFILE> files_; // of a list
    std::unique_ptr<collection::STATIONDATA> merged_;
    int shownAt_ = 0; // stationsStored at the last progress update
    bool open_ = false;
};

// "Imported", "Merged", "Updated".
[[nodiscard]] std::string_view pastTense(ImportMode mode);

} // namespace importing
