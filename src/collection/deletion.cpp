// Takes stations out of a collection. Only the header table and the description are written anew; the blocks
// of the stations stay as dead space.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <unistd.h>

#include "collection/rewriting.h"
#include "collection/stationstreams.h"
#include "collection/varfile.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view confirmTitle = "Confirm Deletion ...";
constexpr std::string_view title = "Deleting stations ...";
constexpr int recordsABlock = 4096;

using MARKS = std::vector<std::uint8_t>; // by station number; 1: the station goes

MARKS noMarks(int stations)
{
    return MARKS(static_cast<std::size_t>(stations) + 1);
}

int countOf(std::span<const std::uint8_t> marks)
{
    return static_cast<int>(std::count(marks.begin(), marks.end(), std::uint8_t{1}));
}

bool isEmpty(const LEVELCOUNTS& counts, int variables)
{
    return std::all_of(counts.begin() + 2, counts.begin() + 1 + std::max(1, variables),
                       [](std::int16_t count) { return count == 0; });
}

bool isConfirmed(const std::string& question, common::RUser& user)
{
    return user.question(confirmTitle, question, common::Answer::yes) == common::Answer::yes;
}

// Moves the records of stations that stay to the front of a block. Returns their number.
std::size_t packKept(std::span<std::byte> block, std::size_t recordSize, std::span<const std::uint8_t> marks)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i]) continue;
        if (kept != i)
            std::memcpy(block.data() + kept * recordSize, block.data() + i * recordSize, recordSize);
        ++kept;
    }
    return kept;
}

// Takes a change back on every way out on which it was not committed.
class RRollBack {
public:
    explicit RRollBack(RCollection& collection) : collection_(collection) {}
    ~RRollBack()
    {
        if (collection_.isChanging()) collection_.rollBackChange();
    }
    RRollBack(const RRollBack&) = delete;
    RRollBack& operator=(const RRollBack&) = delete;

private:
    RCollection& collection_;
};

bool tellUnwritten(const std::string& file, common::RUser& user)
{
    user.about(title, file + " can't be written. The disk may be full.\n\nThe collection is as it was.");
    return false;
}

// The records of a header table, raw: reads `count` of them from station `first` on.
using ReadRecords = std::function<bool(int first, int count, std::vector<std::byte>& block)>;

struct TABLECOPY {
    std::string from, to; // names of the tables
    std::size_t recordSize = 0;
    std::span<const std::uint8_t> marks;
};

// Writes the records of stations that stay behind the magic. False after a message, or if the user broke it
// off.
bool copyKept(const TABLECOPY& copy, const ReadRecords& read, RBlockFile& out, common::RUser& user)
{
    const int stations = static_cast<int>(copy.marks.size()) - 1, step = std::max(stations / 100, 30) + 1;
    std::int64_t end = magicSize;
    std::vector<std::byte> block;
    for (int first = 1, next = step; first <= stations; first += recordsABlock) {
        const int count = std::min(recordsABlock, stations - first + 1);
        if (!read(first, count, block)) {
            user.about(title, copy.from + " can't be read.\n\nThe collection is as it was.");
            return false;
        }
        const auto marks =
            copy.marks.subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(count));
        const std::size_t kept = packKept(block, copy.recordSize, marks) * copy.recordSize;
        if (!out.write(end, std::span(block).first(kept))) return tellUnwritten(copy.to, user);
        end += static_cast<std::int64_t>(kept);
        for (; next < first + count; next += step) user.setProgress(100.0 * next / stations);
        if (user.askAbort("Really want to abort?", title)) return false;
    }
    return out.sync() || tellUnwritten(copy.to, user);
}

} // namespace

int RCollection::deleteSelectedStations(common::RUser& user)
{
    if (kind != 1) return 0;
    MARKS marks = noMarks(stationCount);
    forEachSelected([&](std::int32_t number) {
        if (number >= 1 && number <= stationCount) marks[static_cast<std::size_t>(number)] = 1;
    });
    const int count = countOf(marks);
    if (count == 0 || !isConfirmed(common::format("Really want to delete %d stations?", count), user))
        return 0;
    return dropStations(marks, common::format("DELETE %d Stations", count), user);
}

int RCollection::deleteEmptyStations(common::RUser& user, bool* noneFound)
{
    if (noneFound) *noneFound = false;
    if (kind != 1) return 0;
    const MARKS marks = marksOfEmpty(user);
    if (marks.empty()) return 0;
    const int count = countOf(marks);
    if (count == 0) {
        user.about(confirmTitle, "No empty station found.");
        if (noneFound) *noneFound = true;
        return 0;
    }
    if (!isConfirmed(common::format("Really want to delete %d empty stations?", count), user)) return 0;
    return dropStations(marks, common::format("DELETE %d Empty Stations", count), user);
}

