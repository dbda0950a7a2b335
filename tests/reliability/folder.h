#pragma once

// A folder with small collections, how the program opens them, and what is in them. Temporary files go into
// the folder "tmp" beside it.

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/collectionlock.h"
#include "collection/rcollection.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace reliability {

using Contents =
    std::map<std::string, std::string>; // of collections, by name; "none" for one that isn't there

// What a collection holds, as far as a user can tell: description, headers, counts, values and flags of all
// stations in their order, bit for bit. Where the blocks stand in the file is left out.
[[nodiscard]] std::string contentOf(collection::RCollection& collection);

// A collection that is open for writing as in the program: locked, recovered, with inventory and lists.
class ROpenCollection {
public:
    ROpenCollection(const std::string& folder, const std::string& name);
    ~ROpenCollection() { close(); }
    ROpenCollection(const ROpenCollection&) = delete;
    ROpenCollection& operator=(const ROpenCollection&) = delete;

    [[nodiscard]] bool isOpen() const { return collection.isOpen; }
    void close();                         // and gives up the lock
    void select(std::string_view cruise); // the stations of these cruises
    // Everything that was told, one a line.
    [[nodiscard]] std::string told() const;

    testing_support::RScriptedUser user;
    collection::RCollectionLock lock;
    collection::RCollection collection;
    collection::STATIONDATA station;
    std::string folder;
};

struct CAST {
    std::string cruise, station;
    int levels = 5;
    float seed = 1; // of the values
    int variables = 4;
};

// Appends a station.
void append(ROpenCollection& open, const CAST& cast);
// A spreadsheet of stations that an import takes for those of the same labels.
[[nodiscard]] std::string spreadsheetOf(std::span<const CAST> casts);
[[nodiscard]] std::string listingOf(std::span<const CAST> casts); // the same of version 4

// Makes a collection of these stations and closes it. magic: "NVQ4.0" or "NVQsol".
void makeCollection(const std::string& folder, const std::string& name, std::string_view magic,
                    std::span<const CAST> casts);
// The same with three cruises in disorder, empty stations, dead space, and all side files.
void makeSample(const std::string& folder, const std::string& name, std::string_view magic);

// The names of all files of a folder, ordered.
[[nodiscard]] std::vector<std::string> filesOf(const std::string& folder);
void copyFolder(const std::string& from, const std::string& to); // `to` is emptied; times are kept

struct EXAMINATION {
    Contents contents;
    std::vector<std::string> faults; // of the opening, of the check, files left behind
};
// Opens and closes the collections of these names as the program would, and looks at everything.
[[nodiscard]] EXAMINATION examine(const std::string& folder, std::span<const std::string> names,
                                  std::span<const std::string> otherFiles);

// A sentence about contents that should be one of some states.
[[nodiscard]] std::string describe(const Contents& contents);

} // namespace reliability
