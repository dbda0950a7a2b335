#pragma once

// What became of everything that an import was given. Each sum is complete: what was read is what was stored
// and what was not, and why.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "import/merge.h"

namespace importing {

// What a reader did with its file.
struct READACCOUNT {
    // lines == headerLines + dataLines + blankLines + refusedLines
    std::int64_t lines = 0;
    std::int64_t headerLines = 0; // in front of the data, and those that begin a station in a listing
    std::int64_t dataLines = 0;   // that became a level of a station
    std::int64_t blankLines = 0;
    std::int64_t refusedLines = 0; // not read to their end, or of a station that was not delivered

    // valuesRead == valuesDelivered + valuesRefused
    std::int64_t valuesRead =
        0; // numbers other than the missing value that a target takes, defaults included
    std::int64_t valuesDelivered = 0; // in the stations that were delivered
    std::int64_t valuesRefused = 0;   // of stations, levels and variables that a station can't hold
    std::int64_t unreadable = 0;      // fields that hold something, but no number: no value
    std::string firstUnreadable;      // where: line 17, column "Oxygen": "n/a"

    std::int64_t partly = 0; // fields of which only the front is a number: that is the value
    std::string firstPartly; // where: line 17, column "Oxygen": "1.5D+03", read up to "1.5"
    int linesCut = 0;        // with text behind a line end of another kind than the file's: it was not read
    int firstCutLine = 0;    // the first of them

    int stationsRefused = 0; // told and passed over by the reader
    int labelsCut = 0;       // stations with a label that was longer than its field
    std::string firstCut;    // the first such label, whole, as UTF-8
};

// What the import run did with what the reader delivered. Values are those that aren't missing.
struct STOREACCOUNT {
    // delivered == added + replaced + merged + kept + notFound + tooLarge + unreadable + unwritten + undone
    int delivered = 0;
    int added = 0, replaced = 0;
    int merged = 0;                         // also updated
    int kept = 0;                           // the stored one stays, by answer or setting
    int notFound = 0;                       // merge or update, and there is no such station
    std::vector<std::string> firstNotFound; // the labels of the first few of them, as UTF-8
    int tooLarge = 0;                       // the merged one would have had too many levels or cells
    int unreadable = 0;                     // merge or update, and the stored one can't be read
    int unwritten = 0;                      // the run ended at them
    int undone = 0;                         // were stored, and were taken back at the end
    // The values of all stations that were delivered:
    // valuesDelivered == valuesStored + valuesAveraged + valuesMatched + valuesDropped
    std::int64_t valuesDelivered = 0;
    std::int64_t valuesStored = 0;
    std::int64_t valuesAveraged = 0; // merge: the mean with the stored value
    std::int64_t valuesMatched = 0;  // of variable 1: the level was there
    std::int64_t valuesDropped = 0;  // of stations that were not stored, of levels with nothing but depth,
                                     // and where an update has two for one level
};

READACCOUNT& operator+=(READACCOUNT& sum, const READACCOUNT& more);
STOREACCOUNT& operator+=(STOREACCOUNT& sum, const STOREACCOUNT& more);

// Notes a station that merge or update did not find.
void addNotFound(STOREACCOUNT& account, std::string_view label);
// Nothing of it is stored any more.
void takeBack(STOREACCOUNT& account);

// For the report: a line each for lines, stations and values, and one for each thing that was refused.
[[nodiscard]] std::string accountText(const READACCOUNT& read, const STOREACCOUNT& stored, ImportMode mode);
// The same as one line for the log.
[[nodiscard]] std::string accountLine(const READACCOUNT& read, const STOREACCOUNT& stored, ImportMode mode);

} // namespace importing
