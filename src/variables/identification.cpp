#include <algorithm>
#include <cstddef>

#include "collection/variableids.h"
#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "variables/newvariable.h"

namespace variables {
namespace {

constexpr std::int64_t largestIdFile = 16 << 20; // bytes
constexpr std::size_t longestIdLine = 120;

// Keys stand in the file as labels stand in records.
std::string keyBytes(std::string_view keyText)
{
    return common::labelFromFile(keyText, common::isValidUtf8(keyText));
}

// Without markup, and without the units if `isName`, in small letters.
std::string comparable(std::string_view label, bool isName)
{
    const std::string plain = collection::plainLabelOf(label);
    return common::toLower(common::labelToUtf8(isName ? collection::shortLabelOf(plain) : plain));
}

template <typename Matches>
int firstVariable(std::span<const collection::VARINFO> variables, Matches matches)
{
    for (std::size_t v = 1; v < variables.size(); ++v) {
        if (matches(variables[v])) return static_cast<int>(v);
    }
    return 0;
}

// The first with an equal label, or an equal name in front of its units.
int firstEqual(std::span<const collection::VARINFO> variables, std::string_view keyText, bool isName)
{
    const std::string wanted = comparable(keyText, isName);
    if (wanted.empty()) return 0;
    return firstVariable(variables, [&](const collection::VARINFO& variable) {
        return comparable(common::fieldText(variable.label), isName) == wanted;
    });
}

int firstContaining(std::span<const collection::VARINFO> variables, std::string_view keyText)
{
    const std::string wanted = comparable(keyText, false);
    if (wanted.empty()) return 0;
    return firstVariable(variables, [&](const collection::VARINFO& variable) {
        return comparable(common::fieldText(variable.label), false).find(wanted) != std::string::npos;
    });
}

// A derived potential temperature, if possible one at the surface.
PROPOSAL derivedTheta(std::span<const collection::VARINFO> variables, bool anyReference)
{
    const auto isTheta = [](const collection::VARINFO& variable) {
        return variable.id == idPotentialTemperature && variable.nSources > 0;
    };
    const int atSurface = firstVariable(variables, [&](const collection::VARINFO& variable) {
        return isTheta(variable) && variable.param == 0;
    });
    if (atSurface != 0) return {atSurface, true};
    return {firstVariable(variables, isTheta), anyReference};
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

PROPOSAL proposedVariable(std::span<const collection::VARINFO> variables, std::string_view keyText)
{
    if (const int equal = firstEqual(variables, keyText, false)) return {equal, true};
    const bool anyReference = keyText == potentialTemperatureKey;
    if (anyReference || comparable(keyText, true) == "potential temperature") {
        if (const PROPOSAL theta = derivedTheta(variables, anyReference); theta.variable != 0) return theta;
    }
    if (const int named = firstEqual(variables, keyText, true)) return {named, true};
    return {firstContaining(variables, keyText), false};
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
        const std::size_t length = collection::idKeyLength(line);
        if (length == 0 || length == line.size() || line.size() > longestIdLine) continue;
        const std::string key(line.substr(0, length));
        const bool isKnown =
            std::any_of(roles.begin(), roles.end(), [&](const KEYROLE& role) { return role.keyText == key; });
        if (!isKnown) roles.push_back({key, collection.getVariableId(key)});
    }
    return roles;
}

int resetKeyVariables(collection::RCollection& collection, RVariableSettler& settler, common::RUser& user)
{
    const std::string task = "Resetting Variable IDs ...";
    if (!collection.writable) {
        user.about(task,
                   "The collection is open for reading only: the roles of its variables stay as they are.");
        return 0;
    }
    int changes = 0;
    for (const KEYROLE& role : recordedRoles(collection)) {
        const std::string key = common::labelToUtf8(role.keyText);
        const auto answer = settler.identify(
            {task + " - Identify " + key, task, role.keyText, role.variable, true}, collection);
        if (!answer || *answer == role.variable) continue;
        if (*answer > collection.variableCount) {
            user.about(task, key + ": only a stored variable can play a role.");
        } else if (recordVariable(collection, role.keyText, *answer)) {
            ++changes;
        } else {
            user.about(task, collection.path + ".idv: can't note which variable is " + key);
        }
    }
    return changes;
}

} // namespace variables
