// Changes that hold together: what is saved before it is overwritten, what waits in memory, and how a change
// is decided or taken back.

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "collection/journalfile.h"
#include "collection/stationstreams.h"
#include "collection/varfile.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::size_t heldWithoutJournal = 1 << 18; // bytes of appended stations that wait in memory
constexpr std::size_t heldWithJournal = 8 << 20; // with overwritten ones, which cost a flush of the journal
constexpr std::size_t heldPieces = 4096;
constexpr std::size_t savedAtOnce = 1 << 20; // bytes
constexpr int recordsAMove = 4096;

bool flushFile(const std::string& path)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return false;
    const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    ::close(descriptor);
    return synced;
}

bool isRenaming(const FILEACTION& action, const std::string& to)
{
    return action.kind == FILEACTION::rename && action.to == to;
}

// A part of a name under which none of the files stands yet.
std::string freeMark(const std::string& path, std::span<const std::string_view> suffixes)
{
    for (int n = 0;; ++n) {
        const std::string mark = n == 0 ? ".old" : common::format(".old%d", n);
        const bool taken = std::any_of(suffixes.begin(), suffixes.end(), [&](std::string_view suffix) {
            return common::existsAtAll(path + mark + std::string(suffix));
        });
        if (!taken) return mark;
    }
}

bool contains(std::span<const std::string_view> suffixes, std::string_view suffix)
{
    return std::find(suffixes.begin(), suffixes.end(), suffix) != suffixes.end();
}

} // namespace

// --- beginning and end

bool RCollection::beginChange(std::string_view operation)
{
    if (files_->change) {
        ++files_->change->depth;
        return true;
    }
    if (!writable || path.empty() || common::existsAtAll(journalPath(path))) return false;
    if (isOpen && (kind != 1 || !filesAreInPlace() || !files_->dob.flush() || !files_->hob.flush()))
        return false;
    auto change = std::make_unique<CHANGE>();
    change->operation = operation;
    change->contents = {type,          stationCount,       cruiseCount,      sampleCount,
                        variableCount, totalVariableCount, headerRecordSize, variables,
                        cruises};
    change->hadFiles = isOpen;
    change->hobSize = files_->hob.size();
    change->dobSize = files_->dob.size();
    files_->change = std::move(change);
    return true;
}

bool RCollection::isChanging() const
{
    return files_->change != nullptr;
}

bool RCollection::commitChange()
{
    if (!files_->change) return false;
    if (files_->change->depth > 1) {
        --files_->change->depth;
        return true;
    }
    if (finishChange(true)) return true;
    rollBackChange();
    return false;
}

// True if the files that are open stand under their names: what is written to others would be lost.
bool RCollection::filesAreInPlace() const
{
    return files_->hob.isAt(path + ".hob") && files_->dob.isAt(path + ".dob");
}

// Brings everything to the disk; the description decides. Without it the change is whole when the journal
// goes.
bool RCollection::finishChange(bool withDescription)
{
    Files& files = *files_;
    if (isOpen &&
        !(filesAreInPlace() && compactTable() && flushHeld() && files.dob.sync() && files.hob.sync()))
        return false;
    CHANGE& change = *files.change;
    const bool journaled = change.journal.isOpen();
    if (withDescription && !(journaled ? decideByJournal() : decideByDescription())) return false;
    const bool finished = !journaled || change.journal.finish();
    if (!finished && !withDescription) return false; // behind a decision it can be run again
    if (!finished) writable = false; // what comes behind a journal that stays would be undone with it
    if (withDescription) files.describedCount = stationCount;
    files.change.reset();
    return true;
}

std::string RCollection::describe(int count) const
{
    return formatVarFile(path.substr(path.rfind('/') + 1), type, count, variableCount, variables);
}

// Nothing was overwritten: the count in the description is all that there is to decide.
bool RCollection::decideByDescription()
{
    const std::string text = describe(stationCount);
    const auto present = common::readFile(path + ".var", largestJournalText);
    if (present && *present == text) return true;
    if (!common::writeFile(path + ".var", text)) return false;
    static_cast<void>(common::syncDirectory(directory)); // too late to go back
    return true;
}

