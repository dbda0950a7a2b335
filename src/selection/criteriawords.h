#pragma once

// The words in which criteria may be given. Letters count the same in either case.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace selection {

// The letter of a station type: *, B, C, X, or any, bottle, ctd, xbt.
[[nodiscard]] std::optional<char> typeOf(std::string_view word);

// The quality limit: 0, 1, 4, 8, or good, unknown, questionable, all, or as it is shown.
[[nodiscard]] std::optional<int> qualityOf(std::string_view word);
// "good", "good/unkn", "good/unkn/quest", "all"; each flag that is no limit by itself is shown as the next
// smaller one.
[[nodiscard]] std::string_view qualityText(int limit);

// One character a month, January first: "+" for those of a season; empty if the word is none.
[[nodiscard]] std::string_view seasonMonths(std::string_view word);

// Adds months to `mask` (12 characters): numbers, names, ranges of these that may run over the new year, and
// seasons, with commas between them. Returns what is wrong.
[[nodiscard]] std::string readMonths(std::string_view value, std::string& mask);

// The parts of a text between its colons; those within double quotes don't count. Each part lies in `value`.
[[nodiscard]] std::vector<std::string_view> splitAtColons(std::string_view value);
// `word` without blanks at its ends, and without double quotes around it.
[[nodiscard]] std::string_view unquoted(std::string_view word);

} // namespace selection
