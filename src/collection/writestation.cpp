// Writing of stations. New data go to the disk before the header that refers to them; whatever fails leaves
// the header table as it was.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "collection/recordmove.h"
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
    if (number < 1 || number > stationCount) return appendStation(station, 0);
    STATIONHDR old;
    LEVELCOUNTS oldCounts{};
    if (!readStationHeader(number, old, &oldCounts)) return WriteResult::badHeader;
    const bool outgrown = number < stationCount && station.header.valueCount > old.valueCount;
    return outgrown ? appendStation(station, number) : overwriteStation(number, station, old, oldCounts);
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

// Writes into the station's own block. What stood there comes back if the new cells don't reach the file.
WriteResult RCollection::overwriteStation(int number, STATIONDATA& station, const STATIONHDR& old,
                                          const LEVELCOUNTS& oldCounts)
{
    station.header.dataOffset = old.dataOffset;
    std::vector<std::byte>& saved = files_->oldBlock;
    saved.resize(static_cast<std::size_t>(bytesACell) * static_cast<std::size_t>(old.valueCount));
    if (!files_->dob.read(old.dataOffset, saved)) return WriteResult::badHeader;
    const std::int64_t dataEnd = files_->dob.size();
    WriteResult result = WriteResult::dataNotWritten;
    if (putCells(station)) {
        if (putRecord(number, station.header, station.levelCount)) {
            station.number = number;
            return WriteResult::ok;
        }
        static_cast<void>(putRecord(number, old, oldCounts));
        result = WriteResult::headerNotWritten;
    }
    static_cast<void>(files_->dob.write(old.dataOffset, saved));
    cutData(dataEnd);
    return result;
}

// Writes behind the last block. displaced: the number of the station that this one replaces, 0 if it is new.
WriteResult RCollection::appendStation(STATIONDATA& station, int displaced)
{
    std::int64_t end = 0;
    if (stationCount > 0) {
        STATIONHDR last;
        if (!readStationHeader(stationCount, last, nullptr)) return WriteResult::badHeader;
        end = last.dataOffset + std::int64_t{bytesACell} * last.valueCount;
    }
    constexpr int largest = std::numeric_limits<std::int32_t>::max();
    if (end > largest || stationCount == largest) return WriteResult::tooLarge;
    station.header.dataOffset = static_cast<std::int32_t>(end);
    const std::int64_t dataEnd = files_->dob.size();
    WriteResult result = WriteResult::dataNotWritten;
    if (putCells(station)) {
        if (displaced > 0 ? takeOutOfPlace(displaced, station) : addRecord(station)) {
            station.number = stationCount;
            if (displaced > 0) noteMoved(displaced, station.header);
            return WriteResult::ok;
        }
        result = WriteResult::headerNotWritten;
    }
    cutData(dataEnd);
    return result;
}

bool RCollection::addRecord(const STATIONDATA& station)
{
    if (putRecord(stationCount + 1, station.header, station.levelCount)) {
        ++stationCount;
        return true;
    }
    static_cast<void>(files_->hob.truncate(files_->placeOf(stationCount + 1))); // half a record
    return false;
}

// Takes away what a failed write left behind the end of the data.
void RCollection::cutData(std::int64_t end)
{
    if (files_->dob.size() > end) static_cast<void>(files_->dob.truncate(end));
    files_->form.dataSize = files_->dob.size();
}

// Moves the records behind `number` down by one and puts the station's own at the end.
bool RCollection::takeOutOfPlace(int number, const STATIONDATA& station)
{
    std::vector<std::byte>& record = files_->record;
    record.resize(static_cast<std::size_t>(files_->form.recordSize()));
    packRecord(station.header, &station.levelCount, files_->form, record.data());
    RRecordMove move(files_->hob, files_->placeOf(1), record.size(), stationCount);
    return move.replace(number, record);
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
    return files_->hob.write(files_->placeOf(number), files_->record);
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
    const bool written = files_->dob.write(station.header.dataOffset, std::as_bytes(values),
                                           std::as_bytes(std::span(station.flags.get(), cells)));
    files_->form.dataSize = files_->dob.size();
    return written;
}

bool RCollection::writeStationHeader(int number, const STATIONHDR& header, const LEVELCOUNTS* counts)
{
    if (kind != 1 || !writable || number < 1 || number > stationCount) return false;
    if (!isStorable(header) || !std::isfinite(header.lastSampleDepth))
        return false; // it couldn't be read again
    files_->record.resize(static_cast<std::size_t>(files_->form.recordSize()));
    const std::size_t size = packRecord(header, counts, files_->form, files_->record.data());
    return files_->hob.write(files_->placeOf(number), std::span<const std::byte>(files_->record).first(size));
}

} // namespace collection
