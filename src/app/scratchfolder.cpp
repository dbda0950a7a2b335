#include "app/scratchfolder.h"

#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace app {
namespace {

namespace fs = std::filesystem;
using importing::RFileHandle;

constexpr std::string_view prefix = "NVQ_unpacked_";
constexpr double youngest = 60; // seconds: one that was just made may not be locked yet

RFileHandle openFolder(const std::string& path)
{
    return RFileHandle(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Nobody holds it, it is this user's, and it isn't new.
bool isAbandoned(const std::string& path)
{
    const RFileHandle folder = openFolder(path);
    struct stat status {};
    if (!folder || ::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid()) return false;
    const double age = std::difftime(std::time(nullptr), status.st_mtime);
    return age > youngest && ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

void removeAbandoned(const std::string& directory)
{
    std::error_code error, ignored;
    std::vector<std::string> old;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        const std::string path = it->path().string();
        if (it->path().filename().string().starts_with(prefix) && isAbandoned(path)) old.push_back(path);
    }
    for (const std::string& path : old) fs::remove_all(path, ignored);
}

} // namespace

RScratchFolder::RScratchFolder(const std::string& directory)
{
    removeAbandoned(directory.empty() ? "." : directory);
    std::string pattern = directory + std::string(prefix) + "XXXXXX";
    if (!::mkdtemp(pattern.data())) return;
    path_ = pattern + "/";
    lock_ = openFolder(pattern);
    if (lock_) static_cast<void>(::flock(lock_.get(), LOCK_EX | LOCK_NB));
}

RScratchFolder::~RScratchFolder()
{
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
}

} // namespace app
