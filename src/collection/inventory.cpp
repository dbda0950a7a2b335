// The inventory of a collection: its tables, the `.inv` file and the cruise indices of the `.cid` file.

#include <algorithm>
#include <new>

#include "collection/cruisetable.h"
#include "collection/damage.h"
#include "collection/filetimes.h"
#include "collection/rcollection.h"
#include "common/byteorder.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view busyText = "Building inventory ...";
constexpr std::string_view buildTitle = "buildInventory", noRoomToBuild = "Could not Allocate Workspace",
                           readTitle = "readInventory",
                           noRoomToRead = "Could not allocate CRUISEINFO workspace";

// The memory goes too: there was none left.
void drop(std::vector<CRUISEINFO>& table, int& count)
{
    std::vector<CRUISEINFO>().swap(table);
    count = 0;
}

// Updates the progress each time that a step of stations is done.
class RProgress {
public:
    RProgress(int total, common::RUser& user)
        : total_(total), step_(std::max(100, total / 20)), next_(step_), user_(user)
    {
    }
    void reach(int done)
    {
        if (done < next_) return;
        next_ += step_;
        user_.setProgress(100.0 * done / total_);
    }

private:
    int total_, step_, next_;
    common::RUser& user_;
};

bool allWithin(const std::vector<std::int32_t>& indices, std::int32_t end)
{
    return std::all_of(indices.begin(), indices.end(),
                       [end](std::int32_t index) { return index >= 0 && index < end; });
}

} // namespace

int RCollection::readInventory(bool force, common::RUser& user)
{
    const bool current = !force && kind == 1 && isCurrent(path + ".inv", path + ".hob");
    try {
        if (current && readInventoryFile()) return cruiseCount;
    } catch (const std::bad_alloc&) {
        drop(cruises, cruiseCount);
        sampleCount = 0;
        user.about(readTitle, noRoomToRead);
        return 0;
    }
    if (makeInventoryTables(true, user) > 0 || stationCount == 0)
        static_cast<void>(writeInventoryFile()); // it can be made again at any time
    return cruiseCount;
}

int RCollection::makeInventoryTables(bool allStations, common::RUser& user)
{
    if (!allStations && selectedStationCount == stationCount && !cruises.empty()) {
        selectedCruises = cruises;
        selectedCruiseCount = cruiseCount;
        return selectedCruiseCount;
    }
    return buildInventory(allStations, user);
}

int RCollection::buildInventory(bool allStations, common::RUser& user)
{
    if (kind != 1) return 0;
    try {
        const common::RBusyGuard busy(user, busyText);
        return allStations ? buildFullInventory(user) : buildSelectedInventory(user);
    } catch (const std::bad_alloc&) {
        drop(allStations ? cruises : selectedCruises, allStations ? cruiseCount : selectedCruiseCount);
        if (allStations) sampleCount = 0;
    }
    user.about(buildTitle, noRoomToBuild);
    return 0;
}

int RCollection::buildFullInventory(common::RUser& user)
{
    RCruiseTable table(variableCount);
    RDamageReport damaged;
    RProgress progress(stationCount, user);
    std::vector<std::int32_t> entryOf(static_cast<std::size_t>(stationCount), -1);
    const bool read = scanHeaders(
        1, stationCount,
        [&](int number, const STATIONHDR& header, const LEVELCOUNTS& counts) {
            entryOf[static_cast<std::size_t>(number - 1)] = table.add(number, header, counts);
            progress.reach(number);
            return true;
        },
        [&](int number) { damaged.add(number); });
    if (!read) user.note(path + ".hob: can't be read to its end");
    damaged.tell(path, user);
    std::vector<std::int32_t> places;
    cruises = table.takeSorted(&places);
    cruiseCount = static_cast<int>(cruises.size());
    sampleCount = samplesOf(cruises);
    for (std::int32_t& entry : entryOf) entry = entry < 0 ? 0 : places[static_cast<std::size_t>(entry)];
    writeCruiseIndices(entryOf);
    return cruiseCount;
}

