// Opening by kind, and closing. What makes a collection where there was none stands in creating.cpp.

#include <filesystem>

#include "app/session.h"
#include "collection/journal.h"
#include "collection/leftovers.h"
#include "collection/varfile.h"
#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

constexpr std::string_view openingTitle = "Opening Collection ...";
constexpr std::int64_t largestDescription = 1 << 20; // bytes

// An archive listing or a station summary brings nothing but the variables of a new collection.
bool isSourceOfVariables(FileKind kind)
{
    return kind == FileKind::archiveListing || kind == FileKind::stationSummary;
}

bool canOpen(FileKind kind, bool isOpen)
{
    return kind == FileKind::nothing || kind == FileKind::collection || importFormat(kind) ||
           (isSourceOfVariables(kind) && !isOpen);
}

// The base path of the files that a description stands for: it may have been copied under another name.
std::string basePathOf(const std::string& description)
{
    const common::PATHPARTS parts = common::splitPath(description);
    const auto text = common::readFile(description, largestDescription);
    collection::VARDESCRIPTION read;
    collection::VARFAULT fault;
    const bool good = text && collection::parseVarFile(*text, read, fault) == collection::VarFileResult::ok;
    return parts.directory + (good ? read.name : parts.baseName);
}

} // namespace

OpenResult RSession::openArgument(const std::string& argument, const std::string& directory)
{
    if (archiveClass(argument) != Archive::none)
        return unpackArgument(common::makeAbsolute(argument, directory));
    const std::string name = withDefaultExtension(argument);
    return openKind(fileKind(name), common::makeAbsolute(name, directory));
}

OpenResult RSession::open(const std::string& path)
{
    return openKind(fileKind(path), path.empty() ? path : common::absolutePath(path));
}

OpenResult RSession::openKind(FileKind kind, const std::string& path)
{
    if (kind == FileKind::unknown) {
        user_.about("Unknown File Type ...", "Don't know how to handle file:\n\n" + path);
        view_.statusChanged();
        return OpenResult::failed;
    }
    if (!canOpen(kind, collection.isOpen)) {
        user_.about("Opening ...", std::string("NVQ can't open this kind of file yet (") +
                                       fileKindName(kind) + "):\n\n" + path);
        view_.statusChanged();
        return OpenResult::failed;
    }
    if (kind == FileKind::nothing || kind == FileKind::collection) close(true);
    if (kind == FileKind::nothing) return OpenResult::ok;
    user_.status("Opening " + path + " ...");
    const OpenResult result =
        kind == FileKind::collection ? openCollection(path)
        : isSourceOfVariables(kind)  ? newFromSource(kind, path)
        : collection.isOpen ? importIntoOpen(*importFormat(kind), path, importing::ImportMode::addReplace)
                            : importAsNew(kind, path);
    view_.statusChanged();
    return result;
}

// Directory, name and base path of the collection that `path` stands for; the current directory follows.
bool RSession::setNames(const std::string& path)
{
    common::PATHPARTS parts = common::splitPath(path);
    if (!newDirectory_.empty()) parts.directory = newDirectory_;
    if (!common::directoryExists(parts.directory)) {
        user_.about("Collection Directory", parts.directory + "\n\ndoes not exist!");
        return false;
    }
    collection.reset();
    collection.directory = parts.directory;
    collection.extension = parts.extension;
    const bool asItIs = common::fileExists(parts.directory + parts.baseName + ".var");
    collection.name = asItIs ? parts.baseName : collection::collectionName(parts.baseName);
    collection.path = collection.directory + collection.name;
    collection.configName = collection.path;
    collection.isTemporaryFile = openingTemporary_;
    collection.tempDirectory = installation.temp;
    collection.userName = installation.user;
    collection.hostName = installation.host;
    collection.makeTempId();
    std::error_code ignored;
    std::filesystem::current_path(collection.directory, ignored);
    return true;
}

// Marks the collection as open for writing. Returns why it can only be read, empty if it is ours.
std::string RSession::takeForWriting(const std::string& basePath)
{
    const std::string protectedText(collection::writeProtectedText);
    collection.writable = collection::filesAreWritable(basePath, collection.directory, false);
    if (!collection.writable) return protectedText;
    std::string holder;
    collection.writable = lock_.acquire(basePath, &holder);
    if (collection.writable) {
        collection::removeLeftovers(basePath);
        return {};
    }
    return protectedText + "\n\nCollection " + basePath + ".var is open for writing in another NVQ session" +
           (holder.empty() ? "!" : " (" + holder + ")!");
}

