#include "selection/criteriawords.h"

#include <array>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace selection {
namespace {

constexpr int monthsAYear = 12;

template <typename Value>
struct WORD {
    std::string_view word;
    Value value;
};

template <typename Value, std::size_t size>
std::optional<Value> valueOf(const std::array<WORD<Value>, size>& table, std::string_view word)
{
    for (const WORD<Value>& entry : table) {
        if (common::equalsIgnoreCase(entry.word, word)) return entry.value;
    }
    return std::nullopt;
}

constexpr auto types = std::to_array<WORD<char>>({{"*", '*'},
                                                  {"any", '*'},
                                                  {"B", 'B'},
                                                  {"bottle", 'B'},
                                                  {"C", 'C'},
                                                  {"ctd", 'C'},
                                                  {"X", 'X'},
                                                  {"xbt", 'X'}});

constexpr auto qualities = std::to_array<WORD<int>>({{"0", 0},
                                                     {"good", 0},
                                                     {"1", 1},
                                                     {"unknown", 1},
                                                     {"good/unkn", 1},
                                                     {"4", 4},
                                                     {"questionable", 4},
                                                     {"good/unkn/quest", 4},
                                                     {"8", common::noQualityLimit},
                                                     {"all", common::noQualityLimit}});

constexpr auto seasons = std::to_array<WORD<std::string_view>>({{"all", "++++++++++++"},
                                                                {"winter", "+++         "},
                                                                {"spring", "   +++      "},
                                                                {"summer", "      +++   "},
                                                                {"fall", "         +++"},
                                                                {"autumn", "         +++"}});

// The number of a month by number or name; 0 if it is none.
int monthOf(std::string_view word)
{
    constexpr auto names =
        std::to_array<std::string_view>({"january", "february", "march", "april", "may", "june", "july",
                                         "august", "september", "october", "november", "december"});
    constexpr std::size_t shortest = 3;
    const std::optional<int> number = common::parseInt(word);
    if (number) return *number >= 1 && *number <= monthsAYear ? *number : 0;
    for (std::size_t i = 0; i < names.size() && word.size() >= shortest; ++i) {
        if (common::equalsIgnoreCase(names[i].substr(0, word.size()), word)) return static_cast<int>(i) + 1;
    }
    return 0;
}

std::string noMonth(std::string_view word)
{
    return "\"" + common::labelToUtf8(word) + "\" is no month";
}

// A month, a range of months or a season.
std::string readSomeMonths(std::string_view value, std::string& mask)
{
    const std::string_view season = seasonMonths(value);
    for (std::size_t i = 0; i < season.size(); ++i) {
        if (season[i] == '+') mask[i] = '+';
    }
    if (!season.empty()) return {};
    const std::size_t colon = value.find(':');
    const bool isRange = colon != std::string_view::npos;
    const std::string_view from = common::trimBlanks(value.substr(0, colon));
    const std::string_view to = isRange ? common::trimBlanks(value.substr(colon + 1)) : from;
    const int first = from.empty() && isRange ? 1 : monthOf(from);
    const int last = to.empty() && isRange ? monthsAYear : monthOf(to);
    if (first == 0) return noMonth(from);
    if (last == 0) return noMonth(to);
    for (int month = first;; month = month % monthsAYear + 1) {
        mask[static_cast<std::size_t>(month - 1)] = '+';
        if (month == last) return {};
    }
}

} // namespace

std::optional<char> typeOf(std::string_view word)
{
    return valueOf(types, word);
}

std::optional<int> qualityOf(std::string_view word)
{
    return valueOf(qualities, word);
}

std::string_view qualityText(int limit)
{
    if (limit >= common::noQualityLimit) return "all";
    if (limit >= 4) return "good/unkn/quest";
    return limit >= 1 ? "good/unkn" : "good";
}

std::string_view seasonMonths(std::string_view word)
{
    return valueOf(seasons, word).value_or(std::string_view());
}

std::string readMonths(std::string_view value, std::string& mask)
{
    for (;;) {
        const std::size_t comma = value.find(',');
        const std::string wrong = readSomeMonths(common::trimBlanks(value.substr(0, comma)), mask);
        if (!wrong.empty() || comma == std::string_view::npos) return wrong;
        value.remove_prefix(comma + 1);
    }
}

std::vector<std::string_view> splitAtColons(std::string_view value)
{
    std::vector<std::string_view> parts;
    bool isQuoted = false;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '"') isQuoted = !isQuoted;
        if (value[i] != ':' || isQuoted) continue;
        parts.push_back(value.substr(begin, i - begin));
        begin = i + 1;
    }
    parts.push_back(value.substr(begin));
    return parts;
}

std::string_view unquoted(std::string_view word)
{
    word = common::trimBlanks(word);
    const bool isQuoted = word.size() >= 2 && word.front() == '"' && word.back() == '"';
    return isQuoted ? word.substr(1, word.size() - 2) : word;
}

} // namespace selection
