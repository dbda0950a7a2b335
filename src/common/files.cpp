#include "common/files.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/text.h"

namespace common {
namespace {

namespace fs = std::filesystem;

// A name beside `path` that no other process uses.
std::string temporaryName(const std::string& path)
{
    static unsigned counter = 0;
    return format("%s.%ld.%u.tmp", path.c_str(), static_cast<long>(::getpid()), ++counter);
}

// Writes through a link to the file it stands for, so that the link survives the rename.
std::string realTarget(const std::string& path)
{
    std::error_code error;
    if (!fs::is_symlink(path, error)) return path;
    const fs::path target = fs::weakly_canonical(path, error);
    return error ? path : target.string();
}

// A pipe that stands under the name of a file would make the open wait for its other end, perhaps for ever.
// Those of /dev are the program's own, such as a command file that comes from a shell.
bool isForeignPipe(const std::string& path)
{
    std::error_code error;
    return !path.starts_with("/dev/") && fs::is_fifo(path, error);
}

// Nothing stands there, or an ordinary file: a device, a pipe or a folder is never taken away for a file.
bool isReplaceable(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return !fs::exists(status) || fs::is_regular_file(status);
}

bool syncToDisk(std::FILE* file)
{
    return ::fsync(::fileno(file)) == 0 || errno == EINVAL || errno == ENOTSUP;
}

} // namespace

FilePtr openFile(const std::string& path, const char* mode)
{
    if (isForeignPipe(path)) return {};
    FilePtr file(std::fopen(path.c_str(), mode));
    std::error_code error;
    if (file && fs::is_directory(path, error)) file.reset(); // fopen reads directories
    return file;
}

bool fileExists(const std::string& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool existsAtAll(const std::string& path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

bool directoryExists(const std::string& path)
{
    std::error_code error;
    return fs::is_directory(path.empty() ? "." : path, error);
}

bool isWritable(const std::string& path)
{
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

bool directoryIsWritable(const std::string& directory)
{
    // A file without a name can't be left behind; not every file system knows such.
    const int nameless = ::open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (nameless >= 0) {
        ::close(nameless);
        return true;
    }
    std::string probe = temporaryName((fs::path(directory) / "write_test").string());
    if (!openFile(probe, "wbx")) return false;
    return ::unlink(probe.c_str()) == 0;
}

std::int64_t fileSize(std::FILE* file)
{
    struct stat status {};
    if (::fstat(::fileno(file), &status) != 0) return -1;
    return status.st_size;
}

std::int64_t fileSize(const std::string& path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return -1;
    return status.st_size;
}

std::optional<std::string> readFile(const std::string& path, std::int64_t limit)
{
    const FilePtr file = openFile(path, "rb");
    if (!file) return std::nullopt;
    std::string content;
    char buffer[65536];
    for (;;) {
        const std::size_t got = std::fread(buffer, 1, sizeof buffer, file.get());
        content.append(buffer, got);
        if (static_cast<std::int64_t>(content.size()) > limit) return std::nullopt;
        if (got < sizeof buffer) break;
    }
    if (std::ferror(file.get())) return std::nullopt;
    return content;
}

bool copyFile(const std::string& source, const std::string& target)
{
    const FilePtr in = openFile(source, "rb");
    if (!in) return false;
    RReplacementFile out(target);
    if (!out.stream()) return false;
    char buffer[65536];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, in.get())) > 0) {
        if (std::fwrite(buffer, 1, got, out.stream()) != got) return false;
    }
    return !std::ferror(in.get()) && out.commit();
}

RReplacementFile::RReplacementFile(std::string path)
    : path_(realTarget(path)), temporary_(temporaryName(path_)),
      file_(isReplaceable(path) ? openFile(temporary_, "wbx") : FilePtr())
{
}

RReplacementFile::~RReplacementFile()
{
    if (!file_) return;
    file_.reset();
    ::unlink(temporary_.c_str());
}

bool RReplacementFile::prepare()
{
    if (!file_) return false;
    std::FILE* const file = file_.get();
    prepared_ = std::fflush(file) == 0 && !std::ferror(file) && syncToDisk(file);
    if (!prepared_) return false;
    struct stat old {}; // the new file keeps the rights of the old one
    if (::stat(path_.c_str(), &old) == 0) ::fchmod(::fileno(file), old.st_mode & 07777);
    return true;
}

bool RReplacementFile::commit()
{
    if (!file_) return false;
    const bool written = prepared_ || prepare();
    file_.reset();
    if (written && std::rename(temporary_.c_str(), path_.c_str()) == 0) return true;
    ::unlink(temporary_.c_str());
    return false;
}

bool writeFile(const std::string& path, std::string_view bytes)
{
    RReplacementFile file(path);
    if (!file.stream()) return false;
    // An empty text may have no address, which fwrite must not be given.
    const bool written =
        bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file.stream()) == bytes.size();
    return written && file.commit();
}

bool syncDirectory(const std::string& directory)
{
    const int descriptor =
        ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return errno == EACCES; // one that may be written to and not read
    const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    ::close(descriptor);
    return synced;
}

PATHPARTS splitPath(std::string_view path)
{
    PATHPARTS parts;
    const std::size_t slash = path.rfind('/');
    if (slash != std::string_view::npos) {
        parts.directory = path.substr(0, slash + 1);
        path.remove_prefix(slash + 1);
    }
    const std::string_view base = cutExtension(path);
    parts.baseName = base;
    parts.extension = path.substr(base.size());
    return parts;
}

std::string absolutePath(const std::string& path)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    return error ? path : absolute.lexically_normal().string();
}

std::string makeRelative(const std::string& path, const std::string& directory)
{
    if (path.empty() || directory.empty()) return path;
    const std::string relative =
        fs::path(absolutePath(path)).lexically_relative(absolutePath(directory)).string();
    const bool farAway = relative.empty() || relative.starts_with("../../");
    return farAway ? path : relative;
}

std::string makeAbsolute(const std::string& path, const std::string& directory)
{
    if (path.empty() || fs::path(path).is_absolute()) return path;
    return (fs::path(directory) / path).lexically_normal().string();
}

int deleteMatching(const std::string& directory, const std::string& wildcard, double ageDays)
{
    std::error_code error;
    int deleted = 0;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        const std::string name = it->path().filename().string();
        std::error_code ignored;
        if (::fnmatch(wildcard.c_str(), name.c_str(), 0) != 0 || !it->is_regular_file(ignored)) continue;
        if (ageDays >= 0) {
            const auto age = fs::file_time_type::clock::now() - it->last_write_time(ignored);
            if (std::chrono::duration<double>(age).count() <= ageDays * 86400.0) continue;
        }
        if (fs::remove(it->path(), ignored)) ++deleted;
    }
    return deleted;
}

} // namespace common
