#pragma once

// Macro files (`.mac`): a formula with the names of its inputs, for use with any collection.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace variables {

inline constexpr int maxMacroInputs = 9;

inline constexpr std::size_t longestMacroComment = 1000; // bytes

struct MACRO {
    std::int32_t nInputs = 0, width = 8, decimals = 2;
    std::string label = "New Variable [units]";     // at most 60 bytes
    std::array<std::string, maxMacroInputs> inputs; // the text of #1 to #9, at most 60 bytes each
    std::string expression = "1\n";                 // with its line feeds
    std::string comment;                            // whole lines with their line feeds, at most 1000 bytes

    bool operator==(const MACRO&) const = default;
};

struct MACROFAULT {
    int line = 0; // from 1; 0: the file can't be read
    std::string text;
};

// The formula of a macro as a variable holds it: lines of more than one character, trimmed, each with a blank
// behind it, below 500 bytes. lineLeftOut: the first line for which there was no room, 0 if all found theirs.
[[nodiscard]] std::string joinedFormula(std::string_view expression, int* lineLeftOut = nullptr);

// "path:line: what", or "path: what" for a file that can't be read.
[[nodiscard]] std::string faultText(const std::string& path, const MACROFAULT& fault);

// False, with `fault` set and `macro` as it was, for what is no macro file. What is longer than the fields of
// a macro is cut, but for the expression, of which all lines are read; where there is no format that can be
// read, `macro` keeps its own.
[[nodiscard]] bool parseMacro(std::string_view content, MACRO& macro, MACROFAULT& fault);
// The file of a macro, which reads back as the same macro if it is one that can be read: texts without blanks
// at their ends, a comment of whole lines. A marker line in the comment gets a blank, so that it is none.
[[nodiscard]] std::string formatMacro(const MACRO& macro);
[[nodiscard]] bool readMacroFile(const std::string& path, MACRO& macro, MACROFAULT& fault);
// The whole file, or it is as it was and the result is false.
[[nodiscard]] bool writeMacroFile(const std::string& path, const MACRO& macro);

} // namespace variables
