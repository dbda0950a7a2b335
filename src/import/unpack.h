#pragma once

// Unpacking of archives (.gz, .zip, .tar, .tgz) inside the program, by zlib and libarchive. Nothing that
// stands in an archive is believed: no member leaves the target folder, follows a link, replaces anything but
// an ordinary file there, or grows beyond a sane size.

#include <cstdint>
#include <string>
#include <vector>

#include "common/user.h"

namespace importing {

enum class ArchiveForm : int { none = -1, gzip = 0, zip = 1, tarGzip = 2, tar = 3 };
// By the end of the name: ".gz", ".zip", ".tgz", ".tar" in lower or upper case; ".tar.gz" is tarGzip.
[[nodiscard]] ArchiveForm archiveForm(const std::string& path);

struct UNPACKED {
    bool good = false;
    bool aborted = false;           // by the user, who need not be told
    std::string fault;              // one line, if not good
    std::vector<std::string> files; // what was written, absolute, in the order of the archive
};

struct UNPACKLIMITS {
    std::int64_t memberBytes = std::int64_t{16} << 30; // a member, unpacked
    std::int64_t totalBytes = std::int64_t{64} << 30;
    int members = 1000000;
    std::int64_t freeBytes = std::int64_t{64} << 20; // stay free on the disk, or a twentieth of a small one
};

// Unpacks `archive` into `directory`. junkPaths: members lose their folders (zip), otherwise these are made
// below `directory`. A failure, or an abort by ESC, removes what was written and brings back what was
// replaced. Speaks through progress only, but for a note of links and devices, which are left out.
[[nodiscard]] UNPACKED unpackArchive(const std::string& archive, const std::string& directory, bool junkPaths,
                                     common::RUser& user, const UNPACKLIMITS& limits = {});

// The step of an opening or an import: copies a packed file into `directory` ("Copying %s..."), unpacks the
// copy there ("Unzipping %s...") and removes it; members of a zip lose their folders. What goes wrong is
// told. The source stays.
[[nodiscard]] UNPACKED copyAndUnpack(const std::string& archive, const std::string& directory,
                                     common::RUser& user);

} // namespace importing
