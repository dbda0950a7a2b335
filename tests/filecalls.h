#pragma once

// A look at every call to the system by which the code under test changes files: to see the folder at each of
// these moments as a killed program or a power failure would leave it, and to let calls fail. For Linux; one
// source of a test program includes filecalls_impl.h.

#include <cstdint>
#include <functional>
#include <string_view>

namespace testing_support {

struct FILECALL {
    std::string_view name; // of the system's function
    int descriptor = -1;   // -1 for calls on names
    bool half = false;     // in the middle of a write, which then begins anew
};

// While it lives, `before` is called in front of each call; what it returns is 0 or the error that the call
// ends with. Nothing is flushed to the disk meanwhile, which would only take time.
class RFileCalls {
public:
    explicit RFileCalls(std::function<int(const FILECALL&)> before);
    ~RFileCalls();
    RFileCalls(const RFileCalls&) = delete;
    RFileCalls& operator=(const RFileCalls&) = delete;

private:
    std::function<int(const FILECALL&)> outer_;
};

} // namespace testing_support