int RCollection::buildSelectedInventory(common::RUser& user)
{
    RCruiseTable table(variableCount);
    RDamageReport damaged;
    RProgress progress(selectedStationCount, user);
    int done = 0;
    const auto add = [&](std::int32_t number) {
        STATIONHDR header;
        LEVELCOUNTS counts{};
        if (readStationHeader(number, header, &counts)) {
            table.add(number, header, counts);
        } else {
            damaged.add(number);
        }
        progress.reach(++done);
    };
    forEachSelected(add);
    damaged.tell(path, user);
    selectedCruises = table.takeSorted();
    selectedCruiseCount = static_cast<int>(selectedCruises.size());
    return selectedCruiseCount;
}

// The station numbers of the `.val` list: the first integer of each 16-byte record.
void RCollection::forEachSelected(const std::function<void(std::int32_t)>& visit) const
{
    std::FILE* const list = valFile.get();
    if (!list || std::fseek(list, 0, SEEK_SET) != 0) return;
    std::int32_t records[1024][4];
    for (int left = selectedStationCount; left > 0;) {
        const auto wanted = static_cast<std::size_t>(std::min(left, 1024));
        const std::size_t got = std::fread(records, sizeof records[0], wanted, list);
        for (std::size_t i = 0; i < got; ++i) visit(records[i][0]);
        if (got < wanted) return;
        left -= static_cast<int>(got);
    }
}

bool RCollection::writeInventoryFile()
{
    if (!writable || kind != 1) return false;
    const std::string text = formatInventory(cruises, stationCount, sampleCount, variableCount);
    if (!common::writeFile(path + ".inv", text)) return false;
    letTimePass(path + ".inv"); // a change of the headers must make it out of date
    return true;
}

bool RCollection::readInventoryFile()
{
    const auto text = common::readFile(path + ".inv", largestInventory(stationCount));
    INVENTORY read;
    if (!text || !parseInventory(*text, read) || read.stations != stationCount) return false;
    cruises = std::move(read.entries);
    cruiseCount = static_cast<int>(cruises.size());
    sampleCount = read.samples;
    return true;
}

std::vector<std::int32_t> RCollection::readCruiseIndices(bool force)
{
    std::vector<std::int32_t> indices;
    if (!force && isCurrent(path + ".cid", path + ".hob") && readCruiseIndexFile(indices)) return indices;
    indices.assign(static_cast<std::size_t>(std::max(0, stationCount)), 0);
    RCruiseTable table(0);
    for (const CRUISEINFO& entry : cruises) {
        STATIONHDR header{};
        std::copy(std::begin(entry.cruise), std::end(entry.cruise), std::begin(header.cruise));
        std::copy(std::begin(entry.type), std::end(entry.type), std::begin(header.type));
        table.add(0, header, {});
    }
    const bool read = scanHeaders(
        1, stationCount,
        [&](int number, const STATIONHDR& header, const LEVELCOUNTS&) {
            const int entry = table.find(common::fieldText(header.cruise), common::fieldText(header.type));
            if (entry >= 0) indices[static_cast<std::size_t>(number - 1)] = entry;
            return true;
        },
        [](int) {});
    if (read) {
        writeCruiseIndices(indices);
        if (writable) letTimePass(path + ".cid");
    }
    return indices;
}

bool RCollection::readCruiseIndexFile(std::vector<std::int32_t>& indices) const
{
    const auto bytes = static_cast<std::int64_t>(sizeof(std::int32_t)) * stationCount;
    const std::string file = path + ".cid";
    if (common::fileSize(file) != bytes) return false;
    const auto content = common::readFile(file, bytes);
    if (!content || static_cast<std::int64_t>(content->size()) != bytes) return false;
    indices.resize(static_cast<std::size_t>(stationCount));
    if (swapBytes) {
        common::reverseBytes(content->data(), indices.size(), sizeof(std::int32_t), indices.data());
    } else {
        std::copy(content->begin(), content->end(), reinterpret_cast<char*>(indices.data()));
    }
    return allWithin(indices, std::max(1, cruiseCount));
}

void RCollection::writeCruiseIndices(std::vector<std::int32_t> indices) const
{
    if (!writable) return;
    if (swapBytes) common::reverseBytes(indices.data(), indices.size(), sizeof(std::int32_t), indices.data());
    static_cast<void>(common::writeFile(path + ".cid", {reinterpret_cast<const char*>(indices.data()),
                                                        indices.size() * sizeof(std::int32_t)}));
}

} // namespace collection
