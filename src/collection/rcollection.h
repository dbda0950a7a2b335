#pragma once

// The open collection: a family of files with one base path, and all that hangs on it. The operations on the
// `.var` description (varfile.cpp), the station files (stationfiles.cpp), the inventory (inventory.cpp) and
// the side files (sidefiles.cpp) are members; what conducts several of them for the user stands in app.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/cruiseinfo.h"
#include "collection/journal.h"
#include "collection/selectioncriteria.h"
#include "collection/stationdata.h"
#include "collection/varinfo.h"
#include "common/files.h"
#include "common/limits.h"
#include "common/user.h"

namespace collection {

// What a load does between the disk and the caller; `variables` and `selection` implement the stages and the
// program joins them at start-up. The default stages do nothing.
class RLoadStages {
public:
    virtual ~RLoadStages() = default;
    // Blanks the values whose flag exceeds the collection's quality limit (never called for limit 8).
    virtual void applyQualityLimit(STATIONDATA&) {}
    virtual void computeDerived(STATIONDATA&) {}
    // Blanks the samples outside the sample range of the criteria (called only if one is in force).
    virtual void applySampleRange(STATIONDATA&) {}
};

enum class VarFileResult : int { ok = 0, missing = 1, badFormat = -1 };
enum class OpenFilesResult : int {
    ok = 0,
    badDescription = 1,
    noDataFile = 2,
    noHeaderFile = 3,
    badMagic = 4
};
enum class LoadResult : int { ok = 0, badNumber = 1, badHeader = 3, badData = 5 };
enum class WriteResult : int {
    ok = 0,
    notOpen = 1,
    badHeader = 3,
    headerNotWritten = 4,
    dataNotWritten = 6,
    noLevels = 7,
    tooLarge = 8,
    full = 9 // no header can point behind the last block: sorting and condensing may make room
};

struct CHANGE;

class RCollection {
public:
    RCollection();
    ~RCollection();
    RCollection(const RCollection&) = delete;
    RCollection& operator=(const RCollection&) = delete;

    // --- identity
    std::string name;          // line 2 of `.var`; base name of the files
    std::string extension;     // of the path that was opened, with its point
    std::string directory;     // with trailing separator
    std::string path;          // directory + name; file names derive from it by appending ".var" and so on
    std::string type = "HYD";  // line 3 of `.var`
    std::string configName;    // current configuration, without extension
    std::string tempId;        // prefix of the temporary files of this opening
    std::string tempDirectory; // where they are, with trailing separator
    std::string userName, hostName; // for the log; they stay when the rest is reset

    // --- state
    bool isOpen = false;
    int kind = 0; // 1 native, 2 a netCDF file, 0 none
    bool writable = false;
    bool sectionDefined = false;
    bool configChanged = false;
    bool isTemporaryFile = false;

    // --- contents
    int stationCount = 0;
    int selectedStationCount = 0; // records of the `.val` list
    int plottedStationCount = 0;  // records of the `.sel` list in STATION mode
    int cruiseCount = 0, selectedCruiseCount = 0;
    int sampleCount = 0;
    int variableCount = 0;                                  // collection variables
    int totalVariableCount = 0;                             // with the derived ones
    int headerRecordSize = 80;                              // 80 + 2 variableCount, bytes
    int currentStation = 0;                                 // position in the selected list, from 1; 0 none
    int currentSample = 0;                                  // level, from 0
    std::array<VARINFO, common::variableSlots> variables{}; // entry 0 is no variable
    std::array<std::int32_t, 51> neededMask{};              // 1 for each variable that a load must provide
    std::vector<CRUISEINFO> cruises, selectedCruises;
    SELECTIONCRITERIA criteria = defaultCriteria();
    DOMAINPOLYGON polygon;
    int qualityLimit = common::noQualityLimit;

    // --- derived variables: numbers variableCount + 1 to totalVariableCount, in the order of their making;
    // each is computed from variables of smaller numbers only
    int nMacros = 0;                                       // formulas in use, from the first on
    std::array<std::string, common::maxFormulas> formulas; // a variable's own is that of its intParam
    // Origin of a variable that reads times "since" a date, as a day number with its fraction.
    std::array<double, common::variableSlots> timeOrigins{};

