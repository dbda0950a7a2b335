#pragma once

#include <unistd.h>

namespace testing_support {

// While it lives, rights of files and folders mean something even if the tests run as root.
class RUnprivileged {
public:
    RUnprivileged() : wasRoot_(::geteuid() == 0)
    {
        constexpr uid_t nobody = 65534;
        works_ = !wasRoot_ || ::seteuid(nobody) == 0;
    }
    ~RUnprivileged()
    {
        if (wasRoot_ && works_) static_cast<void>(::seteuid(0) == 0);
    }
    RUnprivileged(const RUnprivileged&) = delete;
    RUnprivileged& operator=(const RUnprivileged&) = delete;
    [[nodiscard]] bool works() const { return works_; }

private:
    const bool wasRoot_;
    bool works_ = false;
};

} // namespace testing_support
