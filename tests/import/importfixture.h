#pragma once

// Imports of spreadsheets into a small collection of three variables.

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "collection/check.h"
#include "import/importfile.h"
#include "import/importspreadsheet.h"
#include "import/spreadsheetfixture.h"
#include "samplecollection.h"

namespace testing_support {

using Labels = std::vector<std::string>;

inline const std::string threeVariables =
    metaHeader + "\tDepth [m]\tQF\tTemperature [~$m~#C]\tQF\tSalinity [psu]\tQF\n";

inline std::string cast(const std::string& station, int levels, float temperature = 10,
                        const std::string& cruise = "A16")
{
    std::string text;
    for (int k = 0; k < levels; ++k)
        text += replaced(
            line(station, common::format("%d\t0\t%g\t0\t35\t0", 10 * k, static_cast<double>(temperature))),
            "A16", cruise);
    return text;
}

// A collection of three variables and imports into it.
class RImports {
public:
    RSampleCollection sample{3};
    importing::IMPORTOPTIONS options;
    importing::IMPORTRESULT result;
    std::vector<std::string> stored; // labels, as the run told them

    RImports()
    {
        sample.collection.userName = "ann";
        sample.collection.hostName = "ship";
        options.run.stationStored = [this](const collection::STATIONHDR& h) {
            stored.emplace_back(h.station);
        };
    }
    [[nodiscard]] collection::RCollection& collection() { return sample.collection; }
    [[nodiscard]] RScriptedUser& user() { return sample.user; }
    [[nodiscard]] std::string path() const { return sample.directory.file("casts.txt"); }

    RImports& import(const std::string& data, importing::ImportMode mode = importing::ImportMode::addReplace)
    {
        return importFile(threeVariables + data, mode);
    }
    RImports& importFile(const std::string& content,
                         importing::ImportMode mode = importing::ImportMode::addReplace)
    {
        std::ofstream(path(), std::ios::binary) << content;
        user().messages.clear();
        user().notes.clear();
        stored.clear();
        options.mode = mode;
        result = importSpreadsheet(collection(), sample.station, path(), options, user());
        if (filesAreThere) expectSoundFiles();
        return *this;
    }
    bool filesAreThere = true;
    // Whatever an import did or met, the files agree.
    void expectSoundFiles()
    {
        RScriptedUser checker;
        for (const auto& finding : collection::checkCollection(collection().path, checker).findings) {
            EXPECT_NE(finding.kind, collection::FINDING::inconsistency) << finding.text;
        }
    }
    [[nodiscard]] READSTATION load(int number)
    {
        EXPECT_EQ(collection().loadStation(number, sample.station, false), collection::LoadResult::ok);
        return copyOf(sample.station, 3);
    }
    [[nodiscard]] std::vector<std::string> labels()
    {
        std::vector<std::string> found;
        for (int n = 1; n <= collection().stationCount; ++n) found.push_back(load(n).label());
        return found;
    }
    // What was told, the accounts of the reports cut off.
    [[nodiscard]] std::vector<std::string> messages()
    {
        std::vector<std::string> cut;
        for (const std::string& text : user().messages)
            cut.push_back(text.substr(0, text.find("\n\nLines: ")));
        return cut;
    }
    [[nodiscard]] bool told(const std::string& part)
    {
        const auto& m = user().messages;
        return std::any_of(m.begin(), m.end(),
                           [&](const std::string& t) { return t.find(part) != std::string::npos; });
    }
};

} // namespace testing_support
