#pragma once

// A file descriptor that closes itself.

#include <unistd.h>
#include <utility>

namespace importing {

class RFileHandle {
public:
    explicit RFileHandle(int number = -1) : number_(number) {}
    ~RFileHandle() { static_cast<void>(close()); }
    RFileHandle(RFileHandle&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    RFileHandle& operator=(RFileHandle&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }

    [[nodiscard]] int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    // False if what was written may not have reached the file.
    [[nodiscard]] bool close()
    {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0;
    }

private:
    int number_;
};

} // namespace importing
