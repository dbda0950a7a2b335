#include <filesystem>

#include "app/collectionbackup.h"
#include "app/session.h"
#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

constexpr std::string_view openingTitle = "Opening Collection ...";
constexpr std::string_view importTitle = "NVQ Data Import";
constexpr std::string_view elsewhereText = " is open for writing in another NVQ session!";

// A base name without the characters that would part it.
std::string plainBaseName(const std::string& name)
{
    return common::replaceAll(common::replaceAll(name, ":", "_"), " ", "_");
}

bool canOpen(FileKind kind)
{
    return kind == FileKind::nothing || kind == FileKind::collection || kind == FileKind::spreadsheet;
}

} // namespace

OpenResult RSession::openArgument(const std::string& argument, const std::string& directory)
{
    if (archiveClass(argument) != Archive::none) {
        user_.about("Unzipping", "NVQ can't open packed files yet:\n\n" + argument);
        return OpenResult::failed;
    }
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
    if (!canOpen(kind)) {
        user_.about("Opening ...", std::string("NVQ can't open this kind of file yet (") +
                                       fileKindName(kind) + "):\n\n" + path);
        view_.statusChanged();
        return OpenResult::failed;
    }
    if (kind != FileKind::spreadsheet) close(true);
    if (kind == FileKind::nothing) return OpenResult::ok;
    user_.status("Opening " + path + " ...");
    const OpenResult result = kind == FileKind::collection ? openCollection(path)
                              : collection.isOpen          ? importIntoOpen(path)
                                                           : importAsNew(path);
    view_.statusChanged();
    return result;
}

// Directory, name and base path of the collection that `path` stands for; the current directory follows.
bool RSession::setNames(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    if (!common::directoryExists(parts.directory)) {
        user_.about("Collection Directory", parts.directory + "\n\ndoes not exist!");
        return false;
    }
    collection.reset();
    collection.directory = parts.directory;
    collection.extension = parts.extension;
    const bool asItIs = common::fileExists(parts.directory + parts.baseName + ".var");
    collection.name = asItIs ? parts.baseName : plainBaseName(parts.baseName);
    collection.path = collection.directory + collection.name;
    collection.configName = collection.path;
    collection.tempDirectory = installation.temp;
    collection.userName = installation.user;
    collection.hostName = installation.host;
    collection.makeTempId();
    std::error_code ignored;
    std::filesystem::current_path(collection.directory, ignored);
    return true;
}

OpenResult RSession::openCollection(const std::string& path)
{
    if (!setNames(path)) return OpenResult::failed;
    const std::string file = collection.path + ".var"; // the files may turn out to have another name
    if (!common::fileExists(file)) {
        user_.about(openingTitle, "Collection \"" + file + "\" does not exist!");
        abandon();
        return OpenResult::failed;
    }
    collection.writable = collection::filesAreWritable(collection.path, collection.directory, false);
    if (!collection.writable) {
        user_.about(openingTitle, collection::writeProtectedText);
    } else if (!lock_.acquire(collection.path)) {
        collection.writable = false;
        user_.about(openingTitle,
                    "Collection " + file + std::string(elsewhereText) + "\n\nData may not be modified!");
    }
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
    if (collection.openTemporaryFiles()) return OpenResult::ok;
    user_.about(openingTitle, "Temporary files could not be made in " + collection.tempDirectory + "!");
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
}

bool RSession::mayReplace()
{
    const std::string file = collection.path + ".var";
    if (!common::fileExists(file) || importOverwrite) return true;
    if (user_.interactive()) {
        return user_.question(importTitle, "Collection\n\n" + file + "\n\nalready exists!  Replace it?",
                              common::Answer::no) == common::Answer::yes;
    }
    if (collection::isMadeByImportsOnly(collection.path)) return true;
    user_.about(importTitle, "Collection " + file +
                                 " already exists, and its log tells of more than imports!\n\nIt is replaced "
                                 "only behind  set_import overwrite=yes.");
    return false;
}

// Whether a collection may be made in the place that the names say; tells why not.
bool RSession::canMake()
{
    if (!mayReplace()) return false;
    const std::string file = collection.path + ".var";
    collection.writable = collection::filesAreWritable(collection.path, collection.directory, false);
    if (!collection.writable) {
        user_.about(importTitle, "Collection " + file + " could not be made!\n\n" +
                                     std::string(collection::writeProtectedText));
        return false;
    }
    if (lock_.acquire(collection.path)) return true;
    user_.about(importTitle, "Collection " + file + std::string(elsewhereText));
    return false;
}

OpenResult RSession::importAsNew(const std::string& path)
{
    if (!setNames(path)) return OpenResult::failed;
    Header header; // looked at first: a file that is none must not cost an old collection
    if (!importing::spreadsheetVariables(path, nullptr, collection, header, user_) || !canMake()) {
        abandon();
        return OpenResult::failed;
    }
    const std::string target = collection.path + ".var";
    const bool replaces = common::fileExists(target);
    RCollectionBackup backup(collection.path);
    if (!backup.moved() || !collection.createEmptyFiles()) {
        user_.about(importTitle, "Collection " + target + " could not be made!");
        abandon();
        return OpenResult::failed;
    }
    if (const OpenResult opened = openFiles(); opened != OpenResult::ok) return opened;
    const importing::IMPORTRESULT result = runImport(path, std::move(header));
    const bool good = result.end == importing::ImportEnd::done && result.stationsStored > 0;
    if (!good && (replaces || result.stationsStored == 0)) {
        abandon();
        return OpenResult::failed;
    }
    backup.keep();
    becomeReady(target);
    return good ? OpenResult::ok : OpenResult::failed;
}

importing::IMPORTRESULT RSession::runImport(const std::string& path, std::optional<Header> header)
{
    importing::IMPORTOPTIONS options;
    options.header = std::move(header);
    return importing::importSpreadsheet(collection, scratch_, path, options, user_);
}

OpenResult RSession::importIntoOpen(const std::string& path)
{
    if (!collection.writable) {
        user_.about(importTitle, collection::writeProtectedText);
        return OpenResult::failed;
    }
    const importing::IMPORTRESULT result = runImport(path, std::nullopt);
    for (auto& windows : ranged_) windows.reset(); // there are new values
    listChanged();
    return result.end == importing::ImportEnd::done ? OpenResult::ok : OpenResult::failed;
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
    lastFiles.configName = collection.path;
    if (runMode == interactiveRun)
        static_cast<void>(collection::readLastFiles(collection.path, collection.directory, lastFiles));
    collection.configName = lastFiles.configName;
    currentStation.clear();
    view_.captionChanged(title + " - " + path);
    state = stateReady;
    addRecentFile(settings.recentFiles, path);
    view_.recentFilesChanged();
    listChanged();
}

// The selected stations are others now.
void RSession::listChanged()
{
    setup.map.toDraw = 1;
    graphics::PLOTCONTEXT context = plotContext();
    graphics::refreshSelection(context);
    invalidate();
}

bool RSession::close(bool force)
{
    static_cast<void>(force); // nothing is asked as long as configurations and sections can't be saved
    if (!collection.isOpen) return true;
    collection.configChanged = false;
    static_cast<void>(collection::writeLastFiles(collection.path, collection.directory, lastFiles));
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
    return true;
}

} // namespace app
