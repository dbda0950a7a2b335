#include "tracedchild.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace reliability {
namespace {

constexpr int notPermitted = 121; // exit code of a child that may not be traced

// Where the arguments of a call stand that tell which file it changes, and how.
enum class Shape {
    descriptor,      // first argument
    descriptorOut,   // third argument (copying between two descriptors)
    descriptorFirst, // first argument is the target of a copy
    path,            // first argument
    pathAt,          // first and second
    twoPaths,        // first and second are paths
    twoPathsAt       // two pairs
};

struct ROW {
    long number;
    const char* name;
    FILECALL::Kind kind;
    Shape shape;
};

const auto rows = std::to_array<ROW>({
    {SYS_write, "write", FILECALL::write, Shape::descriptor},
    {SYS_pwrite64, "pwrite64", FILECALL::write, Shape::descriptor},
    {SYS_writev, "writev", FILECALL::write, Shape::descriptor},
    {SYS_pwritev, "pwritev", FILECALL::write, Shape::descriptor},
    {SYS_pwritev2, "pwritev2", FILECALL::write, Shape::descriptor},
    {SYS_copy_file_range, "copy_file_range", FILECALL::write, Shape::descriptorOut},
    {SYS_sendfile, "sendfile", FILECALL::write, Shape::descriptorFirst},
    {SYS_ftruncate, "ftruncate", FILECALL::cut, Shape::descriptor},
    {SYS_truncate, "truncate", FILECALL::cut, Shape::path},
    {SYS_fsync, "fsync", FILECALL::sync, Shape::descriptor},
    {SYS_fdatasync, "fdatasync", FILECALL::sync, Shape::descriptor},
    {SYS_openat, "openat", FILECALL::make, Shape::pathAt},
    {SYS_renameat, "renameat", FILECALL::rename, Shape::twoPathsAt},
    {SYS_renameat2, "renameat2", FILECALL::rename, Shape::twoPathsAt},
    {SYS_unlinkat, "unlinkat", FILECALL::remove, Shape::pathAt},
    {SYS_fallocate, "fallocate", FILECALL::unknown, Shape::descriptor},
    {SYS_linkat, "linkat", FILECALL::unknown, Shape::twoPathsAt},
    {SYS_symlinkat, "symlinkat", FILECALL::unknown, Shape::twoPathsAt},
    {SYS_mkdirat, "mkdirat", FILECALL::unknown, Shape::pathAt},
#ifdef SYS_open
    {SYS_open, "open", FILECALL::make, Shape::path},
    {SYS_creat, "creat", FILECALL::make, Shape::path},
    {SYS_rename, "rename", FILECALL::rename, Shape::twoPaths},
    {SYS_unlink, "unlink", FILECALL::remove, Shape::path},
    {SYS_link, "link", FILECALL::unknown, Shape::twoPaths},
    {SYS_symlink, "symlink", FILECALL::unknown, Shape::twoPaths},
    {SYS_mkdir, "mkdir", FILECALL::unknown, Shape::path},
    {SYS_rmdir, "rmdir", FILECALL::unknown, Shape::path},
#endif
});

std::uint64_t fileNumber(const std::string& path, bool followLink)
{
    struct stat status {};
    const int result = followLink ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status);
    return result == 0 ? status.st_ino : 0;
}

std::string linkTarget(const std::string& link)
{
    std::error_code error;
    const auto target = std::filesystem::read_symlink(link, error);
    return error ? std::string() : target.string();
}

std::string processFile(pid_t pid, const std::string& name)
{
    return "/proc/" + std::to_string(pid) + "/" + name;
}

[[noreturn]] void beChild(const std::function<int()>& work)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(notPermitted);
    ::raise(SIGSTOP);
    const int result = work();
    ::_exit(result);
}

} // namespace

RTracedChild::RTracedChild(std::string folder, const std::function<int()>& work) : folder_(std::move(folder))
{
    std::fflush(nullptr);
    pid_ = ::fork();
    if (pid_ == 0) beChild(work);
    int status = 0;
    if (pid_ < 0 || ::waitpid(pid_, &status, 0) != pid_ || !WIFSTOPPED(status)) return;
    running_ = true;
    constexpr long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL;
    traced_ = ::ptrace(PTRACE_SETOPTIONS, pid_, nullptr, options) == 0;
}

RTracedChild::~RTracedChild()
{
    kill();
}

void RTracedChild::kill()
{
    if (!running_) return;
    ::kill(pid_, SIGKILL);
    int status = 0;
    ::waitpid(pid_, &status, 0);
    running_ = false;
}

