#include "import/importspreadsheet.h"

#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"
#include "import/association.h"
#include "import/spreadsheetreader.h"

namespace importing {
namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::VARINFO;
using common::format;

constexpr std::string_view caption = "NVQ Data Import";
constexpr int stationsAProgress = 10;
constexpr std::int64_t bytesAProgress = 50000;

std::string shortName(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    return parts.baseName + parts.extension;
}

std::span<VARINFO> targetsOf(RCollection& collection)
{
    return std::span(collection.variables).first(static_cast<std::size_t>(collection.variableCount) + 1);
}

bool isUsed(std::span<const VARINFO> targets, std::size_t source)
{
    return std::any_of(targets.begin() + 1, targets.end(),
                       [&](const VARINFO& target) { return target.assocSource == static_cast<int>(source); });
}

// The source variables that nothing takes.
std::string unusedSources(const SPREADSHEETHEADER& header, std::span<const VARINFO> targets)
{
    std::string names;
    for (std::size_t i = 1; i < header.sources.size(); ++i) {
        if (isUsed(targets, i)) continue;
        names.append(names.empty() ? "\"" : ", \"");
        names.append(common::labelToUtf8(common::fieldText(header.sources[i].label))).append("\"");
    }
    return names;
}

bool anyTargetIsFed(std::span<const VARINFO> targets)
{
    return std::any_of(targets.begin() + 1, targets.end(),
                       [](const VARINFO& target) { return target.assocSource != 0; });
}

// True if the columns of the file are the variables of the collection, one by one: a file of the layout that
// the collection was made from.
bool hasTheColumnsOf(std::span<const VARINFO> targets, std::span<const VARINFO> sources)
{
    return std::equal(sources.begin(), sources.end(), targets.begin(), targets.end(),
                      [](const VARINFO& a, const VARINFO& b) {
                          return common::fieldText(a.label) == common::fieldText(b.label);
                      });
}

// Links sources and targets. False if the user cancelled, or if nothing would be imported.
bool settleAssociation(RCollection& collection, const std::string& path, const IMPORTOPTIONS& options,
                       SPREADSHEETHEADER& header, IMPORTSTATE& state, IMPORTRESULT& result,
                       common::RUser& user)
{
    const std::span<VARINFO> targets = targetsOf(collection);
    if (options.header || hasTheColumnsOf(targets, header.sources)) {
        associateByNumber(header.sources, targets);
    } else {
        associateByLabel(header.sources, targets);
    }
    if (options.settler != nullptr) {
        if (options.settler->settleImport(state, header.sources, targets)) return true;
        result.end = ImportEnd::cancelled;
        return false;
    }
    if (!anyTargetIsFed(targets)) {
        user.about(caption,
                   format("File %s has no column of a variable of collection %s.\n\nThe association of "
                          "its columns would have to be given by a user.",
                          path.c_str(), collection.name.c_str()));
        result.end = ImportEnd::failed;
        return false;
    }
    if (const std::string unused = unusedSources(header, targets); !unused.empty())
        user.note(format("%s: not imported: %s", path.c_str(), unused.c_str()));
    return true;
}

// Reads and stores all stations. Returns the code with which the reader ended.
std::int64_t importStations(RSpreadsheetReader& reader, RImportRun& run, STATIONDATA& station)
{
    for (;;) {
        const std::int64_t bytes = reader.readStation(station);
        run.state.lineNumber = reader.lineNumber();
        if (bytes <= 0) {
            run.state.lineBuffer = reader.currentLine();
            return bytes;
        }
        run.state.bytesRead += bytes;
        if (run.importStation(station, stationsAProgress, bytesAProgress)) return readEnd;
    }
}

// Logs an input that holds nothing at all.
IMPORTRESULT importNothing(RImportRun& run, const std::string& path, ImportMode mode)
{
    (void)run.openImport(path, shortName(path), 0, mode, true);
    run.closeImport(true);
    return {ImportEnd::failed, 0, 0};
}

bool canImport(const RCollection& collection, common::RUser& user)
{
    if (collection.isOpen && collection.kind == 1 && collection.writable) return true;
    user.about(caption, "The collection is not open for writing.\n\nData may not be modified!");
    return false;
}

bool canMerge(const RCollection& collection, ImportMode mode, common::RUser& user)
{
    if (mode == ImportMode::addReplace || collection.stationCount > 0) return true;
    user.about("Collection is empty ...", "Merge/Update not possible for empty collections.");
    return false;
}

KEYVARIABLES keyVariables(const RCollection& collection)
{
    return {collection.getVariableId("Depth [m]"), collection.getVariableId("Salinity [psu]")};
}

} // namespace

IMPORTRESULT importSpreadsheet(RCollection& collection, STATIONDATA& station, const std::string& path,
                               const IMPORTOPTIONS& options, common::RUser& user)
{
    IMPORTRESULT result;
    if (!canImport(collection, user)) return {ImportEnd::failed, 0, 0};
    RImportRun run(collection, user, options.run);
    run.state.mode = options.mode;
    run.state.checkExisting = options.checkExisting;
    SPREADSHEETHEADER header = options.header.value_or(SPREADSHEETHEADER{});
    if (!options.header) {
        const HeaderResult read = readSpreadsheetHeader(path, options.settler, user, header);
        if (read == HeaderResult::empty) return importNothing(run, path, options.mode);
        if (read == HeaderResult::cancelled) return {ImportEnd::cancelled, 0, 0};
        if (read != HeaderResult::ok) return {ImportEnd::failed, 0, 0};
    }
    if (!settleAssociation(collection, path, options, header, run.state, result, user)) return result;
    if (!canMerge(collection, run.state.mode, user)) return {ImportEnd::failed, 0, 0};

    RSpreadsheetReader reader(header, targetsOf(collection), keyVariables(collection), user);
    if (!reader.open(path) ||
        run.openImport(path, shortName(path), header.desc.firstDataLine - 1, run.state.mode) == 0) {
        if (!run.state.failed) user.about(caption, format("File %s can not be read!", path.c_str()));
        return {ImportEnd::failed, 0, 0};
    }
    const std::int64_t code = importStations(reader, run, station);
    run.reportReadError(code);
    run.closeImport(true);
    result.stationsRead = run.state.stationsRead;
    result.stationsStored = run.state.stationsStored;
    if (run.state.aborted || run.state.undoRequested) result.end = ImportEnd::cancelled;
    if (run.state.failed || code < 0 || reader.refusedHeader()) result.end = ImportEnd::failed;
    return result;
}

bool spreadsheetVariables(const std::string& path, RSpreadsheetSettler* settler, RCollection& target,
                          SPREADSHEETHEADER& header, common::RUser& user)
{
    if (readSpreadsheetHeader(path, settler, user, header) != HeaderResult::ok) return false;
    if (header.sourceCount() == 0) {
        user.about(caption, format("File %s has no column of data.", path.c_str()));
        return false;
    }
    for (std::size_t v = 0; v < target.variables.size(); ++v)
        target.variables[v] = collection::emptyVariable(static_cast<int>(v));
    std::copy(header.sources.begin() + 1, header.sources.end(), target.variables.begin() + 1);
    target.variableCount = target.totalVariableCount = header.sourceCount();
    target.headerRecordSize = 80 + 2 * target.variableCount;
    target.stationCount = 0;
    target.type = "HYD";
    return true;
}

} // namespace importing
