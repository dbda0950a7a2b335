#pragma once

// The selected stations as a spreadsheet that the import reads again.

#include <string>
#include <vector>

#include "collection/rcollection.h"
#include "common/user.h"

namespace exporting {

struct SPREADSHEETOPTIONS {
    std::vector<int> variables; // numbers of the variables to write; empty: all collection variables
    // Stands for a value that is missing, with the flag 8; empty: value and flag stay empty.
    std::string missingText;
};

// Writes the stations of the selected list, in its order, after the quality limit and the sample range, to a
// UTF-8 file that is replaced when it is complete. `station` is the buffer through which they go; the station
// that it holds is loaded again afterwards. False if the user declined or aborted, or if the file can't be
// written, which is told. Stations that can't be read are left out and told in one note.
[[nodiscard]] bool exportSpreadsheet(collection::RCollection& collection, collection::STATIONDATA& station,
                                     const std::string& path, const SPREADSHEETOPTIONS& options,
                                     common::RUser& user);

// --- the lines of it, in UTF-8 with their line feeds

[[nodiscard]] std::string spreadsheetHeaderLine(const collection::RCollection& collection,
                                                const std::vector<int>& variables);
// One line a level.
void appendStation(std::string& text, const collection::STATIONDATA& station,
                   const std::vector<int>& variables, const std::string& missingText);

} // namespace exporting
