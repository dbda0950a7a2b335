#include <algorithm>
#include <cstddef>

#include "collection/variableids.h"
#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "variables/newvariable.h"

namespace variables {
namespace {

constexpr std::int64_t largestIdFile = 16 << 20;

// Keys stand in the file as labels stand in records.
std::string keyBytes(std::string_view keyText)
{
    return common::labelFromFile(keyText, common::isValidUtf8(keyText));
}

std::string lowerUtf8(std::string_view label)
{
    return common::toLower(common::labelToUtf8(label));
}

template <typename Matches>
int firstVariable(const collection::RCollection& collection, Matches matches)
{
    for (int v = 1; v <= collection.totalVariableCount; ++v) {
        if (matches(collection.variables[static_cast<std::size_t>(v)])) return v;
    }
    return 0;
}

} // namespace

bool isRecordable(int id, std::string_view keyText)
{
    if (id == idRatio || id == idTime || id == idDayOfYear) return false;
    const bool takesAnyVariable =
        id == idVerticalDerivative || id == idVerticalIntegral || id == idSecondDerivative;
    return !takesAnyVariable || keyText == "Depth [m]";
}

int recordedVariable(const collection::RCollection& collection, std::string_view keyText)
{
    return collection.getVariableId(keyBytes(keyText));
}

bool recordVariable(collection::RCollection& collection, std::string_view keyText, int number)
{
    return collection.writable && number >= 1 && number <= collection.variableCount &&
           collection.setVariableId(keyBytes(keyText), number);
}

int proposedVariable(const collection::RCollection& collection, std::string_view keyText)
{
    if (keyText == potentialTemperatureKey) {
        const int derived = firstVariable(collection, [](const collection::VARINFO& variable) {
            return variable.id == idPotentialTemperature && variable.nSources > 0;
        });
        if (derived != 0) return derived;
    }
    const std::string wanted = lowerUtf8(keyText);
    const int holding = firstVariable(collection, [&](const collection::VARINFO& variable) {
        return lowerUtf8(common::fieldText(variable.label)).find(wanted) != std::string::npos ||
               lowerUtf8(common::fieldText(variable.plainLabel)).find(wanted) != std::string::npos;
    });
    if (holding != 0) return holding;
    const std::string name = lowerUtf8(collection::plainLabelOf(collection::shortLabelOf(keyText)));
    return firstVariable(collection, [&](const collection::VARINFO& variable) {
        return lowerUtf8(collection::plainLabelOf(common::fieldText(variable.shortLabel))) == name;
    });
}

int identifyVariable(collection::RCollection& collection, std::string_view title, std::string_view keyText,
                     bool recordable, RVariableSettler& settler)
{
    NEWROLES roles;
    const int answer = identifyForSetup(collection, title, keyText, recordable, roles, settler);
    for (const KEYROLE& role : roles) recordVariable(collection, role.keyText, role.variable);
    return answer;
}

std::vector<KEYROLE> recordedRoles(const collection::RCollection& collection)
{
    std::vector<KEYROLE> roles;
    const auto text = common::readFile(collection.path + ".idv", largestIdFile);
    if (!text) return roles;
    std::string_view rest = *text;
    while (!rest.empty()) {
        const std::string_view line = common::takeLine(rest);
        const std::string key(line.substr(0, collection::idKeyLength(line)));
        const bool isKnown =
            std::any_of(roles.begin(), roles.end(), [&](const KEYROLE& role) { return role.keyText == key; });
        const int number = key.empty() ? 0 : collection.getVariableId(key);
        if (number != 0 && !isKnown) roles.push_back({key, number});
    }
    return roles;
}

int resetKeyVariables(collection::RCollection& collection, RVariableSettler& settler)
{
    const std::string task = "Resetting Variable IDs ...";
    int changes = 0;
    for (const KEYROLE& role : recordedRoles(collection)) {
        const auto answer = settler.identify({task + " - Identify " + common::labelToUtf8(role.keyText), task,
                                              role.keyText, role.variable, true},
                                             collection);
        if (!answer || *answer == role.variable) continue;
        if (recordVariable(collection, role.keyText, *answer)) ++changes;
    }
    return changes;
}

} // namespace variables
