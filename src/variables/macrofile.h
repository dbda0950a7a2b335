#pragma once

// Macro files (`.mac`): a formula with the names of its inputs, for use with any collection.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace variables {

inline constexpr int maxMacroInputs = 9;

struct MACRO {
    std::int32_t nInputs = 0, width = 8, decimals = 2;
    std::string label = "New Variable [units]";     // at most 60 bytes
    std::array<std::string, maxMacroInputs> inputs; // the text of #1 to #9, at most 60 bytes each
    std::string expression = "1\n";                 // with its line feeds, below 500 bytes
    std::string comment;                            // with its line feeds, at most 1000 bytes

    bool operator==(const MACRO&) const = default;
};

struct MACROFAULT {
    int line = 0; // from 1; 0: the file can't be read
    std::string text;
};

// The formula of a macro as a variable holds it: lines of more than one character, trimmed, each with a blank
// behind it, below 500 bytes.
[[nodiscard]] std::string joinedFormula(std::string_view expression);

// False, with `fault` set and `macro` as it was, for what is no macro file.
[[nodiscard]] bool parseMacro(std::string_view content, MACRO& macro, MACROFAULT& fault);
[[nodiscard]] std::string formatMacro(const MACRO& macro);
[[nodiscard]] bool readMacroFile(const std::string& path, MACRO& macro, MACROFAULT& fault);
// The whole file, or it is as it was and the result is false.
[[nodiscard]] bool writeMacroFile(const std::string& path, const MACRO& macro);

} // namespace variables
