#pragma once

// The way of every file into an open collection: what it is, what is settled about it, the run.

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "import/conversions.h"
#include "import/importoptions.h"
#include "import/stationreader.h"

namespace importing {

enum class Format : int { spreadsheet, listing3, listing4 };

struct FORMATROW {
    Format format;
    std::string_view word;    // in a command file
    std::string_view caption; // of the file dialog
    std::string_view filter;
    int commandId; // of the menu entry for a single file
};
inline constexpr auto importFormats = std::to_array<FORMATROW>({
    {Format::spreadsheet, "spreadsheet", "Select SpreadSheet Data File ...",
     "NVQ SpreadSheet Files (*.txt *.TXT);;All Files (*.* *)", 40313},
    {Format::listing3, "o3x", "Select .o3x Data File ...",
     "NVQ3.0 Data Files (*.o3x *.O3X);;All Files (*.* *)", 40314},
    {Format::listing4, "o4x", "Select .o4x Import Data File ...",
     "NVQ4.x List Files (*.o4x *.O4X);;All Files (*.* *)", 40315},
});

// Imports a file into the open, writable collection. A path that ends in ".lst" is a list of files, which are
// imported one by one in one run with one report (filelist.h). `station` is the buffer through which stations
// go. Afterwards description and inventory are up to date; lists of selected stations are not.
IMPORTRESULT importFile(Format format, collection::RCollection& collection, collection::STATIONDATA& station,
                        const std::string& path, const IMPORTOPTIONS& options, common::RUser& user);

// True for a path that ends in ".lst", whatever its case.
[[nodiscard]] bool isFileList(std::string_view path);

// --- the steps that the formats share

// The collection's variables, index 0 is no variable.
[[nodiscard]] std::span<collection::VARINFO> targetsOf(collection::RCollection& collection);

// False, after a message, if the collection is not open for writing.
[[nodiscard]] bool canImport(const collection::RCollection& collection, common::RUser& user);

// What settleImport works on.
struct IMPORTSOURCE {
    const std::string& path;
    std::span<collection::VARINFO> sources; // index 0 is no variable
    bool mayUseDefaults = false;            // the reader fills targets from their default values
};

// Links sources and targets and settles mode, check and cruise labels, by the settler if there is one. False
// if it cancelled or if nothing would be imported, which was told; `result` says which.
[[nodiscard]] bool settleImport(collection::RCollection& collection, const IMPORTSOURCE& source,
                                const IMPORTOPTIONS& options, RImportRun& run, IMPORTRESULT& result,
                                common::RUser& user);

// The variables that conversions need: by `.idv`, else by the settler, whose answer is noted there.
[[nodiscard]] KEYVARIABLES keyVariables(collection::RCollection& collection,
                                        std::span<const collection::VARINFO> sources,
                                        RImportSettler* settler);

// How often a run shows its progress.
struct PROGRESSSTEP {
    int stations = 10;
    std::int64_t bytes = 50000;
};

// Reads and stores all stations, tells a reading error, and returns the code with which the reader ended.
std::int64_t importStations(RStationReader& reader, RImportRun& run, collection::STATIONDATA& station,
                            const PROGRESSSTEP& step = {});

// What a run came to.
[[nodiscard]] IMPORTRESULT resultOf(const RImportRun& run, std::int64_t code);

} // namespace importing