// The new description is ready beside the old one before the decision, so that nothing can fail behind it for
// want of room.
bool RCollection::decideByJournal()
{
    CHANGE& change = *files_->change;
    const std::string text = describe(stationCount);
    common::RReplacementFile description(path + ".var");
    if (!description.stream() ||
        std::fwrite(text.data(), 1, text.size(), description.stream()) != text.size() ||
        !description.prepare())
        return false;
    std::vector<FILEACTION> actions;
    for (const std::string& aside : change.aside) actions.push_back({FILEACTION::remove, aside, {}});
    const JOURNALSTATE after{files_->hob.size(), files_->dob.size(), stationCount};
    // files that were made have their names on the disk before the decision counts on them
    if (!common::syncDirectory(directory) || !change.journal.commit(after, actions, text)) return false;
    if (!description.commit()) {
        static_cast<void>(change.journal.revoke());
        return false;
    }
    static_cast<void>(common::syncDirectory(directory));
    std::string ignored; // what stays is removed by the journal's next reader, or is only litter
    if (!runActions(directory, actions, ignored)) static_cast<void>(runActions(directory, actions, ignored));
    return true;
}

void RCollection::rollBackChange()
{
    Files& files = *files_;
    const std::unique_ptr<CHANGE> change = std::move(files.change);
    if (!change) return;
    files.removed.clear();
    files.ends.reset();
    files.hob.drop();
    files.dob.drop();
    if (!change->hadFiles) {
        closeStationFiles();
    } else if (!isOpen) {
        reopenStreams();
    }
    // Where it fails the journal stays for the next opening; nothing may be written on top of that.
    if (!undoOnDisk(*change)) writable = false;
    files.form.dataSize = files.dob.size();
    CONTENTS& old = change->contents;
    type = old.type;
    stationCount = old.stationCount;
    cruiseCount = old.cruiseCount;
    sampleCount = old.sampleCount;
    variableCount = old.variableCount;
    totalVariableCount = old.totalVariableCount;
    headerRecordSize = old.headerRecordSize;
    files.form.variableCount = old.variableCount;
    variables = old.variables;
    cruises = std::move(old.cruises);
}

bool RCollection::undoOnDisk(CHANGE& change)
{
    RBlockFile& hob = files_->hob;
    RBlockFile& dob = files_->dob;
    if (!change.journal.isInPlace()) {
        if (!change.written) return true;
        return (hob.size() <= change.hobSize || hob.truncate(change.hobSize)) &&
               (dob.size() <= change.dobSize || dob.truncate(change.dobSize));
    }
    RJournalReader reader;
    JOURNALPLAN plan;
    std::string fault;
    return reader.open(journalPath(path)) && readPlan(reader, path, plan, fault) && !plan.commitment &&
           undoChange(reader, plan, path, change.hadFiles ? &hob : nullptr, change.hadFiles ? &dob : nullptr,
                      fault) &&
           change.journal.finish();
}

// The streams alone, as they were before a replacement that was not carried out.
void RCollection::reopenStreams()
{
    isOpen = files_->dob.open(path + ".dob", RBlockFile::Mode::update) &&
             files_->hob.open(path + ".hob", RBlockFile::Mode::update);
    kind = isOpen ? 1 : 0;
}

// A write that stands alone is a change of its own.
WriteResult RCollection::asOneChange(std::string_view operation, const std::function<WriteResult()>& write)
{
    if (isChanging()) return mayHoldMore() ? write() : WriteResult::dataNotWritten;
    if (!beginChange(operation)) return WriteResult::dataNotWritten;
    const WriteResult result = write();
    // A station that moved behind others that the description doesn't count would be lost with them.
    if (result == WriteResult::ok && finishChange(files_->describedCount != stationCount)) return result;
    rollBackChange();
    return result == WriteResult::ok ? WriteResult::dataNotWritten : result;
}

// --- writing within a change

// Settles what stations refer to before the first write of the change.
void RCollection::settleChange()
{
    CHANGE& change = *files_->change;
    if (change.before) return;
    if (!change.hadFiles) {
        change.before = {-1, -1, change.contents.stationCount};
        return;
    }
    const std::int64_t dataEnd = findDataEnds() ? files_->ends->end() : files_->dob.size();
    change.before = {files_->placeOf(stationCount + 1), dataEnd, stationCount};
}

bool RCollection::beginJournal()
{
    settleChange();
    CHANGE& change = *files_->change;
    return change.journal.isOpen() || change.journal.begin(path, change.operation, *change.before);
}