// Undoes or completes what a change that was cut off has left. False, after a message, if that isn't
// possible: then the files are in no state to be looked at.
bool RSession::putRight(std::string basePath, const std::string& readOnlyReason)
{
    const std::string file = basePath + ".var", journal = collection::journalPath(basePath);
    if (!readOnlyReason.empty()) {
        if (common::fileSize(journal) < 0) return true;
        user_.about(openingTitle,
                    "Collection " + file +
                        " is in the middle of a change, and only who may write can end it!\n\n" +
                        readOnlyReason +
                        "\n\nOpen it again when the other session has closed it, or when its "
                        "files and directory can be written to.");
        return false;
    }
    const collection::RECOVERY recovery = collection::recoverCollection(basePath);
    if (recovery.result == collection::RecoveryResult::none) return true;
    if (recovery.result == collection::RecoveryResult::failed) {
        user_.about(openingTitle, "A change of collection " + file + " was cut off, and its journal " +
                                      journal + " can't be used: " + recovery.fault +
                                      "\n\nThe collection is left as it is. check_collection tells what is "
                                      "wrong with it; it opens again when the journal has been moved away.");
        return false;
    }
    const bool undone = recovery.result == collection::RecoveryResult::undone;
    user_.note("Collection " + file + ": " + recovery.operation + " was cut off and has been " +
               (undone ? "undone" : "completed"));
    const bool hasLog = common::fileExists(file) || common::fileExists(basePath + ".log");
    std::swap(collection.path, basePath); // the description may have been opened under another name
    if (hasLog) collection.addLogLine((undone ? "UNDONE " : "COMPLETED ") + recovery.operation);
    std::swap(collection.path, basePath);
    return true;
}

OpenResult RSession::openCollection(const std::string& path)
{
    if (!setNames(path)) return OpenResult::failed;
    const std::string file = collection.path + ".var"; // the files may turn out to have another name
    const std::string base = basePathOf(file);
    const std::string readOnlyReason = takeForWriting(base);
    if (!putRight(base, readOnlyReason)) {
        abandon();
        return OpenResult::failed;
    }
    if (!common::fileExists(file)) return createMissing(readOnlyReason);
    if (!readOnlyReason.empty()) user_.about(openingTitle, readOnlyReason);
    const OpenResult result = openFiles();
    if (result == OpenResult::ok) becomeReady(file);
    return result;
}

// Opens the station files and the lists of the collection that the names stand for.
OpenResult RSession::openFiles()
{
    if (collection.openStationFiles(collection.path, user_) != collection::OpenFilesResult::ok) {
        abandon();
        return OpenResult::failed;
    }
    if (!collection.writable) lock_.release(); // damaged files are only read
    return collection.openTemporaryFiles() ? OpenResult::ok : tellNoLists();
}

// Without the lists of stations a collection can't be shown.
OpenResult RSession::tellNoLists()
{
    user_.about(openingTitle, "Temporary files could not be made in " + installation.temp + "!");
    abandon();
    return OpenResult::noTemporaryFile;
}

// Closes what was opened halfway.
void RSession::abandon()
{
    collection.closeTemporaryFiles();
    collection.closeStationFiles();
    collection.reset();
    lock_.release();
    unpacked_.reset();
}

void RSession::setDefaults()
{
    selection::resetSelection(collection.criteria, selection::MAPDOMAIN{}, collection.kind);
    collection.criteria.qualityLimit = common::noQualityLimit;
    collection.qualityLimit = common::noQualityLimit;
    collection.configChanged = false;
    graphics::setDefaultSetup(setup, collection, installation);
    for (auto& windows : ranged_) windows.reset();
}

// The last steps of every opening. `path` is what the recent files name.
void RSession::becomeReady(const std::string& path)
{
    collection.readInventory(false, user_);
    setDefaults();
    lastFiles = {};
    if (runMode == interactiveRun)
        static_cast<void>(collection::readLastFiles(collection.path, collection.directory, lastFiles));
    collection.configName = lastFiles.configName.empty() ? collection.path : lastFiles.configName;
    currentStation.clear();
    view_.captionChanged(title + " - " + path);
    state = stateReady;
    if (!collection.isTemporaryFile) {
        addRecentFile(settings.recentFiles, path);
        view_.recentFilesChanged();
    }
    listChanged();
}

// The selected stations are others now.
void RSession::listChanged()
{
    setup.map.toDraw = 1;
    takeMapDomain();
    graphics::PLOTCONTEXT context = plotContext();
    graphics::refreshSelection(context);
    invalidate();
}

bool RSession::close(bool force)
{
    static_cast<void>(force); // nothing is asked as long as configurations and sections can't be saved
    if (!collection.isOpen) return true;
    collection.configChanged = false;
    if (common::fileExists(collection.path + ".var")) // it may have been removed meanwhile
        static_cast<void>(collection::writeLastFiles(collection.path, collection.directory, lastFiles));
    leave();
    return true;
}

// Nothing is open any more.
void RSession::leave()
{
    abandon();
    currentStation.clear();
    const graphics::PSSETTINGS postScript = setup.postScript; // the user's, not the collection's
    setup = graphics::GRAPHICSSETUP{};
    setup.postScript = postScript;
    mapCache = {};
    lastFiles = {};
    state = stateIdle;
    stale = true;
    view_.captionChanged(title);
    view_.showIdle();
    view_.statusChanged();
}

} // namespace app
