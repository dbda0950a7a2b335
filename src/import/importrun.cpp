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
    return common::labelToUtf8(common::fieldText(label));
}

// As the dialogs name a station.
std::string nameOf(const STATIONHDR& header)
{
    return format("%s  - %s  - %s", utf8(header.cruise).c_str(), utf8(header.station).c_str(),
                  utf8(header.type).c_str());
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
    const RImportRun* const list = options_.list;
    state.mode = mode;
    state.totalBytes = size;
    state.lineNumber = firstLine;
    state.bytesRead = state.lastProgressBytes = 0;
    state.stationsRead = state.stationsStored = shownAt_ = 0;
    state.read = {};
    state.account = {};
    state.stationsAtStart = list != nullptr ? list->state.stationsAtStart : collection_.stationCount;
    state.file = file;
    state.fileName = shortName;
    state.replaceAll = state.stationsAtStart == 0 || (list != nullptr && list->state.replaceAll);
    state.savedCriteria = collection_.criteria;
    collection_.criteria = collection::defaultCriteria();
    if (mode != ImportMode::addReplace) state.checkExisting = true;
    if (state.stationsAtStart == 0 && mode == ImportMode::addReplace) state.checkExisting = false;
    if (list == nullptr) user_.setAbort(false);
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

RExistingStations& RImportRun::existingStations()
{
    if (options_.list != nullptr) return options_.list->existingStations();
    if (!existing_) {
        if (collection_.cruises.empty()) collection_.readInventory(false, user_);
        existing_ = std::make_unique<RExistingStations>(collection_);
        if (!existing_->build())
            user_.note(format("%s.hob: some headers can't be read", collection_.path.c_str()));
    }
    return *existing_;
}

int RImportRun::findExisting(STATIONHDR& header)
{
    applyCruises(header);
    return existingStations().find(header);
}

bool RImportRun::askReplace(const STATIONHDR& header)
{
    const std::string text =
        format("Station: %s Already in Collection!\n\nReplace It?", nameOf(header).c_str());
    constexpr std::string_view title = "Confirm Station Replace";
    enum Button { yes, yesToAll, no, abort };
    constexpr auto buttons = std::to_array<std::string_view>({"&Yes", "Yes to &All", "&No", "&Cancel"});
    const int answer = user_.choose(title, text, buttons, yes, abort);
    state.aborted = answer == abort;
    state.replaceAll = answer == yesToAll;
    return answer == yes || answer == yesToAll;
}

void RImportRun::tellExisting(const STATIONHDR& header)
{
    user_.about(runCaption, format("Station: %s Already in Collection!\n\nThe import ends here; what was "
                                   "stored before stays.",
                                   nameOf(header).c_str()));
    state.failed = true;
}

bool RImportRun::mayReplace(const STATIONHDR& header)
{
    switch (options_.existing) {
    case Existing::replace:
        return true;
    case Existing::keep:
        return false;
    case Existing::abort:
        tellExisting(header);
        return false;
    default:
        return state.replaceAll || !user_.interactive() || askReplace(header);
    }
}

// Only a merge speaks about each; all of them are in the account.
void RImportRun::tellNotFound(const STATIONHDR& header)
{
    if (state.mode != ImportMode::merge || state.replaceAll || !user_.interactive()) return;
    enum Button { yes, no, abort };
    constexpr auto buttons = std::to_array<std::string_view>({"&Yes", "&No", "&Abort"});
    const int answer = user_.choose("Station not Found ...",
                                    format("%s not in Collection!\nNo Data Import for this Station!\n\n"
                                           "Continue showing warnings?",
                                           nameOf(header).c_str()),
                                    buttons, yes, abort);
    state.aborted = answer == abort;
    if (answer == no) state.replaceAll = true;
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

// Enters a station that isn't stored into the account.
void RImportRun::drop(int& reason, std::int64_t values)
{
    ++reason;
    state.account.valuesDropped += values;
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
    const RImportRun& keeper = options_.list != nullptr ? *options_.list : *this;
    if (keeper.existing_) keeper.existing_->noteStored(existing, station.number, station.header);
    if (options_.stationStored) options_.stationStored(station.header);
    return true;
}

// False after a write error.
bool RImportRun::storeOwn(STATIONDATA& station, int existing, std::int64_t values)
{
    if (!store(station, existing)) {
        drop(state.account.unwritten, values);
        return false;
    }
    ++(existing > 0 ? state.account.replaced : state.account.added);
    state.account.valuesStored += values;
    return true;
}

// False only after a write error; a station that can't be merged is left as it is.
bool RImportRun::storeMerged(const STATIONDATA& station, int existing, std::int64_t values)
{
    STOREACCOUNT& account = state.account;
    if (!merged_) merged_ = std::make_unique<STATIONDATA>();
    if (collection_.loadStation(existing, *merged_, false) != collection::LoadResult::ok) {
        user_.note(format("%s.hob, %s.dob: station %d can't be read and stays as it is",
                          collection_.path.c_str(), collection_.path.c_str(), existing));
        drop(account.unreadable, values);
        return true;
    }
    const auto counts = mergeStation(station, *merged_, state.mode, collection_.variableCount);
    if (!counts) {
        user_.about("Station not stored!",
                    format("Too many data points for Station %s %s", utf8(station.header.cruise).c_str(),
                           utf8(station.header.station).c_str()));
        drop(account.tooLarge, values);
        return true;
    }
    if (!store(*merged_, existing)) {
        drop(account.unwritten, values);
        return false;
    }
    ++account.merged;
    account.valuesStored += counts->stored;
    account.valuesAveraged += counts->averaged;
    account.valuesMatched += counts->matched;
    account.valuesDropped += counts->dropped;
    return true;
}

// What becomes of a station, and what is asked about it. False if the run ends with it.
bool RImportRun::decide(STATIONDATA& station, std::int64_t values)
{
    STOREACCOUNT& account = state.account;
    const int existing = state.checkExisting ? findExisting(station.header) : 0;
    const bool merges = state.mode != ImportMode::addReplace;
    const bool isMissing = merges && existing == 0;
    const bool stays = !merges && existing > 0 && !mayReplace(station.header);
    if (isMissing) tellNotFound(station.header);
    if (!state.aborted && !state.failed) state.aborted = user_.askAbort("Really Want to Abort?", runCaption);
    if (state.aborted || state.failed) {
        drop(account.unwritten, values);
        return false;
    }
    if (isMissing) {
        addNotFound(account, format("%s - %s - %s", utf8(station.header.cruise).c_str(),
                                    utf8(station.header.station).c_str(), utf8(station.header.type).c_str()));
        account.valuesDropped += values;
        return true;
    }
    if (stays) {
        drop(account.kept, values);
        return true;
    }
    return merges ? storeMerged(station, existing, values) : storeOwn(station, existing, values);
}

bool RImportRun::importStation(STATIONDATA& station, int everyStations, std::int64_t everyBytes)
{
    ++state.stationsRead;
    const std::int64_t values = countValues(station, collection_.variableCount);
    ++state.account.delivered;
    state.account.valuesDelivered += values;
    if (!decide(station, values)) return true;
    showProgress(everyStations, everyBytes);
    return false;
}

void RImportRun::showProgress(int everyStations, std::int64_t everyBytes)
{
    const bool due = state.stationsStored - shownAt_ >= everyStations ||
                     state.bytesRead - state.lastProgressBytes >= everyBytes;
    if (!due) return;
    shownAt_ = state.stationsStored;
    state.lastProgressBytes = state.bytesRead;
    const RImportRun* const list = options_.list;
    const std::int64_t total = list != nullptr ? list->state.totalBytes : state.totalBytes;
    const std::int64_t done = state.bytesRead + (list != nullptr ? list->state.bytesRead : 0);
    if (total > 0) user_.setProgress(100.0 * static_cast<double>(done) / static_cast<double>(total));
}

void RImportRun::endBusy()
{
    if (!open_) return;
    open_ = false;
    collection_.criteria = state.savedCriteria;
    user_.endBusy();
    if (options_.list == nullptr) user_.setAbort(false);
}

void RImportRun::report()
{
    const std::string_view source =
        state.fileName.empty() ? "Multiple Files" : std::string_view(state.fileName);
    const std::string text = format("%d Stations %s from\n\n%s\n\n", state.stationsStored,
                                    std::string(pastTense(state.mode)).c_str(), std::string(source).c_str()) +
                             accountText(state.read, state.account, state.mode);
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
    takeBack(state.account);
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
    takeBack(state.account);
}

void RImportRun::writeLogLine(const std::string& file, int stationsStored)
{
    std::string text = format("File %s not found.", file.c_str());
    const bool exists = common::fileExists(file);
    if (exists)
        text = format("IMPORT%6d Stations %s (%s)", stationsStored, file.c_str(),
                      collection::fileTime(file).c_str());
    state.logFault = !exists || stationsStored == 0;
    if (!state.logFault) {
        collection_.addLogLine(text);
        return;
    }
    const common::FilePtr log =
        common::openFile(format("%s%s.log", collection_.directory.c_str(), collection_.name.c_str()), "ab");
    if (log) std::fprintf(log.get(), "ERROR: %s\n", text.c_str());
}

void RImportRun::writeLog()
{
    const bool allUndone = state.stationsStored == 0;
    if (files_.empty()) writeLogLine(state.file, state.stationsStored);
    for (const LISTEDFILE& file : files_) writeLogLine(file.path, allUndone ? 0 : file.stationsStored);
    collection_.addLogLine(accountLine(state.read, state.account, state.mode));
}

// What a file of a list brought is the list's.
void RImportRun::handOver()
{
    static_cast<void>(collection_.commitChange()); // one of those within the list's
    options_.list->takeFile(*this);
}

void RImportRun::takeFile(const RImportRun& file)
{
    files_.push_back({file.state.file, file.state.stationsStored});
    state.mode = file.state.mode;
    state.stationsRead += file.state.stationsRead;
    state.stationsStored += file.state.stationsStored;
    state.bytesRead += std::max<std::int64_t>(0, file.state.totalBytes);
    state.read += file.state.read;
    state.account += file.state.account;
    state.replaceAll = state.replaceAll || file.state.replaceAll;
    state.aborted = state.aborted || file.state.aborted;
    state.failed = state.failed || file.state.failed;
}

void RImportRun::closeImport(bool final)
{
    if (!open_) return;
    const bool last = final || state.aborted;
    user_.status({});
    endBusy();
    if (options_.list != nullptr) {
        handOver();
        return;
    }
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
