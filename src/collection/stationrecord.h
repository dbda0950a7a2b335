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

// Why a record can't be true, the first that applies.
enum class RecordFault {
    none,
    position, // a position or depth that is no number
    levels,   // no levels
    counts,   // a variable with more values than levels, or fewer than none
    cells,    // cells that aren't levels times blocks, or more than a station holds
    block     // a data block beyond the `.dob` file
};
// Unpacks a record of form.recordSize() bytes; if it has a fault the results are only what stands there.
// Counts of variables beyond form.variableCount are left alone.
[[nodiscard]] RecordFault examineRecord(const std::byte* record, const RECORDFORM& form, STATIONHDR& header,
                                        LEVELCOUNTS& counts);
// The same in one word: true if the record has no fault.
[[nodiscard]] inline bool unpackRecord(const std::byte* record, const RECORDFORM& form, STATIONHDR& header,
                                       LEVELCOUNTS& counts)
{
    return examineRecord(record, form, header, counts) == RecordFault::none;
}
// True if the labels and the type of a record have an end inside their fields, which examineRecord gives
// them.
[[nodiscard]] bool labelsEnd(const std::byte* record);

// The other way: a longitude below 0 is stored with 360 added. `counts` may be null: then only the 80 bytes
// of the header are filled. Returns the bytes used.
std::size_t packRecord(const STATIONHDR& header, const LEVELCOUNTS* counts, const RECORDFORM& form,
                       std::byte* record);

// The cells of a data block of 5 * cells bytes. A value that is no finite number becomes MISSING_VALUE; false
// if there was one.
bool unpackCells(const std::byte* block, std::size_t cells, bool swapBytes, float* values,
                 std::uint8_t* flags);

} // namespace collection
