// Reading a journal back: what a change that was cut off has left is undone or completed. Each step may be
// repeated, so that a recovery that is cut off itself can run again from its start.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "collection/collectionlock.h"
#include "collection/journalfile.h"
#include "collection/stationrecord.h"
#include "collection/varfile.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

bool isRegular(const std::string& path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool removeIfThere(const std::string& path)
{
    return ::unlink(path.c_str()) == 0 || errno == ENOENT;
}

bool refuse(std::string& fault, std::string text)
{
    fault = std::move(text);
    return false;
}

std::string because(const std::string& what)
{
    return what + ": " + std::strerror(errno);
}

std::string baseNameOf(const std::string& basePath)
{
    return basePath.substr(basePath.rfind('/') + 1);
}

// A name that a change of this collection may touch: a plain name of its own family, or of the target of a
// rewriting, which stands in the same directory.
bool isOwnName(std::string_view name, std::string_view baseName)
{
    if (name.empty() || name.size() > 255 || name.find_first_of(std::string_view("/\0", 2)) != name.npos)
        return false;
    if (name.starts_with("TRG.")) return name.size() > 4;
    if (!name.starts_with(baseName) || name.size() < baseName.size() + 2 || name[baseName.size()] != '.')
        return false;
    const std::string_view suffix = name.substr(baseName.size());
    return suffix != ".jnl" && suffix != ".lck" && suffix != "..";
}

bool isStationFile(std::string_view name, std::string_view baseName)
{
    const std::string_view suffix = name.substr(std::min(name.size(), baseName.size()));
    return name.starts_with(baseName) && (suffix == ".hob" || suffix == ".dob" || suffix == ".var");
}

bool namesArePlausible(const JOURNALPLAN& plan)
{
    const std::string& base = plan.head.baseName;
    const bool filesWereOpen = plan.head.before.hobSize >= 0;
    const auto mayMake = [&](const std::string& name) {
        return isOwnName(name, base) && !(filesWereOpen && isStationFile(name, base));
    };
    return std::all_of(plan.made.begin(), plan.made.end(), mayMake) &&
           std::all_of(plan.aside.begin(), plan.aside.end(),
                       [&](const ASIDEFILE& file) {
                           return mayMake(file.name) && isOwnName(file.aside, base) &&
                                  file.name != file.aside;
                       }) &&
           std::all_of(plan.extended.begin(), plan.extended.end(), [&](const EXTENDEDFILE& file) {
               return file.name == base + ".log" && file.size >= 0;
           });
}

// The path of another collection's file of the same suffix. Its own description is moved as what was made to
// replace it.
bool isMovePlausible(const FILEACTION& action, std::string_view baseName)
{
    constexpr std::string_view suffixes[] = {".hob", ".dob", ".var", ".idv", ".inv",
                                             ".cid", ".log", ".cfl", ".info"};
    const std::string_view target = std::string_view(action.to).substr(action.to.rfind('/') + 1);
    return action.to.find('\0') == std::string::npos && target.size() <= 255 &&
           std::any_of(std::begin(suffixes), std::end(suffixes), [&](std::string_view suffix) {
               std::string own(baseName);
               own += suffix;
               if (suffix == ".var") own += newDescriptionSuffix;
               return action.from == own && target.ends_with(suffix) && target.size() > suffix.size() &&
                      action.to != own;
           });
}

// Station files are removed only with all of a collection, which is closed then.
bool isActionPlausible(const FILEACTION& action, const std::string& baseName, bool filesWereOpen)
{
    if (!isOwnName(action.from, baseName)) return false;
    switch (action.kind) {
    case FILEACTION::rename:
        return isOwnName(action.to, baseName) && action.to != action.from;
    case FILEACTION::remove:
        return !filesWereOpen || !isStationFile(action.from, baseName);
    case FILEACTION::moveAway:
        return !filesWereOpen && isMovePlausible(action, baseName);
    }
    return false;
}

bool actionsArePlausible(const JOURNALPLAN& plan)
{
    if (!plan.commitment) return true;
    const std::vector<FILEACTION>& actions = plan.commitment->actions;
    const bool filesWereOpen = plan.head.before.hobSize >= 0;
    return plan.commitment->after.stationCount >= 0 &&
           std::all_of(actions.begin(), actions.end(), [&](const FILEACTION& action) {
               return isActionPlausible(action, plan.head.baseName, filesWereOpen);
           });
}

// The sizes before the change agree with the count and the description.
bool stateIsPlausible(const JOURNALHEAD& head)
{
    const JOURNALSTATE& before = head.before;
    if (before.hobSize < 0) return before.dobSize < 0;
    if (before.stationCount < 0 || before.dobSize < 0 || before.hobSize < magicSize) return false;
    if (head.magic != littleEndianMagic && head.magic != bigEndianMagic) return false;
    VARDESCRIPTION description;
    VARFAULT fault;
    if (!head.description || parseVarFile(*head.description, description, fault) != VarFileResult::ok)
        return true;
    const RECORDFORM form{.variableCount = description.variableCount};
    return before.hobSize == magicSize + std::int64_t{before.stationCount} * form.recordSize();
}

bool pieceIsPlausible(const SAVEDPIECE& piece, const JOURNALSTATE& before)
{
    const std::int64_t size = piece.file == JournalFile::hob ? before.hobSize : before.dobSize;
    const std::int64_t first = piece.file == JournalFile::hob ? magicSize : 0;
    return piece.offset >= first && piece.offset <= size &&
           static_cast<std::int64_t>(piece.bytes.size()) <= size - piece.offset;
}

// Adds a frame to the plan; false for one that can't be.
bool takeFrame(JOURNALPLAN& plan, FrameKind kind, std::span<const std::byte> content)
{
    if (plan.commitment) return false;
    SAVEDPIECE piece;
    switch (kind) {
    case FrameKind::saved:
        plan.savesBytes = true;
        return unpackSaved(content, piece) && pieceIsPlausible(piece, plan.head.before);
    case FrameKind::made:
        return unpackName(content, plan.made.emplace_back());
    case FrameKind::aside:
        return unpackAside(content, plan.aside.emplace_back());
    case FrameKind::extended:
        return unpackExtended(content, plan.extended.emplace_back());
    case FrameKind::commit:
        return unpackCommitment(content, plan.commitment.emplace());
    case FrameKind::head:
        break;
    }
    return false;
}

// The station files are those that the change began with: at least as long, and of the same kind.
bool filesMatch(const JOURNALHEAD& head, RBlockFile& hob, RBlockFile& dob)
{
    const std::byte* const magic = hob.view(0, magicSize);
    return hob.size() >= head.before.hobSize && dob.size() >= head.before.dobSize && magic &&
           std::string_view(reinterpret_cast<const char*>(magic), magicSize) == head.magic;
}

bool putBack(RJournalReader& reader, RBlockFile& hob, RBlockFile& dob)
{
    FrameKind kind{};
    std::span<const std::byte> content;
    reader.rewind();
    while (reader.next(kind, content)) {
        SAVEDPIECE piece;
        if (kind != FrameKind::saved || !unpackSaved(content, piece)) continue;
        RBlockFile& file = piece.file == JournalFile::hob ? hob : dob;
        if (!file.write(piece.offset, piece.bytes)) return false;
    }
    return true;
}

bool cutTo(RBlockFile& file, std::int64_t size)
{
    return file.size() <= size || file.truncate(size);
}

bool undoStations(RJournalReader& reader, const JOURNALHEAD& head, RBlockFile& hob, RBlockFile& dob)
{
    return putBack(reader, hob, dob) && cutTo(hob, head.before.hobSize) && cutTo(dob, head.before.dobSize) &&
           dob.sync() && hob.sync();
}

bool wasSetAside(const JOURNALPLAN& plan, const std::string& name)
{
    return std::any_of(plan.aside.begin(), plan.aside.end(),
                       [&](const ASIDEFILE& file) { return file.name == name; });
}

bool isTargetName(std::string_view name)
{
    return name.starts_with("TRG.");
}

// The name in the description of a rewriting's target: that of the collection which it is to replace as soon
// as it is complete, and until it has taken that one's place. Empty without a description.
std::string targetOwner(const std::string& directory)
{
    const auto text = common::readFile(directory + "TRG.var", largestJournalText);
    VARDESCRIPTION read;
    VARFAULT fault;
    return text && parseVarFile(*text, read, fault) == VarFileResult::ok ? read.name : std::string();
}

bool targetIsAnothers(const std::string& directory, const std::string& baseName)
{
    const std::string owner = targetOwner(directory);
    return !owner.empty() && owner != "TRG" && owner != baseName;
}

// What is left to do. A target that isn't this collection's has come after its own took its place.
COMMITMENT leftToDo(const COMMITMENT& whole, const std::string& directory, const std::string& baseName)
{
    const auto movesDescription = [](const FILEACTION& action) {
        return action.kind == FILEACTION::rename && action.from == "TRG.var";
    };
    if (std::none_of(whole.actions.begin(), whole.actions.end(), movesDescription) ||
        targetOwner(directory) == baseName)
        return whole;
    COMMITMENT left = whole;
    std::erase_if(left.actions, [](const FILEACTION& action) { return isTargetName(action.from); });
    return left;
}

// Bytes that come from elsewhere go into ordinary files of this folder only.
std::string linkAmong(const std::string& basePath)
{
    for (const char* const suffix : {".var", ".hob", ".dob", ".log"}) {
        std::error_code ignored;
        if (std::filesystem::is_symlink(basePath + suffix, ignored)) return basePath + suffix;
    }
    return {};
}

bool isDescription(const std::optional<std::string>& text)
{
    VARDESCRIPTION read;
    VARFAULT fault;
    return !text || parseVarFile(*text, read, fault) == VarFileResult::ok;
}

// A file whose old one stands aside is replaced by it. One that was put aside and isn't there has its old
// place again.
bool undoFiles(const JOURNALPLAN& plan, const std::string& directory)
{
    for (const ASIDEFILE& file : plan.aside) {
        const std::string aside = directory + file.aside;
        if (common::existsAtAll(aside) && std::rename(aside.c_str(), (directory + file.name).c_str()) != 0)
            return false;
    }
    for (const std::string& name : plan.made) {
        if (wasSetAside(plan, name) ||
            (isTargetName(name) && targetIsAnothers(directory, plan.head.baseName)))
            continue;
        if (!removeIfThere(directory + name)) return false;
    }
    return std::all_of(plan.extended.begin(), plan.extended.end(), [&](const EXTENDEDFILE& file) {
        const std::string path = directory + file.name;
        return common::fileSize(path) <= file.size || ::truncate(path.c_str(), file.size) == 0;
    });
}

bool hasContent(const std::string& file, std::string_view content)
{
    const auto present = common::readFile(file, largestJournalText);
    return present && *present == content;
}

bool restoreDescription(const std::string& basePath, const std::optional<std::string>& text)
{
    const std::string file = basePath + ".var";
    return !text || hasContent(file, *text) || common::writeFile(file, *text);
}

// Bytes that a file has, or will have when the actions are done; -1 if there is none.
std::int64_t sizeAfter(const COMMITMENT& commitment, const std::string& directory, const std::string& name)
{
    for (const FILEACTION& action : commitment.actions) {
        const bool isIt = action.kind == FILEACTION::rename && action.to == name;
        if (isIt && common::existsAtAll(directory + action.from))
            return common::fileSize(directory + action.from);
    }
    return common::fileSize(directory + name);
}

// Makes sure that what is to be done can be done, or was done.
bool actionsCanRun(const COMMITMENT& commitment, const std::string& basePath)
{
    const std::string directory = common::splitPath(basePath).directory, base = baseNameOf(basePath);
    return sizeAfter(commitment, directory, base + ".hob") >= commitment.after.hobSize &&
           sizeAfter(commitment, directory, base + ".dob") >= commitment.after.dobSize &&
           std::all_of(commitment.actions.begin(), commitment.actions.end(), [&](const FILEACTION& action) {
               return action.kind != FILEACTION::rename || common::existsAtAll(directory + action.from) ||
                      common::existsAtAll(directory + action.to);
           });
}

RECOVERY outcome(RecoveryResult result, const JOURNALPLAN& plan, std::string fault = {})
{
    return {result, plan.head.operation, std::move(fault)};
}

// Gives a file a name under which nothing stands. Where the file system can't do that in one step, a second
// name comes first.
bool renameIfFree(const std::string& from, const std::string& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    return ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0;
}

bool isSideFile(std::string_view name)
{
    return !name.ends_with(".hob") && !name.ends_with(".dob") && !name.ends_with(".var");
}

// Each step is on the disk before the next, so that a description never stands beside nothing.
bool moveFileAway(const std::string& directory, const FILEACTION& action)
{
    const std::string from = directory + action.from;
    const std::string to = action.to.starts_with('/') ? action.to : directory + action.to;
    if (!common::existsAtAll(from)) return isSideFile(to) || common::existsAtAll(to);
    if (!renameIfFree(from, to)) return isSideFile(to);
    const int error = errno;
    const bool synced =
        common::syncDirectory(common::splitPath(to).directory) && common::syncDirectory(directory);
    if (synced) errno = error;
    return synced;
}

// A collection that could not begin to move stays where it is.
bool isStillHere(const JOURNALPLAN& plan, const std::string& directory)
{
    const std::vector<FILEACTION>& actions = plan.commitment->actions;
    return !actions.empty() && actions.front().kind == FILEACTION::moveAway &&
           common::existsAtAll(directory + actions.front().from);
}

RECOVERY complete(RJournalReader& reader, const JOURNALPLAN& plan, const std::string& basePath)
{
    std::string fault;
    if (completeChange(plan, basePath, fault)) return outcome(RecoveryResult::completed, plan);
    if (isStillHere(plan, common::splitPath(basePath).directory)) {
        std::string undoing;
        if (undoChange(reader, plan, basePath, nullptr, nullptr, undoing))
            return outcome(RecoveryResult::undone, plan, fault);
    }
    return outcome(RecoveryResult::failed, plan, fault);
}

RECOVERY undo(RJournalReader& reader, const JOURNALPLAN& plan, const std::string& basePath)
{
    const bool filesWereOpen = plan.head.before.hobSize >= 0;
    RBlockFile hob, dob;
    if (filesWereOpen) {
        constexpr auto mode = RBlockFile::Mode::update;
        for (RBlockFile* const file : {&hob, &dob}) {
            const std::string name = basePath + (file == &hob ? ".hob" : ".dob");
            if (!file->open(name, mode))
                return outcome(RecoveryResult::failed, plan, name + " can't be opened for writing");
        }
        if (!filesMatch(plan.head, hob, dob)) {
            return outcome(RecoveryResult::failed, plan,
                           basePath + ".hob and .dob are not the files that the change began with");
        }
    }
    std::string fault;
    const bool undone = undoChange(reader, plan, basePath, filesWereOpen ? &hob : nullptr,
                                   filesWereOpen ? &dob : nullptr, fault);
    return outcome(undone ? RecoveryResult::undone : RecoveryResult::failed, plan, fault);
}

} // namespace

