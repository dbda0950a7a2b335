#pragma once

// What stands behind the word of a command in words and values: pairs "key=value" divided by blanks and
// commas, and lists of words. Values that hold blanks, commas or "=" stand in quotes, in which "" is a quote.

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace app {

struct KEYVALUE {
    std::string key;   // as written
    std::string value; // without its quotes
};

struct KEYGRAMMAR {
    // Their value may hold "=" (key "a"="b"), stands behind a blank as well as behind "=", and keeps its
    // quotes.
    std::span<const std::string_view> quotedKeys;
    std::span<const std::string_view> bareWords; // stand without a value
};

// Reads all of `text`. Returns what is wrong, empty if nothing is.
[[nodiscard]] std::string readKeyValues(std::string_view text, const KEYGRAMMAR& grammar,
                                        std::vector<KEYVALUE>& pairs);

// Reads all of `text` as words, without their quotes. Returns what is wrong, empty if nothing is.
[[nodiscard]] std::string readWords(std::string_view text, std::vector<std::string>& words);

// Takes the text up to the first comma outside quotes from `rest`, and the comma; blanks at its ends and its
// quotes go. Returns what is wrong, empty if nothing is.
[[nodiscard]] std::string takeField(std::string_view& rest, std::string& field);

// A path as a command file may write it: both separators stand for "/", so that files of other systems run
// here.
[[nodiscard]] std::string cleanPath(std::string_view text);

// Without the quotes around it, if it stands in quotes as a whole.
[[nodiscard]] std::string withoutQuotes(std::string_view text);

} // namespace app
