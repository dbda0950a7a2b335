#pragma once

// File helpers. Paths are bytes in the file system's own form, with "/" as separator, of any length.

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace common {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

[[nodiscard]] FilePtr openFile(const std::string& path, const char* mode);

[[nodiscard]] bool fileExists(const std::string& path);  // a regular file or a link to one
[[nodiscard]] bool existsAtAll(const std::string& path); // whatever it is, a link that leads nowhere too
[[nodiscard]] bool directoryExists(const std::string& path);
[[nodiscard]] bool isWritable(const std::string& path);               // for this process
[[nodiscard]] bool directoryIsWritable(const std::string& directory); // makes and removes a file there
[[nodiscard]] std::int64_t fileSize(std::FILE* file);                 // bytes, -1 if it can't be told
[[nodiscard]] std::int64_t fileSize(const std::string& path);         // bytes, -1 if there is none

// The whole of a file, if it can be read and has at most `limit` bytes.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path, std::int64_t limit = INT64_MAX);

// Copies a file over `target`; on failure `target` is as it was. Source and target must differ.
[[nodiscard]] bool copyFile(const std::string& source, const std::string& target);

// A file that is written beside its place and renamed into it when it is complete: until commit() the old
// file stands, and if commit() isn't reached or fails the new one vanishes.
class RReplacementFile {
public:
    explicit RReplacementFile(std::string path);
    ~RReplacementFile();
    RReplacementFile(const RReplacementFile&) = delete;
    RReplacementFile& operator=(const RReplacementFile&) = delete;

    // Null if it could not be created, or if something other than an ordinary file stands in the place.
    [[nodiscard]] std::FILE* stream() const { return file_.get(); }
    // All of a commit but the renaming: what is left to do then needs no room on the disk. False on any
    // failure.
    [[nodiscard]] bool prepare();
    // Flushes, checks for write errors, renames. False on any failure, and then nothing was changed.
    [[nodiscard]] bool commit();

private:
    std::string path_, temporary_;
    FilePtr file_;
    bool prepared_ = false;
};

// Makes `bytes` the content of a file: the whole of it, or on failure the file is as it was.
[[nodiscard]] bool writeFile(const std::string& path, std::string_view bytes);

// True when what was made, renamed and removed in a directory is on the disk. An empty name is the current
// one.
[[nodiscard]] bool syncDirectory(const std::string& directory);

struct PATHPARTS {
    std::string directory; // with its trailing separator; empty if the path has none
    std::string baseName;  // without the extension
    std::string extension; // with its point; empty if there is none
};
[[nodiscard]] PATHPARTS splitPath(std::string_view path);

[[nodiscard]] std::string absolutePath(const std::string& path); // against the current directory
// `path` relative to `directory` where it lies below it or beside it, otherwise as it is; and back.
[[nodiscard]] std::string makeRelative(const std::string& path, const std::string& directory);
[[nodiscard]] std::string makeAbsolute(const std::string& path, const std::string& directory);

// Deletes the files of `directory` that match the wildcard and are older than `ageDays` (-1: any age).
// Returns how many. The wildcard knows "*" and "?".
int deleteMatching(const std::string& directory, const std::string& wildcard, double ageDays);

} // namespace common
