// The commands on the open collection as a whole.

#include <filesystem>

#include "app/session.h"
#include "collection/check.h"
#include "collection/journal.h"
#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

constexpr double megabytesAByte = 9.536743e-07;
constexpr std::string_view deletionTitle = "Delete Collection";
constexpr std::string_view elsewhere =
    "If it is currently used by another application, close it and try again.";

bool sameFile(const std::string& a, const std::string& b)
{
    std::error_code error;
    return a == b || std::filesystem::equivalent(a, b, error);
}

bool sameCollection(const std::string& a, const std::string& b)
{
    return sameFile(a + ".var", b + ".var") || sameFile(a + ".hob", b + ".hob");
}

bool isThere(const std::string& basePath)
{
    return common::fileSize(basePath + ".var") >= 0 || common::fileSize(basePath + ".hob") >= 0;
}

std::string summary(const std::string& basePath, const collection::CHECKRESULT& result)
{
    const int remarks = static_cast<int>(result.findings.size()) - result.inconsistencies;
    return basePath + ".var: " + common::counted(result.stationCount, "station", "stations") + ", " +
           common::counted(result.inconsistencies, "inconsistency", "inconsistencies") + ", " +
           common::counted(remarks, "remark", "remarks") +
           common::format(", %.2f MB of %.2f MB are dead space, %.2f %% full",
                          static_cast<double>(result.deadBytes) * megabytesAByte,
                          static_cast<double>(result.dataBytes) * megabytesAByte, result.percentFull);
}

// What stood in the way of an operation on the files; empty if there is no more to say than that.
std::string reasonOf(collection::FilesResult result, const std::string& to)
{
    if (result == collection::FilesResult::description) return to + ".var could not be written.";
    if (result == collection::FilesResult::badName)
        return to + ".var could not be made: the directory is write-protected or full, or something else has "
                    "one of its names.";
    return {};
}

// New numbers of the old variables, 0 for those that are gone; index 0 is no variable.
std::vector<int> newNumbersOf(std::span<const collection::VARINFO> newVariables, int oldCount)
{
    std::vector<int> numbers(static_cast<std::size_t>(oldCount) + 1, 0);
    for (std::size_t v = newVariables.size(); v-- > 1;) { // the first of two that share their data wins
        const auto old = static_cast<std::size_t>(std::max(newVariables[v].assocSource, 0));
        if (old >= 1 && old < numbers.size()) numbers[old] = static_cast<int>(v);
    }
    return numbers;
}

} // namespace

// What was done; in a command file it is told, on a screen it is to be seen.
void RSession::tellDone(const std::string& text)
{
    user_.interactive() ? user_.status(text) : user_.note(text);
}

void RSession::forgetRecentFile(const std::string& path)
{
    const auto end = std::remove(settings.recentFiles.begin(), settings.recentFiles.end(), path);
    std::fill(end, settings.recentFiles.end(), std::string());
    view_.recentFilesChanged();
}

// --- copying, moving, deleting

// The base path of a collection that is to be made; empty, after a message, if there can't be one.
std::string RSession::targetBase(const std::string& path, const FILEQUESTION& question)
{
    std::string typed = path.empty() ? view_.askFile(question) : path;
    if (typed.empty()) return {};
    typed = common::absolutePath(typed);
    if (typed.ends_with(".var")) typed.resize(typed.size() - 4);
    const std::string directory = typed.substr(0, typed.rfind('/') + 1);
    const std::string name = collection::collectionName(typed.substr(directory.size()));
    if (!common::directoryExists(directory)) {
        user_.about("Collection Directory", directory + "\n\ndoes not exist!");
        return {};
    }
    if (!name.empty() && name != "." && name != "..") return directory + name;
    user_.about(question.caption, "\"" + typed + "\" is no name of a collection.");
    return {};
}

bool RSession::mayTakePlace(std::string_view caption, const std::string& basePath)
{
    if (sameCollection(basePath, collection.path)) {
        user_.about(caption, basePath + ".var is the open collection itself.");
        return false;
    }
    if (unpacked_ && basePath.starts_with(unpacked_->path())) {
        user_.about(caption, basePath + ".var would be lost with the unpacked files.");
        return false;
    }
    if (!isThere(basePath) || !user_.interactive()) return true;
    return user_.question(caption, "Collection\n\n" + basePath + ".var\n\nalready exists!  Replace it?",
                          common::Answer::no) == common::Answer::yes;
}