// Runs to the next stop at a call, or to the end.
bool RTracedChild::resume(int request)
{
    for (int signal = 0; running_;) {
        if (::ptrace(static_cast<__ptrace_request>(request), pid_, nullptr, signal) != 0) break;
        int status = 0;
        if (::waitpid(pid_, &status, 0) != pid_) break;
        if (WIFEXITED(status) || WIFSIGNALED(status)) {
            running_ = false;
            exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            break;
        }
        const int stop = WSTOPSIG(status);
        if (stop == (SIGTRAP | 0x80)) return true;
        signal = stop == SIGTRAP ? 0 : stop;
    }
    return false;
}

bool RTracedChild::toNextCall()
{
    if (insideCall_ && !finishCall()) return false;
    while (resume(PTRACE_SYSCALL)) {
        if (describeCall()) {
            insideCall_ = true;
            return true;
        }
        if (!resume(PTRACE_SYSCALL)) return false; // the exit of a call that is of no concern
    }
    return false;
}

bool RTracedChild::finishCall()
{
    insideCall_ = false;
    if (!resume(PTRACE_SYSCALL)) return false;
    __ptrace_syscall_info info{};
    if (::ptrace(PTRACE_GET_SYSCALL_INFO, pid_, sizeof info, &info) <= 0) return false;
    call_.result = info.exit.rval;
    if (call_.kind == FILECALL::write) readWritten();
    if (call_.kind == FILECALL::make) call_.made = fileNumber(call_.path, true);
    return true;
}

int RTracedChild::runToEnd()
{
    while (resume(PTRACE_CONT)) {
    }
    return exitCode_;
}

bool RTracedChild::canRefuse()
{
#ifdef __x86_64__
    return true;
#else
    return false;
#endif
}

bool RTracedChild::refuseCall(int error)
{
#ifdef __x86_64__
    user_regs_struct registers{};
    if (::ptrace(PTRACE_GETREGS, pid_, nullptr, &registers) != 0) return false;
    registers.orig_rax = static_cast<unsigned long long>(-1); // no call
    if (::ptrace(PTRACE_SETREGS, pid_, nullptr, &registers) != 0 || !finishCall()) return false;
    registers.rax = static_cast<unsigned long long>(-static_cast<long long>(error));
    call_.result = -error;
    return ::ptrace(PTRACE_SETREGS, pid_, nullptr, &registers) == 0;
#else
    static_cast<void>(error);
    return false;
#endif
}

std::string RTracedChild::pathOf(int descriptor) const
{
    std::string path = linkTarget(processFile(pid_, "fd/" + std::to_string(descriptor)));
    constexpr std::string_view gone = " (deleted)";
    if (path.ends_with(gone)) path.resize(path.size() - gone.size());
    return path;
}

std::string RTracedChild::text(std::uint64_t address) const
{
    std::string result;
    char buffer[256];
    while (result.size() < 8192) {
        // Never across a page's end, behind which there may be nothing.
        const std::size_t length = std::min(sizeof buffer, 4096 - static_cast<std::size_t>(address % 4096));
        const iovec here{buffer, length}, there{reinterpret_cast<void*>(address), length};
        const ssize_t got = ::process_vm_readv(pid_, &here, 1, &there, 1, 0);
        if (got <= 0) break;
        const char* const begin = buffer;
        const char* const end = std::find(begin, begin + got, '\0');
        result.append(begin, end);
        if (end != begin + got) break;
        address += static_cast<std::uint64_t>(got);
    }
    return result;
}

std::string RTracedChild::pathAt(std::uint64_t descriptor, std::uint64_t address) const
{
    const std::filesystem::path path = text(address);
    if (path.is_absolute()) return path.lexically_normal().string();
    const int number = static_cast<int>(descriptor);
    const std::string base = number == AT_FDCWD ? linkTarget(processFile(pid_, "cwd")) : pathOf(number);
    return (base / path).lexically_normal().string();
}

std::int64_t RTracedChild::lengthOf(std::uint64_t pieces, std::uint64_t count) const
{
    std::vector<iovec> list(std::min<std::uint64_t>(count, 64));
    const iovec here{list.data(), list.size() * sizeof(iovec)};
    const iovec there{reinterpret_cast<void*>(pieces), here.iov_len};
    if (::process_vm_readv(pid_, &here, 1, &there, 1, 0) < 0) return 0;
    std::int64_t length = 0;
    for (const iovec& piece : list) length += static_cast<std::int64_t>(piece.iov_len);
    return length;
}

