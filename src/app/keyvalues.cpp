#include "app/keyvalues.h"

#include <algorithm>

#include "common/text.h"

namespace app {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view dividers = " \t,";
constexpr std::string_view keyEnds = " \t,=\"";

bool contains(std::span<const std::string_view> words, std::string_view word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

void skip(std::string_view& rest, std::string_view characters)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(characters), rest.size()));
}

// A stretch of text up to one of `ends` outside quotes.
struct STRETCH {
    std::string_view raw;
    std::string text;    // without quotes
    bool equals = false; // "=" stands in it outside quotes
    bool closed = true;  // every quote has its end
};

STRETCH takeStretch(std::string_view& rest, std::string_view ends)
{
    STRETCH taken;
    bool inside = false;
    std::size_t i = 0;
    for (; i < rest.size(); ++i) {
        const char c = rest[i];
        if (c == '"') {
            const bool doubled = inside && i + 1 < rest.size() && rest[i + 1] == '"';
            if (doubled) taken.text += rest[++i];
            if (!doubled) inside = !inside;
            continue;
        }
        if (!inside && ends.find(c) != std::string_view::npos) break;
        if (!inside && c == '=') taken.equals = true;
        taken.text += c;
    }
    taken.raw = rest.substr(0, i);
    taken.closed = !inside;
    rest.remove_prefix(i);
    return taken;
}

std::string openQuote(std::string_view raw)
{
    return "the quote in " + std::string(raw) + " isn't closed";
}

// "a" = "b": what stands on both sides of "=", with blanks or without.
std::string takeQuotedValue(std::string_view& rest, std::string& value)
{
    for (;;) {
        const STRETCH part = takeStretch(rest, dividers);
        if (!part.closed) return openQuote(part.raw);
        value += part.raw;
        std::string_view ahead = rest;
        skip(ahead, blanks);
        const bool goesOn = ahead.starts_with('=') || part.raw.ends_with('=');
        if (!goesOn || ahead.empty() || ahead.size() == rest.size()) return {};
        rest = ahead;
    }
}

std::string takeValue(std::string_view& rest, std::string_view key, std::string& value)
{
    const STRETCH taken = takeStretch(rest, dividers);
    if (!taken.closed) return openQuote(taken.raw);
    if (taken.equals)
        return "the value " + std::string(taken.raw) + " of " + common::quoted(key) +
               " holds \"=\"; it belongs in quotes";
    value = taken.text;
    return {};
}

std::string takePair(std::string_view& rest, const KEYGRAMMAR& grammar, KEYVALUE& pair)
{
    pair.key = rest.substr(0, rest.find_first_of(keyEnds));
    if (pair.key.empty()) return "a word is missing in front of " + std::string(rest);
    rest.remove_prefix(pair.key.size());
    if (contains(grammar.bareWords, pair.key)) {
        const bool alone = rest.empty() || dividers.find(rest.front()) != std::string_view::npos;
        return alone ? std::string() : common::quoted(pair.key) + " takes no value";
    }
    skip(rest, blanks);
    const bool keepsQuotes = contains(grammar.quotedKeys, pair.key);
    if (rest.starts_with('=')) {
        rest.remove_prefix(1);
        skip(rest, blanks);
    } else if (!keepsQuotes || rest.empty() || rest.starts_with(',')) {
        return common::quoted(pair.key) + " stands without \"=\" and a value";
    }
    return keepsQuotes ? takeQuotedValue(rest, pair.value) : takeValue(rest, pair.key, pair.value);
}

} // namespace

std::string readKeyValues(std::string_view text, const KEYGRAMMAR& grammar, std::vector<KEYVALUE>& pairs)
{
    pairs.clear();
    for (skip(text, dividers); !text.empty(); skip(text, dividers)) {
        KEYVALUE pair;
        if (std::string wrong = takePair(text, grammar, pair); !wrong.empty()) return wrong;
        pairs.push_back(std::move(pair));
    }
    return {};
}

std::string readWords(std::string_view text, std::vector<std::string>& words)
{
    words.clear();
    for (skip(text, dividers); !text.empty(); skip(text, dividers)) {
        STRETCH word = takeStretch(text, dividers);
        if (!word.closed) return openQuote(word.raw);
        words.push_back(std::move(word.text));
    }
    return {};
}

std::string takeField(std::string_view& rest, std::string& field)
{
    const STRETCH taken = takeStretch(rest, ",");
    if (!taken.closed) return openQuote(common::trimBlanks(taken.raw));
    if (rest.starts_with(',')) rest.remove_prefix(1);
    field = withoutQuotes(taken.raw);
    return {};
}

std::string cleanPath(std::string_view text)
{
    return common::replaceAll(common::trimBlanks(text), "\\", "/");
}

std::string withoutQuotes(std::string_view text)
{
    const std::string_view trimmed = common::trimBlanks(text);
    std::string_view rest = trimmed;
    if (!trimmed.starts_with('"') || !trimmed.ends_with('"')) return std::string(trimmed);
    STRETCH whole = takeStretch(rest, {});
    return whole.closed ? whole.text : std::string(trimmed);
}

} // namespace app
