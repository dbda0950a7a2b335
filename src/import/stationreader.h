#pragma once

#include <cstdint>
#include <string_view>

#include "collection/stationdata.h"
#include "import/account.h"

namespace importing {

// What a reader returns instead of a number of bytes.
enum ReadCode : int {
    readEnd = 0, // also after an error that the reader has told
    readNoMemory = -1,
    readBadHeader = -2,
    readBadData = -3,
    readCancelled = -4
};

// Fills stations from a file; knows no collection's files and no window.
class RStationReader {
public:
    virtual ~RStationReader() = default;
    // The next station: the bytes of the file that it took (above 0), or a ReadCode.
    [[nodiscard]] virtual std::int64_t readStation(collection::STATIONDATA& station) = 0;
    // The line last read, for messages: its number from 1, and its text.
    [[nodiscard]] virtual int lineNumber() const = 0;
    [[nodiscard]] virtual std::string_view currentLine() const = 0;
    // What became of the file so far; complete when readStation() has returned no station.
    [[nodiscard]] virtual const READACCOUNT& account() const = 0;
};

} // namespace importing
