#include "collection/collectionlock.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr int tries = 100; // each one that fails means that another lock was just released

std::string lockPath(const std::string& basePath)
{
    return basePath + ".lck";
}

std::string userName()
{
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found)
        return found->pw_name;
    return common::format("user %ld", static_cast<long>(::geteuid()));
}

std::string ownName()
{
    std::array<char, 256> host{};
    if (::gethostname(host.data(), host.size() - 1) != 0) host[0] = '\0';
    return common::format("%s@%s, process %ld", userName().c_str(), host.data(),
                          static_cast<long>(::getpid()));
}

// The file of another user may be locked too, though not written.
int openLockFile(const std::string& file)
{
    constexpr int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | flags, 0666);
    return descriptor >= 0 ? descriptor : ::open(file.c_str(), O_RDONLY | flags);
}

bool isRegularFile(int descriptor)
{
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

// True if the file still stands under its name: the one who held the lock before may have removed it.
bool isAt(int descriptor, const std::string& file)
{
    struct stat here {
    }, there{};
    return ::fstat(descriptor, &here) == 0 && ::stat(file.c_str(), &there) == 0 &&
           here.st_dev == there.st_dev && here.st_ino == there.st_ino;
}

enum class Locking { held, elsewhere, unknown };

Locking tryLock(int descriptor)
{
    int result = 0;
    do {
        result = ::flock(descriptor, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0) return Locking::held;
    return errno == EWOULDBLOCK ? Locking::elsewhere : Locking::unknown;
}

std::string contentOf(int descriptor)
{
    std::array<char, 512> buffer{};
    const ssize_t got = ::pread(descriptor, buffer.data(), buffer.size(), 0);
    return std::string(common::trimBlanks({buffer.data(), static_cast<std::size_t>(got > 0 ? got : 0)}));
}

// Only for the eyes of whoever meets the lock.
void sign(int descriptor)
{
    const std::string text = ownName() + "\n";
    if (::ftruncate(descriptor, 0) == 0)
        static_cast<void>(::pwrite(descriptor, text.data(), text.size(), 0) < 0);
}

} // namespace

bool RCollectionLock::acquire(const std::string& basePath, std::string* holder)
{
    release();
    const std::string file = lockPath(basePath);
    for (int i = 0; i < tries; ++i) {
        const int descriptor = openLockFile(file);
        if (descriptor < 0) return !common::existsAtAll(file); // somebody's mark that can't be tried is held
        const Locking locking = isRegularFile(descriptor) ? tryLock(descriptor) : Locking::unknown;
        if (locking == Locking::held && isAt(descriptor, file)) {
            sign(descriptor);
            descriptor_ = descriptor;
            file_ = file;
            return true;
        }
        if (locking == Locking::elsewhere && holder) *holder = contentOf(descriptor);
        ::close(descriptor);
        if (locking == Locking::unknown) return true;
        if (locking == Locking::elsewhere) return false;
    }
    return false;
}

// The file goes before the lock does: who has opened it meanwhile finds that it is no longer there.
void RCollectionLock::release()
{
    if (descriptor_ < 0) return;
    if (isAt(descriptor_, file_)) ::unlink(file_.c_str());
    ::close(descriptor_);
    descriptor_ = -1;
    file_.clear();
}

} // namespace collection
