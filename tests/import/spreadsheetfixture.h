#pragma once

// Small spreadsheets for the tests of the import.

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/text.h"
#include "import/association.h"
#include "import/spreadsheetreader.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace testing_support {

inline const std::string metaHeader =
    "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]";

// The header line of a standard layout with two variables.
inline const std::string twoVariables = metaHeader + "\tDepth [m]\tQF\tTemperature [°C]\tQF\n";

// A line of metadata fields and data fields, divided by tabs.
inline std::string line(const std::string& station, const std::string& data,
                        const std::string& date = "07/15/1995", const std::string& time = "12:34",
                        const std::string& position = "10.5\t-20.25")
{
    return "A16\t" + station + "\tB\t" + date + "\t" + time + "\t" + position + "\t4000\t" + data + "\n";
}

inline std::string replaced(const std::string& text, const std::string& from, const std::string& to)
{
    return common::replaceAll(text, from, to);
}

// What a reader made of one station.
struct READSTATION {
    collection::STATIONHDR header;
    collection::LEVELCOUNTS counts;
    std::vector<std::vector<float>> values; // by variable from 1; empty without data
    std::vector<std::vector<int>> flags;

    [[nodiscard]] std::string label() const { return header.station; }
    bool operator==(const READSTATION& other) const
    {
        return std::memcmp(&header, &other.header, sizeof header) == 0 && counts == other.counts &&
               values == other.values && flags == other.flags;
    }
};

inline READSTATION copyOf(const collection::STATIONDATA& station, int variables)
{
    READSTATION copy{station.header, station.levelCount, {{}}, {{}}};
    for (int v = 1; v <= variables; ++v) {
        const int offset = station.offset[static_cast<std::size_t>(v)];
        copy.values.emplace_back();
        copy.flags.emplace_back();
        for (int k = 0; offset >= 0 && k < station.levels(); ++k) {
            copy.values.back().push_back(station.values[static_cast<std::size_t>(offset + k)]);
            copy.flags.back().push_back(station.flags[static_cast<std::size_t>(offset + k)]);
        }
    }
    return copy;
}

// What must hold for every account, whatever the file.
inline void expectSums(const importing::READACCOUNT& account)
{
    EXPECT_EQ(account.lines,
              account.headerLines + account.dataLines + account.blankLines + account.refusedLines);
    EXPECT_EQ(account.valuesRead, account.valuesDelivered + account.valuesRefused);
    EXPECT_EQ(account.unreadable == 0, account.firstUnreadable.empty());
    EXPECT_EQ(account.partly == 0, account.firstPartly.empty());
    EXPECT_EQ(account.linesCut == 0, account.firstCutLine == 0);
    EXPECT_EQ(account.labelsCut == 0, account.firstCut.empty());
}

// A file and what reading it gives when each of its variables is a target.
class RSpreadsheetFixture {
public:
    importing::HeaderResult result = importing::HeaderResult::unreadable;
    importing::SPREADSHEETHEADER header;
    std::vector<READSTATION> stations;
    std::int64_t code = 0;  // with which the reader ended
    std::int64_t bytes = 0; // sum of what it returned
    bool endedEarly = false;
    importing::READACCOUNT account;
    RScriptedUser user;
    RTemporaryDirectory directory;

    [[nodiscard]] std::string path() const { return directory.file("casts.txt"); }

    void write(const std::string& content) const
    {
        std::ofstream(path(), std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
    }

    RSpreadsheetFixture& read(const std::string& content, importing::RSpreadsheetSettler* settler = nullptr)
    {
        write(content);
        result = importing::readSpreadsheetHeader(path(), settler, user, header);
        if (result == importing::HeaderResult::ok) readStations();
        return *this;
    }

    void readStations()
    {
        std::vector<collection::VARINFO> targets = header.sources;
        importing::associateByNumber(header.sources, targets);
        importing::RSpreadsheetReader reader(header, targets, {}, user);
        ASSERT_TRUE(reader.open(path()));
        collection::STATIONDATA station;
        stations.clear();
        bytes = 0;
        while ((code = reader.readStation(station)) > 0) {
            bytes += code;
            stations.push_back(copyOf(station, header.sourceCount()));
        }
        endedEarly = reader.endedEarly();
        account = reader.account();
    }
};

} // namespace testing_support