// Notes the bytes of a place that the change is about to overwrite, as far as stations refer to them and they
// aren't noted yet.
bool RCollection::saveOld(JournalFile file, std::int64_t offset, std::size_t length)
{
    settleChange();
    CHANGE& change = *files_->change;
    const bool isHob = file == JournalFile::hob;
    const std::int64_t end = std::min(offset + static_cast<std::int64_t>(length),
                                      isHob ? change.before->hobSize : change.before->dobSize);
    RIntervals& saved = isHob ? change.savedHob : change.savedDob;
    std::vector<std::byte> old;
    for (const auto& gap : saved.gaps(offset, end)) {
        if (!beginJournal()) return false;
        for (std::int64_t at = gap.first; at < gap.second;) {
            old.resize(
                static_cast<std::size_t>(std::min(gap.second - at, static_cast<std::int64_t>(savedAtOnce))));
            if (!files_->stream(file).read(at, old) || !change.journal.save(file, at, old)) return false;
            at += static_cast<std::int64_t>(old.size());
        }
    }
    saved.add(offset, end);
    return true;
}

// Writes to a station file: at once, or within a change when there is reason to.
bool RCollection::put(JournalFile file, std::int64_t offset, std::span<const std::byte> first,
                      std::span<const std::byte> second)
{
    RBlockFile& stream = files_->stream(file);
    bool good = true;
    if (isChanging()) {
        good = saveOld(file, offset, first.size() + second.size());
        if (good) stream.hold(offset, first, second);
    } else if (writeBehind) {
        stream.hold(offset, first, second);
        good = stream.heldBytes() < heldWithoutJournal || stream.flush();
    } else {
        good = stream.write(offset, first, second);
    }
    files_->form.dataSize = files_->dob.size();
    return good;
}

// Makes room in memory for another station. False: what waits there can't be written.
bool RCollection::mayHoldMore()
{
    if (!isChanging()) return true;
    const CHANGE& change = *files_->change;
    const bool needsJournal = change.journal.isOpen() && !change.journal.isSynced();
    const std::size_t bytes = files_->hob.heldBytes() + files_->dob.heldBytes();
    const std::size_t pieces = files_->hob.heldPieces() + files_->dob.heldPieces();
    if (bytes < (needsJournal ? heldWithJournal : heldWithoutJournal) && pieces < heldPieces) return true;
    return flushHeld();
}

// Old bytes first, then the new ones. The first stations of an empty collection need a journal too: beside a
// description that counts none they would be taken for damage.
bool RCollection::flushHeld()
{
    Files& files = *files_;
    if (files.hob.heldBytes() + files.dob.heldBytes() == 0) return true;
    CHANGE& change = *files.change;
    settleChange();
    if (change.before->stationCount == 0 && !beginJournal()) return false;
    if (change.journal.isOpen() && !change.journal.sync()) return false;
    change.written = true;
    return files.dob.flush() && files.hob.flush();
}

// Closes the gaps that stations which were taken out have left in the header table.
bool RCollection::compactTable()
{
    Files& files = *files_;
    if (files.removed.isEmpty()) return true;
    const std::vector<int>& gaps = files.removed.slots();
    const std::int64_t start = files.placeOfSlot(gaps.front());
    const std::int64_t end = files.placeOfSlot(std::int64_t{stationCount} + files.removed.count() + 1);
    if (!flushHeld() || !saveOld(JournalFile::hob, start, static_cast<std::size_t>(end - start)))
        return false;
    if (files.change->journal.isOpen() && !files.change->journal.sync()) return false;
    files.change->written = true;
    std::int64_t to = gaps.front();
    for (std::size_t i = 0; i < gaps.size(); ++i) {
        const std::int64_t last =
            i + 1 < gaps.size() ? gaps[i + 1] - 1 : std::int64_t{stationCount} + files.removed.count();
        if (!moveRecords(gaps[i] + std::int64_t{1}, last, to)) return false;
        to += last - gaps[i];
    }
    files.removed.clear();
    return files.hob.truncate(files.placeOf(stationCount + 1));
}

// Moves the records of the slots first to last to the slots from `to` on, which is lower.
bool RCollection::moveRecords(std::int64_t first, std::int64_t last, std::int64_t to)
{
    std::vector<std::byte> block;
    while (first <= last) {
        const std::int64_t count = std::min<std::int64_t>(recordsAMove, last - first + 1);
        block.resize(static_cast<std::size_t>(count * files_->form.recordSize()));
        if (!files_->hob.read(files_->placeOfSlot(first), block) ||
            !files_->hob.write(files_->placeOfSlot(to), block))
            return false;
        first += count;
        to += count;
    }
    return true;
}

