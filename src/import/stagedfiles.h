#pragma once

// Files from outside on their way into a folder. Until all are complete they lie under numbers in a folder of
// their own inside the target, where nobody else has anything; then they take their places. Nothing is
// followed that is a link, and only ordinary files are replaced.

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

#include "import/filehandle.h"
#include "import/unpack.h"

namespace importing {

// Each operation returns what is wrong, an empty text if nothing is. Unless commit() succeeds, nothing is
// left.
class RStagedFiles {
public:
    RStagedFiles(std::string directory, const UNPACKLIMITS& limits);
    ~RStagedFiles();
    RStagedFiles(const RStagedFiles&) = delete;
    RStagedFiles& operator=(const RStagedFiles&) = delete;

    [[nodiscard]] std::string open();
    // A file that must not be replaced, whatever its name is.
    void protect(const struct stat& file) { protected_ = file; }

    // The next file. `path` is one that memberPath() gave; a second one of the same path takes the place of
    // the first. Between begin() and finish() it is written, at offsets that don't go back; what lies between
    // the parts is zero. `size` in finish() may make it longer.
    [[nodiscard]] std::string begin(const std::string& path);
    [[nodiscard]] std::string write(std::int64_t offset, const void* bytes, std::size_t size);
    [[nodiscard]] std::string finish(std::int64_t size, const std::timespec* modified);
    [[nodiscard]] std::int64_t end() const { return end_; } // bytes of the present file

    // The finished file, open for reading, while it is still on its way.
    [[nodiscard]] RFileHandle reopen(std::size_t number) const;

    // All files take their places. `placed`: their paths below the directory, each once.
    [[nodiscard]] std::string commit(std::vector<std::string>& placed);

private:
    struct PLACED {
        std::size_t number;
        bool replaced; // the old file is kept until the end
    };
    [[nodiscard]] RFileHandle openFolder(std::string_view path, bool make);
    [[nodiscard]] std::string placeFault(const std::string& path);
    [[nodiscard]] std::string spaceFault();
    [[nodiscard]] std::string growFault(std::int64_t newEnd);
    [[nodiscard]] std::string place(std::size_t number);
    void takeBack();
    void removeStage();

    std::string directory_, stageName_;
    UNPACKLIMITS limits_;
    RFileHandle target_, stage_, file_;
    struct stat protected_ {};
    std::vector<std::string> paths_; // by number
    std::unordered_map<std::string, std::size_t> numbers_;
    std::vector<PLACED> placed_;
    std::vector<std::string> madeFolders_;
    std::size_t present_ = 0;
    std::int64_t end_ = 0, total_ = 0, uncheckedBytes_ = 0;
};

} // namespace importing