    // --- station files
    bool swapBytes = false;        // stored byte order differs from the host's
    bool foreignTimeOrder = false; // the file has the magic "NVQsol"
    // The magic that station files get when they are made; empty: the host's. A collection that is rewritten
    // keeps its own.
    std::string newMagic;
    // Appended stations may wait in memory also outside of a change, up to flushStationFiles(): for files
    // that are of no use to anybody until they are complete.
    bool writeBehind = false;
    common::FilePtr valFile;       // list of selected stations, see selection/selectedlist.h
    common::FilePtr selFile;       // list of plotted stations, the same records
    RLoadStages* stages = nullptr; // not owned; null: a load applies no stages
    // Whether so many bytes can be written in the collection's directory; null: the file system is asked.
    std::function<bool(std::int64_t bytes)> spaceCheck;

    // --- description (`.var`). `file` with or without ".var". With an empty title a missing file is not
    // reported, and other faults are told under the file's name. On any fault nothing here is changed.
    [[nodiscard]] VarFileResult readVarFile(const std::string& file, std::string_view title,
                                            common::RUser& user);
    // Line 2 is the last part of `basePath`. False if the collection isn't writable or the file can't be
    // made.
    [[nodiscard]] bool writeVarFile(const std::string& basePath);

    // --- station files (`.hob`, `.dob`). The description must exist; messages go to `user`. `writable` says
    // how they are opened; it becomes false if the header table ends early: then stationCount is the number
    // of headers that are there.
    [[nodiscard]] OpenFilesResult openStationFiles(const std::string& file, common::RUser& user);
    void closeStationFiles();
    // Header of station `number`, and its counts if `counts` isn't null. False: number out of range, or the
    // record can't be read or can't be true (counts and offsets that don't fit the files).
    [[nodiscard]] bool readStationHeader(int number, STATIONHDR& header, LEVELCOUNTS* counts);
    // False also for a position or depth that is no number.
    [[nodiscard]] bool writeStationHeader(int number, const STATIONHDR& header, const LEVELCOUNTS* counts);
    // Loads a station. derive: the stages of `stages` are applied (quality limit, derived, sample range).
    [[nodiscard]] LoadResult loadStation(int number, STATIONDATA& station, bool derive);
    // Stores a station; number 0 or out of range appends. sort: levels in the order of variable 1. On success
    // station.number is the number that it got. A station that outgrew its place moves to the end, and the
    // later ones move down by one. `offset`, `values`, `flags`, levels in levelCount[1], and a valueCount
    // that isn't 0 must be set; counts, type and deepest sample are settled here, and empty variables lose
    // their blocks. On a failure the collection is as before. `.var` is not rewritten.
    [[nodiscard]] WriteResult writeStation(int number, STATIONDATA& station, bool sort);
    // Outside of a change stations reach the files at once; they are safe on the disk when this returns true.
    [[nodiscard]] bool flushStationFiles();

    // --- changes that hold together (change.cpp). What happens to the station files and the description
    // between beginChange() and commitChange() is on the disk as a whole or not at all, whatever cuts it off:
    // the old bytes of every place in use are in the journal before new ones are written. Within a change
    // writes may be held back in memory; loads and scans see them all the same. Changes nest; only the
    // outermost one counts. A write in place outside of a change is a change of its own, except that `.var`
    // is rewritten only if it counts fewer stations. `operation` names it in the log of an opening that finds
    // it cut off. Nothing is written yet. False if the collection isn't writable, or its files are no longer
    // the ones that were opened.
    [[nodiscard]] bool beginChange(std::string_view operation);
    // All stations and the description are on the disk, the journal is gone. False: everything was rolled
    // back.
    [[nodiscard]] bool commitChange();
    // Files, counts and the inventory in memory are as at beginChange(); open changes around it end too.
    void rollBackChange();
    [[nodiscard]] bool isChanging() const;
    // Files that the change will make, by their names in the collection's directory: they go if it is undone.
    [[nodiscard]] bool noteMadeFiles(std::span<const std::string> names);
    // Puts the files of these suffixes aside, as far as they exist; they come back if the change is undone,
    // and go when it is committed. Those that don't exist, and what is added to the log, go if it is undone.
    // For a change that began with closed station files, which may be made and opened now.
    [[nodiscard]] bool setFilesAside(std::span<const std::string_view> suffixes);
    // The other way to commit: prepared, flushed files take the places of the collection's own (actions in
    // order, each may be done twice). The station files are closed before and opened again after it with all
    // that the new description says. False with `done` false: rolled back; with `done` true: the change
    // stands, but the files can't be opened.
    [[nodiscard]] bool commitReplacement(std::span<const FILEACTION> actions, int newStationCount,
                                         common::RUser& user, bool* done = nullptr);

