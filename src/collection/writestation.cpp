// Writing of stations. New data go to the disk before the header that refers to them; whatever fails leaves
// the header table as it was.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "collection/stationstreams.h"
#include "common/byteorder.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr int bottleLevels = 250; // a station of more levels is a CTD cast

using BlockList = std::vector<std::size_t>; // numbers of variables that have a block, ascending

bool isStorable(const STATIONHDR& header)
{
    return std::isfinite(header.longitude) && std::isfinite(header.latitude) &&
           std::isfinite(header.bottomDepth);
}

// Every block lies in the record's arrays.
bool offsetsAreValid(const STATIONDATA& station)
{
    return station.offset[1] == 0 &&
           std::all_of(station.offset.begin() + 2, station.offset.end(), [&](std::int32_t offset) {
               return offset < 0 ||
                      (offset >= station.levels() && offset <= station.capacity - station.levels());
           });
}

// A value that is no number is no data.
int cleanBlock(float* values, int levels)
{
    int count = 0;
    for (int k = 0; k < levels; ++k) {
        if (!std::isfinite(values[k])) values[k] = common::MISSING_VALUE;
        count += values[k] != common::MISSING_VALUE;
    }
    return count;
}

// Counts the values of every variable; those without any lose their block.
BlockList keptBlocks(STATIONDATA& station)
{
    BlockList kept;
    cleanBlock(station.values.get(), station.levels());
    for (std::size_t v = 2; v < station.offset.size(); ++v) {
        const std::int32_t offset = station.offset[v];
        const int values = offset < 0 ? 0 : cleanBlock(station.values.get() + offset, station.levels());
        if (values > 0) {
            kept.push_back(v);
        } else {
            station.offset[v] = -1;
        }
        station.levelCount[v] = static_cast<std::int16_t>(values);
    }
    return kept;
}

void moveCells(const STATIONDATA& station, std::int32_t from, std::int32_t to, std::vector<float>& values,
               std::vector<std::uint8_t>& flags)
{
    const auto levels = static_cast<std::size_t>(station.levels());
    std::memcpy(values.data() + to, station.values.get() + from, levels * sizeof(float));
    std::memcpy(flags.data() + to, station.flags.get() + from, levels);
}

// Puts the blocks one behind the other in the order of `kept`. Returns the cells in use.
std::int32_t packBlocks(STATIONDATA& station, const BlockList& kept, std::vector<float>& values,
                        std::vector<std::uint8_t>& flags)
{
    std::int32_t end = station.levels();
    bool inPlace = true;
    for (const std::size_t v : kept) {
        inPlace = inPlace && station.offset[v] == end;
        end += station.levels();
    }
    if (inPlace) return end;
    values.resize(static_cast<std::size_t>(end));
    flags.resize(static_cast<std::size_t>(end));
    moveCells(station, 0, 0, values, flags);
    std::int32_t running = station.levels();
    for (const std::size_t v : kept) {
        moveCells(station, station.offset[v], running, values, flags);
        station.offset[v] = running;
        running += station.levels();
    }
    std::memcpy(station.values.get(), values.data(), static_cast<std::size_t>(end) * sizeof(float));
    std::memcpy(station.flags.get(), flags.data(), static_cast<std::size_t>(end));
    return end;
}

// Orders the levels of the first `cells` cells by the primary variable; equal ones keep their order.
void sortLevels(STATIONDATA& station, int cells, std::vector<float>& values, std::vector<std::uint8_t>& flags)
{
    const auto levels = static_cast<std::size_t>(station.levels());
    const float* const primary = station.values.get();
    if (std::is_sorted(primary, primary + levels)) return;
    std::vector<std::size_t> index(levels);
    std::iota(index.begin(), index.end(), std::size_t{0});
    std::stable_sort(index.begin(), index.end(),
                     [primary](std::size_t a, std::size_t b) { return primary[a] < primary[b]; });
    const auto size = static_cast<std::size_t>(cells);
    values.assign(station.values.get(), station.values.get() + size);
    flags.assign(station.flags.get(), station.flags.get() + size);
    for (std::size_t block = 0; block < size; block += levels) {
        for (std::size_t k = 0; k < levels; ++k) {
            station.values[block + k] = values[block + index[k]];
            station.flags[block + k] = flags[block + index[k]];
        }
    }
}

} // namespace

