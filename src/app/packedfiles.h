#pragma once

// Which of the files that came out of an archive is the one that the user meant.

#include <span>
#include <string>
#include <vector>

#include "app/filekind.h"

namespace app {

struct PACKEDCHOICE {
    FileKind kind = FileKind::nothing;
    std::string path;                 // of the file to open; it exists, except for the rule of netCDF files
    std::string rename;               // the unpacked file that gets the name `path` first; empty: none
    std::vector<std::string> several; // candidates, if the choice is left to the user; then `kind` is nothing
};

// The name under which an archive's content is taken for a netCDF file: the archive's without its last
// extension, with ".nc" behind it unless it holds ".nc", ".NC", ".cdf" or ".CDF".
[[nodiscard]] std::string netCdfName(const std::string& archiveName);

// archiveName: without folders. files: what was unpacked into `directory` (with trailing separator),
// absolute. In this order: the only collection that has all its station files; the only file of any known
// kind; the file that has the archive's name by the rule of netCDF files, or a lone file of unknown kind
// under that name.
[[nodiscard]] PACKEDCHOICE choosePacked(const std::string& archiveName, const std::string& directory,
                                        std::span<const std::string> files);

} // namespace app