bool RJournalReader::open(const std::string& path)
{
    if (!isRegular(path) || !file_.open(path, RBlockFile::Mode::read)) return false;
    rewind();
    const std::byte* const magic = file_.view(0, journalMagic.size());
    return magic && std::memcmp(magic, journalMagic.data(), journalMagic.size()) == 0;
}

void RJournalReader::rewind()
{
    place_ = static_cast<std::int64_t>(journalMagic.size());
    mark_ = 0;
}

// The bytes of a whole frame; null if there is none. `head` is what its first bytes say.
const std::byte* RJournalReader::frameAt(std::int64_t place, FRAMEHEAD& head)
{
    const std::byte* bytes = file_.view(place, frameHeadSize);
    if (!bytes) return nullptr;
    head = unpackFrameHead(bytes);
    if (head.length > largestContent) return nullptr;
    const std::size_t size = frameHeadSize + head.length + frameTailSize;
    bytes = file_.view(place, size);
    return bytes && frameIsWhole({bytes, size}, place, mark_) ? bytes : nullptr;
}

bool RJournalReader::next(FrameKind& kind, std::span<const std::byte>& content)
{
    FRAMEHEAD head;
    const std::byte* const bytes = frameAt(place_, head);
    if (!bytes) return false;
    const bool isFirst = mark_ == 0;
    if (isFirst != (head.kind == FrameKind::head)) return false;
    kind = head.kind;
    content = {bytes + frameHeadSize, head.length};
    place_ += static_cast<std::int64_t>(frameHeadSize + head.length + frameTailSize);
    if (JOURNALHEAD first; isFirst) {
        if (!unpackHead(content, first)) return false;
        mark_ = first.mark;
    }
    return true;
}

