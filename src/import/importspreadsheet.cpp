#include "import/importspreadsheet.h"

#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"
#include "import/importfile.h"
#include "import/spreadsheetreader.h"

namespace importing {
namespace {

using collection::RCollection;
using collection::STATIONDATA;
using common::format;

constexpr std::string_view caption = "NVQ Data Import";

std::string shortName(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    return parts.baseName + parts.extension;
}

// Logs an input that holds nothing at all.
IMPORTRESULT importNothing(RImportRun& run, const std::string& path, ImportMode mode)
{
    (void)run.openImport(path, shortName(path), 0, mode, true);
    run.closeImport(true);
    return {ImportEnd::failed, 0, 0};
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
    if (!settleImport(collection, {path, header.sources, true}, options, run, result, user)) return result;

    RSpreadsheetReader reader(header, targetsOf(collection),
                              keyVariables(collection, header.sources, options.settler), user);
    if (!reader.open(path) ||
        run.openImport(path, shortName(path), header.desc.firstDataLine - 1, run.state.mode) == 0) {
        if (!run.state.failed) user.about(caption, format("File %s can not be read!", path.c_str()));
        return {ImportEnd::failed, 0, 0};
    }
    const std::int64_t code = importStations(reader, run, station);
    run.closeImport(true);
    result = resultOf(run, code);
    if (reader.endedEarly() && result.end == ImportEnd::done) result.end = ImportEnd::failed;
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
