#pragma once

// Configuration files (`.cfg`): the head of the file, and whether it can be loaded.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace app {

inline constexpr int oldestConfiguration = 19, newestConfiguration = 31; // versions
inline constexpr int firstSharedConfiguration = 25; // from this version on a file fits any collection

enum class ConfigurationResult : int {
    ok = 0,
    notFound = 1, // or a read failed, or it is no configuration file
    outDated = 2,
    otherCollection = 3,
    tooNew = 4,
    notReadable = 5 // a legal file that this version of the program has no reader for
};
// The text that follows "Configuration file  <name>  ".
[[nodiscard]] std::string_view configurationReason(ConfigurationResult result);

struct CONFIGURATIONHEAD {
    int version = 0;
    std::string collectionName;
};
// Takes the head from the first bytes of a file; false if they are too few or say something else.
[[nodiscard]] bool parseConfigurationHead(std::string_view bytes, CONFIGURATIONHEAD& head);
[[nodiscard]] ConfigurationResult checkHead(const CONFIGURATIONHEAD& head, std::string_view collectionName);

// `path` with or without ".cfg".
[[nodiscard]] std::string configurationFile(const std::string& path);
[[nodiscard]] ConfigurationResult checkConfiguration(const std::string& file,
                                                     std::string_view collectionName);

} // namespace app
