#include "selection/wildcard.h"

#include <cstddef>
#include <string>

#include "common/textcoding.h"

namespace selection {
namespace {

constexpr std::size_t npos = std::u16string_view::npos;

// The set at pattern[at], a "[": where its "]" stands, npos if there is none. A "]" in front is a member.
std::size_t endOfSet(std::u16string_view pattern, std::size_t at)
{
    std::size_t first = at + 1;
    if (first < pattern.size() && (pattern[first] == u'!' || pattern[first] == u'^')) ++first;
    return pattern.find(u']', first + 1);
}

bool isInSet(std::u16string_view set, char16_t c)
{
    const bool contrary = !set.empty() && (set[0] == u'!' || set[0] == u'^');
    if (contrary) set.remove_prefix(1);
    bool found = false;
    for (std::size_t i = 0; i < set.size(); ++i) {
        if (i + 2 < set.size() && set[i + 1] == u'-') {
            found = found || (set[i] <= c && c <= set[i + 2]);
            i += 2;
        } else {
            found = found || set[i] == c;
        }
    }
    return found != contrary;
}

// Matches one character against the pattern's element at `at`, which is no "*". Returns where the next
// element begins, npos if the character doesn't match.
std::size_t matchOne(std::u16string_view pattern, std::size_t at, char16_t c)
{
    if (pattern[at] == u'?') return at + 1;
    if (pattern[at] == u'[') {
        const std::size_t end = endOfSet(pattern, at);
        if (end != npos) return isInSet(pattern.substr(at + 1, end - at - 1), c) ? end + 1 : npos;
    }
    return pattern[at] == c ? at + 1 : npos;
}

// Only the last "*" needs to be taken up again, so that the time is bounded by the product of the lengths.
bool matches(std::u16string_view pattern, std::u16string_view text)
{
    std::size_t p = 0, t = 0, star = npos, starText = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            star = ++p;
            starText = t;
            continue;
        }
        const std::size_t next = p < pattern.size() ? matchOne(pattern, p, text[t]) : npos;
        if (next != npos) {
            p = next;
            ++t;
        } else if (star != npos) {
            p = star;
            t = ++starText;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*') ++p;
    return p == pattern.size();
}

} // namespace

bool matchesWildcard(std::string_view pattern, std::string_view label)
{
    if (pattern == "*") return true;
    return matches(common::decodeLabel(pattern).toStdU16String(),
                   common::decodeLabel(label).toStdU16String());
}

} // namespace selection