    // --- maintenance. These ask and tell `user`; false or 0: nothing was changed. `station` is the buffer
    // through which stations go. Rewrites the collection in the order of cruises, types and station labels,
    // without dead space.
    [[nodiscard]] bool sortAndCondense(STATIONDATA& station, common::RUser& user);
    // Gives the collection another list of variables. Index 0 is no variable; assocSource of each is the
    // number of the old variable that it takes its data from, 0 for a new one.
    [[nodiscard]] bool changeVariableSet(STATIONDATA& station, std::span<const VARINFO> newVariables,
                                         common::RUser& user);
    // Each returns the number of stations removed, and rebuilds the inventory. After all of these the list of
    // selected stations is to be made anew: station numbers have changed.
    [[nodiscard]] int deleteSelectedStations(common::RUser& user);
    // noneFound: there was nothing to remove.
    [[nodiscard]] int deleteEmptyStations(common::RUser& user, bool* noneFound = nullptr);
    [[nodiscard]] int deleteStation(int number, common::RUser& user);

    // A scan over the header table in large blocks: calls visit(number, header, counts) for stations first to
    // last in order, as far as they exist, until it returns false. Records that can't be true are handed to
    // damaged(number) instead. Returns false if the file could not be read.
    template <typename Visit, typename Damaged>
    [[nodiscard]] bool scanHeaders(int first, int last, Visit&& visit, Damaged&& damaged);

    // --- inventory (`.inv`, `.cid`)
    // The entry point of an opening: reads `.inv` if it is current, otherwise (and if forced) builds the
    // tables of all stations and writes both files. Returns cruiseCount.
    int readInventory(bool force, common::RUser& user);
    // The table of all stations or of the selected ones; the latter is a copy where all are selected.
    int makeInventoryTables(bool allStations, common::RUser& user);
    // Goes through all stations, or through the `.val` list, and replaces one table. Returns its entries.
    int buildInventory(bool allStations, common::RUser& user);
    [[nodiscard]] bool writeInventoryFile();
    // False, with nothing changed, if the file is missing, not of the form, or not of this collection.
    [[nodiscard]] bool readInventoryFile();
    // Index in `cruises` of each station, by station number - 1; from `.cid` if that is current, otherwise
    // (and if forced) from the headers. A station that matches no entry has 0.
    [[nodiscard]] std::vector<std::int32_t> readCruiseIndices(bool force);

    // --- side files, see also collection/sidefiles.h
    void addLogLine(std::string_view message) const; // by userName on hostName
    // The collection variable that plays a role, by `.idv`; 0 if there is none.
    [[nodiscard]] int getVariableId(std::string_view key) const;
    [[nodiscard]] bool setVariableId(std::string_view key, int number);
    // After path, type and variables were set: removes `.idv`, sets stationCount 0, writes `.var`, logs
    // CREATE. The station files are made by the opening that follows.
    [[nodiscard]] bool createEmptyFiles();
    [[nodiscard]] std::string infoFile() const; // where the free description is
    void makeTempId();                          // a new prefix, unlike the last
    // Makes `.val` and `.sel` in tempDirectory, with a new tempId if the present one is taken.
    [[nodiscard]] bool openTemporaryFiles();
    void closeTemporaryFiles(); // and deletes all files of this tempId

    // Only the collection's own variables are left, and all are needed.
    void forgetDerived();
    // Everything as before the first open; files are closed. `stages`, tempDirectory and the names for the
    // log stay.
    void reset();

private:
    struct Files;
    std::unique_ptr<Files> files_;
    [[nodiscard]] bool readHeaderBlock(int first, int count, std::vector<std::byte>& block);
    [[nodiscard]] bool unpackRecord(const std::byte* record, STATIONHDR& header, LEVELCOUNTS& counts) const;