// With both collections closed. Returns whether the operation is done; it speaks if not.
bool RSession::runFamilyCommand(const FAMILYCOMMAND& command, const std::string& from, const std::string& to)
{
    using collection::FilesResult;
    collection::RCollectionLock targetLock;
    FilesResult result = FilesResult::stationFiles;
    std::string reason;
    if (lock_.acquire(from) && targetLock.acquire(to)) {
        // What a change of the target has left would be applied to its new files.
        const collection::RECOVERY recovery = collection::recoverCollection(to);
        if (recovery.result == collection::RecoveryResult::failed) {
            reason = "A change of " + to + ".var was cut off, and its journal " +
                     collection::journalPath(to) + " can't be used: " + recovery.fault;
        } else {
            result = command.run(from, to);
            reason = reasonOf(result, to);
        }
    }
    if (result == FilesResult::otherFiles)
        user_.note(from + ".var: some of its side files could not be removed");
    if (result == FilesResult::ok || result == FilesResult::otherFiles) return true;
    user_.about(command.title, "Could not " + std::string(command.verb) + " collection!\n\n" +
                                   std::string(elsewhere) + (reason.empty() ? "" : "\n\n" + reason));
    return false;
}

bool RSession::copyOrMove(const FAMILYCOMMAND& command, const std::string& target)
{
    const std::string from = collection.path;
    const std::string beside = collection.isTemporaryFile ? "" : collection.directory; // not where it is lost
    const std::string to = targetBase(
        target, {"Select Target Collection Name ...", "Collection Name (*.var)",
                 common::absolutePath(beside + "copy_of_" + collection.name + ".var"), true, true});
    if (to.empty() || !mayTakePlace(command.title, to)) return false;
    const variables::DERIVEDSET derived = variables::derivedSet(collection);
    std::unique_ptr<RScratchFolder> unpacked = std::move(unpacked_); // its files must outlast the closing
    if (!close(false)) {
        unpacked_ = std::move(unpacked);
        return false;
    }
    const bool good = runFamilyCommand(command, from, to);
    lock_.release();
    if (!good) {
        static_cast<void>(unpacked ? openTemporary(FileKind::collection, from + ".var", std::move(unpacked))
                                   : openKind(FileKind::collection, from + ".var"));
        putBackDerived(derived);
        return false;
    }
    if (!isThere(from)) forgetRecentFile(from + ".var");
    const bool opened = openKind(FileKind::collection, to + ".var") == OpenResult::ok;
    putBackDerived(derived);
    tellDone(from + ".var: " + std::string(command.done) + " to " + to + ".var");
    return opened;
}

bool RSession::copyCollection(const std::string& target)
{
    return copyOrMove({"Copy Collection", "copy", "copied", collection::copyCollection}, target);
}

bool RSession::moveCollection(const std::string& target)
{
    return copyOrMove({"Move/Rename Collection", "rename", "moved", collection::moveCollection}, target);
}

bool RSession::deleteCollection()
{
    if (user_.question("Confirm Deletion ...", "Really want to delete current collection?") !=
        common::Answer::yes)
        return false;
    const std::string path = collection.path;
    if (!close(false)) return false;
    const collection::FilesResult result = lock_.acquire(path)
                                               ? collection::deleteCollection(path, true, true)
                                               : collection::FilesResult::stationFiles;
    lock_.release();
    if (result != collection::FilesResult::ok && result != collection::FilesResult::otherFiles) {
        user_.about(deletionTitle, "Could not delete collection!\n\n" + std::string(elsewhere));
        static_cast<void>(openKind(FileKind::collection, path + ".var"));
        return false;
    }
    forgetRecentFile(path + ".var");
    if (result == collection::FilesResult::otherFiles)
        user_.note(path + ".var: some of its side files could not be removed");
    user_.about(deletionTitle, path + ".var deleted!\n\nNote that associated .cfg and .sec files\nmust be "
                                      "deleted manually.");
    return true;
}

// --- what the stations and variables are

// What hangs on the stations, after they became others.
void RSession::stationsChanged()
{
    if (!collection.isOpen) { // the new files are in their places, but can't be opened
        leave();
        return;
    }
    selection::clearPlotted(collection);
    collection.currentStation = collection.currentSample = 0;
    collection.selectedCruises.clear();
    collection.selectedCruiseCount = 0;
    currentStation.clear();
    listChanged();
    view_.statusChanged();
}