// --- whole files

bool RCollection::noteMadeFiles(std::span<const std::string> names)
{
    if (!isChanging() || !beginJournal()) return false;
    CHANGE& change = *files_->change;
    return std::all_of(names.begin(), names.end(),
                       [&](const std::string& fileName) {
                           return !common::existsAtAll(directory + fileName) &&
                                  change.journal.willMake(fileName);
                       }) &&
           change.journal.sync();
}

bool RCollection::setFilesAside(std::span<const std::string_view> suffixes)
{
    if (!isChanging() || isOpen || files_->change->hadFiles || !beginJournal()) return false;
    CHANGE& change = *files_->change;
    const std::string baseName = path.substr(path.rfind('/') + 1), mark = freeMark(path, suffixes);
    std::vector<std::string> present;
    bool noted = true;
    for (const std::string_view suffix : suffixes) {
        const std::string end(suffix);
        if (common::existsAtAll(path + end)) {
            present.push_back(end);
            noted = noted && change.journal.willSetAside(baseName + end, baseName + mark + end);
        } else {
            noted = noted && change.journal.willMake(baseName + end);
        }
    }
    if (!contains(suffixes, ".log")) {
        const std::int64_t logSize = common::fileSize(path + ".log");
        noted = noted && (logSize < 0 ? change.journal.willMake(baseName + ".log")
                                      : change.journal.willExtend(baseName + ".log", logSize));
    }
    if (!noted || !change.journal.sync()) return false;
    for (const std::string& end : present) {
        if (std::rename((path + end).c_str(), (path + mark + end).c_str()) != 0) return false;
        change.aside.push_back(baseName + mark + end);
    }
    return common::syncDirectory(directory);
}

bool RCollection::commitReplacement(std::span<const FILEACTION> actions, int newStationCount,
                                    common::RUser& user, bool* done)
{
    if (done) *done = false;
    const std::string varFile = path + ".var";
    const std::string text = describe(newStationCount);
    const bool describes = std::none_of(actions.begin(), actions.end(), [&](const FILEACTION& action) {
        return isRenaming(action, varFile.substr(varFile.rfind('/') + 1));
    });
    common::RReplacementFile description(varFile);
    const bool ready =
        !describes || (description.stream() &&
                       std::fwrite(text.data(), 1, text.size(), description.stream()) == text.size() &&
                       description.prepare());
    if (!ready || !prepareReplacement(actions) ||
        !decideReplacement(actions, newStationCount,
                           describes ? std::optional<std::string_view>(text) : std::nullopt)) {
        rollBackChange();
        return false;
    }
    closeStreams();
    std::string fault;
    bool begun = false;
    if (!runActions(directory, actions, fault, &begun) || (describes && !description.commit())) {
        if (!begun && files_->change->journal.revoke()) {
            rollBackChange();
            return false;
        }
        files_->change.reset(); // the journal stays, and the next opening goes on from there
        if (done) *done = true;
        return false;
    }
    static_cast<void>(common::syncDirectory(directory));
    static_cast<void>(files_->change->journal.finish());
    files_->change.reset();
    if (done) *done = true;
    return openStationFiles(path, user) == OpenFilesResult::ok;
}

// All that takes another file's place is there and on the disk.
bool RCollection::prepareReplacement(std::span<const FILEACTION> actions)
{
    return isChanging() &&
           (!isOpen || (filesAreInPlace() && compactTable() && flushHeld() && files_->dob.sync() &&
                        files_->hob.sync())) &&
           std::all_of(actions.begin(), actions.end(), [&](const FILEACTION& action) {
               return action.kind == FILEACTION::remove || flushFile(directory + action.from);
           });
}

bool RCollection::decideReplacement(std::span<const FILEACTION> actions, int newStationCount,
                                    std::optional<std::string_view> description)
{
    const std::string baseName = path.substr(path.rfind('/') + 1);
    JOURNALSTATE after{files_->hob.size(), files_->dob.size(), newStationCount};
    for (const FILEACTION& action : actions) {
        if (isRenaming(action, baseName + ".hob")) after.hobSize = common::fileSize(directory + action.from);
        if (isRenaming(action, baseName + ".dob")) after.dobSize = common::fileSize(directory + action.from);
    }
    return beginJournal() && common::syncDirectory(directory) &&
           files_->change->journal.commit(after, actions, description);
}

} // namespace collection
