#pragma once

// What a path is taken for. All tests are searches for a substring anywhere in the path, case-sensitive.

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "import/importfile.h"

namespace app {

enum class FileKind : int {
    nothing = 0,
    collection = 1,
    archiveListing = 2, // ".ol"
    oldListing = 3,     // ".o3x"
    listing = 4,        // ".o4x"
    stationSummary = 5, // ".sum"
    spreadsheet = 8,
    netCdf = 9,
    unknown = 10
};
[[nodiscard]] FileKind fileKind(std::string_view path);
// Kinds that make a new collection when none is open.
[[nodiscard]] bool makesCollection(FileKind kind);
// The format in which stations are imported from a file of that kind; nothing if there is none.
[[nodiscard]] std::optional<importing::Format> importFormat(FileKind kind);
[[nodiscard]] const char* fileKindName(FileKind kind); // for messages

enum class Archive : int { none = -1, gzip = 0, zip = 1, tarGzip = 2, tar = 3 };
[[nodiscard]] Archive archiveClass(std::string_view path);

// What the command line asks for, in order.
struct ARGUMENT {
    enum Kind { file, commandFile, quit } kind = file;
    std::string path; // as given; empty for quit, and for -x without a file behind it
};
// An argument with "-q" in it quits (the program's own name counts too), one with "-x" takes the next as a
// command file, every other but the first is a file.
[[nodiscard]] std::vector<ARGUMENT> readArguments(std::span<const std::string> arguments);

// The file that an argument stands for: ".var" is appended to a name without an extension.
[[nodiscard]] std::string withDefaultExtension(const std::string& path);

} // namespace app
