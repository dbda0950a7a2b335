// Rewrites a collection in the order of its cruises and station labels, without dead space.

#include <algorithm>
#include <filesystem>
#include <limits>
#include <new>

#include "collection/cruisetable.h"
#include "collection/damage.h"
#include "collection/rewriting.h"
#include "collection/sortkey.h"
#include "collection/stationrecord.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view title = "Sorting and condensing collection ...";

// Where a station goes: entry of the inventory, then label, then number.
struct PLACE {
    std::int32_t entry, number;
    std::int64_t key;
};

// The entries of the inventory by cruise and type, for a scan in the order of the numbers.
class REntryIndex {
public:
    explicit REntryIndex(std::span<const CRUISEINFO> entries) : entries_(entries)
    {
        for (const CRUISEINFO& entry : entries) {
            STATIONHDR header{};
            std::copy(std::begin(entry.cruise), std::end(entry.cruise), std::begin(header.cruise));
            std::copy(std::begin(entry.type), std::end(entry.type), std::begin(header.type));
            const auto place = static_cast<std::size_t>(table_.add(0, header, {}));
            const auto number = static_cast<std::int32_t>(&entry - entries.data());
            if (place == entryOf_.size()) entryOf_.push_back(number);
        }
    }

    // -1 for a station that no entry counts.
    [[nodiscard]] std::int32_t entryOf(int number, const STATIONHDR& header) const
    {
        const int place = table_.find(common::fieldText(header.cruise), common::fieldText(header.type));
        if (place < 0) return -1;
        const std::int32_t entry = entryOf_[static_cast<std::size_t>(place)];
        const CRUISEINFO& info = entries_[static_cast<std::size_t>(entry)];
        return number >= info.firstNumber && number <= info.lastNumber ? entry : -1;
    }

private:
    std::span<const CRUISEINFO> entries_;
    RCruiseTable table_{0};
    std::vector<std::int32_t> entryOf_;
};

// The stations in their new order, as far as headers and inventory agree; damaged ones are told.
std::vector<PLACE> newOrder(RCollection& collection, std::int64_t& dataBytes, common::RUser& user)
{
    const REntryIndex index(collection.cruises);
    RDamageReport damaged;
    std::vector<PLACE> order;
    order.reserve(static_cast<std::size_t>(collection.stationCount));
    const bool read = collection.scanHeaders(
        1, collection.stationCount,
        [&](int number, const STATIONHDR& header, const LEVELCOUNTS&) {
            const std::int32_t entry = index.entryOf(number, header);
            if (entry >= 0) order.push_back({entry, number, sortKey(common::fieldText(header.station))});
            dataBytes += std::int64_t{bytesACell} * header.valueCount;
            return true;
        },
        [&](int number) { damaged.add(number); });
    if (!read) user.note(collection.path + ".hob: can't be read to its end");
    damaged.tell(collection.path, user);
    std::stable_sort(order.begin(), order.end(), [](const PLACE& a, const PLACE& b) {
        return a.entry != b.entry ? a.entry < b.entry : a.key < b.key;
    });
    return order;
}

std::int64_t freeBytes(const std::string& directory)
{
    std::error_code error;
    const auto space = std::filesystem::space(directory.empty() ? "." : directory, error);
    constexpr std::uintmax_t most = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(error ? most : std::min(space.available, most));
}

bool hasSpace(const RCollection& collection, std::int64_t bytes, common::RUser& user)
{
    const bool enough =
        collection.spaceCheck ? collection.spaceCheck(bytes) : bytes <= freeBytes(collection.directory);
    if (enough) return true;
    constexpr double megabytesAByte = 9.536743e-07;
    user.about(title, common::format("Not enough disk space available (required: %6.2f MB)!\n\n"
                                     "No sorting and condensing is performed.",
                                     static_cast<double>(bytes) * megabytesAByte));
    return false;
}

bool rewriteInOrder(RCollection& source, STATIONDATA& station, common::RUser& user)
{
    std::int64_t bytes = std::int64_t{source.headerRecordSize} * source.stationCount;
    const std::vector<PLACE> order = newOrder(source, bytes, user);
    if (!hasSpace(source, bytes, user)) return false;
    RRewriting rewriting(source, title, user);
    if (order.size() < static_cast<std::size_t>(source.stationCount)) {
        rewriting.tellFewer();
        return false;
    }
    const std::span<const VARINFO> variables(source.variables);
    if (!rewriting.begin("SORTCONDENSE",
                         variables.first(static_cast<std::size_t>(source.variableCount) + 1))) {
        return false;
    }
    const RRewriting::CARRIAGE carriage = {
        .count = static_cast<int>(order.size()),
        .numberOf = [&order](int i) { return order[static_cast<std::size_t>(i)].number; },
        .prepare = nullptr,
        .sort = false};
    return rewriting.carryOver(carriage, station) && rewriting.replaceSource();
}

bool rewriteIfMemoryLasts(RCollection& source, STATIONDATA& station, common::RUser& user)
{
    try {
        return rewriteInOrder(source, station, user);
    } catch (const std::bad_alloc&) {
        user.about(title, "Sort/Condense will be aborted due to allocation problems.");
        return false;
    }
}

} // namespace

bool RCollection::sortAndCondense(STATIONDATA& station, common::RUser& user)
{
    const bool inventoryIsThere = !cruises.empty() || stationCount == 0;
    if (kind != 1 || !inventoryIsThere) return false;
    RStationKeeper loaded(*this, station);
    const RViewKeeper view(*this, true); // back in force before the station is loaded again
    criteria = defaultCriteria();
    const bool done = busyWith(title, user, [&] { return rewriteIfMemoryLasts(*this, station, user); });
    if (!done) return false;
    loaded.noteChange();
    addLogLine("SORTCONDENSE");
    readInventory(true, user);
    return true;
}

} // namespace collection