// Where a write without a place of its own will begin.
std::int64_t RTracedChild::position(int descriptor) const
{
    std::ifstream info(processFile(pid_, "fdinfo/" + std::to_string(descriptor)));
    std::string key, value;
    std::int64_t position = 0;
    while (info >> key >> value) {
        if (key == "pos:") position = std::strtoll(value.c_str(), nullptr, 10);
        if (key == "flags:" && (std::strtol(value.c_str(), nullptr, 8) & O_APPEND) != 0) {
            struct stat status {};
            const std::string file = processFile(pid_, "fd/" + std::to_string(descriptor));
            if (::stat(file.c_str(), &status) == 0) return status.st_size;
        }
    }
    return position;
}

// Looks at the call that the child is about to make: true if it changes files of the folder.
bool RTracedChild::describeCall()
{
    __ptrace_syscall_info info{};
    if (::ptrace(PTRACE_GET_SYSCALL_INFO, pid_, sizeof info, &info) <= 0) return false;
    const auto number = static_cast<long>(info.entry.nr);
    const auto row =
        std::find_if(rows.begin(), rows.end(), [number](const ROW& r) { return r.number == number; });
    if (row == rows.end()) return false;
    const auto& a = info.entry.args;
    call_ = {.kind = row->kind, .name = row->name, .path = {}, .target = {}, .bytes = {}};
    descriptor_ = -1;
    switch (row->shape) {
    case Shape::descriptor:
    case Shape::descriptorFirst:
        descriptor_ = static_cast<int>(a[0]);
        break;
    case Shape::descriptorOut:
        descriptor_ = static_cast<int>(a[2]);
        break;
    case Shape::path:
        call_.path = pathAt(static_cast<std::uint64_t>(AT_FDCWD), a[0]);
        break;
    case Shape::pathAt:
        call_.path = pathAt(a[0], a[1]);
        break;
    case Shape::twoPaths:
        call_.path = pathAt(static_cast<std::uint64_t>(AT_FDCWD), a[0]);
        call_.target = pathAt(static_cast<std::uint64_t>(AT_FDCWD), a[1]);
        break;
    case Shape::twoPathsAt:
        call_.path = pathAt(a[0], a[1]);
        call_.target = pathAt(a[2], a[3]);
        break;
    }
    if (descriptor_ >= 0) {
        call_.path = pathOf(descriptor_);
        call_.file = fileNumber(processFile(pid_, "fd/" + std::to_string(descriptor_)), true);
    } else {
        call_.file = fileNumber(call_.path, false);
    }
    if (!(call_.path + "/").starts_with(folder_)) return false;
    if (row->kind == FILECALL::make) {
        int flags = static_cast<int>(number == SYS_openat ? a[2] : a[1]);
#ifdef SYS_creat
        if (number == SYS_creat) flags = O_CREAT | O_TRUNC;
#endif
        call_.empties = (flags & O_TRUNC) != 0;
        return (flags & (O_CREAT | O_TRUNC)) != 0;
    }
    if (row->kind == FILECALL::cut) call_.length = static_cast<std::int64_t>(a[1]);
    if (row->kind != FILECALL::write) return true;
    const bool isVector = number == SYS_writev || number == SYS_pwritev || number == SYS_pwritev2;
    const bool hasPlace = number == SYS_pwrite64 || number == SYS_pwritev || number == SYS_pwritev2;
    call_.length = isVector ? lengthOf(a[1], a[2]) : static_cast<std::int64_t>(a[2]);
    call_.offset = hasPlace ? static_cast<std::int64_t>(a[3]) : position(descriptor_);
    if (number == SYS_copy_file_range) {
        call_.length = static_cast<std::int64_t>(a[4]);
        if (a[3] != 0) call_.kind = FILECALL::unknown;
    }
    if (number == SYS_sendfile) call_.length = static_cast<std::int64_t>(a[3]);
    return true;
}

void RTracedChild::readWritten()
{
    call_.bytes.clear();
    if (call_.result <= 0) return;
    const std::string file = processFile(pid_, "fd/" + std::to_string(descriptor_));
    const int in = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0) return;
    call_.bytes.resize(static_cast<std::size_t>(call_.result));
    const ssize_t got = ::pread(in, call_.bytes.data(), call_.bytes.size(), call_.offset);
    if (got != static_cast<ssize_t>(call_.bytes.size())) call_.kind = FILECALL::unknown;
    ::close(in);
}

} // namespace reliability
