#pragma once

// The functions that stand in the place of the system's library. A definition in the program comes before the
// library's, for all that is linked into the program itself.

#include <cerrno>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include "filecalls.h"

namespace testing_support {
namespace {

std::function<int(const FILECALL&)>& hook()
{
    static std::function<int(const FILECALL&)> function;
    return function;
}

bool busy = false; // the hook's own calls are let through

int ask(const FILECALL& call)
{
    if (!hook() || busy) return 0;
    busy = true;
    const int error = hook()(call);
    busy = false;
    return error;
}

template <typename Result>
Result fail(int error)
{
    errno = error;
    return static_cast<Result>(-1);
}

bool isWatched()
{
    return hook() && !busy;
}

} // namespace

RFileCalls::RFileCalls(std::function<int(const FILECALL&)> before) : outer_(std::move(hook()))
{
    hook() = std::move(before);
}

RFileCalls::~RFileCalls()
{
    hook() = std::move(outer_);
}

} // namespace testing_support

extern "C" {

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset)
{
    using namespace testing_support;
    if (const int error = ask({"pwrite", descriptor}); error != 0) return fail<ssize_t>(error);
    if (isWatched() && size > 1) {
        static_cast<void>(::syscall(SYS_pwrite64, descriptor, bytes, size / 2, offset));
        static_cast<void>(ask({"pwrite", descriptor, true}));
    }
    return ::syscall(SYS_pwrite64, descriptor, bytes, size, offset);
}

ssize_t pwritev(int descriptor, const struct iovec* pieces, int count, off_t offset)
{
    using namespace testing_support;
    if (const int error = ask({"pwritev", descriptor}); error != 0) return fail<ssize_t>(error);
    if (isWatched() && pieces[0].iov_len > 1) {
        static_cast<void>(
            ::syscall(SYS_pwrite64, descriptor, pieces[0].iov_base, pieces[0].iov_len / 2, offset));
        static_cast<void>(ask({"pwritev", descriptor, true}));
    }
    return ::syscall(SYS_pwritev, descriptor, pieces, count, offset, 0);
}

int rename(const char* from, const char* to) noexcept
{
    using namespace testing_support;
    if (const int error = ask({"rename"}); error != 0) return fail<int>(error);
    return static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    using namespace testing_support;
    if (const int error = ask({"renameat2"}); error != 0) return fail<int>(error);
    return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int link(const char* from, const char* to) noexcept
{
    using namespace testing_support;
    if (const int error = ask({"link"}); error != 0) return fail<int>(error);
    return static_cast<int>(::syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int unlink(const char* path) noexcept
{
    using namespace testing_support;
    if (const int error = ask({"unlink"}); error != 0) return fail<int>(error);
    return static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

int ftruncate(int descriptor, off_t size) noexcept
{
    using namespace testing_support;
    if (const int error = ask({"ftruncate", descriptor}); error != 0) return fail<int>(error);
    return static_cast<int>(::syscall(SYS_ftruncate, descriptor, size));
}

int truncate(const char* path, off_t size) noexcept
{
    using namespace testing_support;
    if (const int error = ask({"truncate"}); error != 0) return fail<int>(error);
    return static_cast<int>(::syscall(SYS_truncate, path, size));
}

int fsync(int descriptor)
{
    using namespace testing_support;
    if (const int error = ask({"fsync", descriptor}); error != 0) return fail<int>(error);
    return isWatched() ? 0 : static_cast<int>(::syscall(SYS_fsync, descriptor));
}

int fdatasync(int descriptor)
{
    using namespace testing_support;
    if (const int error = ask({"fdatasync", descriptor}); error != 0) return fail<int>(error);
    return isWatched() ? 0 : static_cast<int>(::syscall(SYS_fdatasync, descriptor));
}

} // extern "C"
