#include "import/importfile.h"

#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"
#include "import/association.h"
#include "import/importlist.h"
#include "import/importlisting.h"
#include "import/importspreadsheet.h"

namespace importing {
namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::VARINFO;
using common::format;

constexpr std::string_view caption = "NVQ Data Import";

// The source variables that nothing takes.
std::string unusedSources(std::span<const VARINFO> sources, std::span<const VARINFO> targets)
{
    const auto isUsed = [&](std::size_t source) {
        return std::any_of(targets.begin() + 1, targets.end(), [&](const VARINFO& target) {
            return target.assocSource == static_cast<int>(source);
        });
    };
    std::string names;
    for (std::size_t i = 1; i < sources.size(); ++i) {
        if (isUsed(i)) continue;
        names.append(names.empty() ? "\"" : ", \"");
        names.append(common::labelToUtf8(common::fieldText(sources[i].label))).append("\"");
    }
    return names;
}

bool anyTargetIsFed(std::span<const VARINFO> targets)
{
    return std::any_of(targets.begin() + 1, targets.end(),
                       [](const VARINFO& target) { return target.assocSource != 0; });
}

// True if the variables of the file are those of the collection, one by one: a file of the layout that the
// collection was made from.
bool hasTheVariablesOf(std::span<const VARINFO> targets, std::span<const VARINFO> sources)
{
    return std::equal(sources.begin(), sources.end(), targets.begin(), targets.end(),
                      [](const VARINFO& a, const VARINFO& b) {
                          return common::fieldText(a.label) == common::fieldText(b.label);
                      });
}

IMPORTCHOICES choicesOf(const RCollection& collection, const IMPORTSTATE& state)
{
    IMPORTCHOICES choices;
    choices.mode = state.mode;
    choices.checkExisting = state.checkExisting;
    choices.emptyCollection = collection.stationCount == 0;
    for (const collection::CRUISEINFO& cruise : collection.cruises) {
        choices.cruises.push_back(
            {{}, std::string(common::fieldText(cruise.type)), std::string(common::fieldText(cruise.cruise))});
    }
    return choices;
}

bool isPotentialTemperature(const VARINFO& source)
{
    return source.assoc > 0 && source.offset == common::MISSING_VALUE &&
           source.scale == potentialToTemperature;
}

// What is known stays known: an answer is noted for later imports.
int identified(RCollection& collection, std::string_view task, std::string_view meaning,
               RImportSettler* settler)
{
    if (const int number = collection.getVariableId(meaning); number > 0) return number;
    if (settler == nullptr) return 0;
    const int number = settler->identify(task, meaning, targetsOf(collection));
    if (number < 1 || number > collection.variableCount) return 0;
    static_cast<void>(collection.setVariableId(meaning, number)); // if not, it is asked again
    return number;
}

bool askSettler(RCollection& collection, const IMPORTOPTIONS& options, const IMPORTSOURCE& source,
                RImportRun& run, common::RUser& user)
{
    if (collection.cruises.empty()) collection.readInventory(false, user);
    IMPORTCHOICES choices = choicesOf(collection, run.state);
    choices.file = source.path;
    choices.sources = source.sources;
    choices.targets = targetsOf(collection);
    choices.mayUseDefaults = source.mayUseDefaults;
    choices.identify = [&](std::string_view task, std::string_view meaning) {
        return identified(collection, task, meaning, options.settler);
    };
    if (!options.settler->settleImport(choices)) return false;
    run.state.mode = choices.mode;
    run.state.checkExisting = choices.checkExisting;
    run.takeCruises(choices.cruises);
    return true;
}

bool canMerge(const RCollection& collection, ImportMode mode, common::RUser& user)
{
    if (mode == ImportMode::addReplace || collection.stationCount > 0) return true;
    user.about("Collection is empty ...", "Merge/Update not possible for empty collections.");
    return false;
}

IMPORTRESULT importOneFile(Format form, RCollection& collection, STATIONDATA& station,
                           const std::string& path, const IMPORTOPTIONS& options, common::RUser& user)
{
    if (form == Format::spreadsheet) return importSpreadsheet(collection, station, path, options, user);
    return importListing(form, collection, station, path, options, user);
}

} // namespace

