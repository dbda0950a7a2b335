#include "collection/checkinventory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <unordered_map>

#include "collection/blockfile.h"
#include "collection/cruisetable.h"
#include "collection/filetimes.h"
#include "common/byteorder.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr int firstEntryLine = 3;
constexpr std::string_view outOfDate = "older than the headers; the next opening makes it anew";

// The part of an entry's line that tells cruise and type.
std::string_view keyOf(std::string_view line)
{
    const std::size_t cruise = line.find('\t');
    return cruise == std::string_view::npos ? line : line.substr(0, line.find('\t', cruise + 1));
}

std::vector<std::string_view> entryLines(std::string_view text)
{
    static_cast<void>(common::takeLine(text));
    static_cast<void>(common::takeLine(text));
    std::vector<std::string_view> lines;
    while (!text.empty()) lines.push_back(common::takeLine(text));
    return lines;
}

using LineIndex = std::unordered_map<std::string_view, std::size_t>; // index of the line of a key

LineIndex indexOf(const std::vector<std::string_view>& lines)
{
    LineIndex index;
    for (std::size_t i = 0; i < lines.size(); ++i) index.emplace(keyOf(lines[i]), i);
    return index;
}

std::string_view line2Of(std::string_view text)
{
    static_cast<void>(common::takeLine(text));
    return common::takeLine(text);
}

// Entries of one cruise may stand in any order.
bool cruiseComesBefore(std::string_view a, std::string_view b)
{
    return a.substr(0, a.find('\t')) < b.substr(0, b.find('\t'));
}

void compareLines(const std::string& is, const std::string& should, RFindings& findings)
{
    const std::vector<std::string_view> lines = entryLines(is), wanted = entryLines(should);
    const LineIndex index = indexOf(wanted);
    std::vector<bool> found(wanted.size());
    RDamageReport different, unknown, disordered;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const int number = firstEntryLine + static_cast<int>(i);
        const auto entry = index.find(keyOf(lines[i]));
        if (entry == index.end()) {
            unknown.add(number);
            continue;
        }
        found[entry->second] = true;
        if (lines[i] != wanted[entry->second]) different.add(number);
        if (i > 0 && cruiseComesBefore(lines[i], lines[i - 1])) disordered.add(number);
    }
    constexpr auto bad = FINDING::inconsistency;
    if (line2Of(is) != line2Of(should)) findings.addLine(bad, ".inv", 2, "not the counts of the headers");
    findings.addShared(bad, ".inv", "line", different, "not what the headers of the cruise give");
    findings.addShared(bad, ".inv", "line", unknown, "no station is of this cruise and type");
    findings.addShared(bad, ".inv", "line", disordered, "not in the order of cruises");
    const auto missing = std::count(found.begin(), found.end(), false);
    if (missing > 0) {
        findings.add(
            bad, ".inv",
            common::format("lacks entries that the headers give: %lld", static_cast<long long>(missing)));
    }
}

std::string expectedInventory(const STATIONCHECK& check, const STATIONSUMMARY& summary)
{
    return formatInventory(summary.entries, check.description.stationCount, samplesOf(summary.entries),
                           check.description.variableCount);
}

std::optional<std::string> inventoryText(const STATIONCHECK& check)
{
    return common::readFile(check.basePath + ".inv", largestInventory(check.description.stationCount));
}

// The places that the entries of the headers have in the table that an opening would use.
std::vector<std::int32_t> placesInUse(const STATIONCHECK& check, const STATIONSUMMARY& summary)
{
    std::vector<std::int32_t> places(summary.entries.size());
    for (std::size_t i = 0; i < places.size(); ++i) places[i] = static_cast<std::int32_t>(i);
    INVENTORY read;
    const auto text = inventoryCounts(check.basePath) ? inventoryText(check) : std::nullopt;
    if (!text || !parseInventory(*text, read) || read.stations != check.description.stationCount)
        return places;
    const std::string should = expectedInventory(check, summary);
    const std::vector<std::string_view> lines = entryLines(*text), wanted = entryLines(should);
    const LineIndex index = indexOf(lines);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const bool inPlace = i < lines.size() && keyOf(lines[i]) == keyOf(wanted[i]);
        const auto entry = index.find(keyOf(wanted[i]));
        if (!inPlace) places[i] = entry == index.end() ? 0 : static_cast<std::int32_t>(entry->second);
    }
    return places;
}

} // namespace

bool inventoryCounts(const std::string& basePath)
{
    if (!isCurrent(basePath + ".inv", basePath + ".hob")) return false;
    const common::FilePtr file = common::openFile(basePath + ".inv", "rb");
    std::array<char, inventoryVersion.size()> start{};
    return file && std::fread(start.data(), 1, start.size(), file.get()) == start.size() &&
           std::string_view(start.data(), start.size()) == inventoryVersion;
}

bool cruiseIndicesCount(const std::string& basePath, int stationCount)
{
    return isCurrent(basePath + ".cid", basePath + ".hob") &&
           common::fileSize(basePath + ".cid") == std::int64_t{4} * stationCount;
}

void checkInventoryFile(const STATIONCHECK& check, const STATIONSUMMARY& summary, RFindings& findings)
{
    const std::string file = check.basePath + ".inv";
    if (!inventoryCounts(check.basePath)) {
        if (common::fileSize(file) < 0) return;
        findings.add(FINDING::remark, ".inv",
                     isCurrent(file, check.basePath + ".hob") ? "not of the form" : std::string(outOfDate));
        return;
    }
    if (!check.wantsEntries || !summary.opened) return;
    const std::string should = expectedInventory(check, summary);
    const auto is = inventoryText(check);
    if (!is) {
        findings.add(FINDING::inconsistency, ".inv", "can't be read, or is too large to be an inventory");
    } else if (*is != should) {
        compareLines(*is, should, findings);
    }
}

void checkCruiseIndices(const STATIONCHECK& check, const STATIONSUMMARY& summary, RFindings& findings)
{
    const std::string file = check.basePath + ".cid";
    const int stations = check.description.stationCount;
    const std::int64_t size = common::fileSize(file);
    if (size < 0) return;
    if (!isCurrent(file, check.basePath + ".hob")) {
        findings.add(FINDING::remark, ".cid", std::string(outOfDate));
        return;
    }
    if (size != std::int64_t{4} * stations) {
        findings.add(FINDING::inconsistency, ".cid",
                     common::format("%lld bytes, but the indices of %d stations have %lld",
                                    static_cast<long long>(size), stations, 4LL * stations));
        return;
    }
    RBlockFile indices;
    if (summary.entryOf.empty()) return;
    if (!indices.open(file, RBlockFile::Mode::read)) {
        findings.add(FINDING::inconsistency, ".cid", "can't be read");
        return;
    }
    const std::vector<std::int32_t> places = placesInUse(check, summary);
    RDamageReport different;
    for (std::size_t i = 0; i < summary.entryOf.size(); ++i) {
        const std::byte* const bytes = indices.view(static_cast<std::int64_t>(4 * i), 4);
        std::int32_t index = -1;
        if (bytes && summary.swapBytes) common::reverseBytes(bytes, 1, 4, &index);
        if (bytes && !summary.swapBytes) std::memcpy(&index, bytes, 4);
        const auto entry = static_cast<std::size_t>(summary.entryOf[i]);
        const std::int32_t should = entry < places.size() ? places[entry] : 0;
        if (index != should) different.add(static_cast<int>(i) + 1);
    }
    findings.addShared(FINDING::inconsistency, ".cid", "station", different,
                       "not the index of the station's cruise");
}

} // namespace collection
