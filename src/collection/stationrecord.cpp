#include "collection/stationrecord.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "common/byteorder.h"

namespace collection {
namespace {

constexpr std::size_t floatsAt = offsetof(STATIONHDR, longitude), timesAt = offsetof(STATIONHDR, day),
                      placesAt = offsetof(STATIONHDR, dataOffset);

void swapHeader(std::byte* header)
{
    common::reverseBytes(header + floatsAt, 4, 4, header + floatsAt);
    common::reverseBytes(header + timesAt, 6, 2, header + timesAt);
    common::reverseBytes(header + placesAt, 2, 4, header + placesAt);
}

void exchangeTimes(STATIONHDR& header)
{
    std::swap(header.day, header.minute);
    std::swap(header.month, header.hour);
    std::swap(header.year, header.reserved);
}

RecordFault faultOfCounts(const STATIONHDR& header, const LEVELCOUNTS& counts, int variableCount)
{
    const int levels = counts[1];
    if (variableCount < 1 || levels < 1) return RecordFault::levels;
    int blocks = 1;
    for (int v = 2; v <= variableCount; ++v) {
        const int count = counts[static_cast<std::size_t>(v)];
        if (count < 0 || count > levels) return RecordFault::counts;
        blocks += count > 0;
    }
    const bool agree = header.valueCount == levels * blocks && header.valueCount <= common::maxCells;
    return agree ? RecordFault::none : RecordFault::cells;
}

bool blockExists(const STATIONHDR& header, std::int64_t dataSize)
{
    return header.dataOffset >= 0 &&
           header.dataOffset + std::int64_t{bytesACell} * header.valueCount <= dataSize;
}

bool positionsAreNumbers(const STATIONHDR& header)
{
    return std::isfinite(header.longitude) && std::isfinite(header.latitude) &&
           std::isfinite(header.bottomDepth) && std::isfinite(header.lastSampleDepth);
}

// A float is no finite number if all bits of its exponent are set: one more in the exponent's last place then
// carries into the sign, which was masked out. Two floats at a time; every load passes here.
bool allFinite(const float* values, std::size_t count)
{
    constexpr std::uint64_t exponents = 0x7F8000007F800000, one = 0x0080000000800000;
    constexpr std::uint64_t signs = 0x8000000080000000;
    std::uint64_t carried = 0;
    std::size_t i = 0;
    for (; i + 1 < count; i += 2) {
        std::uint64_t pair;
        std::memcpy(&pair, values + i, sizeof pair);
        carried |= (pair & exponents) + one;
    }
    return (carried & signs) == 0 && (i == count || std::isfinite(values[i]));
}

} // namespace

RecordFault examineRecord(const std::byte* record, const RECORDFORM& form, STATIONHDR& header,
                          LEVELCOUNTS& counts)
{
    const auto variables = static_cast<std::size_t>(form.variableCount);
    std::memcpy(&header, record, sizeof header);
    std::memcpy(&counts[1], record + sizeof header, 2 * variables);
    if (form.swapBytes) {
        swapHeader(reinterpret_cast<std::byte*>(&header));
        common::reverseBytes(&counts[1], variables, 2, &counts[1]);
    }
    if (form.foreignTimeOrder) exchangeTimes(header);
    header.cruise[20] = header.station[20] = header.type[1] = '\0'; // whatever the file says
    if (!positionsAreNumbers(header)) return RecordFault::position;
    const RecordFault fault = faultOfCounts(header, counts, form.variableCount);
    if (fault != RecordFault::none) return fault;
    return blockExists(header, form.dataSize) ? RecordFault::none : RecordFault::block;
}

bool labelsEnd(const std::byte* record)
{
    const auto ends = [record](std::size_t at, std::size_t size) {
        return std::memchr(record + at, 0, size) != nullptr;
    };
    return ends(offsetof(STATIONHDR, cruise), sizeof STATIONHDR::cruise) &&
           ends(offsetof(STATIONHDR, station), sizeof STATIONHDR::station) &&
           ends(offsetof(STATIONHDR, type), sizeof STATIONHDR::type);
}

std::size_t packRecord(const STATIONHDR& header, const LEVELCOUNTS* counts, const RECORDFORM& form,
                       std::byte* record)
{
    STATIONHDR stored = header;
    if (stored.longitude < 0) stored.longitude += 360;
    if (header.longitude < 0 && stored.longitude >= 360)
        stored.longitude = 0; // rounded up to the full circle
    if (form.foreignTimeOrder) exchangeTimes(stored);
    std::memcpy(record, &stored, sizeof stored);
    if (form.swapBytes) swapHeader(record);
    if (!counts) return sizeof stored;
    const auto variables = static_cast<std::size_t>(form.variableCount);
    std::byte* const behind = record + sizeof stored;
    std::memcpy(behind, &(*counts)[1], 2 * variables);
    if (form.swapBytes) common::reverseBytes(behind, variables, 2, behind);
    return sizeof stored + 2 * variables;
}

bool unpackCells(const std::byte* block, std::size_t cells, bool swapBytes, float* values,
                 std::uint8_t* flags)
{
    if (swapBytes) {
        common::reverseBytes(block, cells, sizeof(float), values);
    } else {
        std::memcpy(values, block, cells * sizeof(float));
    }
    std::memcpy(flags, block + cells * sizeof(float), cells);
    if (allFinite(values, cells)) return true;
    std::replace_if(
        values, values + cells, [](float value) { return !std::isfinite(value); }, common::MISSING_VALUE);
    return false;
}

} // namespace collection