WriteResult RCollection::writeStation(int number, STATIONDATA& station, bool sort)
{
    if (!isOpen || kind != 1 || !writable || stationCount < 0) return WriteResult::notOpen;
    const WriteResult prepared = prepareStation(station, sort);
    if (prepared != WriteResult::ok) return prepared;
    if (number < 1 || number > stationCount)
        return mayHoldMore() ? appendStation(station, 0) : WriteResult::dataNotWritten;
    return asOneChange("WRITE_STATION", [&] {
        STATIONHDR old;
        if (!readStationHeader(number, old, nullptr)) return WriteResult::badHeader;
        return hasOutgrown(number, station, old) ? appendStation(station, number)
                                                 : overwriteStation(number, station, old);
    });
}

// Finds the ends of the data blocks, once an opening: what the last header says alone would let a wrong one
// lead into the blocks of others. False if the last header can't be read.
bool RCollection::findDataEnds()
{
    if (files_->ends) return true;
    DATAENDS ends;
    bool lastIsRead = stationCount == 0;
    const auto visit = [&](int number, const STATIONHDR& header, const LEVELCOUNTS&) {
        const std::int64_t end = header.dataOffset + std::int64_t{bytesACell} * header.valueCount;
        if (number == stationCount) {
            ends.last = end;
            lastIsRead = true;
        } else {
            ends.others = std::max(ends.others, end);
        }
        return true;
    };
    // where the block of a damaged header ends nobody knows
    const auto damaged = [&](int) { ends.others = files_->dob.size(); };
    if (!scanHeaders(1, stationCount, visit, damaged) || !lastIsRead) return false;
    files_->ends = ends;
    return true;
}

// Only the last block of the file can grow.
bool RCollection::hasOutgrown(int number, const STATIONDATA& station, const STATIONHDR& old)
{
    if (station.header.valueCount <= old.valueCount) return false;
    return number < stationCount || !findDataEnds() || files_->ends->others > files_->ends->last;
}

// Settles all that follows from the cells: counts, blocks, type, order, deepest sample.
WriteResult RCollection::prepareStation(STATIONDATA& station, bool sort)
{
    const int levels = station.levels();
    if (levels < 0) return WriteResult::tooLarge; // more levels than the count can hold
    if (levels == 0 || station.header.valueCount == 0) return WriteResult::noLevels;
    if (levels > station.capacity || !offsetsAreValid(station)) return WriteResult::tooLarge;
    if (!isStorable(station.header)) return WriteResult::badHeader;
    const BlockList kept = keptBlocks(station);
    if (levels * (1 + static_cast<int>(kept.size())) > station.capacity) return WriteResult::tooLarge;
    const std::int32_t cells = packBlocks(station, kept, files_->valueScratch, files_->flagScratch);
    const auto stored = std::count_if(kept.begin(), kept.end(), [this](std::size_t v) {
        return v <= static_cast<std::size_t>(variableCount);
    });
    station.header.valueCount = levels * (1 + static_cast<std::int32_t>(stored));
    const std::string_view letter = common::fieldText(station.header.type);
    if (letter.empty() || letter == "*") {
        common::copyText(station.header.type, levels > bottleLevels ? "C" : "B");
    }
    if (sort) sortLevels(station, cells, files_->valueScratch, files_->flagScratch);
    if (type == "HYD") {
        const float last = station.values[static_cast<std::size_t>(levels - 1)];
        station.header.lastSampleDepth = last == common::MISSING_VALUE ? 0.0f : last;
    } else if (!std::isfinite(station.header.lastSampleDepth)) {
        station.header.lastSampleDepth = 0.0f;
    }
    return WriteResult::ok;
}

// Writes into the station's own block.
WriteResult RCollection::overwriteStation(int number, STATIONDATA& station, const STATIONHDR& old)
{
    station.header.dataOffset = old.dataOffset;
    const auto bytes = bytesACell * static_cast<std::size_t>(station.header.valueCount);
    const auto recordSize = static_cast<std::size_t>(files_->form.recordSize());
    if (!saveOld(JournalFile::dob, old.dataOffset, bytes) ||
        !saveOld(JournalFile::hob, files_->placeOf(number), recordSize) || !putCells(station))
        return WriteResult::dataNotWritten;
    if (!putRecord(number, station.header, station.levelCount)) return WriteResult::headerNotWritten;
    if (files_->ends && number == stationCount)
        files_->ends->last = old.dataOffset + static_cast<std::int64_t>(bytes);
    station.number = number;
    return WriteResult::ok;
}

