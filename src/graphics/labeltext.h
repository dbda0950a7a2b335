#pragma once

// Label text taken apart: what both sinks must understand in the same way.

#include <string_view>
#include <vector>

namespace graphics {

inline constexpr int textFont = 1, symbolFont = 2;

// One character of a label.
struct LABELCHARACTER {
    char32_t code = 0;   // Unicode; in the symbol font a letter stands for itself, "s" for a sigma
    int font = textFont; // textFont or symbolFont
    int script = 0;      // -1 subscript, 1 superscript
};

// Follows the sequences "~#", "~$", "~_x", "~^x" and the two-mark forms of umlauts (~"a); any other tilde is
// a character like the others.
[[nodiscard]] std::vector<LABELCHARACTER> parseLabel(std::string_view text);

// The Unicode character that stands at a code of the symbol font; the code itself where there is none.
[[nodiscard]] char32_t symbolToUnicode(char32_t code);
// The code of the symbol font (33 to 254) for a Unicode character, 0 if it has none.
[[nodiscard]] int unicodeToSymbol(char32_t character);

} // namespace graphics
