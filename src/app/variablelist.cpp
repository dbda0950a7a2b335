#include "app/variablelist.h"

#include <algorithm>
#include <array>

#include "common/files.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace app {
namespace {

constexpr std::int64_t largestList = 1 << 20;                    // bytes
constexpr int maxDecimals = 4, leastMargin = 3, mostMargin = 15; // of a format: width less decimals
constexpr std::size_t longestLabel = sizeof(collection::VARINFO::label) - 1;

bool holdsControls(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 32; });
}

std::string setLabel(collection::VARINFO& variable, std::string_view text, bool fileIsUtf8)
{
    const std::string label = common::labelFromFile(common::trimBlanks(text), fileIsUtf8);
    if (label.empty()) return "the label is empty";
    if (holdsControls(label)) return "the label holds a control character";
    if (label.size() > longestLabel)
        return "the label is longer than " + std::to_string(longestLabel) + " characters";
    collection::setLabel(variable, label);
    return {};
}

std::string setFormat(collection::VARINFO& variable, std::string_view text)
{
    std::string_view rest = common::trimBlanks(text);
    int width = 0, decimals = 0;
    const bool reads = common::takeInt(rest, width) && rest.starts_with('.') &&
                       common::takeInt(rest = rest.substr(1), decimals) && rest.empty();
    if (!reads)
        return "the format " + common::quoted(common::trimBlanks(text)) +
               " isn't width.decimals, such as 8.2";
    if (decimals < 0 || decimals > maxDecimals)
        return common::format("a variable has 0 to %d decimals, not %d", maxDecimals, decimals);
    if (width < decimals + leastMargin || width > decimals + mostMargin)
        return common::format("with %d decimals the width is %d to %d, not %d", decimals,
                              decimals + leastMargin, decimals + mostMargin, width);
    variable.width = width;
    variable.decimals = decimals;
    return {};
}

std::string setOrigin(collection::VARINFO& variable, std::string_view text, int oldCount)
{
    const std::optional<int> old = common::parseInt(text);
    if (!old)
        return "the old variable " + common::quoted(common::trimBlanks(text)) + " doesn't read as a number";
    if (*old < 0 || *old > oldCount)
        return common::format("there is no old variable %d; the collection has %d", *old, oldCount);
    variable.assocSource = *old;
    return {};
}

// What is wrong with a line, empty if nothing is.
std::string readLine(std::string_view line, bool fileIsUtf8, int oldCount, collection::VARINFO& variable)
{
    std::array<std::string_view, 4> fields;
    const int count = common::splitFields(line, '\t', fields);
    if (count != 3)
        return "a line has three fields divided by tabs: label, width.decimals, number of the old variable";
    std::string wrong = setLabel(variable, fields[0], fileIsUtf8);
    if (wrong.empty()) wrong = setFormat(variable, fields[1]);
    if (wrong.empty()) wrong = setOrigin(variable, fields[2], oldCount);
    return wrong;
}

} // namespace

std::vector<collection::VARINFO> parseVariableList(std::string_view text, std::string_view name, int oldCount,
                                                   std::string& fault)
{
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    const bool fileIsUtf8 = common::isValidUtf8(text);
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    std::vector<collection::VARINFO> variables{collection::emptyVariable(0)};
    const auto refuse = [&](int line, const std::string& what) {
        fault = std::string(name) + ":" + std::to_string(line) + ": " + what;
        return std::vector<collection::VARINFO>();
    };
    int number = 0;
    while (!text.empty()) {
        const std::string_view line = common::takeLine(text);
        ++number;
        if (common::trimBlanks(line).empty() || line.starts_with('#')) continue;
        collection::VARINFO variable = collection::emptyVariable(static_cast<int>(variables.size()));
        if (const std::string wrong = readLine(line, fileIsUtf8, oldCount, variable); !wrong.empty())
            return refuse(number, wrong);
        if (variables.size() > common::maxVariables)
            return refuse(number,
                          common::format("a collection has at most %d variables", common::maxVariables));
        variables.push_back(variable);
    }
    if (variables.size() == 1) return refuse(std::max(number, 1), "the list names no variable");
    return variables;
}

std::vector<collection::VARINFO> readVariableList(const std::string& path, int oldCount, std::string& fault)
{
    const std::optional<std::string> text = common::readFile(path, largestList);
    if (text) return parseVariableList(*text, path, oldCount, fault);
    fault = path + " can't be read as a list of variables";
    return {};
}

} // namespace app
