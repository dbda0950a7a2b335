#pragma once

// What a collection holds, as text that a test can compare.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "collection/rcollection.h"
#include "common/byteorder.h"
#include "common/files.h"
#include "common/text.h"
#include "samplecollection.h"

namespace testing_support {

// One line a station: labels, position, time, and each variable's values and flags.
inline std::string stationText(collection::RCollection& collection, int number)
{
    collection::STATIONDATA station;
    if (collection.loadStation(number, station, false) != collection::LoadResult::ok) return "unreadable";
    const collection::STATIONHDR& header = station.header;
    std::string text =
        common::format("%s %s %s %g %g %g %g %d/%d/%d %d:%d", header.cruise, header.station, header.type,
                       header.longitude, header.latitude, header.bottomDepth, header.lastSampleDepth,
                       header.month, header.day, header.year, header.hour, header.minute);
    for (int v = 1; v <= collection.variableCount; ++v) {
        const int offset = station.offset.at(static_cast<std::size_t>(v));
        text += common::format(" | %d:", v);
        for (int k = 0; offset >= 0 && k < station.levels(); ++k) {
            const auto cell = static_cast<std::size_t>(offset + k);
            text += common::format(" %g(%d)", station.values[cell], station.flags[cell]);
        }
    }
    return text;
}

inline std::vector<std::string> contentsOf(collection::RCollection& collection)
{
    std::vector<std::string> lines;
    for (int n = 1; n <= collection.stationCount; ++n) lines.push_back(stationText(collection, n));
    return lines;
}

// What a fresh opening of the files finds.
inline std::vector<std::string> contentsOnDisk(const std::string& path, bool writable = false)
{
    RScriptedUser user;
    collection::RCollection collection;
    collection.writable = writable;
    if (collection.openStationFiles(path, user) != collection::OpenFilesResult::ok)
        return {"can't be opened"};
    return contentsOf(collection);
}

inline std::vector<std::string> sorted(std::vector<std::string> lines)
{
    std::sort(lines.begin(), lines.end());
    return lines;
}

// "cruise/station/type" of every station, in order.
inline std::vector<std::string> labelsOf(collection::RCollection& collection)
{
    std::vector<std::string> labels;
    for (int n = 1; n <= collection.stationCount; ++n) {
        collection::STATIONHDR header;
        const bool read = collection.readStationHeader(n, header, nullptr);
        labels.push_back(read ? std::string(header.cruise) + "/" + header.station + "/" + header.type : "?");
    }
    return labels;
}

// Names of the files of a directory, sorted; locks left out.
inline std::vector<std::string> filesIn(const std::string& directory)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        const std::string name = entry.path().filename().string();
        if (!name.ends_with(".lck")) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// The bytes of every file of a directory.
inline std::vector<std::pair<std::string, std::string>> snapshotOf(const std::string& directory)
{
    std::vector<std::pair<std::string, std::string>> files;
    for (const std::string& name : filesIn(directory))
        files.emplace_back(name, common::readFile(directory + name).value_or("unreadable"));
    return files;
}

inline constexpr bool oneByteOrder = common::hostIsLittleEndian;
inline const std::string hostMagic = oneByteOrder ? "NVQ4.0" : "NVQsol";
inline const std::string otherMagic = oneByteOrder ? "NVQsol" : "NVQ4.0";

// A sample collection whose files are in the given magic's byte order.
class RMagicCollection : public RSampleCollection {
public:
    explicit RMagicCollection(const std::string& magic, int variables = 4, const std::string& name = "sample")
        : RSampleCollection(variables, name)
    {
        collection.closeStationFiles();
        collection.newMagic = magic;
        std::filesystem::remove(collection.path + ".hob");
        std::filesystem::remove(collection.path + ".dob");
        EXPECT_EQ(collection.openStationFiles(collection.path, user), collection::OpenFilesResult::ok);
    }
};

} // namespace testing_support
