#include "collection/blockfile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace collection {
namespace {

constexpr std::size_t readAhead = 256 * 1024;

// O_NONBLOCK: a pipe that stands under the name must not make the open wait.
int flagsFor(RBlockFile::Mode mode)
{
    constexpr int common = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    switch (mode) {
    case RBlockFile::Mode::read:
        return common | O_RDONLY;
    case RBlockFile::Mode::update:
        return common | O_RDWR;
    case RBlockFile::Mode::create:
        return common | O_RDWR | O_CREAT | O_TRUNC;
    }
    return common | O_RDONLY;
}

} // namespace

bool RBlockFile::open(const std::string& path, Mode mode)
{
    close();
    descriptor_ = ::open(path.c_str(), flagsFor(mode), 0666);
    struct stat status {};
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
        close();
        return false;
    }
    size_ = status.st_size;
    return true;
}

void RBlockFile::close()
{
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = -1;
    size_ = start_ = expected_ = 0;
    valid_ = 0;
}

const std::byte* RBlockFile::view(std::int64_t offset, std::size_t length)
{
    const std::int64_t end = offset + static_cast<std::int64_t>(length);
    const bool goesOn = offset >= expected_ && offset - expected_ <= static_cast<std::int64_t>(readAhead);
    expected_ = end;
    if (offset >= start_ && end <= start_ + static_cast<std::int64_t>(valid_)) {
        return buffer_.get() + (offset - start_);
    }
    const std::size_t wanted = goesOn ? std::max(length, readAhead) : length;
    if (capacity_ < wanted) {
        capacity_ = std::max(wanted, readAhead);
        buffer_ = std::make_unique_for_overwrite<std::byte[]>(capacity_);
    }
    start_ = offset;
    valid_ = 0;
    const std::int64_t got = readSome(offset, buffer_.get(), wanted);
    if (got > 0) valid_ = static_cast<std::size_t>(got);
    return valid_ < length || valid_ == 0 ? nullptr : buffer_.get();
}

bool RBlockFile::read(std::int64_t offset, std::span<std::byte> out)
{
    return readSome(offset, out.data(), out.size()) == static_cast<std::int64_t>(out.size());
}

bool RBlockFile::write(std::int64_t offset, std::span<const std::byte> first,
                       std::span<const std::byte> second)
{
    const std::int64_t end = offset + static_cast<std::int64_t>(first.size() + second.size());
    if (offset < start_ + static_cast<std::int64_t>(valid_) && end > start_) valid_ = 0;
    std::int64_t at = offset;
    while (at < end) {
        const auto done = static_cast<std::size_t>(at - offset);
        const std::span<const std::byte> rest1 = first.subspan(std::min(done, first.size()));
        const std::span<const std::byte> rest2 =
            second.subspan(done > first.size() ? done - first.size() : 0);
        // writev takes its sources as pointers to non-const
        const iovec pieces[2] = {{const_cast<std::byte*>(rest1.data()), rest1.size()},
                                 {const_cast<std::byte*>(rest2.data()), rest2.size()}};
        const ssize_t written = ::pwritev(descriptor_, pieces, 2, at);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        at += written;
        size_ = std::max(size_, at);
    }
    return true;
}

bool RBlockFile::truncate(std::int64_t size)
{
    valid_ = 0;
    if (::ftruncate(descriptor_, size) != 0) return false;
    size_ = size;
    return true;
}

bool RBlockFile::sync()
{
    return ::fdatasync(descriptor_) == 0 || errno == EINVAL || errno == ENOTSUP;
}

// Bytes read, less than asked for only at the end of the file; -1 for an error.
std::int64_t RBlockFile::readSome(std::int64_t offset, std::byte* out, std::size_t length) const
{
    std::size_t done = 0;
    while (done < length) {
        const ssize_t got =
            ::pread(descriptor_, out + done, length - done, offset + static_cast<std::int64_t>(done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<std::int64_t>(done);
}

} // namespace collection