bool RJournalReader::endsInDamage()
{
    const std::int64_t broken = place_;
    for (std::int64_t place = broken;;) {
        FRAMEHEAD head;
        const bool whole = frameAt(place, head) != nullptr;
        if (whole && head.durable > broken) return true;
        if (!file_.view(place, frameHeadSize) || head.length > largestContent) return false;
        place += static_cast<std::int64_t>(frameHeadSize + head.length + frameTailSize);
    }
}

bool readPlan(RJournalReader& reader, const std::string& basePath, JOURNALPLAN& plan, std::string& fault)
{
    const std::string file = journalPath(basePath);
    FrameKind kind{};
    std::span<const std::byte> content;
    if (!reader.next(kind, content) || kind != FrameKind::head || !unpackHead(content, plan.head))
        return refuse(fault, file + " is damaged");
    if (plan.head.baseName != baseNameOf(basePath))
        return refuse(fault, file + " belongs to a collection of the name " + plan.head.baseName);
    if (!stateIsPlausible(plan.head)) return refuse(fault, file + " contradicts itself");
    while (reader.next(kind, content)) {
        if (!takeFrame(plan, kind, content)) return refuse(fault, file + " contradicts itself");
    }
    if (reader.endsInDamage()) return refuse(fault, file + " is damaged");
    if (!namesArePlausible(plan) || !actionsArePlausible(plan))
        return refuse(fault, file + " names files that no change of this collection touches");
    return true;
}

