#pragma once

// The small files beside a collection's description and station files, as far as no open collection is
// needed.

#include <array>
#include <ctime>
#include <span>
#include <string>
#include <string_view>

namespace collection {

// The time of a log line: "MMM/dd/yyyy hh:mm:ss" in local time, with English months.
[[nodiscard]] std::string logTime(std::time_t time);
// The time of the last change of a file in the same form; empty if there is no such file.
[[nodiscard]] std::string fileTime(const std::string& file);

// Adds a line to the log: "<time>> <user>:<host> <message>". False if it can't be written.
bool appendLogLine(const std::string& basePath, std::string_view message, std::string_view user,
                   std::string_view host);

// The `.cfl` file: names of the files that were used last. They are absolute here and relative to the
// collection's directory in the file; an empty name is an empty line. The reader cuts extensions; a name with
// a point that is no extension keeps it. A name that takes more than 255 bytes is not kept.
struct LASTFILES {
    std::string configName;            // line 1
    std::string graphics;              // line 2: the graphics export
    std::array<std::string, 3> others; // lines 3 to 5, kept in their order
};
// Names whose lines are missing or too long keep their value, and so does configName if its line is empty.
// False if the file can't be read.
[[nodiscard]] bool readLastFiles(const std::string& basePath, const std::string& directory, LASTFILES& files);
// A line of the present file whose name is empty here, or the same, stays as it is.
[[nodiscard]] bool writeLastFiles(const std::string& basePath, const std::string& directory,
                                  const LASTFILES& files);

// True if a collection with this base path may be changed: its directory allows writing and, unless it is
// new, so do its description and its station files, as far as they exist.
[[nodiscard]] bool filesAreWritable(const std::string& basePath, const std::string& directory, bool isNew);
inline constexpr std::string_view writeProtectedText =
    "Collection files and/or collection directory are write-protected!\n\nData may not be modified!";

// Suffixes of a collection's files in the order in which a removal takes them. The log and the default
// configuration come last and are taken only on request.
inline constexpr auto collectionSuffixes =
    std::to_array<std::string_view>({".hob", ".var", ".dob", ".inv", ".cid", ".idv", ".cfl", ".info"});
// What of an old collection goes when a new one takes its place; the log goes on, the rest is the user's.
inline constexpr auto replacedSuffixes =
    std::to_array<std::string_view>({".hob", ".var", ".dob", ".inv", ".cid", ".idv"});
// Removes the files of a closed collection. False, with nothing removed, if the `.hob` file can't go.
[[nodiscard]] bool removeCollectionFiles(const std::string& basePath, bool withLog, bool withConfiguration);

// True if the log tells of nothing but creations and imports, completed ones included, and of changes that
// were undone, so that running these again gives the same collection; false too if there is no log.
[[nodiscard]] bool isMadeByImportsOnly(const std::string& basePath);

} // namespace collection
