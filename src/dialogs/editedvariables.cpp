#include "dialogs/editedvariables.h"

#include <algorithm>
#include <string_view>

#include "collection/varformat.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace dialogs {
namespace {

using collection::VARINFO;

constexpr std::size_t labelBytes = sizeof(VARINFO::label) - 1;

std::size_t index(int place)
{
    return static_cast<std::size_t>(place);
}

void renumber(VariableList& list)
{
    for (std::size_t v = 0; v < list.size(); ++v) list[v].position = static_cast<std::int32_t>(v);
}

} // namespace

int variableCountOf(const VariableList& list)
{
    return list.empty() ? 0 : static_cast<int>(list.size()) - 1;
}

int addVariable(VariableList& list, int behind)
{
    const int count = variableCountOf(list);
    if (count >= common::maxVariables) return 0;
    if (list.empty()) list.push_back(collection::emptyVariable(0));
    const int place = std::clamp(behind, 0, count) + 1;
    VARINFO variable = collection::emptyVariable(place);
    renameVariable(variable, QStringLiteral("New Variable []"));
    list.insert(list.begin() + place, variable);
    renumber(list);
    return place;
}

bool removeVariable(VariableList& list, int place)
{
    const int count = variableCountOf(list);
    if (count <= 1 || place < 1 || place > count) return false;
    list.erase(list.begin() + place);
    renumber(list);
    return true;
}

bool moveVariable(VariableList& list, int place, int step)
{
    const int target = place + step, count = variableCountOf(list);
    if (place < 1 || place > count || target < 1 || target > count) return false;
    std::swap(list[index(place)], list[index(target)]);
    renumber(list);
    return true;
}

std::string labelFrom(const QString& text)
{
    QString line = text;
    for (QChar& c : line) {
        if (c.unicode() < 32 || (c.unicode() >= 127 && c.unicode() < 160)) c = QLatin1Char(' ');
    }
    return std::string(common::trimBlanks(common::encodeLabel(line.trimmed(), labelBytes)));
}

void renameVariable(VARINFO& variable, const QString& text)
{
    collection::setLabel(variable, labelFrom(text));
}

QString labelOf(const VARINFO& variable)
{
    return common::decodeLabel(common::fieldText(variable.label));
}

QString plainOf(const VARINFO& variable)
{
    return common::decodeLabel(common::fieldText(variable.plainLabel));
}

bool setFormat(VARINFO& variable, const QString& text)
{
    const std::string typed = text.toStdString();
    const std::string_view view = typed;
    const std::size_t point = view.find('.');
    const auto width = common::parseInt(view.substr(0, point));
    const auto decimals =
        point == std::string_view::npos ? std::optional<int>(0) : common::parseInt(view.substr(point + 1));
    if (!width || !decimals || *width < 0 || *decimals < 0) return false;
    variable.width = *width;
    variable.decimals = *decimals;
    collection::clampFormat(variable.width, variable.decimals);
    return true;
}

QString formatOf(const VARINFO& variable)
{
    return QString::fromStdString(common::format("%d.%d", variable.width, variable.decimals));
}

int unlabelled(const VariableList& list)
{
    for (int v = 1; v <= variableCountOf(list); ++v) {
        if (list[index(v)].label[0] == '\0') return v;
    }
    return 0;
}

std::pair<int, int> sameLabels(const VariableList& list)
{
    const int count = variableCountOf(list);
    for (int v = 1; v <= count; ++v) {
        const std::string_view label = common::fieldText(list[index(v)].label);
        for (int w = v + 1; w <= count; ++w) {
            if (common::equalsIgnoreCase(label, common::fieldText(list[index(w)].label))) return {v, w};
        }
    }
    return {0, 0};
}

std::vector<int> lostVariables(const VariableList& list, int oldCount)
{
    std::vector<int> lost;
    for (int old = 1; old <= oldCount; ++old) {
        const auto taken = [old](const VARINFO& variable) { return variable.assocSource == old; };
        if (list.empty() || std::none_of(list.begin() + 1, list.end(), taken)) lost.push_back(old);
    }
    return lost;
}

} // namespace dialogs
