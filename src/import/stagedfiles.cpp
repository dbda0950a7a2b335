#include "import/stagedfiles.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/statvfs.h>

#include "common/text.h"

namespace importing {
namespace {

constexpr std::int64_t checkStep = std::int64_t{16} << 20; // bytes between two looks at the free space
constexpr const char* noSpace = "there is no space left on the disk";

std::string writeFault()
{
    const bool full = errno == ENOSPC || errno == EDQUOT || errno == EFBIG;
    return full ? noSpace : "it can't be written";
}

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string baseOf(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::string newName(std::size_t number)
{
    return std::to_string(number);
}

std::string oldName(std::size_t number)
{
    return "old" + std::to_string(number);
}

bool writeAll(int file, std::int64_t offset, const char* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::pwrite(file, bytes, size, offset);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes += written;
        offset += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

RStagedFiles::RStagedFiles(std::string directory, const UNPACKLIMITS& limits)
    : directory_(directory.empty() ? "." : std::move(directory)), limits_(limits)
{
}

RStagedFiles::~RStagedFiles()
{
    file_ = RFileHandle();
    removeStage();
}

std::string RStagedFiles::open()
{
    target_ = RFileHandle(::open(directory_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!target_) return "folder " + directory_ + " can't be opened";
    std::string name = directory_ + "/.NVQ_unpack_XXXXXX";
    if (!::mkdtemp(name.data())) return "folder " + directory_ + " can't be written to";
    stageName_ = name;
    stage_ = RFileHandle(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return stage_ ? std::string() : "folder " + directory_ + " can't be written to";
}

// A folder below the target. Without `make` only one that is there; errno tells why there is none.
RFileHandle RStagedFiles::openFolder(std::string_view path, bool make)
{
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    RFileHandle folder(::openat(target_.get(), ".", flags));
    for (std::size_t at = 0; folder && at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string part(path.substr(at, end - at));
        int next = ::openat(folder.get(), part.c_str(), flags);
        if (next < 0 && errno == ENOENT && make && ::mkdirat(folder.get(), part.c_str(), 0777) == 0) {
            madeFolders_.emplace_back(path.substr(0, end));
            next = ::openat(folder.get(), part.c_str(), flags);
        }
        folder = RFileHandle(next);
        at = end + 1;
    }
    return folder;
}

// Whether a file may come to stand under `path`.
std::string RStagedFiles::placeFault(const std::string& path)
{
    const RFileHandle folder = openFolder(folderOf(path), false);
    if (!folder) return errno == ENOENT ? std::string() : "something that is no folder stands in its way";
    struct stat there {};
    if (::fstatat(folder.get(), baseOf(path).c_str(), &there, AT_SYMLINK_NOFOLLOW) != 0) return {};
    if (!S_ISREG(there.st_mode)) return "something that is no ordinary file stands in its place";
    const bool isProtected = there.st_ino == protected_.st_ino && there.st_dev == protected_.st_dev;
    return isProtected && protected_.st_nlink > 0 ? "it would replace the archive itself" : std::string();
}

std::string RStagedFiles::begin(const std::string& path)
{
    file_ = RFileHandle();
    end_ = 0;
    if (std::string fault = placeFault(path); !fault.empty()) return fault;
    const auto [found, isNew] = numbers_.try_emplace(path, paths_.size());
    present_ = found->second;
    if (isNew)
        paths_.push_back(path);
    else
        ::unlinkat(stage_.get(), newName(present_).c_str(), 0);
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    file_ = RFileHandle(::openat(stage_.get(), newName(present_).c_str(), flags, 0666));
    return file_ ? std::string() : writeFault();
}

// Leaves some space to the others on the disk.
std::string RStagedFiles::spaceFault()
{
    struct statvfs disk {};
    if (::fstatvfs(stage_.get(), &disk) != 0) return {}; // nobody can tell; writing will
    const auto unit = static_cast<double>(disk.f_frsize);
    const double all = unit * static_cast<double>(disk.f_blocks);
    const double left = unit * static_cast<double>(disk.f_bavail);
    return left < std::min(static_cast<double>(limits_.freeBytes), all / 20) ? noSpace : std::string();
}

std::string RStagedFiles::growFault(std::int64_t newEnd)
{
    if (newEnd > limits_.memberBytes) {
        return common::format("it has more than %lld bytes when it is unpacked",
                              static_cast<long long>(limits_.memberBytes));
    }
    if (newEnd - end_ > limits_.totalBytes - total_) {
        return common::format("all together have more than %lld bytes when they are unpacked",
                              static_cast<long long>(limits_.totalBytes));
    }
    if (uncheckedBytes_ > 0 && uncheckedBytes_ < checkStep) return {};
    uncheckedBytes_ = 0;
    return spaceFault();
}

std::string RStagedFiles::write(std::int64_t offset, const void* bytes, std::size_t size)
{
    if (size == 0) return {};
    if (offset < end_ || size > static_cast<std::size_t>(INT64_MAX - offset))
        return "damaged: its parts overlap";
    const std::int64_t newEnd = offset + static_cast<std::int64_t>(size);
    if (std::string fault = growFault(newEnd); !fault.empty()) return fault;
    if (!writeAll(file_.get(), offset, static_cast<const char*>(bytes), size)) return writeFault();
    total_ += newEnd - end_;
    uncheckedBytes_ += static_cast<std::int64_t>(size);
    end_ = newEnd;
    return {};
}

std::string RStagedFiles::finish(std::int64_t size, const std::timespec* modified)
{
    if (size > end_) {
        if (std::string fault = growFault(size); !fault.empty()) return fault;
        if (::ftruncate(file_.get(), size) != 0) return writeFault();
        total_ += size - end_;
        end_ = size;
    }
    if (modified) {
        std::timespec times[2] = {*modified, *modified};
        times[0].tv_nsec = UTIME_NOW;
        static_cast<void>(::futimens(file_.get(), times)); // a file of the present time is as good
    }
    return file_.close() ? std::string() : writeFault();
}

RFileHandle RStagedFiles::reopen(std::size_t number) const
{
    return RFileHandle(::openat(stage_.get(), newName(number).c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
}

std::string RStagedFiles::place(std::size_t number)
{
    const std::string& path = paths_[number];
    if (std::string fault = placeFault(path); !fault.empty()) return fault;
    const RFileHandle folder = openFolder(folderOf(path), true);
    if (!folder) return "its folder can't be made";
    const std::string name = baseOf(path), fresh = newName(number), old = oldName(number);
    const bool replaces = ::renameat(folder.get(), name.c_str(), stage_.get(), old.c_str()) == 0;
    if (!replaces && errno != ENOENT) return "the old file can't be replaced";
    if (::renameat(stage_.get(), fresh.c_str(), folder.get(), name.c_str()) == 0) {
        placed_.push_back({number, replaces});
        return {};
    }
    const std::string fault = writeFault();
    if (replaces) ::renameat(stage_.get(), old.c_str(), folder.get(), name.c_str());
    return fault;
}

// Old files come back, new ones and their folders go.
void RStagedFiles::takeBack()
{
    for (auto it = placed_.rbegin(); it != placed_.rend(); ++it) {
        const std::string& path = paths_[it->number];
        const RFileHandle folder = openFolder(folderOf(path), false);
        if (!folder) continue;
        const std::string name = baseOf(path);
        if (it->replaced)
            ::renameat(stage_.get(), oldName(it->number).c_str(), folder.get(), name.c_str());
        else
            ::unlinkat(folder.get(), name.c_str(), 0);
    }
    for (auto it = madeFolders_.rbegin(); it != madeFolders_.rend(); ++it) {
        const RFileHandle folder = openFolder(folderOf(*it), false);
        if (folder) ::unlinkat(folder.get(), baseOf(*it).c_str(), AT_REMOVEDIR);
    }
}

std::string RStagedFiles::commit(std::vector<std::string>& placed)
{
    for (std::size_t number = 0; number < paths_.size(); ++number) {
        std::string fault = place(number);
        if (fault.empty()) continue;
        takeBack();
        return paths_[number] + ": " + fault;
    }
    placed = paths_;
    return {};
}

void RStagedFiles::removeStage()
{
    std::error_code ignored;
    if (!stageName_.empty()) std::filesystem::remove_all(stageName_, ignored);
}

} // namespace importing