int RCollection::deleteStation(int number, common::RUser& user)
{
    if (kind != 1 || number < 1 || number > stationCount) return 0;
    if (!isConfirmed("Really want to delete current station?", user)) return 0;
    std::vector<std::byte> record;
    STATIONHDR header{};
    LEVELCOUNTS counts{};
    // The labels of a damaged header are as good as any.
    if (readHeaderBlock(number, 1, record)) static_cast<void>(unpackRecord(record.data(), header, counts));
    MARKS marks = noMarks(stationCount);
    marks[static_cast<std::size_t>(number)] = 1;
    const auto text = [](std::span<const char> field) { return std::string(common::fieldText(field)); };
    return dropStations(
        marks, "DELETE_SINGLE " + text(header.cruise) + " " + text(header.station) + " " + text(header.type),
        user);
}

// A damaged header says nothing about its station, which stays. Empty if the headers can't be read.
std::vector<std::uint8_t> RCollection::marksOfEmpty(common::RUser& user)
{
    MARKS marks = noMarks(stationCount);
    const bool read = scanHeaders(
        1, stationCount,
        [&](int number, const STATIONHDR&, const LEVELCOUNTS& counts) {
            marks[static_cast<std::size_t>(number)] = isEmpty(counts, variableCount) ? 1 : 0;
            return true;
        },
        [](int) {});
    if (read) return marks;
    user.note(path + ".hob: can't be read to its end");
    return {};
}

// Returns how many stations went; 0 after a message, or if the user broke it off.
int RCollection::dropStations(std::span<const std::uint8_t> marks, std::string_view logLine,
                              common::RUser& user)
{
    const int count = countOf(marks);
    const RViewKeeper view(*this, true);
    if (!busyWith(title, user, [&] { return replaceHeaders(marks, logLine, user); })) return 0;
    addLogLine(logLine);
    readInventory(true, user);
    return count;
}

bool RCollection::replaceHeaders(std::span<const std::uint8_t> marks, std::string_view operation,
                                 common::RUser& user)
{
    if (!beginChange(operation)) {
        user.about(title, path + ".hob: the collection can't be changed. It is write-protected, or its "
                                 "files are no longer the ones that were opened.");
        return false;
    }
    const RRollBack unlessCommitted(*this);
    if (!writeKeptHeaders(marks, user)) return false;
    using enum FILEACTION::Kind;
    // what was made from the old headers is never newer than the new ones
    const FILEACTION actions[] = {{rename, name + ".ho", name + ".hob"},
                                  {rename, name + ".va", name + ".var"},
                                  {remove, name + ".inv", {}},
                                  {remove, name + ".cid", {}}};
    bool done = false;
    const int kept = std::max(0, stationCount - countOf(marks));
    if (commitReplacement(actions, kept, user, &done) || done) return true;
    user.about(title, path + ".hob can't be replaced.\n\nThe collection is as it was.");
    return false;
}

// The new header table and description, beside the old ones and on the disk.
bool RCollection::writeKeptHeaders(std::span<const std::uint8_t> marks, common::RUser& user)
{
    const std::string table = path + ".ho", description = path + ".va";
    for (const std::string& file : {table, description}) {
        if (!common::existsAtAll(file)) continue;
        user.about(title, file + " is in the way.\n\nMove or rename it, and try again.");
        return false;
    }
    const std::string made[] = {name + ".ho", name + ".va"};
    if (!noteMadeFiles(made)) return tellUnwritten(journalPath(path), user);
    RBlockFile out;
    const std::string_view magic = foreignTimeOrder ? bigEndianMagic : littleEndianMagic;
    if (!out.open(table, RBlockFile::Mode::create) || !out.write(0, std::as_bytes(std::span(magic))))
        return tellUnwritten(table, user);
    const TABLECOPY copy = {path + ".hob", table, static_cast<std::size_t>(headerRecordSize), marks};
    const auto read = [this](int first, int count, std::vector<std::byte>& block) {
        return readHeaderBlock(first, count, block);
    };
    if (!copyKept(copy, read, out, user)) return false;
    const int kept = std::max(0, stationCount - countOf(marks));
    return writeNotedFile(description, formatVarFile(name, type, kept, variableCount, variables)) ||
           tellUnwritten(description, user);
}

} // namespace collection
