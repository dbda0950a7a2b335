#pragma once

// What the converters' programs share.

#include <string>

#include "layers.h"

namespace tools {

// Says "program: message" on standard error; the exit code of a failed program.
int fail(const char* program, const std::string& message);

// Makes the directory and those above it; false if it isn't there afterwards.
[[nodiscard]] bool makeDirectory(const std::string& path);

// "low" or "high"; null for any other word.
[[nodiscard]] const RESOLUTION* resolutionNamed(const std::string& name);

} // namespace tools
