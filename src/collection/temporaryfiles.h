#pragma once

// The temporary files of open collections. All of one opening share a prefix, "NVQ_" and a number; its `.val`
// file is locked as long as the opening lasts, so that what dead programs left behind can be told from what
// others use.

#include <cstdio>
#include <string>

namespace collection {

// Locks the `.val` file of a prefix that was just made. False if somebody else holds it, or has removed it
// from under its name; true too where the file system knows no locks.
[[nodiscard]] bool lockTemporaryFile(std::FILE* file, const std::string& path);

// Removes all files of a prefix: those whose names go on with a "." or "_". Never a directory; a link goes,
// not what it leads to.
void removeTemporaryFiles(const std::string& directory, const std::string& prefix);

// Removes what programs that are no longer running have left in the directory: the files of prefixes whose
// `.val` file nobody holds, and files without a `.val` that are older than a day.
void removeLeftTemporaryFiles(const std::string& directory);

} // namespace collection
