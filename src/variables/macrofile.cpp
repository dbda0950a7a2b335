#include "variables/macrofile.h"

#include <algorithm>

#include "collection/varformat.h"
#include "common/files.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace variables {
namespace {

constexpr std::string_view magic = "NVQ4.0", markerPart = ">|--->";
constexpr std::string_view marker = ">|--->----------------------------------------------------------|>--|";
constexpr std::size_t textColumn = 5, formatColumn = 65, textLength = 60;
constexpr std::int64_t largestFile = 1 << 20; // bytes

// A field of a line: from column `first` on, `length` bytes at most.
std::string_view fieldOf(std::string_view line, std::size_t first, std::size_t length)
{
    return first < line.size() ? common::trimBlanks(line.substr(first, length)) : std::string_view();
}

// Reads the parts of the file in their order. Each part is false with `fault` set if it isn't there.
class RMacroReader {
public:
    // A file without a format gets that of `before`.
    RMacroReader(std::string_view content, const MACRO& before)
        : rest_(content), isUtf8_(common::isValidUtf8(content))
    {
        macro_.width = before.width;
        macro_.decimals = before.decimals;
    }

    [[nodiscard]] bool read()
    {
        return readHeader() && readComment() && readLabel() && readInputs() && readFormula();
    }
    [[nodiscard]] const MACRO& macro() const { return macro_; }
    [[nodiscard]] MACROFAULT fault() const { return {lineNumber_, fault_}; }

private:
    bool fail(std::string text)
    {
        fault_ = std::move(text);
        return false;
    }
    // The next line, without its end; false if there is none.
    bool next(std::string_view missing)
    {
        ++lineNumber_;
        if (rest_.empty()) return fail("the file ends before " + std::string(missing));
        line_ = common::takeLine(rest_);
        while (line_.ends_with('\r')) line_.remove_suffix(1);
        return true;
    }
    [[nodiscard]] std::string label(std::string_view bytes) const
    {
        return std::string(common::cutAtCharacter(common::labelFromFile(bytes, isUtf8_), textLength));
    }

    bool readHeader()
    {
        if (rest_.starts_with("\xEF\xBB\xBF")) rest_.remove_prefix(3);
        if (!next("its header line")) return false;
        return line_.starts_with(magic) || fail("the file doesn't begin with \"" + std::string(magic) + "\"");
    }

    bool readComment()
    {
        std::string comment;
        while (next("the line with \"" + std::string(markerPart) + "\"")) {
            if (line_.find(markerPart) != std::string_view::npos) {
                comment = common::labelFromFile(comment, isUtf8_); // as a whole, so that it has one coding
                macro_.comment = common::cutAtCharacter(comment, longestMacroComment);
                return true;
            }
            comment.append(line_).append("\n");
        }
        return false;
    }

    bool readLabel()
    {
        if (!next("the line of the label")) return false;
        macro_.label = label(fieldOf(line_, textColumn, textLength));
        std::string_view format = line_.substr(std::min(formatColumn, line_.size()));
        int width = 0, decimals = 0;
        if (common::takeInt(format, width) && format.starts_with('.')) {
            format.remove_prefix(1);
            if (common::takeInt(format, decimals)) {
                collection::clampFormat(width, decimals);
                macro_.width = width;
                macro_.decimals = decimals;
            }
        }
        return true;
    }

    // Ends with the line behind the inputs in `line_`.
    bool readInputs()
    {
        std::array<bool, maxMacroInputs> known{};
        while (next("the formula")) {
            if (!line_.starts_with('#')) return areNumbered(known);
            if (!readInput(known)) return false;
        }
        return false;
    }

    bool readInput(std::array<bool, maxMacroInputs>& known)
    {
        std::string_view numberText = line_.substr(1, 2);
        int number = 0;
        if (!common::takeInt(numberText, number)) return fail("an input has no number");
        if (number < 1 || number > maxMacroInputs)
            return fail(common::format("input #%d: a macro has inputs #1 to #%d", number, maxMacroInputs));
        const auto at = static_cast<std::size_t>(number - 1);
        if (known[at]) return fail(common::format("input #%d comes twice", number));
        known[at] = true;
        macro_.inputs[at] = label(fieldOf(line_, textColumn, std::string_view::npos));
        ++macro_.nInputs;
        return true;
    }

