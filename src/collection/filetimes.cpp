#include "collection/filetimes.h"

#include <filesystem>
#include <sys/stat.h>
#include <time.h>

namespace collection {
namespace {

bool isLater(const timespec& a, const timespec& b)
{
    return a.tv_sec != b.tv_sec ? a.tv_sec > b.tv_sec : a.tv_nsec > b.tv_nsec;
}

// The clock by which the system dates files.
timespec fileClock()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

} // namespace

bool isCurrent(const std::string& file, const std::string& source)
{
    std::error_code error;
    const auto time = std::filesystem::last_write_time(file, error);
    if (error) return false;
    const auto sourceTime = std::filesystem::last_write_time(source, error);
    return !error && sourceTime <= time;
}

void letTimePass(const std::string& file)
{
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return;
    constexpr int tries = 20; // the clock may be that of another machine
    for (int i = 0; i < tries && !isLater(fileClock(), status.st_mtim); ++i) {
        const timespec step{0, 1000000};
        ::nanosleep(&step, nullptr);
    }
}

} // namespace collection
