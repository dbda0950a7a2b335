#include "command.h"

#include <cstdio>
#include <filesystem>

namespace tools {

int fail(const char* program, const std::string& message)
{
    std::fprintf(stderr, "%s: %s\n", program, message.c_str());
    return 1;
}

bool makeDirectory(const std::string& path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return std::filesystem::is_directory(path, error);
}

const RESOLUTION* resolutionNamed(const std::string& name)
{
    for (const RESOLUTION* resolution : {&lowResolution, &highResolution})
        if (resolution->name == name) return resolution;
    return nullptr;
}

} // namespace tools
