#include "import/importrun.h"

#include <algorithm>
#include <array>

#include "collection/sidefiles.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/stationreader.h"

namespace importing {
namespace {

using collection::STATIONDATA;
using collection::STATIONHDR;
using common::format;

constexpr std::string_view runCaption = "Importing Station-Data ...";

std::string utf8(std::string_view label)
{
    return common::labelToUtf8(label);
}

} // namespace

std::string_view pastTense(ImportMode mode)
{
    switch (mode) {
    case ImportMode::merge:
        return "Merged";
    case ImportMode::update:
        return "Updated";
    default:
        return "Imported";
    }
}

RImportRun::RImportRun(collection::RCollection& collection, common::RUser& user, RUNOPTIONS options)
    : collection_(collection), user_(user), options_(std::move(options))
{
    takeCruises(options_.cruises);
}

RImportRun::~RImportRun()
{
    if (open_) collection_.rollBackChange();
    endBusy();
}

std::int64_t RImportRun::openImport(const std::string& file, const std::string& shortName, int firstLine,
                                    ImportMode mode, bool evenIfEmpty)
{
    const std::int64_t size = common::openFile(file, "rb") ? common::fileSize(file) : 0;
    if (size <= 0 && !evenIfEmpty) return 0;
    if (!collection_.beginChange("IMPORT")) {
        user_.about(runCaption,
                    format("Collection %s can't be changed: its files are no longer the ones that were "
                           "opened, or a change that was cut off stands beside them.",
                           collection_.path.c_str()));
        state.failed = true;
        return 0;
    }
    state.mode = mode;
    state.totalBytes = size;
    state.lineNumber = firstLine;
    state.bytesRead = state.lastProgressBytes = 0;
    state.stationsRead = state.stationsStored = 0;
    state.stationsAtStart = collection_.stationCount;
    state.file = file;
    state.fileName = shortName;
    state.replaceAll = collection_.stationCount == 0;
    state.savedCriteria = collection_.criteria;
    collection_.criteria = collection::defaultCriteria();
    if (mode != ImportMode::addReplace) state.checkExisting = true;
    if (state.replaceAll && mode == ImportMode::addReplace) state.checkExisting = false;
    user_.setAbort(false);
    user_.status(format("File: %s", file.c_str()));
    user_.beginBusy(std::string("Importing Data ... ").append(common::escAborts));
    open_ = true;
    return size;
}

void RImportRun::takeCruises(std::span<const CRUISEASSOCIATION> cruises)
{
    cruises_.clear();
    std::copy_if(cruises.begin(), cruises.end(), std::back_inserter(cruises_),
                 [](const CRUISEASSOCIATION& cruise) { return !cruise.sourceLabel.empty(); });
}

void RImportRun::applyCruises(STATIONHDR& header) const
{
    for (const CRUISEASSOCIATION& cruise : cruises_) {
        if (cruise.sourceLabel != common::fieldText(header.cruise) ||
            cruise.type != common::fieldText(header.type)) {
            continue;
        }
        common::copyText(header.cruise, cruise.name);
        return;
    }
}

int RImportRun::findExisting(STATIONHDR& header)
{
    applyCruises(header);
    if (!existing_) {
        if (collection_.cruises.empty()) collection_.readInventory(false, user_);
        existing_ = std::make_unique<RExistingStations>(collection_);
        if (!existing_->build())
            user_.note(format("%s.hob: some headers can't be read", collection_.path.c_str()));
    }
    return existing_->find(header);
}

bool RImportRun::askReplace(const STATIONHDR& header)
{
    const std::string text =
        format("Station: %s  - %s  - %s Already in Collection!\n\nReplace It?", utf8(header.cruise).c_str(),
               utf8(header.station).c_str(), utf8(header.type).c_str());
    constexpr std::string_view title = "Confirm Station Replace";
    enum Button { yes, yesToAll, no, abort };
    constexpr auto buttons = std::to_array<std::string_view>({"&Yes", "Yes to &All", "&No", "&Cancel"});
    const int answer = user_.choose(title, text, buttons, yes, abort);
    state.aborted = answer == abort;
    state.replaceAll = answer == yesToAll;
    return answer == yes || answer == yesToAll;
}

bool RImportRun::tellNotFound(const STATIONHDR& header)
{
    enum Button { yes, no, abort };
    constexpr auto buttons = std::to_array<std::string_view>({"&Yes", "&No", "&Abort"});
    const int answer = user_.choose("Station not Found ...",
                                    format("%s  - %s  - %s not in Collection!\nNo Data Import for this "
                                           "Station!\n\nContinue showing warnings?",
                                           utf8(header.cruise).c_str(), utf8(header.station).c_str(),
                                           utf8(header.type).c_str()),
                                    buttons, yes, abort);
    state.aborted = answer == abort;
    if (answer == no) state.replaceAll = true;
    return false;
}

// Asks what there is to ask about a station; false if it is dropped.
bool RImportRun::mayStore(const STATIONHDR& header, int existing)
{
    if (state.replaceAll) return true;
    if (state.mode == ImportMode::addReplace && existing > 0) return askReplace(header);
    if (state.mode == ImportMode::merge && existing == 0) return tellNotFound(header);
    return true;
}

void RImportRun::tellWriteError(collection::WriteResult result)
{
    std::string text = format("Write-Error %d!\n\n Import will be Aborted", static_cast<int>(result));
    if (result == collection::WriteResult::full) {
        text +=
            format("\n\n%s.dob is full: a collection holds 2 GiB of data. Sorting and condensing it may make "
                   "room.",
                   collection_.path.c_str());
    }
    user_.about(runCaption, text);
}

bool RImportRun::store(STATIONDATA& station, int existing)
{
    const collection::WriteResult result = collection_.writeStation(existing, station, true);
    if (result != collection::WriteResult::ok) {
        tellWriteError(result);
        user_.setAbort(true);
        state.failed = true;
        return false;
    }
    ++state.stationsStored;
    if (existing_) existing_->noteStored(existing, station.number, station.header);
    if (options_.stationStored) options_.stationStored(station.header);
    return true;
}

// False only after a write error; a station that can't be merged is left as it is.
bool RImportRun::storeMerged(const STATIONDATA& station, int existing)
{
    if (existing == 0) return true;
    if (!merged_) merged_ = std::make_unique<STATIONDATA>();
    if (collection_.loadStation(existing, *merged_, false) != collection::LoadResult::ok) {
        user_.note(format("%s.hob, %s.dob: station %d can't be read and stays as it is",
                          collection_.path.c_str(), collection_.path.c_str(), existing));
        return true;
    }
    if (!mergeStation(station, *merged_, state.mode, collection_.variableCount)) {
        user_.about("Station not stored!",
                    format("Too many data points for Station %s %s", utf8(station.header.cruise).c_str(),
                           utf8(station.header.station).c_str()));
        return true;
    }
    return store(*merged_, existing);
}

bool RImportRun::importStation(STATIONDATA& station, int everyStations, std::int64_t everyBytes)
{
    ++state.stationsRead;
    const int existing = state.checkExisting ? findExisting(station.header) : 0;
    const bool wanted = mayStore(station.header, existing);
    if (state.aborted) return true;
    if (user_.askAbort("Really Want to Abort?", runCaption)) {
        state.aborted = true;
        return true;
    }
    if (wanted) {
        const bool good =
            state.mode == ImportMode::addReplace ? store(station, existing) : storeMerged(station, existing);
        if (!good) return true;
    }
    showProgress(everyStations, everyBytes);
    return false;
}

void RImportRun::showProgress(int everyStations, std::int64_t everyBytes)
{
    const bool due = (state.stationsStored > 0 && state.stationsStored % everyStations == 0) ||
                     state.bytesRead - state.lastProgressBytes >= everyBytes;
    if (!due) return;
    state.lastProgressBytes = state.bytesRead;
    if (state.totalBytes > 0)
        user_.setProgress(100.0 * static_cast<double>(state.bytesRead) /
                          static_cast<double>(state.totalBytes));
}

void RImportRun::endBusy()
{
    if (!open_) return;
    open_ = false;
    collection_.criteria = state.savedCriteria;
    user_.endBusy();
    user_.setAbort(false);
}

void RImportRun::report()
{
    const std::string_view source =
        state.fileName.empty() ? "Multiple Files" : std::string_view(state.fileName);
    const std::string text = format("%d Stations %s from\n\n%s", state.stationsStored,
                                    std::string(pastTense(state.mode)).c_str(), std::string(source).c_str());
    if (state.mode == ImportMode::addReplace) {
        state.undoRequested = !user_.report(runCaption, text);
    } else {
        user_.about(runCaption, text);
    }
}

// Everything is as before the run: what was replaced and moved comes back too.
void RImportRun::undo()
{
    collection_.rollBackChange();
    state.stationsStored = 0;
}

void RImportRun::commit()
{
    if (collection_.commitChange()) return;
    const bool undone = collection_.writable; // otherwise not even that was possible
    user_.about(runCaption,
                format("Could not write %s.var, .hob and .dob!\n\n%s", collection_.path.c_str(),
                       undone ? "The collection is as it was before the import."
                              : "The import will be undone when the collection is opened again."));
    state.failed = true;
    state.stationsStored = 0;
}

void RImportRun::writeLog()
{
    std::string text = format("File %s not found.", state.file.c_str());
    const bool exists = common::fileExists(state.file);
    if (exists)
        text = format("IMPORT%6d Stations %s (%s)", state.stationsStored, state.file.c_str(),
                      collection::fileTime(state.file).c_str());
    state.logFault = !exists || state.stationsStored == 0;
    if (!state.logFault) {
        collection_.addLogLine(text);
        return;
    }
    const common::FilePtr log =
        common::openFile(format("%s%s.log", collection_.directory.c_str(), collection_.name.c_str()), "ab");
    if (log) std::fprintf(log.get(), "ERROR: %s\n", text.c_str());
}

void RImportRun::closeImport(bool final)
{
    if (!open_) return;
    const bool last = final || state.aborted;
    user_.status({});
    endBusy();
    if (last) report();
    if (state.undoRequested) {
        undo();
    } else {
        commit();
    }
    if (!collection_.isOpen) return; // the collection itself was made by the change that is undone
    writeLog();
    if (last) collection_.readInventory(true, user_);
}

void RImportRun::reportReadError(std::int64_t code)
{
    if (code != readBadHeader && code != readBadData) return;
    std::string text = code == readBadHeader
                           ? format("Could not interpret header line %d.\n\n", state.lineNumber)
                           : format("Could not interpret data line %d.\n\n", state.lineNumber);
    text += utf8(common::labelFromFile(state.lineBuffer, common::isValidUtf8(state.lineBuffer)));
    user_.about("Error reading input file ...", text);
}

} // namespace importing
