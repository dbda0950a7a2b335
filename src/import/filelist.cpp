#include "import/filelist.h"

#include "common/files.h"
#include "common/text.h"

namespace importing {
namespace {

constexpr std::int64_t largestList = 64 << 20; // bytes
constexpr std::size_t longestPath = 4096;      // that a system takes
constexpr std::string_view mark = "\xEF\xBB\xBF";

// Takes a line that a line feed, a carriage return or both end.
std::string_view takeListLine(std::string_view& rest)
{
    const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end);
    if (rest.starts_with("\r\n")) rest.remove_prefix(1);
    if (!rest.empty()) rest.remove_prefix(1);
    return line;
}

// What is wrong with a line that is to be a path; empty if nothing is.
std::string_view faultOf(std::string_view line)
{
    if (line.size() > longestPath) return "longer than a path can be";
    for (const char c : line) {
        if (static_cast<unsigned char>(c) < ' ' && c != '\t') return "holds bytes that no path has";
    }
    return line.ends_with('/') ? "names a folder" : "";
}

} // namespace

bool readFileList(const std::string& list, std::vector<std::string>& paths, std::string& fault)
{
    const auto text = common::readFile(list, largestList);
    if (!text) {
        fault = list + ":1: can't be read";
        return false;
    }
    const std::string directory = common::splitPath(common::absolutePath(list)).directory;
    std::vector<std::string> found;
    std::string_view rest = *text;
    if (rest.starts_with(mark)) rest.remove_prefix(mark.size());
    int number = 0;
    while (!rest.empty()) {
        ++number;
        const std::string_view line = common::trimBlanks(takeListLine(rest));
        if (line.empty()) continue;
        if (const std::string_view what = faultOf(line); !what.empty()) {
            fault = list + common::format(":%d: ", number).append(what);
            return false;
        }
        found.push_back(line.starts_with('/') ? std::string(line) : directory + std::string(line));
    }
    if (found.empty()) {
        fault = list + common::format(":%d: names no file", std::max(1, number));
        return false;
    }
    paths = std::move(found);
    return true;
}

} // namespace importing