// Writes behind the last block. displaced: the number of the station that this one replaces, 0 if it is new.
WriteResult RCollection::appendStation(STATIONDATA& station, int displaced)
{
    if (!findDataEnds()) return WriteResult::badHeader;
    constexpr int largest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t end = files_->ends->end();
    if (end > largest || stationCount == largest) return WriteResult::full;
    station.header.dataOffset = static_cast<std::int32_t>(end);
    const std::int64_t dataSize = files_->dob.size();
    if (!putCells(station)) {
        cutData(dataSize);
        return WriteResult::dataNotWritten;
    }
    if (displaced > 0) {
        files_->removed.remove(displaced);
        --stationCount;
    }
    if (!addRecord(station)) { // never for a displaced one: within a change nothing fails here
        cutData(dataSize);
        return WriteResult::headerNotWritten;
    }
    files_->ends = {end, end + std::int64_t{bytesACell} * station.header.valueCount};
    station.number = stationCount;
    if (displaced > 0) noteMoved(displaced, station.header);
    return WriteResult::ok;
}

bool RCollection::addRecord(const STATIONDATA& station)
{
    if (putRecord(stationCount + 1, station.header, station.levelCount)) {
        ++stationCount;
        return true;
    }
    if (!isChanging())
        static_cast<void>(files_->hob.truncate(files_->placeOf(stationCount + 1))); // half a record
    return false;
}

// Takes away what a failed write left behind the end of the data.
void RCollection::cutData(std::int64_t end)
{
    if (files_->dob.size() > end) static_cast<void>(files_->dob.truncate(end));
    files_->form.dataSize = files_->dob.size();
}

// The inventory in memory follows a station that moved to the end.
void RCollection::noteMoved(int number, const STATIONHDR& header)
{
    for (CRUISEINFO& entry : cruises) {
        if (entry.firstNumber > number) --entry.firstNumber;
        if (entry.lastNumber > number) --entry.lastNumber;
        if (common::fieldText(entry.cruise) == common::fieldText(header.cruise) &&
            common::fieldText(entry.type) == common::fieldText(header.type)) {
            entry.lastNumber = stationCount;
        }
    }
}

bool RCollection::putRecord(int number, const STATIONHDR& header, const LEVELCOUNTS& counts)
{
    files_->record.resize(static_cast<std::size_t>(files_->form.recordSize()));
    packRecord(header, &counts, files_->form, files_->record.data());
    return put(JournalFile::hob, files_->placeOf(number), files_->record);
}

bool RCollection::putCells(const STATIONDATA& station)
{
    const auto cells = static_cast<std::size_t>(station.header.valueCount);
    std::span<const float> values(station.values.get(), cells);
    if (swapBytes) {
        files_->valueScratch.resize(cells);
        common::reverseBytes(values.data(), cells, sizeof(float), files_->valueScratch.data());
        values = files_->valueScratch;
    }
    return put(JournalFile::dob, station.header.dataOffset, std::as_bytes(values),
               std::as_bytes(std::span(station.flags.get(), cells)));
}

bool RCollection::writeStationHeader(int number, const STATIONHDR& header, const LEVELCOUNTS* counts)
{
    if (kind != 1 || !writable || number < 1 || number > stationCount) return false;
    if (!isStorable(header) || !std::isfinite(header.lastSampleDepth))
        return false; // it couldn't be read again
    const auto write = [&] {
        STATIONHDR old;
        const bool sameBlock = readStationHeader(number, old, nullptr) &&
                               old.dataOffset == header.dataOffset && old.valueCount == header.valueCount;
        files_->record.resize(static_cast<std::size_t>(files_->form.recordSize()));
        const std::size_t size = packRecord(header, counts, files_->form, files_->record.data());
        const std::span<const std::byte> bytes = std::span<const std::byte>(files_->record).first(size);
        if (!put(JournalFile::hob, files_->placeOf(number), bytes)) return WriteResult::headerNotWritten;
        if (!sameBlock) files_->ends.reset();
        return WriteResult::ok;
    };
    return asOneChange("EDIT_HEADER", write) == WriteResult::ok;
}

} // namespace collection
