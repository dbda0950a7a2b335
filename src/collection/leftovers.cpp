#include "collection/leftovers.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <optional>
#include <unistd.h>

#include "collection/collectionlock.h"
#include "collection/sidefiles.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

namespace fs = std::filesystem;

struct REPLACEMENTNAME {
    std::string_view file; // in whose place it was to come
    int process = 0;
};

// Cuts ".<number>" from the end of a name.
std::optional<int> takeNumber(std::string_view& name)
{
    const std::size_t point = name.rfind('.');
    if (point == std::string_view::npos) return std::nullopt;
    const std::optional<int> number = common::parseInt(name.substr(point + 1));
    if (number) name = name.substr(0, point);
    return number;
}

std::optional<REPLACEMENTNAME> replacementName(std::string_view name)
{
    if (!name.ends_with(".tmp")) return std::nullopt;
    name.remove_suffix(4);
    const std::optional<int> count = takeNumber(name);
    const std::optional<int> process = count ? takeNumber(name) : std::nullopt;
    if (!process || *process <= 0 || name.empty()) return std::nullopt;
    return REPLACEMENTNAME{name, *process};
}

bool isRunning(int process)
{
    return ::kill(process, 0) == 0 || errno == EPERM;
}

// Collections may stand beside files whose names begin alike: a.txt, or those of a collection a.b.
bool isFileOf(std::string_view file, std::string_view baseName)
{
    if (!file.starts_with(baseName)) return false;
    const std::string_view suffix = file.substr(baseName.size());
    return suffix == ".log" || suffix == ".cfg" ||
           std::find(collectionSuffixes.begin(), collectionSuffixes.end(), suffix) !=
               collectionSuffixes.end();
}

bool isAbandoned(const REPLACEMENTNAME& replacement, std::string_view baseName)
{
    if (replacement.process == static_cast<int>(::getpid())) return false;
    if (isFileOf(replacement.file, baseName)) return true;
    return (isFileOf(replacement.file, "TRG") || replacement.file == "write_test") &&
           !isRunning(replacement.process);
}

} // namespace

int removeLeftovers(const std::string& basePath)
{
    const std::size_t slash = basePath.rfind('/');
    const std::string directory = slash == std::string::npos ? "." : basePath.substr(0, slash + 1);
    const std::string baseName = basePath.substr(slash + 1);
    int removed = 0;
    std::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        const std::string name = it->path().filename().string();
        const std::optional<REPLACEMENTNAME> replacement = replacementName(name);
        std::error_code ignored;
        if (!replacement || !isAbandoned(*replacement, baseName) || it->is_symlink(ignored) ||
            !it->is_regular_file(ignored))
            continue;
        if (fs::remove(it->path(), ignored)) ++removed;
    }
    // the mark of a rewriting that was killed before it made anything; taking it over removes it
    const std::string target = directory + "/TRG";
    if (RCollectionLock mark; common::fileExists(target + ".lck") && mark.acquire(target)) ++removed;
    return removed;
}

} // namespace collection
