#pragma once

#include <functional>
#include <optional>
#include <string>

namespace reliability {

// Does `work` in a process of its own and gives back the text that it returned; "crashed" if it didn't
// return.
[[nodiscard]] std::string inProcess(const std::function<std::string()>& work);

// The same where the process sees mounts of its own. Nothing if that isn't permitted here.
[[nodiscard]] std::optional<std::string> withOwnMounts(const std::function<std::string()>& work);
// For `work`: false if it isn't permitted.
[[nodiscard]] bool mountMemory(const std::string& folder, long kilobytes);
[[nodiscard]] bool mountReadOnly(const std::string& folder);

} // namespace reliability
