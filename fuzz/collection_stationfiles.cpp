// A header table and data blocks as they stand in files. The first byte is the number of variables, the next
// two say how many bytes are the table; the rest is data. Everything is loaded, scanned, and put into the
// inventory; what comes out must agree with itself, and the files must be as before.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "collection/rcollection.h"
#include "collection/stationrecord.h"
#include "collection/varfile.h"
#include "fuzzsupport.h"

namespace {

using namespace collection;
using namespace fuzzing;

const std::string& basePath()
{
    static const std::string path = directory() + "sample";
    return path;
}

void checkStation(const STATIONDATA& station, const RCollection& collection)
{
    const int levels = station.levels();
    require(levels >= 1 && levels <= common::maxLevels);
    require(station.offset[1] == 0);
    int blocks = 0;
    for (int v = 1; v <= collection.variableCount; ++v) {
        const auto at = static_cast<std::size_t>(v);
        require((station.offset[at] >= 0) == (station.levelCount[at] > 0));
        if (station.offset[at] < 0) continue;
        require(station.offset[at] == blocks * levels);
        ++blocks;
        for (int k = 0; k < levels; ++k) require(std::isfinite(valueAt(station, v, k, 0)));
    }
    require(station.header.valueCount == blocks * levels && station.header.valueCount <= common::maxCells);
    require(std::isfinite(station.header.longitude) && std::isfinite(station.header.latitude));
}

void readEverything(RCollection& collection, RSilentUser& user)
{
    static STATIONDATA station;
    int loaded = 0, scanned = 0, damaged = 0;
    for (int n = 1; n <= collection.stationCount; ++n) {
        const LoadResult result = collection.loadStation(n, station, true);
        require(result == LoadResult::ok || result == LoadResult::badHeader);
        require(station.number == (result == LoadResult::ok ? n : 0));
        if (result != LoadResult::ok) continue;
        ++loaded;
        checkStation(station, collection);
    }
    const auto visit = [&](int, const STATIONHDR&, const LEVELCOUNTS&) { return ++scanned > 0; };
    require(collection.scanHeaders(1, collection.stationCount, visit, [&](int) { ++damaged; }));
    require(scanned == loaded && scanned + damaged == collection.stationCount);
    collection.readInventory(true, user);
    int counted = 0;
    for (const CRUISEINFO& entry : collection.cruises) counted += entry.stationCount;
    require(counted == loaded);
    require(static_cast<int>(collection.readCruiseIndices(true).size()) == collection.stationCount);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 3) return 0;
    const int variables = data[0] % 51;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 3, size - 3);
    const std::size_t hobSize = std::min<std::size_t>(data[1] + 256U * data[2], rest.size());
    const std::string_view hob = rest.substr(0, hobSize), dob = rest.substr(hobSize);
    const std::string name = basePath().substr(basePath().rfind('/') + 1);
    put(basePath() + ".var", formatVarFile(name, "HYD", 1 + static_cast<int>(hobSize / 80), variables,
                                           std::array<VARINFO, common::variableSlots>{}));
    put(basePath() + ".hob", hob);
    put(basePath() + ".dob", dob);
    RSilentUser user;
    RCollection collection;
    if (collection.openStationFiles(basePath(), user) == OpenFilesResult::ok) {
        readEverything(collection, user);
    } else {
        require(user.told == 1);
    }
    require(common::readFile(basePath() + ".hob") == hob && common::readFile(basePath() + ".dob") == dob);
    return 0;
}
