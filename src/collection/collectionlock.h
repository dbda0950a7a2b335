#pragma once

#include <string>

namespace collection {

// Marks a collection as open for writing by an advisory lock on the file `<path>.lck` beside it, so that a
// second program opens it read-only. The mark goes with the process: what a dead one left behind is taken
// over.
class RCollectionLock {
public:
    RCollectionLock() = default;
    ~RCollectionLock() { release(); }
    RCollectionLock(const RCollectionLock&) = delete;
    RCollectionLock& operator=(const RCollectionLock&) = delete;

    // False if another program, or another lock of this one, holds the mark; `holder` tells who, if that is
    // known ("user@host, process 123"). True too where the directory can't be written to or the file system
    // knows no locks. What was held before is released.
    [[nodiscard]] bool acquire(const std::string& basePath, std::string* holder = nullptr);
    void release(); // and removes the file
    [[nodiscard]] bool isHeld() const { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
    std::string file_;
};

} // namespace collection
