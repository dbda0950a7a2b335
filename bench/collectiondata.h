#pragma once

// Large collections for the benchmarks, made with a fixed seed in a directory that is gone at the end.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include <sys/resource.h>

#include "collection/rcollection.h"
#include "collection/stationrecord.h"
#include "common/headlessuser.h"
#include "common/text.h"

namespace bench_support {

class RBenchDirectory {
public:
    RBenchDirectory()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "nvqbench_XXXXXX").string();
        path_ = ::mkdtemp(pattern.data()) ? pattern + "/" : std::string();
    }
    ~RBenchDirectory()
    {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    RBenchDirectory(const RBenchDirectory&) = delete;
    RBenchDirectory& operator=(const RBenchDirectory&) = delete;
    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

// An empty collection, open for writing.
inline bool createCollection(collection::RCollection& collection, const std::string& directory, int variables)
{
    static common::RHeadlessUser user;
    collection.reset();
    collection.directory = collection.tempDirectory = directory;
    collection.name = "bench";
    collection.path = directory + "bench";
    collection.writable = true;
    collection.variableCount = variables;
    for (int v = 1; v <= variables; ++v) {
        auto& variable = collection.variables.at(static_cast<std::size_t>(v));
        variable = collection::emptyVariable(v);
        collection::setLabel(variable, common::format("Variable %d [1]", v));
    }
    for (const char* const suffix : {".hob", ".dob", ".inv", ".cid"})
        std::remove((collection.path + suffix).c_str());
    return collection.createEmptyFiles() &&
           collection.openStationFiles(collection.path, user) == collection::OpenFilesResult::ok;
}

// A station of full columns; the same number always gives the same values.
inline void fillStation(collection::STATIONDATA& station, int number, int levels, int variables)
{
    station.clear();
    std::size_t cell = 0;
    for (int v = 1; v <= variables; ++v) {
        station.offset[static_cast<std::size_t>(v)] = static_cast<std::int32_t>(cell);
        for (int k = 0; k < levels; ++k, ++cell) {
            station.values[cell] = static_cast<float>(v == 1 ? 10 * k : number % 1000 + 7 * v + k);
            station.flags[cell] = static_cast<std::uint8_t>(number & 1);
        }
    }
    station.levelCount[1] = static_cast<std::int16_t>(levels);
    station.header.valueCount = static_cast<std::int32_t>(cell);
    common::copyText(station.header.cruise, common::format("CRUISE%d", number / 200));
    common::copyText(station.header.station, common::format("%d", number % 200));
    common::copyText(station.header.type, "B");
    station.header.longitude = static_cast<float>(number % 3600) / 10;
    station.header.latitude = static_cast<float>(number % 1500) / 10 - 75;
    station.header.year = static_cast<std::int16_t>(1950 + number % 70);
    station.header.month = static_cast<std::int16_t>(1 + number % 12);
    station.header.day = static_cast<std::int16_t>(1 + number % 28);
}

// A collection of `stations` headers in `cruises` cruises, one behind the other or station by station in
// turns; the data blocks are a hole in the file.
inline bool createHeaders(collection::RCollection& collection, const std::string& directory, int stations,
                          int cruises, bool inTurns = false)
{
    constexpr int variables = 8, levels = 20;
    static common::RHeadlessUser user;
    if (!createCollection(collection, directory, variables)) return false;
    const collection::RECORDFORM form{.variableCount = variables};
    std::mt19937 random(42);
    const common::FilePtr hob = common::openFile(collection.path + ".hob", "r+b");
    if (!hob || std::fseek(hob.get(), 6, SEEK_SET) != 0) return false;
    collection::STATIONDATA station;
    std::array<std::byte, 200> record{};
    for (int n = 1; n <= stations; ++n) {
        fillStation(station, n, 1, 1);
        const int cruise = inTurns ? n % cruises : static_cast<int>(std::int64_t{n - 1} * cruises / stations);
        common::copyText(station.header.cruise, common::format("CRUISE%05d", cruise));
        station.header.longitude = static_cast<float>(random() % 36000) / 100;
        station.header.latitude = static_cast<float>(random() % 18000) / 100 - 90;
        station.header.valueCount = variables * levels;
        station.header.dataOffset = (n - 1) * variables * levels * 5;
        for (int v = 1; v <= variables; ++v) station.levelCount[static_cast<std::size_t>(v)] = levels;
        const std::size_t size =
            collection::packRecord(station.header, &station.levelCount, form, record.data());
        if (std::fwrite(record.data(), 1, size, hob.get()) != size) return false;
    }
    if (std::fflush(hob.get()) != 0) return false;
    std::filesystem::resize_file(collection.path + ".dob",
                                 static_cast<std::uintmax_t>(stations) * variables * levels * 5);
    collection.stationCount = stations;
    return collection.writeVarFile(collection.path) &&
           collection.openStationFiles(collection.path, user) == collection::OpenFilesResult::ok &&
           collection.openTemporaryFiles();
}

// Largest memory that the process had, in MB.
inline double peakMemory()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

} // namespace bench_support
