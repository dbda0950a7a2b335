#include "collection/temporaryfiles.h"

#include <cerrno>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "collection/rcollection.h"
#include "collection/uniquenumber.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view family = "NVQ_";
constexpr std::time_t day = 86400;

class RDescriptor {
public:
    explicit RDescriptor(int descriptor) : descriptor_(descriptor) {}
    ~RDescriptor()
    {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    RDescriptor(const RDescriptor&) = delete;
    RDescriptor& operator=(const RDescriptor&) = delete;
    [[nodiscard]] int get() const { return descriptor_; }

private:
    int descriptor_;
};

// The names in a directory that begin with `start`.
std::vector<std::string> namesIn(const std::string& directory, std::string_view start)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(directory.empty() ? "." : directory.c_str()),
                                                      ::closedir);
    if (!entries) return names;
    while (const dirent* const entry = ::readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (name.starts_with(start)) names.emplace_back(name);
    }
    return names;
}

bool belongsTo(std::string_view name, std::string_view prefix)
{
    return name.size() > prefix.size() && name.starts_with(prefix) &&
           (name[prefix.size()] == '.' || name[prefix.size()] == '_');
}

// "NVQ_" and the digits behind it; empty if the name is none of an opening's.
std::string prefixOf(std::string_view name)
{
    const std::size_t end = name.find_first_not_of("0123456789", family.size());
    if (end == std::string_view::npos || end == family.size()) return {};
    return belongsTo(name, name.substr(0, end)) ? std::string(name.substr(0, end)) : std::string();
}

// An own file, no link to one.
bool isFile(const std::string& path, struct stat& status)
{
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isSameFile(int descriptor, const std::string& path)
{
    struct stat open {
    }, there{};
    return ::fstat(descriptor, &open) == 0 && isFile(path, there) && open.st_dev == there.st_dev &&
           open.st_ino == there.st_ino;
}

// Unlinks names of a directory; "directory" is empty or ends with a separator. The `.val` file goes last:
// until then it guards the others.
void unlinkFiles(const std::string& directory, const std::string& prefix,
                 const std::vector<std::string>& names)
{
    const std::string guard = prefix + ".val";
    for (const std::string& name : names) {
        if (name != guard && belongsTo(name, prefix)) ::unlink((directory + name).c_str());
    }
    ::unlink((directory + guard).c_str());
}

// The files of a prefix with a `.val`: they go if nobody holds it.
void removeUnlessHeld(const std::string& directory, const std::string& prefix,
                      const std::vector<std::string>& names)
{
    const std::string guard = directory + prefix + ".val";
    const RDescriptor file(::open(guard.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    if (file.get() < 0 || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return;
    if (isSameFile(file.get(), guard)) unlinkFiles(directory, prefix, names);
}

bool isOld(const std::string& path)
{
    struct stat status {};
    return isFile(path, status) && std::time(nullptr) - status.st_mtime > day;
}

} // namespace

bool lockTemporaryFile(std::FILE* file, const std::string& path)
{
    const int descriptor = ::fileno(file);
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    return isSameFile(descriptor, path);
}

void removeTemporaryFiles(const std::string& directory, const std::string& prefix)
{
    if (!prefix.empty()) unlinkFiles(directory, prefix, namesIn(directory, prefix));
}

void removeLeftTemporaryFiles(const std::string& directory)
{
    const std::vector<std::string> names = namesIn(directory, family);
    std::set<std::string> guarded;
    for (const std::string& name : names) {
        const std::string prefix = prefixOf(name);
        if (!prefix.empty() && name == prefix + ".val") guarded.insert(prefix);
    }
    for (const std::string& prefix : guarded) removeUnlessHeld(directory, prefix, names);
    for (const std::string& name : names) {
        const std::string prefix = prefixOf(name);
        if (prefix.empty() || guarded.contains(prefix)) continue;
        if (isOld(directory + name)) ::unlink((directory + name).c_str());
    }
}

void RCollection::makeTempId()
{
    const std::string last = tempId;
    do {
        tempId = common::format("NVQ_%llu", static_cast<unsigned long long>(uniqueNumber() % 10000000000ULL));
    } while (tempId == last);
}

bool RCollection::openTemporaryFiles()
{
    closeTemporaryFiles();
    constexpr int tries = 100; // the names of other running programs are theirs
    for (int i = 0; i < tries; ++i) {
        if (tempId.empty() || i > 0) makeTempId();
        const std::string base = tempDirectory + tempId;
        valFile = common::openFile(base + ".val", "wb+xe");
        if (!valFile) continue;
        if (!lockTemporaryFile(valFile.get(), base + ".val")) { // somebody cleans up, and takes it away
            valFile.reset();
            continue;
        }
        selFile = common::openFile(base + ".sel", "wb+xe");
        if (selFile) return true;
        ::unlink((base + ".val").c_str());
        valFile.reset();
    }
    return false;
}

void RCollection::closeTemporaryFiles()
{
    if (!valFile && !selFile) return;
    removeTemporaryFiles(tempDirectory, tempId);
    valFile.reset();
    selFile.reset();
    selectedStationCount = plottedStationCount = 0;
    removeLeftTemporaryFiles(tempDirectory);
}

} // namespace collection
