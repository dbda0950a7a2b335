#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace testing_support {

// A directory of its own for one test, gone at its end.
class RTemporaryDirectory {
public:
    RTemporaryDirectory()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "nvqtest_XXXXXX").string();
        path_ = ::mkdtemp(pattern.data()) ? pattern + "/" : std::string();
    }
    ~RTemporaryDirectory()
    {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    RTemporaryDirectory(const RTemporaryDirectory&) = delete;
    RTemporaryDirectory& operator=(const RTemporaryDirectory&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; } // with trailing separator
    [[nodiscard]] std::string file(const std::string& name) const { return path_ + name; }

private:
    std::string path_;
};

} // namespace testing_support
