#pragma once

// A collection as a family of files: copying, moving and removing it whole. All paths are base paths, without
// extension; the collections are closed, and the caller holds their locks.

#include <string>
#include <string_view>

namespace collection {

enum class FilesResult : int {
    ok = 0,
    sameCollection = 1, // source and target are the same files
    badName = 2,        // the target's name or directory can't be used
    stationFiles = 3,   // the `.hob` file could not be copied, moved or removed
    description = 4,    // the target's `.var` file could not be written
    otherFiles = 5      // done, but some side files of the source could not be removed
};

// Copies everything but the default configuration; failures of side files are ignored. A target that exists
// is replaced when all of the copy is on the disk, not before.
[[nodiscard]] FilesResult copyCollection(const std::string& from, const std::string& to);
// The same, and the source is gone. Within a file system nothing is copied.
[[nodiscard]] FilesResult moveCollection(const std::string& from, const std::string& to);
// Removes the files, `.hob` first: if it can't go, nothing is removed.
[[nodiscard]] FilesResult deleteCollection(const std::string& path, bool withLog, bool withConfiguration);

// True if two base paths stand for the same files, by whatever way or link, or if the description at one of
// them is of the files at the other.
[[nodiscard]] bool isSameCollection(const std::string& a, const std::string& b);

// The name that a collection gets from what a user typed: "/", ":" and blanks become "_".
[[nodiscard]] std::string collectionName(std::string_view typed);

} // namespace collection
