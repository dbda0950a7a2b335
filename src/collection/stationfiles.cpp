// Opening and closing of the station files, and reading from them.

#include <algorithm>
#include <cstring>

#include "collection/stationstreams.h"
#include "common/byteorder.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view boxTitle = "Open Collection";

std::string_view hostMagic()
{
    return common::hostIsLittleEndian ? littleEndianMagic : bigEndianMagic;
}

// How many whole records a table of this size holds.
std::int64_t recordsIn(std::int64_t fileSize, int recordSize)
{
    return fileSize <= magicSize ? 0 : (fileSize - magicSize) / recordSize;
}

// True if the files of a collection that calls itself empty hold something that must not be lost.
bool holdStations(const std::string& path, int recordSize)
{
    const std::int64_t hob = common::fileSize(path + ".hob"), dob = common::fileSize(path + ".dob");
    return recordsIn(hob, recordSize) > 0 || (hob < magicSize && dob > 0);
}

// The magic of a header table that is there; empty if there is none.
std::string presentMagic(const std::string& file)
{
    RBlockFile table;
    const std::byte* const bytes =
        table.open(file, RBlockFile::Mode::read) ? table.view(0, magicSize) : nullptr;
    const std::string_view magic(reinterpret_cast<const char*>(bytes), bytes ? magicSize : 0);
    return magic == littleEndianMagic || magic == bigEndianMagic ? std::string(magic) : std::string();
}

// The magic that an empty collection gets: the wanted one, else the present one, else the host's.
std::string magicOfEmpty(const std::string& wanted, const std::string& present)
{
    if (!wanted.empty()) return wanted;
    return present.empty() ? std::string(hostMagic()) : present;
}

bool isUnreadable(const std::string& file, RBlockFile& stream, RBlockFile::Mode mode, common::RUser& user)
{
    if (stream.open(file, mode)) return false;
    user.about(boxTitle, file + " can't be opened.");
    return true;
}

} // namespace

OpenFilesResult RCollection::openStationFiles(const std::string& file, common::RUser& user)
{
    closeStationFiles();
    if (readVarFile(file, {}, user) != VarFileResult::ok) return OpenFilesResult::badDescription;
    files_->form = {.variableCount = variableCount};
    files_->describedCount = stationCount;
    const OpenFilesResult result = stationCount == 0 ? openEmptyFiles(user) : openFilledFiles(user);
    if (result != OpenFilesResult::ok) {
        closeStationFiles();
        return result;
    }
    files_->form.swapBytes = swapBytes;
    files_->form.foreignTimeOrder = foreignTimeOrder;
    files_->form.dataSize = files_->dob.size();
    isOpen = true;
    kind = 1;
    return result;
}

OpenFilesResult RCollection::openEmptyFiles(common::RUser& user)
{
    if (holdStations(path, headerRecordSize)) {
        user.about(boxTitle, path + ".var:4: the description tells of no stations, but " + path +
                                 ".hob or .dob holds some. The files are left alone.");
        return OpenFilesResult::noHeaderFile;
    }
    if (!writable) {
        user.about(boxTitle, path + ".var: the collection holds no stations and is write-protected.");
        return OpenFilesResult::noHeaderFile;
    }
    const std::string present = presentMagic(path + ".hob"), magic = magicOfEmpty(newMagic, present);
    // A magic that is right isn't touched: without one a power failure would leave data without a table.
    const bool keepsTable = magic == present;
    constexpr auto anew = RBlockFile::Mode::create;
    const auto mode = keepsTable ? RBlockFile::Mode::update : anew;
    if (isUnreadable(path + ".dob", files_->dob, anew, user)) return OpenFilesResult::noDataFile;
    if (isUnreadable(path + ".hob", files_->hob, mode, user)) return OpenFilesResult::noHeaderFile;
    RBlockFile& hob = files_->hob;
    const bool written = !keepsTable              ? hob.write(0, std::as_bytes(std::span(magic)))
                         : hob.size() > magicSize ? hob.truncate(magicSize)
                                                  : true;
    if (!written) {
        user.about(boxTitle, path + ".hob can't be written.");
        return OpenFilesResult::noHeaderFile;
    }
    swapBytes = magic != hostMagic();
    foreignTimeOrder = magic == bigEndianMagic;
    return OpenFilesResult::ok;
}

