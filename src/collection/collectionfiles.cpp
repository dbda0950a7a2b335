#include "collection/collectionfiles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "collection/blockfile.h"
#include "collection/journal.h"
#include "collection/sidefiles.h"
#include "collection/varfile.h"
#include "common/files.h"

namespace collection {
namespace {

namespace fs = std::filesystem;

// What a copy takes along beside the description; without the first two there is no collection.
constexpr auto stationSuffixes = std::to_array<std::string_view>({".hob", ".dob"});
constexpr auto sideSuffixes =
    std::to_array<std::string_view>({".idv", ".inv", ".cid", ".log", ".cfl", ".info"});
// Behind the name that a file gets when it is complete.
constexpr std::string_view beside = newDescriptionSuffix;
constexpr std::size_t largestSuffix = 5; // of those above

// A base path in its two parts.
struct PLACE {
    std::string directory; // with trailing separator, or empty
    std::string name;

    explicit PLACE(const std::string& path)
    {
        const std::size_t start = path.rfind('/') + 1; // 0 without a separator
        directory = path.substr(0, start);
        name = path.substr(start);
    }
    [[nodiscard]] std::string path() const { return directory + name; }
    [[nodiscard]] std::string file(std::string_view suffix) const { return path() + std::string(suffix); }
    [[nodiscard]] std::string besideFile(std::string_view suffix) const
    {
        return file(suffix) + std::string(beside);
    }
};

std::string joined(const std::string& name, std::string_view suffix, std::string_view more = {})
{
    return name + std::string(suffix) + std::string(more);
}

bool isFolder(const std::string& file)
{
    struct stat status {};
    return ::lstat(file.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool areSame(const std::string& a, const std::string& b)
{
    std::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

std::string folderOf(const PLACE& place)
{
    return place.directory.empty() ? "." : place.directory;
}

bool areSamePlace(const PLACE& from, const PLACE& to)
{
    return (from.name == to.name && areSame(folderOf(from), folderOf(to))) ||
           areSame(from.file(".hob"), to.file(".hob"));
}

// The files that a description is of: it may stand under another name than they do.
PLACE describedBy(const PLACE& place)
{
    const auto bytes = common::readFile(place.file(".var"), largestDescription);
    VARDESCRIPTION read;
    VARFAULT fault;
    PLACE described = place;
    if (bytes && parseVarFile(*bytes, read, fault) == VarFileResult::ok) described.name = read.name;
    return described;
}

// The place of a target, under the name that it can have.
PLACE targetPlace(const std::string& to)
{
    PLACE place(to);
    place.name = collectionName(place.name);
    return place;
}

FilesResult checkPlaces(const PLACE& from, const PLACE& to)
{
    if (to.name.empty() || to.name == "." || to.name == ".." || !common::directoryExists(to.directory))
        return FilesResult::badName;
    if (areSamePlace(from, to)) return FilesResult::sameCollection;
    for (const std::string_view suffix : {".var", ".hob", ".dob"}) {
        if (isFolder(to.file(suffix))) return FilesResult::badName;
    }
    for (const std::string_view suffix : stationSuffixes) {
        if (!common::fileExists(from.file(suffix))) return FilesResult::stationFiles;
    }
    return FilesResult::ok;
}

// The description of a collection as it reads under another name; empty if it can't be read.
std::string descriptionAs(const PLACE& from, const std::string& name)
{
    const auto bytes = common::readFile(from.file(".var"), largestDescription);
    VARDESCRIPTION read;
    VARFAULT fault;
    if (!bytes || parseVarFile(*bytes, read, fault) != VarFileResult::ok) return {};
    return formatVarFile(name, read.type, read.stationCount, read.variableCount, read.variables);
}

// The journals here are of collections that nobody has open.
constexpr JOURNALSTATE closedFiles = {.hobSize = -1, .dobSize = -1, .stationCount = 0};

bool writeWhole(const std::string& file, std::string_view bytes)
{
    RBlockFile out;
    return out.open(file, RBlockFile::Mode::create) && out.write(0, std::as_bytes(std::span(bytes))) &&
           out.sync();
}

bool copyBytes(RBlockFile& in, RBlockFile& out)
{
    constexpr std::int64_t largestStep = 1 << 20;
    std::vector<std::byte> block(static_cast<std::size_t>(std::min(largestStep, in.size())));
    for (std::int64_t at = 0; at < in.size(); at += largestStep) {
        const auto step = static_cast<std::size_t>(std::min(largestStep, in.size() - at));
        const std::span<std::byte> bytes = std::span(block).first(step);
        if (!in.read(at, bytes) || !out.write(at, bytes)) return false;
    }
    return out.sync();
}

// A copy on the disk, with the time of the last change: an inventory is current by its time.
bool copyWhole(const std::string& from, const std::string& to)
{
    RBlockFile in, out;
    struct stat status {};
    if (!in.open(from, RBlockFile::Mode::read) || ::stat(from.c_str(), &status) != 0) return false;
    if (!out.open(to, RBlockFile::Mode::create) || !copyBytes(in, out)) return false;
    const timespec times[2] = {status.st_atim, status.st_mtim};
    static_cast<void>(::utimensat(AT_FDCWD, to.c_str(), times, 0));
    return true;
}

FILEACTION removal(const std::string& name, std::string_view suffix)
{
    return {.kind = FILEACTION::remove, .from = joined(name, suffix), .to = {}};
}

// Copies what a collection consists of to names beside the target's. `actions` puts it into its places.
FilesResult copyBeside(const PLACE& from, const PLACE& to, std::vector<FILEACTION>& actions)
{
    const auto putInPlace = [&](std::string_view suffix) {
        actions.push_back({.kind = FILEACTION::rename,
                           .from = joined(to.name, suffix, beside),
                           .to = joined(to.name, suffix)});
    };
    for (const std::string_view suffix : stationSuffixes) {
        if (!copyWhole(from.file(suffix), to.besideFile(suffix))) return FilesResult::stationFiles;
        putInPlace(suffix);
    }
    for (const std::string_view suffix : sideSuffixes) {
        if (isFolder(to.file(suffix))) continue;
        if (copyWhole(from.file(suffix), to.besideFile(suffix))) {
            putInPlace(suffix);
        } else { // what the source hasn't got, the copy hasn't either
            ::unlink(to.besideFile(suffix).c_str());
            if (!common::existsAtAll(from.file(suffix))) actions.push_back(removal(to.name, suffix));
        }
    }
    const std::string description = descriptionAs(from, to.name);
    if (description.empty() || !writeWhole(to.besideFile(".var"), description))
        return FilesResult::description;
    putInPlace(".var");
    return FilesResult::ok;
}

// What stands beside a place while a copy is made.
std::vector<std::string> besideNames(const PLACE& place)
{
    std::vector<std::string> names = {joined(place.name, ".var", beside)};
    for (const std::string_view suffix : stationSuffixes) names.push_back(joined(place.name, suffix, beside));
    for (const std::string_view suffix : sideSuffixes) names.push_back(joined(place.name, suffix, beside));
    return names;
}

// A journal at a place with the names of the files that will be made there. A folder under such a name could
// not be taken away again.
bool beginJournal(RJournal& journal, const PLACE& place, std::string_view operation,
                  const std::vector<std::string>& names)
{
    const bool usable = std::all_of(names.begin(), names.end(), [&place](const std::string& name) {
        return name.size() <= largestFileName && !isFolder(place.directory + name);
    });
    return usable && journal.begin(place.path(), operation, closedFiles) &&
           std::all_of(names.begin(), names.end(),
                       [&journal](const std::string& name) { return journal.willMake(name); }) &&
           journal.sync();
}

// Settles what a journal at a place tells of, by doing or by undoing it: what was cut off earlier, and what
// was prepared here.
RecoveryResult settle(const PLACE& place)
{
    const RecoveryResult result = recoverCollection(place.path()).result;
    // What is decided is done at the next opening, whatever is said here: one fault of the disk is no reason
    // to tell of a failure.
    if (result != RecoveryResult::failed) return result;
    const RecoveryResult again = recoverCollection(place.path()).result;
    return again == RecoveryResult::none ? RecoveryResult::completed
                                         : again; // only the last flush had failed
}

FilesResult prepareCopy(const PLACE& from, const PLACE& to)
{
    RJournal journal;
    if (!beginJournal(journal, to, "COPY", besideNames(to))) return FilesResult::badName;
    std::vector<FILEACTION> actions;
    const FilesResult copied = copyBeside(from, to, actions);
    if (copied != FilesResult::ok) return copied;
    return common::syncDirectory(to.directory) && journal.commit(closedFiles, actions)
               ? FilesResult::ok
               : FilesResult::stationFiles;
}

FilesResult copyTo(const PLACE& from, const PLACE& to)
{
    if (settle(to) == RecoveryResult::failed) return FilesResult::badName;
    const FilesResult prepared = prepareCopy(from, to);
    const RecoveryResult settled = settle(to);
    if (prepared != FilesResult::ok) return prepared;
    return settled == RecoveryResult::completed ? FilesResult::ok : FilesResult::stationFiles;
}

FilesResult prepareRenaming(const PLACE& from, const PLACE& to)
{
    const std::string description = descriptionAs(from, to.name);
    if (description.empty()) return FilesResult::description;
    RJournal journal;
    const std::string newDescription = joined(from.name, ".var", beside);
    if (!beginJournal(journal, from, "MOVE", {newDescription})) return FilesResult::stationFiles;
    if (!writeWhole(from.besideFile(".var"), description) || !common::syncDirectory(from.directory))
        return FilesResult::description;
    std::vector<FILEACTION> actions;
    const auto add = [&](std::string_view suffix, std::string_view more) {
        actions.push_back({.kind = FILEACTION::moveAway,
                           .from = joined(from.name, suffix, more),
                           .to = to.directory + joined(to.name, suffix)});
    };
    for (const std::string_view suffix : stationSuffixes) add(suffix, {});
    for (const std::string_view suffix : sideSuffixes) {
        if (common::fileExists(from.file(suffix))) add(suffix, {});
    }
    add(".var", beside); // the last: without it nobody can open what is there
    actions.push_back(removal(from.name, ".var"));
    return journal.commit(closedFiles, actions) ? FilesResult::ok : FilesResult::stationFiles;
}

// Gives the files other names, in the same file system. Nothing if that can't be done.
// A link would point elsewhere from another folder.
bool holdsLink(const PLACE& place)
{
    const auto isLink = [&](std::string_view suffix) {
        std::error_code ignored;
        return std::filesystem::is_symlink(place.file(suffix), ignored);
    };
    return isLink(".var") || std::any_of(stationSuffixes.begin(), stationSuffixes.end(), isLink) ||
           std::any_of(sideSuffixes.begin(), sideSuffixes.end(), isLink);
}

bool sideFilesArrived(const PLACE& from, const PLACE& to)
{
    return std::all_of(sideSuffixes.begin(), sideSuffixes.end(), [&](std::string_view suffix) {
        return !common::existsAtAll(from.file(suffix)) || common::fileExists(to.file(suffix));
    });
}

std::optional<FilesResult> renameTo(const PLACE& from, const PLACE& to)
{
    PLACE target = to; // a journal's names are against its own directory, or absolute
    const bool sameFolder = areSame(folderOf(from), folderOf(to));
    target.directory = sameFolder ? std::string() : common::absolutePath(to.directory + ".");
    if (!sameFolder && !target.directory.ends_with('/')) target.directory += '/';
    if (!sameFolder && holdsLink(from)) return std::nullopt;
    if (target.path().size() + largestSuffix > largestFilePath) return std::nullopt;
    const FilesResult prepared = prepareRenaming(from, target);
    const RecoveryResult settled = settle(from);
    if (prepared != FilesResult::ok) return prepared;
    if (settled == RecoveryResult::undone) return std::nullopt;
    return settled == RecoveryResult::completed ? FilesResult::ok : FilesResult::stationFiles;
}

// Removes files that a committed journal names. False if some are still there.
bool removeAll(const PLACE& place, const std::vector<FILEACTION>& actions)
{
    bool all = true;
    for (const FILEACTION& action : actions) {
        const std::string file = place.directory + action.from;
        all = (::unlink(file.c_str()) == 0 || errno == ENOENT) && all;
    }
    return common::syncDirectory(place.directory) && all;
}

// What a removal takes, in its order. Folders that stand under a name can't go: then `all` becomes false.
std::vector<FILEACTION> removals(const PLACE& place, bool withLog, bool withConfiguration, bool& all)
{
    std::vector<FILEACTION> actions;
    const auto add = [&](std::string_view suffix) {
        const bool folder = isFolder(place.file(suffix));
        if (!folder) actions.push_back(removal(place.name, suffix));
        all = all && !folder;
    };
    for (const std::string_view suffix : collectionSuffixes) add(suffix);
    if (withLog) add(".log");
    if (withConfiguration) add(".cfg");
    return actions;
}

// Nothing of `place` stands in the way of a collection that comes there by renaming.
bool isFree(const PLACE& place)
{
    const auto taken = [&place](std::string_view suffix) { return common::existsAtAll(place.file(suffix)); };
    return !taken(".var") && !taken(".jnl") &&
           std::none_of(stationSuffixes.begin(), stationSuffixes.end(), taken) &&
           std::none_of(sideSuffixes.begin(), sideSuffixes.end(), taken);
}

} // namespace

FilesResult copyCollection(const std::string& from, const std::string& to)
{
    const PLACE source(from), target = targetPlace(to);
    if (const FilesResult checked = checkPlaces(source, target); checked != FilesResult::ok) return checked;
    if (common::existsAtAll(journalPath(from))) return FilesResult::stationFiles; // the source isn't whole
    return copyTo(source, target);
}

FilesResult moveCollection(const std::string& from, const std::string& to)
{
    const PLACE source(from), target = targetPlace(to);
    if (const FilesResult checked = checkPlaces(source, target); checked != FilesResult::ok) return checked;
    if (common::existsAtAll(journalPath(from)) || !common::isWritable(folderOf(source)))
        return FilesResult::stationFiles;
    if (isFree(target)) {
        if (const auto renamed = renameTo(source, target)) return *renamed;
    }
    if (const FilesResult copied = copyTo(source, target); copied != FilesResult::ok) return copied;
    if (!sideFilesArrived(source, target)) return FilesResult::otherFiles; // the source keeps them
    return deleteCollection(from, true, false) == FilesResult::ok ? FilesResult::ok : FilesResult::otherFiles;
}

FilesResult deleteCollection(const std::string& path, bool withLog, bool withConfiguration)
{
    const PLACE place(path);
    if (settle(place) == RecoveryResult::failed || isFolder(place.file(".hob")))
        return FilesResult::stationFiles;
    bool all = true;
    const std::vector<FILEACTION> actions = removals(place, withLog, withConfiguration, all);
    RJournal journal;
    if (!journal.begin(path, "DELETE", closedFiles)) return FilesResult::stationFiles;
    // If the first file can't go, the collection stays: nothing else was touched.
    const bool begun = journal.commit(closedFiles, actions) &&
                       (::unlink(place.file(".hob").c_str()) == 0 || errno == ENOENT);
    all = begun && (removeAll(place, actions) || removeAll(place, actions)) &&
          all; // one fault of the disk is none
    const bool finished = journal.finish();
    if (!begun) return FilesResult::stationFiles;
    return all && finished ? FilesResult::ok : FilesResult::otherFiles;
}

bool isSameCollection(const std::string& a, const std::string& b)
{
    const PLACE first(a), second(b);
    return areSamePlace(first, second) || areSame(first.file(".dob"), second.file(".dob")) ||
           areSame(first.file(".var"), second.file(".var")) || areSamePlace(describedBy(first), second) ||
           areSamePlace(first, describedBy(second));
}

std::string collectionName(std::string_view typed)
{
    std::string name(typed);
    for (char& c : name) {
        if (c == '/' || c == ':' || static_cast<unsigned char>(c) <= ' ' || c == '\x7F') c = '_';
    }
    return name;
}

} // namespace collection