bool RSession::sortAndCondense()
{
    const std::string path = collection.path;
    const std::int64_t before = common::fileSize(path + ".dob");
    const bool done = collection.sortAndCondense(scratch_, user_);
    if (done || !collection.isOpen) stationsChanged();
    if (!done) return false;
    const auto freed = static_cast<double>(before - common::fileSize(path + ".dob"));
    tellDone(common::format("%s.var: %d stations sorted and condensed, %.2f MB freed", path.c_str(),
                            collection.stationCount, freed * megabytesAByte));
    return true;
}

// numbers[old]: the new number of each variable, derived ones included; 0 for one that is gone.
void RSession::variablesChanged(std::span<const int> numbers)
{
    graphics::GRAPHICSSETUP defaults;
    graphics::setDefaultSetup(defaults, collection, installation);
    followVariables(setup, numbers, defaults, ranged_);
}

bool RSession::changeVariables(std::vector<collection::VARINFO> newVariables)
{
    const int oldCount = collection.variableCount;
    const std::vector<collection::VARINFO> old(collection.variables.begin(),
                                               collection.variables.begin() + oldCount + 1);
    if (newVariables.empty()) {
        newVariables = old;
        for (std::size_t v = 1; v < old.size(); ++v) newVariables[v].assocSource = static_cast<int>(v);
        if (!view_.editVariables(collection.name, newVariables, old)) return false;
    }
    const std::string path = collection.path;
    const variables::DERIVEDSET derived = variables::derivedSet(collection);
    const collection::SELECTIONCRITERIA criteria = collection.criteria;
    const bool done = collection.changeVariableSet(scratch_, newVariables, user_);
    if (done && collection.isOpen) {
        std::vector<int> numbers = newNumbersOf(newVariables, oldCount);
        keepDerived(derived, numbers, criteria);
        variablesChanged(numbers);
    }
    if (done || !collection.isOpen) stationsChanged();
    if (done)
        tellDone(common::format("%s.var: has %d variables now, had %d", path.c_str(),
                                static_cast<int>(newVariables.size()) - 1, oldCount));
    return done;
}

// The stations that `remove` takes out; a collection that has none left loses its dead space too.
bool RSession::deleteStations(const std::function<int()>& remove)
{
    const std::string path = collection.path;
    const int count = remove();
    if (count <= 0) return false;
    if (collection.isOpen && collection.stationCount == 0)
        static_cast<void>(collection.sortAndCondense(scratch_, user_)); // it tells what goes wrong
    stationsChanged();
    tellDone(path + ".var: " + common::counted(count, "station", "stations") + " deleted");
    return collection.isOpen;
}

bool RSession::deleteSelected()
{
    return deleteStations([this] { return collection.deleteSelectedStations(user_); });
}

bool RSession::deleteEmpty()
{
    bool noneFound = false; // that is no failure
    return deleteStations([&] { return collection.deleteEmptyStations(user_, &noneFound); }) || noneFound;
}

bool RSession::deleteStation(int number)
{
    selection::SELECTEDSTATION current{};
    if (number == 0 && selection::readSelected(collection, collection.currentStation, current))
        number = current.number;
    if (number < 1 || number > collection.stationCount) {
        user_.about("Confirm Deletion ...",
                    number == 0 ? "There is no current station."
                                : common::format("There is no station %d; the collection has %d.", number,
                                                 collection.stationCount));
        return false;
    }
    return deleteStations([&] { return collection.deleteStation(number, user_); });
}

bool RSession::addLogComment(std::optional<std::string> text)
{
    if (!text) text = view_.askLine("Add log File Comment", "Comment:");
    if (!text) return false;
    const std::string log = collection.path + ".log";
    const std::int64_t before = std::max<std::int64_t>(common::fileSize(log), 0);
    collection.addLogLine("COMMENT " + *text);
    if (common::fileSize(log) > before) return true;
    user_.about("Add log File Comment", log + " could not be written!");
    return false;
}

// --- the check

bool RSession::checkCollection(const std::string& path)
{
    std::string base = path.empty() ? collection.path : common::absolutePath(path);
    if (base.ends_with(".var")) base.resize(base.size() - 4);
    if (base.empty()) {
        user_.note("there is no open collection to check");
        return false;
    }
    const collection::CHECKRESULT result = collection::checkCollection(base, user_);
    for (const collection::FINDING& finding : result.findings) {
        const bool bad = finding.kind == collection::FINDING::inconsistency;
        user_.note((bad ? "inconsistency: " : "remark: ") + finding.text);
    }
    if (!result.complete) user_.note(base + ".var: the check was broken off");
    tellDone(summary(base, result));
    return result.complete && result.inconsistencies == 0;
}

} // namespace app
