#include "disk.h"

#include <algorithm>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>

#include "common/files.h"
#include "folder.h"

namespace reliability {
namespace {

constexpr std::size_t sector = 512;

timespec now()
{
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return time;
}

std::size_t between(std::size_t low, std::size_t high, std::mt19937& random)
{
    // The ends are the likeliest states, and the most telling ones.
    switch (random() % 4) {
    case 0:
        return low;
    case 1:
        return high;
    default:
        return std::uniform_int_distribution<std::size_t>(low, high)(random);
    }
}

} // namespace

RDisk::RDisk(const std::string& folder) : folder_(folder)
{
    for (const std::string& name : filesOf(folder)) {
        struct stat status {};
        ::stat((folder + name).c_str(), &status);
        first_[name] = status.st_ino;
        STORED& file = files_[status.st_ino];
        file.versions.push_back({0, common::readFile(folder + name).value_or(""), status.st_mtim});
        file.flushes.push_back({0, true});
        file.flushedSize = file.versions.back().bytes.size();
    }
}

std::string RDisk::nameOf(const std::string& path) const
{
    return path.starts_with(folder_) ? path.substr(folder_.size()) : std::string();
}

void RDisk::change(std::uint64_t file, std::string bytes)
{
    files_[file].versions.push_back({calls_, std::move(bytes), now()});
}

// fdatasync leaves the time alone as long as the size is the one that the disk knows.
void RDisk::flush(STORED& file, bool wholly)
{
    if (file.versions.empty()) return;
    const std::size_t size = file.versions.back().bytes.size();
    file.flushes.push_back({calls_, wholly || size != file.flushedSize});
    file.flushedSize = size;
}

bool RDisk::add(const FILECALL& call)
{
    ++calls_;
    if (call.result < 0) return true;
    switch (call.kind) {
    case FILECALL::write: {
        std::string bytes = files_[call.file].versions.empty() ? "" : files_[call.file].versions.back().bytes;
        const auto offset = static_cast<std::size_t>(call.offset);
        bytes.resize(std::max(bytes.size(), offset + call.bytes.size()));
        bytes.replace(offset, call.bytes.size(), call.bytes);
        change(call.file, std::move(bytes));
        return true;
    }
    case FILECALL::cut: {
        std::string bytes = files_[call.file].versions.empty() ? "" : files_[call.file].versions.back().bytes;
        bytes.resize(static_cast<std::size_t>(call.length));
        change(call.file, std::move(bytes));
        return true;
    }
    case FILECALL::make:
        if (call.file == 0) {
            files_[call.made] = {}; // a number may be used again
            change(call.made, {});
            namings_.push_back({calls_, nameOf(call.path), {}, call.made});
        } else if (call.empties) {
            change(call.file, {});
        }
        return true;
    case FILECALL::rename:
        namings_.push_back({calls_, nameOf(call.path), nameOf(call.target), call.file});
        return true;
    case FILECALL::remove:
        namings_.push_back({calls_, nameOf(call.path), {}, 0});
        return true;
    case FILECALL::sync:
        if (nameOf(call.path + "/").empty() && (call.path + "/").starts_with(folder_)) {
            folderFlushes_.push_back(calls_);
        } else {
            flush(files_[call.file], call.name == "fsync");
        }
        return true;
    case FILECALL::unknown:
        break;
    }
    return false;
}

RDisk::Names RDisk::namesAfter(int calls, Loss loss, std::mt19937& random) const
{
    int safe = 0;
    for (const int flushed : folderFlushes_) {
        if (flushed <= calls) safe = flushed;
    }
    const auto end = [this](int call) {
        return static_cast<std::size_t>(std::count_if(namings_.begin(), namings_.end(),
                                                      [call](const NAMING& n) { return n.call <= call; }));
    };
    std::size_t count = end(calls);
    if (loss == Loss::everything || loss == Loss::namesOnly) count = end(safe);
    if (loss == Loss::random) count = between(end(safe), end(calls), random);
    Names names = first_;
    for (std::size_t i = 0; i < count; ++i) {
        const NAMING& naming = namings_[i];
        names.erase(naming.name);
        if (naming.file != 0) names[naming.target.empty() ? naming.name : naming.target] = naming.file;
    }
    return names;
}

void RDisk::restoreFile(const STORED& file, int calls, Loss loss, std::mt19937& random,
                        const std::string& path) const
{
    const auto versionAt = [&file](int call) {
        std::size_t version = 0;
        for (std::size_t i = 0; i < file.versions.size(); ++i) {
            if (file.versions[i].call <= call) version = i;
        }
        return version;
    };
    std::size_t safe = 0, safeSize = 0;
    for (const FLUSH& flushed : file.flushes) {
        if (flushed.call > calls) continue;
        safe = versionAt(flushed.call);
        if (flushed.withTime) safeSize = safe;
    }
    const std::size_t last = versionAt(calls);
    const auto choose = [&](std::size_t low) {
        if (loss == Loss::everything || loss == Loss::bytesOnly) return low;
        return loss == Loss::random ? between(low, last, random) : last;
    };
    // A size that has changed is flushed with the bytes.
    const VERSION& kept = file.versions[choose(safeSize)];
    std::string bytes = kept.bytes;
    for (std::size_t begin = 0; begin < bytes.size(); begin += sector) {
        const std::string& from = file.versions[choose(safe)].bytes;
        const std::size_t length = std::min(sector, bytes.size() - begin);
        std::string part = begin < from.size() ? from.substr(begin, length) : std::string();
        part.resize(length);
        bytes.replace(begin, length, part);
    }
    static_cast<void>(common::writeFile(path, bytes));
    const timespec times[2] = {kept.time, kept.time};
    ::utimensat(AT_FDCWD, path.c_str(), times, 0);
}

void RDisk::restore(int calls, Loss loss, std::mt19937& random, const std::string& to) const
{
    std::filesystem::remove_all(to);
    std::filesystem::create_directories(to);
    for (const auto& [name, file] : namesAfter(calls, loss, random)) {
        const auto stored = files_.find(file);
        if (stored != files_.end() && !stored->second.versions.empty())
            restoreFile(stored->second, calls, loss, random, to + name);
    }
}

} // namespace reliability
