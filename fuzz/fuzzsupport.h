#pragma once

// What several fuzz targets need: a broken promise ends the run, nobody listens, and a folder of its own.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include <unistd.h>

#include "common/files.h"
#include "common/user.h"

namespace fuzzing {

inline void require(bool condition)
{
    if (!condition) std::abort();
}

// Says nothing, takes every default, and counts what it is told.
class RSilentUser : public common::RUser {
public:
    int told = 0;
    void about(std::string_view, std::string_view) override { ++told; }
    common::Answer question(std::string_view, std::string_view, common::Answer proposed) override
    {
        return proposed;
    }
    int choose(std::string_view, std::string_view, std::span<const std::string_view>, int proposed,
               int) override
    {
        return proposed;
    }
    bool report(std::string_view, std::string_view) override { return true; }
    void note(std::string_view text) override
    {
        ++told;
        require(text.size() < 2000);
    }
    void status(std::string_view) override {}
    void beginBusy(std::string_view) override {}
    void setProgress(double) override {}
    void endBusy(std::string_view) override {}
    bool abortRequested() const override { return false; }
    void setAbort(bool) override {}
    bool askAbort(std::string_view, std::string_view) override { return false; }
    bool interactive() const override { return false; }
};

// A folder of the process, in memory if there is such a place; it goes at the end.
inline const std::string& directory()
{
    class RFolder {
    public:
        RFolder()
        {
            const bool inMemory = std::filesystem::exists("/dev/shm");
            path = (inMemory ? "/dev/shm/nvqfuzz_" : "/tmp/nvqfuzz_") + std::to_string(::getpid()) + "/";
            std::filesystem::create_directory(path);
        }
        ~RFolder()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
        RFolder(const RFolder&) = delete;
        RFolder& operator=(const RFolder&) = delete;
        std::string path;
    };
    static const RFolder folder;
    return folder.path;
}

inline void put(const std::string& file, std::string_view bytes)
{
    const common::FilePtr stream = common::openFile(file, "wb");
    require(stream && std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) == bytes.size());
}

} // namespace fuzzing
