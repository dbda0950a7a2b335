#pragma once

// Small collections for the tests of the store and of what stands on it.

#include <cmath>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "collection/rcollection.h"
#include "common/text.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace testing_support {

inline constexpr float missing = common::MISSING_VALUE;

// Fills `station` from columns of equal length, the first of which is the primary variable; an empty column
// is a variable without data. All flags are `flag`.
inline void fillStation(collection::STATIONDATA& station, const std::vector<std::vector<float>>& columns,
                        std::uint8_t flag = 0)
{
    station.clear();
    const std::size_t levels = columns.at(0).size();
    std::size_t cell = 0;
    for (std::size_t v = 1; v <= columns.size(); ++v) {
        if (columns[v - 1].empty()) continue;
        station.offset.at(v) = static_cast<std::int32_t>(cell);
        for (std::size_t k = 0; k < levels; ++k, ++cell) {
            station.values[cell] = columns[v - 1].at(k);
            station.flags[cell] = flag;
        }
    }
    station.levelCount[1] = static_cast<std::int16_t>(levels);
    station.header.valueCount = static_cast<std::int32_t>(cell);
}

inline void label(collection::STATIONDATA& station, const std::string& cruise, const std::string& name,
                  const std::string& type = "*")
{
    common::copyText(station.header.cruise, cruise);
    common::copyText(station.header.station, name);
    common::copyText(station.header.type, type);
}

inline void place(collection::STATIONDATA& station, float longitude, float latitude, int year = 1995,
                  int month = 7, int day = 15)
{
    station.header.longitude = longitude;
    station.header.latitude = latitude;
    station.header.year = static_cast<std::int16_t>(year);
    station.header.month = static_cast<std::int16_t>(month);
    station.header.day = static_cast<std::int16_t>(day);
    station.header.hour = 12;
    station.header.minute = 34;
}

// Levels 0, 10, 20, ... and the other variables' values made from `seed`.
inline std::vector<std::vector<float>> profile(int levels, int variables, float seed = 1)
{
    std::vector<std::vector<float>> columns(static_cast<std::size_t>(variables));
    for (std::size_t v = 0; v < columns.size(); ++v) {
        for (int k = 0; k < levels; ++k) {
            columns[v].push_back(v == 0 ? 10.0f * static_cast<float>(k)
                                        : seed + 100.0f * static_cast<float>(v) + static_cast<float>(k));
        }
    }
    return columns;
}

// An open, empty, writable collection of its own in a directory of its own.
class RSampleCollection {
public:
    explicit RSampleCollection(int variables = 4, const std::string& name = "sample")
    {
        create(collection, variables, name);
        EXPECT_EQ(collection.openStationFiles(collection.path, user), collection::OpenFilesResult::ok);
    }

    void create(collection::RCollection& target, int variables, const std::string& name)
    {
        static const char* const labels[] = {"Depth [m]", "Temperature [~$m~#C]", "Salinity [psu]",
                                             "Oxygen [ml/l]"};
        target.directory = directory.path();
        target.name = name;
        target.path = directory.path() + name;
        target.tempDirectory = directory.path();
        target.writable = true;
        target.userName = "user";
        target.hostName = "host";
        target.variableCount = target.totalVariableCount = variables;
        for (int v = 1; v <= variables; ++v) {
            collection::VARINFO& variable = target.variables.at(static_cast<std::size_t>(v));
            variable = collection::emptyVariable(v);
            collection::setLabel(variable, v <= 4 ? labels[v - 1] : "Tracer " + std::to_string(v) + " [1]");
        }
        EXPECT_TRUE(target.createEmptyFiles());
    }

    // Appends (or stores at `number`) and says what the writer said.
    collection::WriteResult put(const std::vector<std::vector<float>>& columns, int number = 0,
                                const std::string& cruise = "A", const std::string& name = "1",
                                const std::string& type = "*")
    {
        fillStation(station, columns);
        label(station, cruise, name, type);
        place(station, 10, 20);
        return collection.writeStation(number, station, false);
    }

    // Writes the description, closes and opens again.
    collection::OpenFilesResult reopen()
    {
        EXPECT_TRUE(collection.writeVarFile(collection.path));
        collection.closeStationFiles();
        return collection.openStationFiles(collection.path, user);
    }

    [[nodiscard]] std::string bytes(const std::string& suffix) const
    {
        return common::readFile(collection.path + suffix).value_or("missing");
    }

    void setBytes(const std::string& suffix, std::string_view content) const
    {
        const common::FilePtr file = common::openFile(collection.path + suffix, "wb");
        ASSERT_TRUE(file);
        ASSERT_EQ(std::fwrite(content.data(), 1, content.size(), file.get()), content.size());
    }

    RTemporaryDirectory directory;
    RScriptedUser user;
    collection::RCollection collection;
    collection::STATIONDATA station;
};

} // namespace testing_support
