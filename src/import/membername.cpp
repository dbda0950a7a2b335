#include "import/membername.h"

#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"

namespace importing {
namespace {

constexpr std::size_t longestPath = 4000, longestPart = 255;
constexpr int deepest = 64; // folders in each other

bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 32 || byte == 127;
}

std::string_view takePart(std::string_view& rest)
{
    const std::string_view part = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(rest.size(), part.size() + 1));
    return part;
}

} // namespace

std::string memberPath(std::string_view name, bool junkPaths, std::string& fault)
{
    fault.clear();
    if (junkPaths) name.remove_prefix(name.rfind('/') + 1);
    if (name.size() > longestPath) fault = "its name is too long";
    if (std::any_of(name.begin(), name.end(), isControl)) fault = "its name holds control characters";
    std::string path;
    int parts = 0;
    while (fault.empty() && !name.empty()) {
        const std::string_view part = takePart(name);
        if (part.empty() || part == ".") continue;
        if (part == "..") fault = "its name leads out of the folder";
        if (part.size() > longestPart) fault = "its name is too long";
        if (++parts > deepest) fault = "it lies in too many folders";
        if (!path.empty()) path += '/';
        path += part;
    }
    if (fault.empty() && path.empty()) fault = "it has no name";
    return fault.empty() ? path : std::string();
}

std::string shownName(std::string_view name)
{
    constexpr std::size_t longest = 200;
    std::string shown = common::labelToUtf8(common::cutAtCharacter(name, longest));
    std::replace_if(shown.begin(), shown.end(), isControl, '?');
    return shown;
}

} // namespace importing