bool undoChange(RJournalReader& reader, const JOURNALPLAN& plan, const std::string& basePath, RBlockFile* hob,
                RBlockFile* dob, std::string& fault)
{
    const std::string directory = common::splitPath(basePath).directory;
    if (!undoFiles(plan, directory)) return refuse(fault, because("files could not be put back"));
    if (hob && dob && !undoStations(reader, plan.head, *hob, *dob))
        return refuse(fault, because(basePath + ".hob or .dob can't be written"));
    if (!restoreDescription(basePath, plan.head.description))
        return refuse(fault, because(basePath + ".var can't be written"));
    return common::syncDirectory(directory) || refuse(fault, because(directory));
}

bool runActions(const std::string& directory, std::span<const FILEACTION> actions, std::string& fault,
                bool* begun)
{
    bool all = true;
    for (const FILEACTION& action : actions) {
        const std::string from = directory + action.from, to = directory + action.to;
        const bool done = action.kind == FILEACTION::remove     ? removeIfThere(from)
                          : action.kind == FILEACTION::moveAway ? moveFileAway(directory, action)
                          : common::existsAtAll(from)           ? std::rename(from.c_str(), to.c_str()) == 0
                                                                : common::existsAtAll(to);
        // A side file can be made again: one that doesn't go at a second try either holds nothing up.
        if (!done && action.kind == FILEACTION::remove && isSideFile(from)) {
            static_cast<void>(removeIfThere(from));
            continue;
        }
        if (!done) all = refuse(fault, because(from));
        if (!done && action.kind != FILEACTION::remove) return false; // what can't go keeps nothing else here
        if (begun && done) *begun = true;
    }
    return all;
}

