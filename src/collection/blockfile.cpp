#include "collection/blockfile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
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
    size_ = fileSize_ = status.st_size;
    return true;
}

void RBlockFile::close()
{
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = -1;
    held_.clear();
    size_ = fileSize_ = start_ = expected_ = 0;
    valid_ = 0;
}

bool RBlockFile::isAt(const std::string& path) const
{
    struct stat here {
    }, there{};
    return ::fstat(descriptor_, &here) == 0 && ::stat(path.c_str(), &there) == 0 &&
           here.st_dev == there.st_dev && here.st_ino == there.st_ino && here.st_size >= fileSize_;
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
        const std::size_t size = std::max(wanted, readAhead);
        buffer_ = std::make_unique_for_overwrite<std::byte[]>(size);
        capacity_ = size;
    }
    start_ = offset;
    valid_ = readSome(offset, {buffer_.get(), wanted});
    return valid_ < length || valid_ == 0 ? nullptr : buffer_.get();
}

bool RBlockFile::read(std::int64_t offset, std::span<std::byte> out)
{
    return readSome(offset, out) == out.size();
}

bool RBlockFile::write(std::int64_t offset, std::span<const std::byte> first,
                       std::span<const std::byte> second)
{
    if (!flush()) return false;
    if (!writeFile(offset, first, second)) {
        valid_ = 0; // part of it may have been written
        return false;
    }
    patch(offset, first);
    patch(offset + static_cast<std::int64_t>(first.size()), second);
    return true;
}

void RBlockFile::hold(std::int64_t offset, std::span<const std::byte> first,
                      std::span<const std::byte> second)
{
    const std::int64_t middle = offset + static_cast<std::int64_t>(first.size());
    held_.put(offset, first);
    held_.put(middle, second);
    patch(offset, first);
    patch(middle, second);
    size_ = std::max(size_, middle + static_cast<std::int64_t>(second.size()));
}

bool RBlockFile::flush()
{
    if (held_.isEmpty()) return true;
    const bool written = held_.forEach([this](std::int64_t offset, std::span<const std::byte> bytes) {
        return writeFile(offset, bytes, {});
    });
    if (written) held_.clear();
    return written;
}

void RBlockFile::drop()
{
    if (held_.isEmpty()) return;
    held_.clear();
    size_ = fileSize_;
    valid_ = 0;
}

bool RBlockFile::truncate(std::int64_t size)
{
    if (!flush()) return false;
    valid_ = 0;
    if (::ftruncate(descriptor_, size) != 0) return false;
    size_ = fileSize_ = size;
    return true;
}

bool RBlockFile::sync()
{
    if (!flush()) return false;
    // Not fdatasync: it may leave the time of the last change behind, by which an inventory is found out of
    // date.
    return ::fsync(descriptor_) == 0 || errno == EINVAL || errno == ENOTSUP;
}

// Keeps the read-ahead true.
void RBlockFile::patch(std::int64_t offset, std::span<const std::byte> bytes)
{
    const std::int64_t from = std::max(offset, start_);
    const std::int64_t to = std::min(offset + static_cast<std::int64_t>(bytes.size()),
                                     start_ + static_cast<std::int64_t>(valid_));
    if (from >= to) return;
    std::memcpy(buffer_.get() + (from - start_), bytes.data() + (from - offset),
                static_cast<std::size_t>(to - from));
}

bool RBlockFile::writeFile(std::int64_t offset, std::span<const std::byte> first,
                           std::span<const std::byte> second)
{
    const std::int64_t end = offset + static_cast<std::int64_t>(first.size() + second.size());
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
        fileSize_ = std::max(fileSize_, at);
        size_ = std::max(size_, at);
    }
    return true;
}

// Bytes read, as they will be when what is held back is written; less than asked for at the end of the file
// or after an error.
std::size_t RBlockFile::readSome(std::int64_t offset, std::span<std::byte> out) const
{
    const std::size_t got = offset < fileSize_ || held_.isEmpty() ? readFile(offset, out) : 0;
    return held_.isEmpty() ? got : held_.overlay(offset, out, got);
}

std::size_t RBlockFile::readFile(std::int64_t offset, std::span<std::byte> out) const
{
    std::size_t done = 0;
    while (done < out.size()) {
        const ssize_t got = ::pread(descriptor_, out.data() + done, out.size() - done,
                                    offset + static_cast<std::int64_t>(done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

} // namespace collection
