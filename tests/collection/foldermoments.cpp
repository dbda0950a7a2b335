#include "foldermoments.h"

#include <filesystem>
#include <sys/stat.h>

#include "common/files.h"
#include "filecalls_impl.h"

namespace testing_support {
namespace {

namespace fs = std::filesystem;

// Its number, and the time when it was made: numbers are given anew.
std::uint64_t inodeOf(const std::string& path)
{
    struct statx status {};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_INO | STATX_BTIME, &status) != 0) return 0;
    const auto time =
        static_cast<std::uint64_t>(status.stx_btime.tv_sec) * 1000000000U + status.stx_btime.tv_nsec;
    return status.stx_ino * 0x9E3779B97F4A7C15U ^ time;
}

std::map<std::string, std::uint64_t> namesIn(const std::string& path)
{
    std::map<std::string, std::uint64_t> names;
    for (const auto& entry : fs::directory_iterator(path)) {
        if (entry.is_regular_file()) names[entry.path().filename().string()] = inodeOf(entry.path().string());
    }
    return names;
}

std::string contentOf(const std::string& file)
{
    return common::readFile(file).value_or(std::string());
}

} // namespace

Folder readFolder(const std::string& path)
{
    Folder folder;
    for (const auto& [name, inode] : namesIn(path)) folder[name] = contentOf(path + name);
    return folder;
}

void writeFolder(const std::string& path, const Folder& folder)
{
    for (const auto& [name, inode] : namesIn(path)) fs::remove(path + name);
    for (const auto& [name, content] : folder) {
        const common::FilePtr file = common::openFile(path + name, "wb");
        if (file) std::fwrite(content.data(), 1, content.size(), file.get());
    }
}

void RMoments::watch(const std::function<void()>& operation)
{
    startDurable();
    {
        const RFileCalls watched([this](const FILECALL& call) {
            note(call);
            return 0;
        });
        operation();
    }
    note({"end"});
}

void RMoments::startDurable()
{
    durableNames_ = namesIn(path_);
    durable_.clear();
    for (const auto& [name, inode] : durableNames_) durable_[inode] = contentOf(path_ + name);
}

// A flush takes effect behind the moment in front of it.
void RMoments::note(const FILECALL& call)
{
    ++calls;
    keep(killed, readFolder(path_));
    keep(powerless, afterPowerFailure(false));
    keep(powerless, afterPowerFailure(true));
    if (call.name != "fsync" && call.name != "fdatasync") return;
    ++flushes;
    struct stat status {};
    if (::fstat(call.descriptor, &status) != 0) return;
    if (S_ISDIR(status.st_mode)) {
        durableNames_ = namesIn(path_);
    } else {
        for (const auto& [name, inode] : namesIn(path_)) {
            struct stat there {};
            const bool same = ::stat((path_ + name).c_str(), &there) == 0 && there.st_ino == status.st_ino;
            if (same) durable_[inode] = contentOf(path_ + name);
        }
    }
}

void RMoments::keep(std::vector<Folder>& moments, Folder folder)
{
    if (moments.empty() || moments.back() != folder) moments.push_back(std::move(folder));
}

Folder RMoments::afterPowerFailure(bool byChance)
{
    const auto present = namesIn(path_);
    std::map<std::uint64_t, std::string> current;
    for (const auto& [name, inode] : present) current[inode] = contentOf(path_ + name);
    Folder folder;
    for (const auto& [name, inode] : byChance&& random_() % 2 == 0 ? present : durableNames_) {
        const bool kept = byChance && random_() % 2 == 0 && current.count(inode) > 0;
        folder[name] = kept ? current[inode] : durable_[inode];
    }
    return folder;
}

} // namespace testing_support