bool completeChange(const JOURNALPLAN& plan, const std::string& basePath, std::string& fault)
{
    const std::string directory = common::splitPath(basePath).directory;
    const COMMITMENT commitment = leftToDo(*plan.commitment, directory, baseNameOf(basePath));
    if (!actionsCanRun(commitment, basePath))
        return refuse(fault, "the files of " + basePath + " are not those that the change has left");
    if (!runActions(directory, commitment.actions, fault)) return false;
    if (!restoreDescription(basePath, commitment.description))
        return refuse(fault, because(basePath + ".var can't be written"));
    return common::syncDirectory(directory) || refuse(fault, because(directory));
}

namespace {

bool namesTarget(const JOURNALPLAN& plan)
{
    return std::any_of(plan.made.begin(), plan.made.end(),
                       [](const std::string& name) { return name.starts_with("TRG."); });
}

} // namespace

RECOVERY recoverCollection(const std::string& basePath)
{
    const std::string file = journalPath(basePath), unborn = file + std::string(newJournalSuffix);
    if (isRegular(unborn)) ::unlink(unborn.c_str()); // nothing was touched under its protection
    if (!common::existsAtAll(file)) return {};
    RJournalReader reader;
    JOURNALPLAN plan;
    if (!reader.open(file)) return outcome(RecoveryResult::failed, plan, file + " is no journal");
    std::string fault;
    if (!readPlan(reader, basePath, plan, fault)) return outcome(RecoveryResult::failed, plan, fault);
    if (const std::string link = linkAmong(basePath); !link.empty())
        return outcome(RecoveryResult::failed, plan, link + " is a link to another file");
    if (plan.commitment && !isDescription(plan.commitment->description))
        return outcome(RecoveryResult::failed, plan, "it holds no description of a collection");
    const std::string directory = common::splitPath(basePath).directory;
    RCollectionLock target; // what stands under the names of a target may be another program's by now
    if (namesTarget(plan) && !target.acquire(directory + "TRG")) {
        return outcome(RecoveryResult::failed, plan,
                       "another program is rewriting a collection in the same folder");
    }
    RECOVERY recovery = plan.commitment ? complete(reader, plan, basePath) : undo(reader, plan, basePath);
    if (recovery.result == RecoveryResult::failed) return recovery;
    if (!removeIfThere(file) || !common::syncDirectory(directory)) {
        recovery.fault = because(file + " can't be removed");
        recovery.result = RecoveryResult::failed;
    }
    return recovery;
}

} // namespace collection
