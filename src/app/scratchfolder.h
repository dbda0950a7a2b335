#pragma once

// A folder for files that live as long as a session needs them.

#include <string>

#include "import/filehandle.h"

namespace app {

// Its name begins with "NVQ_". It is gone, with all that is in it, when its owner lets it go; what a program
// left behind that was killed goes when the next one makes a folder in the same place.
class RScratchFolder {
public:
    // Where it is to be made, with trailing separator.
    explicit RScratchFolder(const std::string& directory);
    ~RScratchFolder();
    RScratchFolder(const RScratchFolder&) = delete;
    RScratchFolder& operator=(const RScratchFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; } // with trailing separator; empty: none

private:
    std::string path_;
    importing::RFileHandle lock_; // held as long as it is in use
};

} // namespace app
