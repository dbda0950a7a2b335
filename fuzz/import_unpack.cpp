// Any bytes as an archive: nothing outside of the target folder is touched, a failure leaves nothing, and
// what comes out keeps the limits.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "common/files.h"
#include "common/headlessuser.h"
#include "import/unpack.h"

namespace {

namespace fs = std::filesystem;

class RSilentUser : public common::RHeadlessUser {
public:
    void about(std::string_view, std::string_view) override {}
    void note(std::string_view) override {}
};

void require(bool holds)
{
    if (!holds) std::abort();
}

// A folder with the archive, a victim, and the target with a link that leads to the victim.
class RPlace {
public:
    RPlace()
    {
        std::string pattern = (fs::temp_directory_path() / "nvqfuzz_XXXXXX").string();
        require(::mkdtemp(pattern.data()) != nullptr);
        path = pattern + "/";
        require(common::writeFile(path + "victim", "precious"));
        fs::create_directories(path + "in");
        fs::create_symlink(path, path + "in/link");
    }
    ~RPlace()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    [[nodiscard]] std::ptrdiff_t entries(const char* folder) const
    {
        return std::distance(fs::directory_iterator(path + folder), fs::directory_iterator());
    }

    std::string path;
};

void checkAndRemove(const RPlace& place, const importing::UNPACKED& result,
                    const importing::UNPACKLIMITS& limits)
{
    require(result.good != result.files.empty() && result.good == result.fault.empty());
    require(result.fault.find('\n') == std::string::npos);
    std::int64_t total = 0;
    for (const std::string& file : result.files) {
        require(file.starts_with(place.path + "in/") && file.find("/../") == std::string::npos);
        require(fs::is_regular_file(fs::symlink_status(file)));
        require(common::fileSize(file) <= limits.memberBytes);
        total += common::fileSize(file);
    }
    require(total <= limits.totalBytes && static_cast<int>(result.files.size()) <= limits.members);
    for (const auto& entry : fs::directory_iterator(place.path + "in")) {
        if (entry.path().filename() == "link") continue;
        require(result.good);
        fs::remove_all(entry.path());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const RPlace place;
    if (size == 0) return 0;
    static constexpr const char* names[] = {"a.zip", "a.gz", "a.tgz", "a.tar"};
    const std::string archive = place.path + names[data[0] % 4];
    const bool junkPaths = data[0] / 4 % 2 == 0;
    require(common::writeFile(archive, {reinterpret_cast<const char*>(data) + 1, size - 1}));
    importing::UNPACKLIMITS limits;
    limits.memberBytes = 100000;
    limits.totalBytes = 300000;
    limits.members = 50;
    RSilentUser user;
    checkAndRemove(place, importing::unpackArchive(archive, place.path + "in", junkPaths, user, limits),
                   limits);
    fs::remove(archive);
    require(place.entries("") == 2 && place.entries("in") == 1 && fs::is_symlink(place.path + "in/link"));
    require(common::readFile(place.path + "victim") == "precious");
    return 0;
}
