#pragma once

// What a disk may hold when the power fails: the changes of a folder's files, one after the other, and any
// state that the system may have brought to the disk up to one of them.

#include <cstdint>
#include <ctime>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tracedchild.h"

namespace reliability {

// A file's bytes were written back as far as its last flush; of each sector behind that the disk may hold any
// later version, and of its size and time too. Names are brought to the disk in their order, as far as the
// last flush of the folder or farther.
class RDisk {
public:
    explicit RDisk(const std::string& folder); // as it is now; all of that is safe

    // The next call that was made in the folder. False if it is one that can't be followed.
    [[nodiscard]] bool add(const FILECALL& call);
    [[nodiscard]] int callCount() const { return calls_; }

    enum class Loss {
        everything, // that isn't safe
        namesOnly,  // all bytes are there
        bytesOnly,  // all names are there
        random
    };
    // Makes the folder `to` a state that the disk may be in when the power fails behind the first `calls`
    // calls.
    void restore(int calls, Loss loss, std::mt19937& random, const std::string& to) const;

private:
    struct VERSION {
        int call = 0; // 0: at the beginning
        std::string bytes;
        timespec time{};
    };
    struct FLUSH {
        int call = 0;
        bool withTime = false; // size and time of last change, too
    };
    struct STORED {
        std::vector<VERSION> versions;
        std::vector<FLUSH> flushes;
        std::size_t flushedSize = 0; // the size that the disk knows
    };
    struct NAMING {
        int call = 0;
        std::string name, target; // target: of a renaming
        std::uint64_t file = 0;   // 0: the name goes
    };
    using Names = std::map<std::string, std::uint64_t>;

    void change(std::uint64_t file, std::string bytes);
    void flush(STORED& file, bool wholly);
    [[nodiscard]] std::string nameOf(const std::string& path) const;
    [[nodiscard]] Names namesAfter(int calls, Loss loss, std::mt19937& random) const;
    void restoreFile(const STORED& file, int calls, Loss loss, std::mt19937& random,
                     const std::string& path) const;

    std::string folder_;
    int calls_ = 0;
    Names first_;
    std::map<std::uint64_t, STORED> files_;
    std::vector<NAMING> namings_;
    std::vector<int> folderFlushes_;
};

} // namespace reliability
