#pragma once

#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

#include "common/files.h"

namespace testing_support {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool memoryCanBeLimited = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
inline constexpr bool memoryCanBeLimited = false;
#else
inline constexpr bool memoryCanBeLimited = true;
#endif
#else
inline constexpr bool memoryCanBeLimited = true;
#endif

// While it lives the process gets at most `bytes` more memory than it has.
class RMemoryLimit {
public:
    explicit RMemoryLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_AS, &old_);
        rlimit limited = old_;
        limited.rlim_cur = present() + bytes;
        ::setrlimit(RLIMIT_AS, &limited);
    }
    ~RMemoryLimit() { ::setrlimit(RLIMIT_AS, &old_); }
    RMemoryLimit(const RMemoryLimit&) = delete;
    RMemoryLimit& operator=(const RMemoryLimit&) = delete;

private:
    static rlim_t present()
    {
        unsigned long pages = 0;
        const common::FilePtr file = common::openFile("/proc/self/statm", "r");
        if (!file || std::fscanf(file.get(), "%lu", &pages) != 1) return 0;
        return static_cast<rlim_t>(pages) * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
    }
    rlimit old_{};
};

} // namespace testing_support
