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

namespace {

using namespace collection;

void require(bool condition)
{
    if (!condition) std::abort();
}

class RSilentUser : public common::RUser {
public:
    int told = 0;
    void about(std::string_view, std::string_view) override { ++told; }
    common::Answer question(std::string_view, std::string_view, common::Answer proposed) override
    {
        return proposed;
    }
    bool report(std::string_view, std::string_view) override { return true; }
    void note(std::string_view text) override
    {
        ++told;
        require(text.size() < 2000);
    }
    void status(std::string_view) override {}
    void beginBusy(std::string_view) override {}
    void setProgress(double) override {}
    void endBusy(std::string_view) override {}
    bool abortRequested() const override { return false; }
    void setAbort(bool) override {}
    bool askAbort(std::string_view, std::string_view) override { return false; }
    bool interactive() const override { return false; }
};

const std::string& basePath()
{
    static const std::string path = [] {
        const bool inMemory = std::filesystem::exists("/dev/shm");
        return std::string(inMemory ? "/dev/shm" : "/tmp") + "/nvqfuzz_" + std::to_string(::getpid());
    }();
    return path;
}

void put(const char* suffix, std::string_view bytes)
{
    const common::FilePtr file = common::openFile(basePath() + suffix, "wb");
    require(file && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size());
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
    put(".var", formatVarFile(name, "HYD", 1 + static_cast<int>(hobSize / 80), variables,
                              std::array<VARINFO, common::variableSlots>{}));
    put(".hob", hob);
    put(".dob", dob);
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