std::span<VARINFO> targetsOf(RCollection& collection)
{
    return std::span(collection.variables).first(static_cast<std::size_t>(collection.variableCount) + 1);
}

bool canImport(const RCollection& collection, common::RUser& user)
{
    if (collection.isOpen && collection.kind == 1 && collection.writable) return true;
    user.about(caption, "The collection is not open for writing.\n\nData may not be modified!");
    return false;
}

bool settleImport(RCollection& collection, const IMPORTSOURCE& source, const IMPORTOPTIONS& options,
                  RImportRun& run, IMPORTRESULT& result, common::RUser& user)
{
    const auto& [path, sources, mayUseDefaults] = source;
    const std::span<VARINFO> targets = targetsOf(collection);
    result.end = ImportEnd::failed;
    if (options.header || hasTheVariablesOf(targets, sources)) {
        associateByNumber(sources, targets);
    } else {
        associateByLabel(sources, targets);
    }
    if (options.settler != nullptr && !askSettler(collection, options, source, run, user)) {
        result.end = options.settler->asks() ? ImportEnd::cancelled : ImportEnd::failed;
        return false;
    }
    if (!anyTargetIsFed(targets)) {
        user.about(caption, format("File %s has no column of a variable of collection %s.\n\nThe association "
                                   "of its columns would have to be given by a user.",
                                   path.c_str(), collection.name.c_str()));
        return false;
    }
    if (const std::string unused = unusedSources(sources, targets); !unused.empty())
        user.note(format("%s: not imported: %s", path.c_str(), unused.c_str()));
    if (!canMerge(collection, run.state.mode, user)) return false;
    result.end = ImportEnd::done;
    return true;
}

KEYVARIABLES keyVariables(RCollection& collection, std::span<const VARINFO> sources, RImportSettler* settler)
{
    const bool needed = std::any_of(sources.begin() + std::min<std::ptrdiff_t>(1, std::ssize(sources)),
                                    sources.end(), isPotentialTemperature);
    if (!needed) return {};
    const std::string_view task =
        variableConversions[static_cast<std::size_t>(potentialTemperatureRow)].label;
    const int depth = identified(collection, task, "Depth [m]", settler);
    return depth == 0 ? KEYVARIABLES{}
                      : KEYVARIABLES{depth, identified(collection, task, "Salinity [psu]", settler)};
}

std::int64_t importStations(RStationReader& reader, RImportRun& run, STATIONDATA& station,
                            const PROGRESSSTEP& step)
{
    for (;;) {
        const std::int64_t bytes = reader.readStation(station);
        run.state.lineNumber = reader.lineNumber();
        if (bytes <= 0) {
            run.state.lineBuffer = reader.currentLine();
            run.state.read = reader.account();
            run.reportReadError(bytes);
            return bytes;
        }
        run.state.bytesRead += bytes;
        if (run.importStation(station, step.stations, step.bytes)) {
            run.state.read = reader.account();
            return readEnd;
        }
    }
}

IMPORTRESULT resultOf(const RImportRun& run, std::int64_t code)
{
    IMPORTRESULT result{ImportEnd::done, run.state.stationsRead, run.state.stationsStored,
                        run.state.account.added};
    if (run.state.aborted || run.state.undoRequested || code == readCancelled)
        result.end = ImportEnd::cancelled;
    else if (run.state.failed || code < 0)
        result.end = ImportEnd::failed;
    return result;
}

bool isFileList(std::string_view path)
{
    constexpr std::string_view ending = ".lst";
    return path.size() > ending.size() &&
           common::equalsIgnoreCase(path.substr(path.size() - ending.size()), ending);
}

IMPORTRESULT importFile(Format form, RCollection& collection, STATIONDATA& station, const std::string& path,
                        const IMPORTOPTIONS& options, common::RUser& user)
{
    const auto importOne = [&](const std::string& file, const IMPORTOPTIONS& settled) {
        return importOneFile(form, collection, station, file, settled, user);
    };
    return isFileList(path) ? importList(collection, path, options, importOne, user)
                            : importOne(path, options);
}

} // namespace importing
