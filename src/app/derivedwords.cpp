#include "app/derivedwords.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "common/text.h"
#include "variables/registry.h"

namespace app {
namespace {

// The fields of `rest` up to its end; behind a last comma there is none.
std::string takeFields(std::string_view rest, std::vector<std::string>& fields)
{
    while (!common::trimBlanks(rest).empty()) {
        fields.emplace_back();
        if (std::string wrong = takeField(rest, fields.back()); !wrong.empty()) return wrong;
    }
    return {};
}

// Labels of rows hold commas too: of those that end at a comma or with the text, the longest is meant.
std::string takeRow(std::string_view& text, int& row)
{
    const bool inQuotes = text.starts_with('"');
    const std::string_view all = text;
    std::string label;
    std::string_view rest = text;
    std::string wrong = takeField(rest, label);
    row = wrong.empty() ? variables::findDerivedRow(label) : -1;
    for (std::size_t end = 0; !inQuotes && end < text.size(); ++end) {
        end = std::min(text.find(',', end), text.size());
        const int longer = variables::findDerivedRow(text.substr(0, end));
        if (longer < 0) continue;
        row = longer;
        rest = text.substr(std::min(end + 1, text.size()));
    }
    text = rest;
    if (!wrong.empty()) return wrong;
    return row < 0 ? "there is no derived variable " + common::quoted(all) : std::string();
}

// "width.decimals"
std::string takeFormat(std::string_view text, FORMULACHOICE& choice)
{
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::optional<int> width = common::parseInt(text.substr(0, point));
    const std::optional<int> decimals = point == text.size() ? 0 : common::parseInt(text.substr(point + 1));
    if (!width || !decimals || *width < 1 || *decimals < 0)
        return common::quoted(text) + " is no format \"width.decimals\"";
    choice.width = *width;
    choice.decimals = *decimals;
    return {};
}

} // namespace

std::string runSetKey(Fields fields, RCommandTarget& target)
{
    const std::size_t equals = fields[0].find('=');
    if (equals == std::string_view::npos)
        return common::quoted(fields[0]) + " stands without \"=\" and a variable";
    const std::string key = withoutQuotes(fields[0].substr(0, equals));
    const std::string variable = withoutQuotes(fields[0].substr(equals + 1));
    if (key.empty()) return "names no key";
    return variable.empty() ? common::quoted(key) + " is given no variable" : target.setKey(key, variable);
}

std::string runAddDerived(Fields fields, RCommandTarget& target)
{
    DERIVEDCHOICE choice;
    std::string_view rest = fields[0];
    std::string wrong = takeRow(rest, choice.row);
    if (wrong.empty()) wrong = takeFields(rest, choice.parameters);
    return wrong.empty() ? target.addDerived(choice) : wrong;
}

std::string runAddExpression(Fields fields, RCommandTarget& target)
{
    FORMULACHOICE choice;
    std::vector<std::string> parts;
    if (std::string wrong = takeFields(fields[0], parts); !wrong.empty()) return wrong;
    if (parts.size() < 3) return "needs a label, a format and a formula";
    if (std::string wrong = takeFormat(parts[1], choice); !wrong.empty()) return wrong;
    choice.label = parts[0];
    choice.formula = parts[2];
    choice.inputs.assign(parts.begin() + 3, parts.end());
    return target.addExpression(choice);
}

std::string runAddMacro(Fields fields, RCommandTarget& target)
{
    std::vector<std::string> parts;
    if (std::string wrong = takeFields(fields[0], parts); !wrong.empty()) return wrong;
    const std::string path = cleanPath(parts.front());
    parts.erase(parts.begin());
    return path.empty() ? "names no file" : target.addMacro(path, parts);
}

std::string runDeleteDerived(Fields fields, RCommandTarget& target)
{
    return target.deleteDerived(withoutQuotes(fields[0]));
}

} // namespace app