    [[nodiscard]] OpenFilesResult openEmptyFiles(common::RUser& user);
    [[nodiscard]] OpenFilesResult openFilledFiles(common::RUser& user);
    void closeStreams();
    [[nodiscard]] WriteResult prepareStation(STATIONDATA& station, bool sort);
    [[nodiscard]] bool findDataEnds();
    [[nodiscard]] bool hasOutgrown(int number, const STATIONDATA& station, const STATIONHDR& old);
    [[nodiscard]] bool putRecord(int number, const STATIONHDR& header, const LEVELCOUNTS& counts);
    [[nodiscard]] bool putCells(const STATIONDATA& station);
    [[nodiscard]] WriteResult overwriteStation(int number, STATIONDATA& station, const STATIONHDR& old);
    [[nodiscard]] bool addRecord(const STATIONDATA& station);
    void cutData(std::int64_t end);
    [[nodiscard]] WriteResult appendStation(STATIONDATA& station, int displaced);
    void noteMoved(int number, const STATIONHDR& header);
    void applyStages(STATIONDATA& station);

    [[nodiscard]] std::vector<std::uint8_t> marksOfEmpty(common::RUser& user);
    [[nodiscard]] int dropStations(std::span<const std::uint8_t> marks, std::string_view logLine,
                                   common::RUser& user);
    [[nodiscard]] bool replaceHeaders(std::span<const std::uint8_t> marks, std::string_view operation,
                                      common::RUser& user);
    [[nodiscard]] bool writeKeptHeaders(std::span<const std::uint8_t> marks, common::RUser& user);

    [[nodiscard]] bool filesAreInPlace() const;
    [[nodiscard]] bool finishChange(bool withDescription);
    [[nodiscard]] std::string describe(int count) const;
    [[nodiscard]] bool decideByDescription();
    [[nodiscard]] bool decideByJournal();
    [[nodiscard]] bool undoOnDisk(CHANGE& change);
    void reopenStreams();
    [[nodiscard]] WriteResult asOneChange(std::string_view operation,
                                          const std::function<WriteResult()>& write);
    void settleChange();
    [[nodiscard]] bool beginJournal();
    [[nodiscard]] bool saveOld(JournalFile file, std::int64_t offset, std::size_t length);
    [[nodiscard]] bool put(JournalFile file, std::int64_t offset, std::span<const std::byte> first,
                           std::span<const std::byte> second = {});
    [[nodiscard]] bool mayHoldMore();
    [[nodiscard]] bool flushHeld();
    [[nodiscard]] bool compactTable();
    [[nodiscard]] bool moveRecords(std::int64_t first, std::int64_t last, std::int64_t to);
    [[nodiscard]] bool prepareReplacement(std::span<const FILEACTION> actions);
    [[nodiscard]] bool decideReplacement(std::span<const FILEACTION> actions, int newStationCount,
                                         std::optional<std::string_view> description);

    int buildFullInventory(common::RUser& user);
    int buildSelectedInventory(common::RUser& user);
    void forEachSelected(const std::function<void(std::int32_t)>& visit) const;
    [[nodiscard]] bool readCruiseIndexFile(std::vector<std::int32_t>& indices) const;
    void writeCruiseIndices(std::vector<std::int32_t> indices) const;
};

// --- template

template <typename Visit, typename Damaged>
bool RCollection::scanHeaders(int first, int last, Visit&& visit, Damaged&& damaged)
{
    constexpr int recordsABlock = 4096;
    std::vector<std::byte> block;
    STATIONHDR header;
    LEVELCOUNTS counts{};
    const int end = std::min(last, stationCount);
    for (int start = std::max(first, 1); start <= end;) {
        const int count = std::min(recordsABlock, end - start + 1);
        if (!readHeaderBlock(start, count, block)) return false;
        for (int i = 0; i < count; ++i) {
            const std::byte* const record =
                block.data() + static_cast<std::size_t>(i) * static_cast<std::size_t>(headerRecordSize);
            if (!unpackRecord(record, header, counts)) {
                damaged(start + i);
            } else if (!visit(start + i, header, counts)) {
                return true;
            }
        }
        if (start > end - count) break; // the next start may not fit an int
        start += count;
    }
    return true;
}

} // namespace collection
