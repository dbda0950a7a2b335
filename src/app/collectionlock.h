#pragma once

#include <string>

#include "common/files.h"

namespace app {

// Marks a collection as open for writing, so that a second program opens it read-only. The mark goes with the
// process and leaves no file behind.
class RCollectionLock {
public:
    // Marks the `.hob` file of the collection. False if another program, or another lock, holds the mark;
    // true too where there is no such file or the file system knows no marks.
    [[nodiscard]] bool acquire(const std::string& basePath);
    void release() { file_.reset(); }

private:
    common::FilePtr file_;
};

} // namespace app
