// The exports of stations: what is asked in front, and what may not be written over.

#include <algorithm>
#include <array>
#include <filesystem>
#include <numeric>

#include "app/session.h"
#include "collection/varfile.h"
#include "common/files.h"
#include "common/text.h"
#include "export/exportcollection.h"

namespace app {
namespace {

constexpr std::string_view missingTitle = "SpreadSheet Export - Set Missing Value String";

// Whether a path names, by whatever way, one of the files that make up the collection.
bool isCollectionFile(const std::string& file, const std::string& basePath)
{
    constexpr auto suffixes = std::to_array<const char*>(
        {".var", ".hob", ".dob", ".inv", ".cid", ".idv", ".cfl", ".log", ".info", ".cfg", ".lck", ".jnl"});
    const auto isThis = [&](const char* suffix) {
        std::error_code error;
        return file == basePath + suffix || std::filesystem::equivalent(file, basePath + suffix, error);
    };
    return std::any_of(suffixes.begin(), suffixes.end(), isThis);
}

// A collection that isn't open; its description would be lost under that of a listing.
bool isCollection(const std::string& basePath)
{
    return common::existsAtAll(basePath + ".hob") || common::existsAtAll(basePath + ".dob");
}

} // namespace

// --- what is asked

// False if the user declines. In a command file nothing is asked.
bool RSession::acceptsExport(const EXPORTFRONT& front)
{
    if (front.warning.empty()) return true;
    if (user_.question(front.warningCaption, front.warning) != common::Answer::yes) return false;
    return user_.question("Exporting data ...",
                          "Only data that satisfy current selection criteria are exported!\n\nProceed?") ==
           common::Answer::yes;
}

std::string RSession::askExportFile(const EXPORTFRONT& front)
{
    const std::string proposal =
        collection.directory + "data_from_" + collection.name + std::string(front.extension);
    const std::string path =
        view_.askFile({std::string(front.caption), std::string(front.filter), proposal, true});
    return path.empty() ? path : common::absolutePath(path);
}

// The variables of an export, all of the collection if nobody is asked; nothing if the user cancels.
std::optional<std::vector<int>> RSession::outputVariables(bool asked)
{
    std::vector<int> variables(static_cast<std::size_t>(collection.variableCount));
    std::iota(variables.begin(), variables.end(), 1);
    if (!asked) return variables;
    std::optional<std::vector<int>> chosen = view_.chooseOutputVariables(variables);
    if (chosen && chosen->empty()) return std::nullopt;
    return chosen;
}

// --- what may be written

bool RSession::mayExportTo(const std::string& file)
{
    if (!isCollectionFile(file, collection.path)) return true;
    user_.about("Exporting data ...",
                "\"" + file + "\" is a file of the open collection and can't be exported to");
    return false;
}

// The description of a 3.0 listing has the name of that of a collection.
bool RSession::mayDescribe(const std::string& listing)
{
    const std::string base(common::cutExtension(listing));
    if (!mayExportTo(base + ".var")) return false;
    if (!isCollection(base)) return true;
    user_.about("Exporting data ...", "The description of " + listing +
                                          " would take the place of that of collection " + base +
                                          ".var; choose another name.");
    return false;
}

// --- the exports

bool RSession::exportListing(exporting::ListingForm form, const std::string& path)
{
    constexpr EXPORTFRONT version3{
        ".o3x", "Export to NVQ3.x File ...", "NVQ3.x List Files (*.o3x)", "Exporting to .o3x file ...",
        "Note that data quality flags and time of observation (hour:min) are not recorded in .o3x files.\nIf "
        "this information is crucial, use NVQ SpreadSheet export instead.\n\nProceed with .o3x export?"};
    constexpr EXPORTFRONT version4{
        ".o4x", "Export to NVQ4.x File ...", "NVQ4.x List Files (*.o4x)", "Exporting to .o4x file ...",
        "Note that time of observation (hour:min) is not recorded in .o4x files.\nIf this information is "
        "crucial, use NVQ SpreadSheet export instead.\n\nProceed with .o4x export?"};
    const bool old = form == exporting::ListingForm::version3;
    const EXPORTFRONT& front = old ? version3 : version4;
    const bool asked = path.empty();
    if (asked && !acceptsExport(front)) return false;
    const std::string file = asked ? askExportFile(front) : common::absolutePath(path);
    if (file.empty() || !mayExportTo(file) || (old && !mayDescribe(file))) return false;
    const std::optional<std::vector<int>> variables = outputVariables(asked);
    return variables && exporting::exportListing(form, collection, scratch_, file, *variables, user_);
}

bool RSession::exportSpreadsheet(const std::string& path, const exporting::SPREADSHEETOPTIONS& options)
{
    constexpr EXPORTFRONT front{
        ".txt", "Export to NVQ Spreadsheet File ...", "NVQ Spreadsheet Files (*.txt)", {}, {}};
    const bool asked = path.empty();
    const std::string file = asked ? askExportFile(front) : common::absolutePath(path);
    if (file.empty() || !mayExportTo(file)) return false;
    if (!asked) return exporting::exportSpreadsheet(collection, scratch_, file, options, user_);
    const std::optional<std::vector<int>> variables = outputVariables(true);
    if (!variables) return false;
    const std::optional<std::string> missing = view_.askLine(missingTitle, "Missing Value String:");
    if (!missing) return false;
    return exporting::exportSpreadsheet(collection, scratch_, file,
                                        {*variables, std::string(common::trimLabel(*missing))}, user_);
}

bool RSession::exportCollection(const std::string& path)
{
    constexpr std::string_view caption = "Export to NVQ Collection ...";
    const std::string proposal = collection.directory + "data_from_" + collection.name + ".var";
    const std::string base =
        targetBase(path, {std::string(caption), "Collection Files (*.var)", proposal, true, true});
    if (base.empty() || !mayTakePlace(caption, base)) return false;
    const std::optional<std::vector<int>> variables = outputVariables(path.empty());
    if (!variables) return false;
    const std::string file = base + ".var";
    const int replaced = collection::describedStations(file);
    if (!exporting::exportCollection(collection, scratch_, base, *variables, user_)) return false;
    if (replaced > 0) user_.note(common::format("%s: %d stations were replaced", file.c_str(), replaced));
    addRecentFile(settings.recentFiles, file);
    view_.recentFilesChanged();
    return true;
}

} // namespace app
