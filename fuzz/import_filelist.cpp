// Any bytes as a list of files: what comes out are paths, and a fault names its line.

#include <algorithm>

#include "fuzzsupport.h"
#include "import/filelist.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using fuzzing::require;
    static const std::string list = fuzzing::directory() + "casts.lst";
    fuzzing::put(list, {reinterpret_cast<const char*>(data), size});
    std::vector<std::string> paths{"before"};
    std::string fault;
    if (!importing::readFileList(list, paths, fault)) {
        require(paths == std::vector<std::string>{"before"});
        require(fault.starts_with(list + ":") && fault.size() > list.size() + 4);
        require(fault[list.size() + 1] >= '1' && fault[list.size() + 1] <= '9');
        return 0;
    }
    require(fault.empty() && !paths.empty() && paths.size() <= size);
    for (const std::string& path : paths) {
        require(path.starts_with('/') && !path.ends_with('/'));
        require(std::none_of(path.begin(), path.end(), [](unsigned char c) { return c < ' ' && c != '\t'; }));
    }
    return 0;
}
