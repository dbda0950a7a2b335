#include "collection/varinfo.h"

#include "common/text.h"
#include "common/textcoding.h"

namespace collection {
namespace {

constexpr char integralSign = '\xF2', brokenBar = '\xA6';

void clearRange(VARINFO& variable)
{
    variable.rangeMin = 1.0e10f;
    variable.rangeMax = -1.0e10f;
}

} // namespace

VARINFO emptyVariable(int number)
{
    VARINFO variable{};
    clearRange(variable);
    variable.width = 8;
    variable.decimals = 2;
    variable.position = number;
    variable.qualifier = 1;
    variable.resolution = 1.0f;
    variable.resolution2 = 0.01f;
    variable.scale = 1.0f;
    return variable;
}

void setLabel(VARINFO& variable, std::string_view label)
{
    common::copyText(variable.label, label);
    const std::string_view kept = common::fieldText(variable.label);
    common::copyText(variable.plainLabel, plainLabelOf(kept));
    common::copyText(variable.shortLabel, shortLabelOf(kept));
}

std::string plainLabelOf(std::string_view label)
{
    const bool singleByte = !common::isValidUtf8(label);
    std::string plain;
    plain.reserve(label.size());
    for (std::size_t i = 0; i < label.size(); ++i) {
        if (label[i] == '~') {
            if (label.substr(i, 3) == "~$m") {
                plain += 'u';
                ++i;
            }
            ++i;
        } else {
            plain += singleByte && label[i] == integralSign ? brokenBar : label[i];
        }
    }
    return plain;
}

std::string shortLabelOf(std::string_view label)
{
    return std::string(common::trimBlanks(label.substr(0, label.find('['))));
}

int findVariable(std::span<const VARINFO> variables, int count, std::string_view text)
{
    const std::string_view wanted = common::trimBlanks(text);
    if (wanted.empty()) return 0;
    const int last = std::min(count, static_cast<int>(variables.size()) - 1);
    if (const auto number = common::parseInt(wanted)) return *number >= 1 && *number <= last ? *number : 0;
    const std::string utf8 = common::labelToUtf8(wanted);
    using Form = std::string (*)(const VARINFO& variable);
    constexpr Form forms[] = {
        [](const VARINFO& variable) { return std::string(common::fieldText(variable.label)); },
        [](const VARINFO& variable) { return std::string(common::fieldText(variable.plainLabel)); },
        [](const VARINFO& variable) { return std::string(common::fieldText(variable.shortLabel)); },
        [](const VARINFO& variable) { return shortLabelOf(common::fieldText(variable.plainLabel)); }};
    for (const Form form : forms) {
        for (int v = 1; v <= last; ++v) {
            const std::string label = form(variables[static_cast<std::size_t>(v)]);
            if (common::equalsIgnoreCase(common::labelToUtf8(label), utf8)) return v;
        }
    }
    return 0;
}

} // namespace collection
