#pragma once

// The forms of a station in the two files: the header record of the `.hob` file and the data block of the
// `.dob` file. These functions see bytes; what opens, places and reports stands elsewhere.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "collection/stationdata.h"

namespace collection {

inline constexpr std::string_view littleEndianMagic = "NVQ4.0", bigEndianMagic = "NVQsol";
inline constexpr int magicSize = 6;
inline constexpr int bytesACell = 5; // a float and a flag

// How the records of one collection are laid out.
struct RECORDFORM {
    int variableCount = 0;         // counts behind each header, 0 to 50
    bool swapBytes = false;        // the file's byte order is not the host's
    bool foreignTimeOrder = false; // the time fields are exchanged in pairs
    std::int64_t dataSize = 0;     // bytes of the `.dob` file

    [[nodiscard]] int recordSize() const { return 80 + 2 * variableCount; }
};

// Unpacks a record of form.recordSize() bytes. False, with undefined results, if it can't be true: positions
// that are no numbers, no levels, counts that contradict each other, a data block beyond the `.dob` file.
// Counts of variables beyond form.variableCount are left alone.
[[nodiscard]] bool unpackRecord(const std::byte* record, const RECORDFORM& form, STATIONHDR& header,
                                LEVELCOUNTS& counts);

// The other way: a longitude below 0 is stored with 360 added. `counts` may be null: then only the 80 bytes
// of the header are filled. Returns the bytes used.
std::size_t packRecord(const STATIONHDR& header, const LEVELCOUNTS* counts, const RECORDFORM& form,
                       std::byte* record);

// The cells of a data block of 5 * cells bytes. A value that is no finite number becomes MISSING_VALUE.
void unpackCells(const std::byte* block, std::size_t cells, bool swapBytes, float* values,
                 std::uint8_t* flags);

} // namespace collection