OpenFilesResult RCollection::openFilledFiles(common::RUser& user)
{
    const auto mode = writable ? RBlockFile::Mode::update : RBlockFile::Mode::read;
    if (isUnreadable(path + ".dob", files_->dob, mode, user)) return OpenFilesResult::noDataFile;
    if (isUnreadable(path + ".hob", files_->hob, mode, user)) return OpenFilesResult::noHeaderFile;
    const std::byte* const bytes = files_->hob.view(0, magicSize);
    const std::string_view magic(reinterpret_cast<const char*>(bytes), bytes ? magicSize : 0);
    if (bytes && magic != littleEndianMagic && magic != bigEndianMagic) {
        user.about(path + ".hob", "Incompatible collection format!");
        return OpenFilesResult::badMagic;
    }
    const std::int64_t records = recordsIn(files_->hob.size(), headerRecordSize);
    if (!bytes || records == 0) {
        user.about(boxTitle, path + ".hob holds no station header, but the description tells of " +
                                 common::format("%d stations.", stationCount));
        return OpenFilesResult::noHeaderFile;
    }
    if (records < stationCount) {
        user.note(common::format("%s.hob: ends behind the header of station %lld of %d, the later ones are "
                                 "left out",
                                 path.c_str(), static_cast<long long>(records), stationCount));
        stationCount = static_cast<int>(records);
        writable = false;
    }
    swapBytes = magic != hostMagic();
    foreignTimeOrder = magic == bigEndianMagic;
    return OpenFilesResult::ok;
}

void RCollection::closeStationFiles()
{
    if (isOpen) rollBackChange();
    closeStreams();
}

void RCollection::closeStreams()
{
    files_->hob.close();
    files_->dob.close();
    files_->removed.clear();
    files_->ends.reset();
    isOpen = false;
    kind = 0;
}

bool RCollection::readHeaderBlock(int first, int count, std::vector<std::byte>& block)
{
    if (kind != 1) return false;
    const auto recordSize = static_cast<std::size_t>(files_->form.recordSize());
    const std::size_t size = static_cast<std::size_t>(count) * recordSize;
    if (block.size() < size) block.resize(size);
    const int end = first + count;
    for (std::byte* to = block.data(); first < end;) { // one run of records that stand in a row
        int run = end - first;
        if (const auto slot = files_->placeOf(first); !files_->removed.isEmpty())
            while (files_->placeOf(first + run - 1) !=
                   slot + static_cast<std::int64_t>(recordSize) * (run - 1))
                run = (run + 1) / 2;
        const std::span<std::byte> out(to, static_cast<std::size_t>(run) * recordSize);
        if (!files_->hob.read(files_->placeOf(first), out)) return false;
        first += run;
        to += out.size();
    }
    return true;
}

bool RCollection::unpackRecord(const std::byte* record, STATIONHDR& header, LEVELCOUNTS& counts) const
{
    return collection::unpackRecord(record, files_->form, header, counts);
}

bool RCollection::readStationHeader(int number, STATIONHDR& header, LEVELCOUNTS* counts)
{
    if (kind != 1 || number < 1 || number > stationCount) return false;
    const std::byte* const record =
        files_->hob.view(files_->placeOf(number), static_cast<std::size_t>(files_->form.recordSize()));
    LEVELCOUNTS ignored;
    return record && unpackRecord(record, header, counts ? *counts : ignored);
}

LoadResult RCollection::loadStation(int number, STATIONDATA& station, bool derive)
{
    station.clear();
    station.collection = this;
    if (number < 1 || number > stationCount) return LoadResult::badNumber;
    if (!readStationHeader(number, station.header, &station.levelCount)) {
        station.clear();
        return LoadResult::badHeader;
    }
    int running = 0;
    for (int v = 1; v <= variableCount; ++v) {
        if (station.levelCount[static_cast<std::size_t>(v)] == 0) continue;
        station.offset[static_cast<std::size_t>(v)] = running;
        running += station.levels();
    }
    const auto cells = static_cast<std::size_t>(station.header.valueCount);
    const std::byte* const block = files_->dob.view(station.header.dataOffset, bytesACell * cells);
    if (!block) {
        station.clear();
        return LoadResult::badData;
    }
    unpackCells(block, cells, swapBytes, station.values.get(), station.flags.get());
    station.number = number;
    if (derive) applyStages(station);
    return LoadResult::ok;
}

// Bad values are blanked before anything is computed from them; the sample range comes behind, so that a
// calculator sees the whole profile.
void RCollection::applyStages(STATIONDATA& station)
{
    if (!stages) return;
    if (qualityLimit < common::noQualityLimit) stages->applyQualityLimit(station);
    if (totalVariableCount > variableCount) stages->computeDerived(station);
    if (criteria.sampleVariable >= 1 && criteria.sampleVariable <= totalVariableCount) {
        stages->applySampleRange(station);
    }
}

bool RCollection::flushStationFiles()
{
    return kind == 1 && (!isChanging() || flushHeld()) && files_->dob.sync() && files_->hob.sync();
}

} // namespace collection