    bool areNumbered(const std::array<bool, maxMacroInputs>& known)
    {
        const auto gap = std::find(known.begin(), known.end(), false) - known.begin();
        return gap >= macro_.nInputs ||
               fail(common::format("input #%d is missing", static_cast<int>(gap) + 1));
    }

    // All lines behind the blank one; the last line feed belongs to the file. Where there is no blank line,
    // the line behind the inputs is the first of the formula.
    bool readFormula()
    {
        macro_.expression.clear();
        if (common::trimBlanks(line_).empty() && !next("the formula")) return false;
        for (bool more = true; more; more = !rest_.empty() && next({}))
            macro_.expression.append(line_).append("\n");
        macro_.expression.pop_back();
        return true;
    }

    std::string_view rest_, line_;
    const bool isUtf8_;
    int lineNumber_ = 0;
    MACRO macro_;
    std::string fault_;
};

bool isBeyondLatin1(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; }) &&
           common::isValidUtf8(text);
}

// The texts of a macro in the coding of its file, which is Latin-1 unless one of them doesn't fit.
class RMacroCoding {
public:
    explicit RMacroCoding(const MACRO& macro)
        : isUtf8_(isBeyondLatin1(macro.label) || isBeyondLatin1(macro.comment) ||
                  std::any_of(macro.inputs.begin(), macro.inputs.end(), isBeyondLatin1))
    {
    }
    [[nodiscard]] std::string encoded(std::string_view text) const
    {
        return isUtf8_ ? common::labelToUtf8(text) : std::string(text);
    }
    // In one line of 60 bytes.
    [[nodiscard]] std::string padded(std::string_view text) const
    {
        std::string line(common::cutAtCharacter(encoded(text), textLength));
        std::replace(line.begin(), line.end(), '\n', ' ');
        line.resize(textLength, ' ');
        return line;
    }

private:
    const bool isUtf8_;
};

} // namespace

std::string joinedFormula(std::string_view expression, int* lineLeftOut)
{
    std::string formula;
    if (lineLeftOut) *lineLeftOut = 0;
    for (int number = 1; !expression.empty(); ++number) {
        std::string line(common::takeLine(expression));
        std::erase(line, '\r');
        const std::string_view trimmed = common::trimBlanks(line);
        if (trimmed.size() <= 1) continue;
        if (formula.size() + trimmed.size() + 1 >= static_cast<std::size_t>(common::formulaLength)) {
            if (lineLeftOut) *lineLeftOut = number;
            break;
        }
        formula.append(trimmed).append(" ");
    }
    return formula;
}

std::string faultText(const std::string& path, const MACROFAULT& fault)
{
    return path + (fault.line > 0 ? ":" + std::to_string(fault.line) : std::string()) + ": " + fault.text;
}

bool parseMacro(std::string_view content, MACRO& macro, MACROFAULT& fault)
{
    RMacroReader reader(content, macro);
    const bool isMacro = reader.read();
    if (isMacro) {
        macro = reader.macro();
    } else {
        fault = reader.fault();
    }
    return isMacro;
}

std::string formatMacro(const MACRO& macro)
{
    const RMacroCoding coding(macro);
    std::string text = std::string(magic) + " Macro\n";
    text += common::replaceAll(coding.encoded(macro.comment), markerPart, ">| --->");
    if (!text.ends_with('\n')) text += '\n';
    text.append(marker).append("\n");
    text += std::string(textColumn, ' ') + coding.padded(macro.label) +
            common::format("%2d.%1d\n", macro.width, macro.decimals);
    const int inputs = std::clamp(macro.nInputs, 0, maxMacroInputs);
    for (int i = 0; i < inputs; ++i) {
        text += common::format("#%1d   ", i + 1) + coding.padded(macro.inputs[static_cast<std::size_t>(i)]) +
                "\n";
    }
    return text + "\n" + macro.expression + "\n";
}

bool readMacroFile(const std::string& path, MACRO& macro, MACROFAULT& fault)
{
    const auto content = common::readFile(path, largestFile);
    if (content) return parseMacro(*content, macro, fault);
    const bool large = common::fileSize(path) > largestFile;
    fault = {0, large ? "the file is too large for a macro" : "the file can't be read"};
    return false;
}

bool writeMacroFile(const std::string& path, const MACRO& macro)
{
    return common::writeFile(path, formatMacro(macro));
}

} // namespace variables
