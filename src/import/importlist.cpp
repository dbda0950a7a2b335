#include "import/importlist.h"

#include <algorithm>
#include <numeric>

#include "common/files.h"
#include "common/text.h"
#include "import/filelist.h"
#include "import/importfile.h"
#include "import/listsettler.h"

namespace importing {
namespace {

using collection::RCollection;
using common::format;

constexpr std::string_view caption = "NVQ Data Import";

std::int64_t sizeOf(const std::vector<std::string>& paths)
{
    return std::accumulate(paths.begin(), paths.end(), std::int64_t{0},
                           [](std::int64_t sum, const std::string& path) {
                               return sum + std::max<std::int64_t>(0, common::fileSize(path));
                           });
}

// Enters a file that holds nothing at all into the run of its list.
void passOver(RCollection& collection, const std::string& path, const IMPORTOPTIONS& options,
              common::RUser& user)
{
    user.note(path + ": is empty");
    RImportRun run(collection, user, options.run);
    run.state.checkExisting = options.checkExisting;
    static_cast<void>(run.openImport(path, {}, 0, options.mode, true));
    run.closeImport(true);
}

// Imports the files up to the first that ends the list; how that ended.
ImportEnd importAll(RCollection& collection, const std::vector<std::string>& paths,
                    const IMPORTOPTIONS& options, const ImportOne& importOne, common::RUser& user)
{
    for (const std::string& path : paths) {
        if (common::fileSize(path) == 0) {
            passOver(collection, path, options, user);
            continue;
        }
        const ImportEnd end = importOne(path, options).end;
        if (end == ImportEnd::done) continue;
        if (end == ImportEnd::failed && paths.size() > 1)
            user.about(caption, format("File %s has ended the import of the list.\n\nThe files behind it are "
                                       "not imported.",
                                       path.c_str()));
        return end;
    }
    return ImportEnd::done;
}

} // namespace

IMPORTRESULT importList(RCollection& collection, const std::string& list, const IMPORTOPTIONS& options,
                        const ImportOne& importOne, common::RUser& user)
{
    if (!canImport(collection, user)) return {ImportEnd::failed, 0, 0};
    std::vector<std::string> paths;
    std::string fault;
    if (!readFileList(list, paths, fault)) {
        user.about(caption, fault);
        return {ImportEnd::failed, 0, 0};
    }
    RImportRun run(collection, user, options.run);
    run.state.checkExisting = options.checkExisting;
    static_cast<void>(run.openImport(list, {}, 0, options.mode, true));
    if (run.state.failed) return {ImportEnd::failed, 0, 0};
    run.state.totalBytes = sizeOf(paths);

    std::optional<RListSettler> settler;
    IMPORTOPTIONS one = options;
    one.run.list = &run;
    if (options.settler != nullptr && options.settler->asks()) // else each file is settled by itself
        one.settler = &settler.emplace(*options.settler);
    const ImportEnd end = importAll(collection, paths, one, importOne, user);
    if (run.filesDone() == 0) return {end, 0, 0}; // what ended it was told, and nothing happened
    run.closeImport(true);
    IMPORTRESULT result = resultOf(run, readEnd);
    if (result.end == ImportEnd::done) result.end = end;
    return result;
}

} // namespace importing
