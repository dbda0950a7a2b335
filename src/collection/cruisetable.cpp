#include "collection/cruisetable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_map>

#include "common/text.h"

namespace collection {
namespace {

constexpr int noFirstLabel = 99999999;
constexpr double noFirstDate = 999999999;

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

std::string keyOf(std::string_view cruise, std::string_view type)
{
    std::string key(cruise);
    key += '\0';
    key += type;
    return key;
}

void widen(CRUISEINFO& entry, int number, const STATIONHDR& header)
{
    if (const auto numeric = numericLabel(common::fieldText(header.station))) {
        entry.firstLabel = std::min(entry.firstLabel, *numeric);
        entry.lastLabel = std::max(entry.lastLabel, *numeric);
    }
    entry.lonMin = std::min(entry.lonMin, header.longitude);
    entry.lonMax = std::max(entry.lonMax, header.longitude);
    entry.latMin = std::min(entry.latMin, header.latitude);
    entry.latMax = std::max(entry.latMax, header.latitude);
    const double date = dateNumber(header);
    entry.dateMin = std::min(entry.dateMin, date);
    entry.dateMax = std::max(entry.dateMax, date);
    entry.firstNumber = entry.stationCount == 0 ? number : std::min(entry.firstNumber, number);
    entry.lastNumber = std::max(entry.lastNumber, number);
    ++entry.stationCount;
}

std::int32_t saturated(std::int64_t value)
{
    return static_cast<std::int32_t>(std::min<std::int64_t>(value, std::numeric_limits<std::int32_t>::max()));
}

bool comesBefore(const CRUISEINFO& a, const CRUISEINFO& b)
{
    const int order = common::fieldText(a.cruise).compare(common::fieldText(b.cruise));
    return order != 0 ? order < 0 : common::fieldText(a.type) < common::fieldText(b.type);
}

// --- the text form

int wholeDegrees(float position)
{
    return static_cast<int>(std::clamp(position, -1.0e9f, 1.0e9f));
}

struct DATEPARTS {
    int year, month, day;
};

DATEPARTS partsOf(double date)
{
    const auto whole = static_cast<std::int64_t>(std::clamp(date, -noFirstDate, noFirstDate));
    return {static_cast<int>(whole / 10000), static_cast<int>(whole % 10000 / 100),
            static_cast<int>(whole % 100)};
}

std::string oneLine(std::string_view text)
{
    std::string clean(text);
    for (char& c : clean) {
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    }
    return clean;
}

std::string entryLine(const CRUISEINFO& entry, int variableCount)
{
    const DATEPARTS from = partsOf(entry.dateMin), to = partsOf(entry.dateMax);
    return common::format(
        "%s\t%s\t(%d:%d)\t(%d:%d)\t(%d:%d)\t(%02d/%02d/%04d:%02d/%02d/%04d)\t(%d:%d)\t%d\t%s",
        oneLine(common::fieldText(entry.cruise)).c_str(), oneLine(common::fieldText(entry.type)).c_str(),
        entry.firstLabel, entry.lastLabel, wholeDegrees(entry.lonMin), wholeDegrees(entry.lonMax),
        wholeDegrees(entry.latMin), wholeDegrees(entry.latMax), from.month, from.day, from.year, to.month,
        to.day, to.year, entry.firstNumber, entry.lastNumber, entry.stationCount,
        coverageText(entry, variableCount).c_str());
}

bool take(std::string_view& rest, char c)
{
    if (!rest.starts_with(c)) return false;
    rest.remove_prefix(1);
    return true;
}

template <typename Number>
bool takePair(std::string_view text, Number& first, Number& second)
{
    int a = 0, b = 0;
    if (!take(text, '(') || !common::takeInt(text, a) || !take(text, ':') || !common::takeInt(text, b) ||
        text != ")") {
        return false;
    }
    first = static_cast<Number>(a);
    second = static_cast<Number>(b);
    return true;
}

bool takeDate(std::string_view& text, double& date)
{
    int month = 0, day = 0, year = 0;
    if (!common::takeInt(text, month) || !take(text, '/') || !common::takeInt(text, day) ||
        !take(text, '/') || !common::takeInt(text, year)) {
        return false;
    }
    date = year * 10000.0 + month * 100.0 + day;
    return true;
}

bool takeDates(std::string_view text, double& first, double& second)
{
    return take(text, '(') && takeDate(text, first) && take(text, ':') && takeDate(text, second) &&
           text == ")";
}

bool parseEntry(std::string_view line, CRUISEINFO& entry)
{
    std::array<std::string_view, 20> fields;
    entry = CRUISEINFO{};
    if (common::splitFields(line, '\t', fields) < 8) return false;
    common::copyText(entry.cruise, fields[0]);
    common::copyText(entry.type, fields[1]);
    const auto stations = common::parseInt(fields[7]);
    if (!stations || *stations < 1) return false;
    entry.stationCount = *stations;
    std::fill(std::begin(entry.valueCounts), std::end(entry.valueCounts), 1);
    return takePair(fields[2], entry.firstLabel, entry.lastLabel) &&
           takePair(fields[3], entry.lonMin, entry.lonMax) &&
           takePair(fields[4], entry.latMin, entry.latMax) &&
           takeDates(fields[5], entry.dateMin, entry.dateMax) &&
           takePair(fields[6], entry.firstNumber, entry.lastNumber) && entry.firstNumber >= 1 &&
           entry.lastNumber >= entry.firstNumber;
}

bool takeWord(std::string_view& rest, std::string_view word)
{
    if (!rest.starts_with(word)) return false;
    rest.remove_prefix(word.size());
    return true;
}

} // namespace

struct RCruiseTable::Index {
    std::unordered_map<std::string, int, TextHash, std::equal_to<>> entries;
};

RCruiseTable::RCruiseTable(int variableCount)
    : variables_(static_cast<std::size_t>(std::clamp(variableCount, 0, 50))),
      index_(std::make_unique<Index>())
{
}

RCruiseTable::~RCruiseTable() = default;

int RCruiseTable::add(int number, const STATIONHDR& header, const LEVELCOUNTS& counts)
{
    const std::string_view cruise = common::fieldText(header.cruise), type = common::fieldText(header.type);
    const auto isLast = [&] {
        const CRUISEINFO& entry = entries_[static_cast<std::size_t>(last_)];
        return common::fieldText(entry.cruise) == cruise && common::fieldText(entry.type) == type;
    };
    if (last_ < 0 || !isLast()) {
        const int known = find(cruise, type);
        last_ = known >= 0 ? known : newEntry(header);
    }
    const auto at = static_cast<std::size_t>(last_);
    widen(entries_[at], number, header);
    std::int64_t* const sums = values_.data() + at * variables_;
    for (std::size_t v = 0; v < variables_; ++v) sums[v] += counts[v + 1];
    return last_;
}

int RCruiseTable::find(std::string_view cruise, std::string_view type) const
{
    std::array<char, 64> key{};
    if (cruise.size() + 1 + type.size() > key.size()) return -1;
    std::copy(cruise.begin(), cruise.end(), key.begin());
    std::copy(type.begin(), type.end(), key.begin() + static_cast<std::ptrdiff_t>(cruise.size()) + 1);
    const auto entry = index_->entries.find(std::string_view(key.data(), cruise.size() + 1 + type.size()));
    return entry == index_->entries.end() ? -1 : entry->second;
}

int RCruiseTable::newEntry(const STATIONHDR& header)
{
    CRUISEINFO entry{};
    common::copyText(entry.cruise, common::fieldText(header.cruise));
    common::copyText(entry.station, common::fieldText(header.station));
    common::copyText(entry.type, common::fieldText(header.type));
    entry.firstLabel = noFirstLabel;
    entry.lonMin = 360;
    entry.latMin = 90;
    entry.latMax = -90;
    entry.dateMin = noFirstDate;
    const int at = static_cast<int>(entries_.size());
    index_->entries.emplace(keyOf(common::fieldText(header.cruise), common::fieldText(header.type)), at);
    entries_.push_back(entry);
    values_.resize(values_.size() + variables_);
    return at;
}

std::vector<CRUISEINFO> RCruiseTable::takeSorted(std::vector<std::int32_t>* places)
{
    for (std::size_t e = 0; e < entries_.size(); ++e) {
        for (std::size_t v = 0; v < variables_; ++v) {
            entries_[e].valueCounts[v] = saturated(values_[e * variables_ + v]);
        }
    }
    std::vector<std::size_t> order(entries_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [this](std::size_t a, std::size_t b) { return comesBefore(entries_[a], entries_[b]); });
    std::vector<CRUISEINFO> sorted(order.size());
    if (places) places->assign(order.size(), 0);
    for (std::size_t i = 0; i < order.size(); ++i) {
        sorted[i] = entries_[order[i]];
        if (places) (*places)[order[i]] = static_cast<std::int32_t>(i);
    }
    entries_.clear();
    values_.clear();
    index_->entries.clear();
    last_ = -1;
    return sorted;
}

int samplesOf(std::span<const CRUISEINFO> entries)
{
    std::int64_t samples = 0;
    for (const CRUISEINFO& entry : entries) samples += entry.valueCounts[0];
    return saturated(samples);
}

std::string coverageText(const CRUISEINFO& entry, int variableCount)
{
    std::string text;
    for (int v = 2; v <= variableCount; ++v) {
        const std::int64_t count = entry.valueCounts[v - 1], levels = std::max(entry.valueCounts[0], 1);
        text += count == 0 ? ' ' : static_cast<char>('0' + std::min<std::int64_t>(9, count * 10 / levels));
        if (v % 10 == 5) text += '.';
        if (v % 10 == 0) text += '|';
    }
    return text;
}

std::string formatInventory(std::span<const CRUISEINFO> entries, int stationCount, int samples,
                            int variableCount)
{
    std::string text(inventoryVersion);
    text += common::format("\n%d cruises %d stations %d samples\n", static_cast<int>(entries.size()),
                           stationCount, samples);
    for (const CRUISEINFO& entry : entries) {
        text += entryLine(entry, variableCount);
        text += '\n';
    }
    return text;
}

bool parseInventory(std::string_view text, INVENTORY& out)
{
    if (!common::takeLine(text).starts_with(inventoryVersion)) return false;
    std::string_view counts = common::takeLine(text);
    INVENTORY read;
    int count = 0;
    if (!common::takeInt(counts, count) || !takeWord(counts, " cruises") ||
        !common::takeInt(counts, read.stations) || !takeWord(counts, " stations") ||
        !common::takeInt(counts, read.samples)) {
        return false;
    }
    std::int64_t stations = 0;
    while (!text.empty()) {
        CRUISEINFO entry;
        if (!parseEntry(common::takeLine(text), entry)) return false;
        if (entry.lastNumber > read.stations) return false;
        stations += entry.stationCount;
        read.entries.push_back(entry);
    }
    if (count != static_cast<int>(read.entries.size()) || stations != read.stations) return false;
    out = std::move(read);
    return true;
}

} // namespace collection
