#pragma once

// Small listings for the tests of the import.

#include <fstream>
#include <string>
#include <vector>

#include "common/text.h"
#include "import/association.h"
#include "import/listingreader.h"
#include "import/spreadsheetfixture.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace testing_support {

inline std::string head4(const std::vector<std::string>& labels, int stations = 1)
{
    std::string text =
        "NVQ4.0 Listing\n File Name: casts.o4x\n      Type: HYD\n     Nstat: " + std::to_string(stations) +
        "\n Variables: " + std::to_string(labels.size()) + "\n\n";
    for (const std::string& label : labels) text += common::format("%-60s%2d.%1d\n", label.c_str(), 8, 2);
    return text + "\n";
}

inline std::string description3(const std::vector<std::string>& labels, int stations = 1)
{
    std::string text = common::format("Collection: casts     Type: HYD  Nvar: %3d  Nstat: %5d\n1\n2\n3\n",
                                      static_cast<int>(labels.size()), stations);
    int number = 0;
    for (const std::string& label : labels)
        text += common::format("%2d   %-25s     0.0     0.0     0.0    1.00    1.00  8.2\n", ++number,
                               label.c_str());
    return text;
}

inline const std::vector<std::string> threeLabels = {"Depth [m]", "Temperature [~$m~#C]", "Salinity [psu]"};

// A header line of version 4; its fields may be replaced one by one.
struct HEAD4 {
    std::string cruise = "A16", station = "12", type = "B", date = " 7/15/1995", longitude = "209.519",
                latitude = "-17.500", bottom = "3596", last = "10";
    int levels = 2, variables = 3;
    [[nodiscard]] std::string line() const
    {
        return common::format("# %-20s %20s %1s %s %7s %7s %5s %5s%5d %3d\n", cruise.c_str(), station.c_str(),
                              type.c_str(), date.c_str(), longitude.c_str(), latitude.c_str(), bottom.c_str(),
                              last.c_str(), levels, variables);
    }
    [[nodiscard]] std::string line3() const
    {
        return common::format("# %-10s %10s %1s %s %7s %7s %5s %5s %4d %3d\n", cruise.c_str(),
                              station.c_str(), type.c_str(), date.c_str(), longitude.c_str(),
                              latitude.c_str(), bottom.c_str(), last.c_str(), levels, variables);
    }
};

// A file and what reading it gives when each of its variables is a target.
class RListingFixture {
public:
    importing::LISTINGHEADER header;
    std::vector<READSTATION> stations;
    std::int64_t code = 0; // with which the reader ended
    std::int64_t bytes = 0;
    int lineNumber = 0;
    std::string currentLine, fault;
    importing::READACCOUNT account;
    std::vector<int> targetSources; // of the targets; empty: each variable its own
    RScriptedUser user;
    RTemporaryDirectory directory;

    [[nodiscard]] std::string path() const { return directory.file("casts.o4x"); }

    RListingFixture& read4(const std::string& content)
    {
        write("casts.o4x", content);
        if (importing::readListingHeader(path(), header, fault))
            readStations(importing::ListingForm::version4, path());
        expectAccount();
        return *this;
    }
    RListingFixture& read3(const std::string& description, const std::string& content)
    {
        write("casts.o3x", content);
        write("casts.var", description);
        if (importing::readListingDescription(directory.file("casts.var"), header, fault))
            readStations(importing::ListingForm::version3, directory.file("casts.o3x"));
        expectAccount();
        return *this;
    }

private:
    void write(const std::string& name, const std::string& content) const
    {
        std::ofstream(directory.file(name), std::ios::binary) << content;
    }
    void readStations(importing::ListingForm form, const std::string& file)
    {
        std::vector<collection::VARINFO> targets = header.variables;
        importing::associateByNumber(header.variables, targets);
        for (std::size_t v = 1; v < targets.size() && v <= targetSources.size(); ++v)
            targets[v].assocSource = targetSources[v - 1];
        importing::RListingReader reader(form, header, targets, {}, user);
        ASSERT_TRUE(reader.open(file));
        collection::STATIONDATA station;
        stations.clear();
        bytes = 0;
        while ((code = reader.readStation(station)) > 0) {
            bytes += code;
            stations.push_back(copyOf(station, static_cast<int>(targets.size()) - 1));
        }
        lineNumber = reader.lineNumber();
        currentLine = reader.currentLine();
        account = reader.account();
    }
    void expectAccount() const
    {
        EXPECT_EQ(account.lines,
                  account.headerLines + account.dataLines + account.blankLines + account.refusedLines);
        EXPECT_EQ(account.valuesRead, account.valuesDelivered + account.valuesRefused);
    }
};

} // namespace testing_support
