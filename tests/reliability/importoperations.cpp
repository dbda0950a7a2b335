#include "import/importfile.h"
#include "operations.h"

namespace reliability {
namespace {

using importing::Format;
using importing::ImportMode;

importing::IMPORTRESULT importOf(ROpenCollection& open, const std::string& file,
                                 Format form = Format::spreadsheet, ImportMode mode = ImportMode::addReplace)
{
    importing::IMPORTOPTIONS options;
    options.mode = mode;
    return importing::importFile(form, open.collection, open.station, open.folder + file, options, open.user);
}

bool import(ROpenCollection& open, const std::string& file, Format form = Format::spreadsheet,
            ImportMode mode = ImportMode::addReplace)
{
    const importing::IMPORTRESULT result = importOf(open, file, form, mode);
    return result.end == importing::ImportEnd::done && result.stationsStored > 0;
}

OPERATION importOf(const std::string& name, std::vector<CAST> casts, ImportMode mode = ImportMode::addReplace)
{
    OPERATION operation;
    operation.name = name;
    operation.inputs["casts.txt"] = spreadsheetOf(casts);
    operation.run = [mode](ROpenCollection& open) {
        return import(open, "casts.txt", Format::spreadsheet, mode);
    };
    return operation;
}

// Several files in one run.
OPERATION importOfList(const std::string& name, const std::vector<std::vector<CAST>>& files,
                       ImportMode mode = ImportMode::addReplace)
{
    OPERATION operation;
    operation.name = name;
    std::string& list = operation.inputs["casts.lst"];
    for (const std::vector<CAST>& casts : files) {
        const std::string file = "casts" + std::to_string(operation.inputs.size()) + ".txt";
        operation.inputs[file] = spreadsheetOf(casts);
        list += file + "\r\n";
    }
    operation.run = [mode](ROpenCollection& open) {
        return import(open, "casts.lst", Format::spreadsheet, mode);
    };
    return operation;
}

// The second file of a list takes back what the user doesn't want of the first.
OPERATION listThatIsUndone()
{
    OPERATION operation = importOfList("ImportOfAListThatIsUndone",
                                       {{{"B", "12", 30, 50}, {"E", "1", 6, 51}}, {{"A", "1", 3, 52}}});
    operation.changesNothing = true;
    operation.run = [](ROpenCollection& open) {
        open.user.acceptReports = false;
        return importOf(open, "casts.lst").end == importing::ImportEnd::cancelled;
    };
    return operation;
}

// What the program lists of stations of other labels than the sample's, and of the same.
OPERATION importOfListing(const std::string& name, ImportMode mode)
{
    OPERATION operation;
    operation.name = name;
    const auto casts = std::to_array<CAST>({{"B", "12", 12, 60}, {"A", "1", 4, 61}, {"F", "1", 5, 62}});
    operation.inputs["casts.o4x"] = listingOf(casts);
    operation.run = [mode](ROpenCollection& open) {
        return import(open, "casts.o4x", Format::listing4, mode);
    };
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
        return importOf(open, "casts.txt").end == importing::ImportEnd::cancelled;
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
        importOf("ImportThatMergesAndGrows", {{"B", "12", 40, 60}, {"F", "9", 3, 62}, {"A", "1", 31, 61}},
                 ImportMode::merge),
        importOf("ImportThatUpdatesAndGrows", {{"A", "2", 33, 60}, {"B", "12", 35, 61}}, ImportMode::update),
        importOfList("ImportOfAList",
                     {{{"D", "1", 5, 30}, {"B", "12", 30, 31}}, {{"B", "12", 40, 32}, {"D", "2", 2, 33}}}),
        importOfList("ImportOfAListThatMerges",
                     {{{"B", "12", 12, 60}}, {{"A", "1", 25, 61}, {"B", "12", 30, 62}}}, ImportMode::merge),
        listThatIsUndone(),
        importOfListing("ImportOfAListing", ImportMode::addReplace),
        importOfListing("ImportOfAListingThatMerges", ImportMode::merge),
        importIntoEmpty(),
        importThatIsUndone(),
    };
}

} // namespace reliability
