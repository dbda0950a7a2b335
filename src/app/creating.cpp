// Making collections where there was none: empty ones, and those that a foreign file becomes.

#include "app/session.h"
#include "collection/stationrecord.h"
#include "collection/varfile.h"
#include "collection/variablesets.h"
#include "common/files.h"
#include "common/text.h"
#include "import/importlisting.h"
#include "import/listing.h"

namespace app {
namespace {

constexpr std::string_view openingTitle = "Opening Collection ...";
constexpr std::string_view creationTitle = "New Collection ...";
constexpr std::string_view importTitle = "NVQ Data Import";
constexpr std::string_view templateFilter =
    "Collection Files (*.var);;NVQ SpreadSheet Files (*.txt);;o4x Files (*.o4x)";

bool isUsable(std::span<const collection::VARINFO> variables)
{
    return variables.size() >= 2 && variables.size() <= common::maxVariables + 1;
}

// The description of a 3.0 listing has the place that a collection of the same name would take.
std::string nameBesideDescription(const std::string& listing)
{
    const common::PATHPARTS parts = common::splitPath(listing);
    return parts.directory + parts.baseName + "_o3x" + parts.extension;
}

} // namespace

// --- what it is made of

std::optional<RSession::NEWCOLLECTION> RSession::fromTemplate(const std::string& file)
{
    NEWCOLLECTION made;
    const std::string extension = common::toLower(common::splitPath(file).extension);
    if (extension == ".var") {
        collection::RCollection other;
        if (other.readVarFile(file, {}, user_) != collection::VarFileResult::ok) return std::nullopt;
        const auto count = static_cast<std::ptrdiff_t>(other.variableCount);
        made = {{other.variables.begin(), other.variables.begin() + count + 1}, other.type};
    } else if (extension == ".o4x") {
        importing::LISTINGHEADER header;
        std::string fault;
        if (!importing::readListingHeader(file, header, fault)) {
            user_.note(fault);
            return std::nullopt;
        }
        made = {std::move(header.variables), header.type};
    } else if (extension == ".txt") {
        importing::SPREADSHEETHEADER header;
        if (importing::readSpreadsheetHeader(file, nullptr, user_, header) != importing::HeaderResult::ok)
            return std::nullopt;
        made.variables = std::move(header.sources);
    }
    if (!isUsable(made.variables)) return std::nullopt;
    return made;
}

// The variables of a choice; nothing, after a message, if they can't be had, and if the user cancels.
std::optional<RSession::NEWCOLLECTION> RSession::newCollection(const CREATIONCHOICE& choice,
                                                               const std::string& name)
{
    if (choice.set == collection::setTemplate) {
        std::string file = choice.templateFile;
        if (file.empty())
            file = view_.askFile({"Select Template for " + name + " ...", std::string(templateFilter), {}});
        if (file.empty()) return std::nullopt;
        file = common::absolutePath(file);
        std::optional<NEWCOLLECTION> made = fromTemplate(file);
        if (!made)
            user_.about("Template usage failed ...",
                        "Make sure file format of " + file +
                            " is valid\nand file is currently not in use by another application!");
        return made;
    }
    NEWCOLLECTION made{collection::variablesOfSet(choice.set), "HYD"};
    if (!isUsable(made.variables)) return std::nullopt;
    if (choice.set != collection::setManual) return made;
    if (!user_.interactive()) {
        user_.note("nobody can specify the variables of " + name +
                   ": it gets Depth, Temperature and Salinity");
    } else if (!view_.editVariables(name, made.variables, {}) || !isUsable(made.variables)) {
        return std::nullopt;
    }
    return made;
}

// --- the place

// Station files without a description may be all that is left of a collection.
bool RSession::mayReplaceStations(const std::string& basePath, std::string_view caption)
{
    if (common::fileSize(basePath + ".hob") <= collection::magicSize &&
        common::fileSize(basePath + ".dob") <= 0)
        return true;
    const std::string fault =
        basePath + ".hob or .dob holds stations, but there is no description " + basePath + ".var!";
    if (user_.interactive())
        return user_.question(caption, fault + "\n\nReplace them?", common::Answer::no) ==
               common::Answer::yes;
    user_.about(caption, fault + "\n\nThey are replaced only behind  set_import overwrite=yes.");
    return false;
}

// byNothing: what takes the place has no stations, so that only a collection without any may go unasked.
bool RSession::mayReplace(const std::string& basePath, std::string_view caption, bool byNothing)
{
    const std::string file = basePath + ".var";
    if (importSettings.overwrite) return true;
    if (!common::fileExists(file)) return mayReplaceStations(basePath, caption);
    if (user_.interactive()) {
        return user_.question(caption, "Collection\n\n" + file + "\n\nalready exists!  Replace it?",
                              common::Answer::no) == common::Answer::yes;
    }
    if (!byNothing) {
        if (collection::isMadeByImportsOnly(basePath)) return true;
        user_.about(caption, "Collection " + file +
                                 " already exists, and its log tells of more than imports!\n\nIt is replaced "
                                 "only behind  set_import overwrite=yes.");
        return false;
    }
    if (collection::describedStations(file) == 0 && collection::isMadeByImportsOnly(basePath)) return true;
    user_.about(caption, "Collection " + file +
                             " already exists!\n\nIt is replaced only behind  set_import overwrite=yes.");
    return false;
}

// Whether a collection may be made in the place that the names say, which is marked as ours; tells why not.
bool RSession::canMake(std::string_view caption, bool byNothing)
{
    const std::string reason = takeForWriting(collection.path);
    if (!reason.empty()) {
        user_.about(caption, "Collection " + collection.path + ".var could not be made!\n\n" + reason);
        return false;
    }
    return putRight(collection.path, reason) && mayReplace(collection.path, caption, byNothing);
}

// Puts the files of an old collection aside and makes and opens those of the new one, all in one change,
// which the caller ends. Names, type and variables are set.
bool RSession::makeFiles(std::string_view operation)
{
    if (!collection.beginChange(operation)) return false;
    if (collection.setFilesAside(collection::replacedSuffixes) && collection.createEmptyFiles() &&
        collection.openStationFiles(collection.path, user_) == collection::OpenFilesResult::ok)
        return true;
    collection.rollBackChange();
    return false;
}

// --- the ways to make one

// An empty collection under the names that are set, and marked as ours.
OpenResult RSession::makeEmpty(const NEWCOLLECTION& made)
{
    const std::string file = collection.path + ".var";
    collection.type = made.type;
    std::copy(made.variables.begin(), made.variables.end(), collection.variables.begin());
    collection.variableCount = collection.totalVariableCount = static_cast<int>(made.variables.size()) - 1;
    if (!makeFiles("CREATE") || !collection.commitChange()) {
        user_.about(creationTitle, "Collection " + file + " could not be made!");
        abandon();
        return OpenResult::failed;
    }
    if (!collection.openTemporaryFiles()) return tellNoLists();
    becomeReady(file);
    return OpenResult::ok;
}

// The names are those of a collection that isn't there: it is made if somebody can say of what.
OpenResult RSession::createMissing(const std::string& readOnlyReason)
{
    const std::string file = collection.path + ".var",
                      missing = "Collection \"" + file + "\" does not exist!";
    const bool inTheWay = common::fileSize(file) >= 0; // something that is no file
    if (inTheWay || !readOnlyReason.empty() || !user_.interactive()) {
        user_.about(openingTitle, readOnlyReason.empty() ? missing : missing + "\n\n" + readOnlyReason);
        abandon();
        return OpenResult::failed;
    }
    const bool free = mayReplaceStations(collection.path, creationTitle);
    const std::optional<CREATIONCHOICE> choice = free ? view_.chooseVariables(collection.name) : std::nullopt;
    const std::optional<NEWCOLLECTION> made = choice ? newCollection(*choice, collection.name) : std::nullopt;
    if (made) return makeEmpty(*made);
    abandon();
    return OpenResult::failed;
}

OpenResult RSession::newFromSource(FileKind kind, const std::string& path)
{
    if (!common::fileExists(path)) {
        user_.about(openingTitle, "File " + path + " does not exist!");
        return OpenResult::failed;
    }
    if (!setNames(path) || !canMake(openingTitle, true)) {
        abandon();
        return OpenResult::failed;
    }
    const int set = kind == FileKind::archiveListing ? collection::setWoa94 : collection::setWhpBottle;
    return makeEmpty({collection::variablesOfSet(set), "HYD"});
}

bool RSession::createCollection(const std::string& path, std::optional<CREATIONCHOICE> choice)
{
    const std::string base = targetBase(
        path, {std::string(creationTitle), "Collection Files (*.var)", collection.directory, true, true});
    if (base.empty()) return false;
    const std::string name = common::splitPath(base + ".var").baseName;
    if (!choice && user_.interactive()) choice = view_.chooseVariables(name);
    const std::optional<NEWCOLLECTION> made = choice ? newCollection(*choice, name) : std::nullopt;
    if (!made || !close(false) || !setNames(base + ".var")) return false;
    if (!canMake(creationTitle, false)) {
        abandon();
        return false;
    }
    const int replaced = collection::describedStations(base + ".var");
    const bool good = makeEmpty(*made) == OpenResult::ok;
    if (good)
        tellDone(common::format("%s.var: made with %d variables", base.c_str(), collection.variableCount) +
                 (replaced > 0 ? common::format(" in the place of %d stations", replaced) : ""));
    return good;
}

// Makes the variables of a file those of the collection that is to be made of it. False after a message, and
// if the user cancels.
bool RSession::readVariables(importing::Format format, const std::string& path,
                             importing::IMPORTOPTIONS& options)
{
    if (format == importing::Format::spreadsheet) {
        importing::SPREADSHEETHEADER header;
        if (!importing::spreadsheetVariables(path, options.settler, collection, header, user_)) return false;
        options.header = std::move(header);
        return true;
    }
    importing::LISTINGHEADER header;
    if (!importing::listingVariables(format, path, options.settler, collection, header, user_)) return false;
    options.listing = std::move(header);
    return true;
}

OpenResult RSession::importAsNew(FileKind kind, const std::string& path)
{
    if (!setNames(kind == FileKind::oldListing ? nameBesideDescription(path) : path))
        return OpenResult::failed;
    const importing::Format format = *importFormat(kind);
    const std::unique_ptr<importing::RImportSettler> settler = makeSettler();
    importing::IMPORTOPTIONS options;
    options.settler = settler.get();
    // Looked at first: a file that is none must not cost an old collection.
    if (!readVariables(format, path, options) || !canMake(importTitle, false)) {
        abandon();
        return OpenResult::failed;
    }
    const std::string target = collection.path + ".var";
    const bool replaces = common::fileExists(target);
    if (!makeFiles("IMPORT " + common::splitPath(path).baseName)) {
        user_.about(importTitle, "Collection " + target + " could not be made!");
        abandon();
        return OpenResult::failed;
    }
    const bool lists = collection.openTemporaryFiles();
    importing::IMPORTRESULT result{importing::ImportEnd::failed, 0, 0};
    if (lists) result = runImport(format, path, std::move(options));
    const bool good = result.end == importing::ImportEnd::done && result.stationsStored > 0;
    const bool keep = good || (!replaces && result.stationsStored > 0);
    if (!keep || !collection.commitChange()) {
        if (keep) user_.about(importTitle, "Collection " + target + " could not be made!");
        collection.rollBackChange();
        abandon();
        return lists ? OpenResult::failed : tellNoLists();
    }
    becomeReady(target);
    return good ? OpenResult::ok : OpenResult::failed;
}

} // namespace app
