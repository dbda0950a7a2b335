#pragma once

#include <csignal>
#include <sys/resource.h>

namespace testing_support {

// While it lives no file can be written beyond `bytes`: what a full disk does, for any user.
class RFileSizeLimit {
public:
    explicit RFileSizeLimit(rlim_t bytes)
    {
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &old_);
        rlimit limited = old_;
        limited.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~RFileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, handler_);
    }
    RFileSizeLimit(const RFileSizeLimit&) = delete;
    RFileSizeLimit& operator=(const RFileSizeLimit&) = delete;

private:
    rlimit old_{};
    void (*handler_)(int) = SIG_DFL;
};

} // namespace testing_support
