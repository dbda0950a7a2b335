#include "import/importspreadsheet.h"
#include "operations.h"

namespace reliability {
namespace {

using importing::ImportMode;

bool import(ROpenCollection& open, ImportMode mode)
{
    importing::IMPORTOPTIONS options;
    options.mode = mode;
    const importing::IMPORTRESULT result = importing::importSpreadsheet(
        open.collection, open.station, open.folder + "casts.txt", options, open.user);
    return result.end == importing::ImportEnd::done && result.stationsStored > 0;
}

OPERATION importOf(const std::string& name, std::vector<CAST> casts, ImportMode mode = ImportMode::addReplace)
{
    OPERATION operation;
    operation.name = name;
    operation.inputs["casts.txt"] = spreadsheetOf(casts);
    operation.run = [mode](ROpenCollection& open) { return import(open, mode); };
    return operation;
}

OPERATION importIntoEmpty()
{
    OPERATION operation = importOf("ImportIntoEmpty", {{"A", "1", 5, 1}, {"B", "2", 6, 2}});
    operation.prepare = [](const std::string& folder, std::string_view magic) {
        makeCollection(folder, "sample", magic, {});
    };
    return operation;
}

// The user wants it undone when it reports.
OPERATION importThatIsUndone()
{
    OPERATION operation =
        importOf("ImportThatIsUndone", {{"B", "12", 30, 50}, {"E", "1", 6, 51}, {"A", "1", 3, 52}});
    operation.changesNothing = true;
    operation.run = [](ROpenCollection& open) {
        open.user.acceptReports = false;
        importing::IMPORTOPTIONS options;
        const importing::IMPORTRESULT result = importing::importSpreadsheet(
            open.collection, open.station, open.folder + "casts.txt", options, open.user);
        return result.end == importing::ImportEnd::cancelled;
    };
    return operation;
}

} // namespace

std::vector<OPERATION> importOperations()
{
    return {
        importOf("ImportThatAppends", {{"D", "1", 5, 30}, {"A", "99", 8, 31}, {"D", "2", 6, 32}}),
        importOf("ImportThatReplacesBySameSize",
                 {{"B", "12", 9, 40}, {"A", "1", 7, 41}, {"A", "2", 11, 42, 2}}),
        importOf("ImportThatReplacesBySmaller", {{"B", "12", 4, 40}, {"A", "1", 3, 41}}),
        importOf("ImportThatReplacesByLarger", {{"B", "12", 30, 40}, {"A", "1", 17, 41}}),
        importOf("ImportOfAllKinds", {{"B", "12", 30, 50},
                                      {"E", "1", 6, 51},
                                      {"A", "1", 3, 52},
                                      {"B", "12", 31, 53},
                                      {"C", "A12", 5, 54},
                                      {"E", "1", 9, 55},
                                      {"A", "3", 40, 56}}),
        importOf("ImportThatMerges", {{"B", "12", 12, 60}, {"A", "1", 7, 61}}, ImportMode::merge),
        importOf("ImportThatUpdates", {{"B", "12", 9, 60}, {"A", "1", 14, 61}}, ImportMode::update),
        importIntoEmpty(),
        importThatIsUndone(),
    };
}

} // namespace reliability
