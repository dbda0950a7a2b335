// The files of a whole collection. The data begin with the lengths of .var, .hob, .dob, .inv, .cid, .idv and
// .cfl, two bytes each, least first; their bytes follow. The check must end, say little, change nothing, and
// miss nothing that an opening stumbles over.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "collection/check.h"
#include "collection/rcollection.h"
#include "fuzzsupport.h"

namespace {

using namespace collection;
using namespace fuzzing;

constexpr auto suffixes =
    std::to_array<const char*>({".var", ".hob", ".dob", ".inv", ".cid", ".idv", ".cfl"});

// Whether all of the collection comes out, without a word.
bool opensQuietly(const std::string& base)
{
    static STATIONDATA station;
    RSilentUser user;
    RCollection collection;
    if (collection.openStationFiles(base, user) != OpenFilesResult::ok) return false;
    collection.readInventory(false, user);
    require(collection.readCruiseIndices(false).size() == static_cast<std::size_t>(collection.stationCount));
    for (int n = 1; n <= collection.stationCount; ++n) {
        if (collection.loadStation(n, station, false) != LoadResult::ok) return false;
    }
    return user.told == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t head = 2 * suffixes.size();
    if (size < head) return 0;
    const std::string base = directory() + "c";
    std::string_view rest(reinterpret_cast<const char*>(data) + head, size - head);
    std::array<std::string_view, suffixes.size()> contents;
    for (std::size_t i = 0; i < suffixes.size(); ++i) {
        contents[i] = rest.substr(0, data[2 * i] + 256U * data[2 * i + 1]);
        rest.remove_prefix(contents[i].size());
        put(base + suffixes[i], contents[i]);
    }
    RSilentUser user;
    const CHECKRESULT result = checkCollection(base, user);
    require(user.told == 0 && result.findings.size() < 60);
    for (const FINDING& finding : result.findings) require(finding.text.size() < 1000 + 2 * size);
    require(result.deadBytes >= 0 && result.deadBytes <= result.dataBytes && result.dataBytes <= 1LL << 32);
    // A description of no stations opens for writing only.
    if (result.inconsistencies == 0 && result.stationCount > 0) require(opensQuietly(base));
    for (std::size_t i = 0; i < suffixes.size(); ++i)
        require(common::readFile(base + suffixes[i]) == contents[i]);
    return 0;
}
