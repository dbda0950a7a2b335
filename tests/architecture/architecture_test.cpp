// The floors of the house: a folder includes only what stands below it.

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const std::map<std::string, int> floors = {
    {"common", 0},
    {"graphics/gridding", 1},
    {"variables/seawater", 1},
    {"collection", 2},
    {"variables", 3},
    {"selection", 4},
    {"import", 5},
    {"export", 5},
    {"graphics", 6},
    {"dialogs", 7},
    {"app", 8},
};

std::string folderOf(const fs::path& relative)
{
    return relative.parent_path().generic_string();
}

// True if `from` may include `to`: its own folder, or any lower floor; pure numerics take nothing of ours.
bool mayInclude(const std::string& from, const std::string& to)
{
    if (from == to) return true;
    if (floors.at(from) == 1) return false;
    return floors.at(to) < floors.at(from);
}

TEST(Architecture, EveryIncludeGoesDownward)
{
    const fs::path source = fs::path(NVQ_SOURCE_DIR) / "src";
    const std::regex include(R"(^\s*#\s*include\s+"([^"]+)\")");
    int seen = 0;
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp") continue;
        const fs::path relative = entry.path().lexically_relative(source);
        const std::string folder = folderOf(relative);
        if (folder.empty()) continue;
        ASSERT_TRUE(floors.contains(folder)) << relative << " lies in a folder that is no floor";
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);) {
            std::smatch match;
            if (!std::regex_search(line, match, include)) continue;
            const std::string target = folderOf(fs::path(match[1].str()));
            if (!floors.contains(target)) continue; // generated headers
            ++seen;
            EXPECT_TRUE(mayInclude(folder, target)) << relative << " includes " << match[1].str();
        }
    }
    EXPECT_GT(seen, 10);
}

} // namespace
