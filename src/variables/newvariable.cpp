#include "variables/newvariable.h"

#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"

namespace variables {

using collection::RCollection;
using collection::VARINFO;

VARINFO variableOfRow(const RCollection& collection, const DRVVAR& row)
{
    VARINFO variable = collection::emptyVariable(collection.totalVariableCount + 1);
    common::copyText(variable.source, "built-in");
    variable.id = row.id;
    variable.width = row.width;
    variable.decimals = row.decimals;
    variable.qualifier = row.qualifier;
    variable.resolution = row.resolution;
    variable.resolution2 = row.resolution2;
    return variable;
}

int identifyForSetup(const RCollection& collection, std::string_view task, std::string_view keyText,
                     bool isRole, NEWROLES& roles, RVariableSettler& settler)
{
    const int recorded = isRole ? recordedVariable(collection, keyText) : 0;
    if (recorded != 0 && !settler.answersRecorded()) return recorded;
    if (isRole && !settler.answersRecorded()) {
        const auto given = std::find_if(roles.begin(), roles.end(),
                                        [&](const KEYROLE& role) { return role.keyText == keyText; });
        if (given != roles.end()) return given->variable;
    }
    const std::string title = std::string(task) + " - Identify " + common::labelToUtf8(keyText);
    const auto known =
        std::span(collection.variables).first(static_cast<std::size_t>(collection.totalVariableCount) + 1);
    const PROPOSAL proposal = isRole ? proposedVariable(known, keyText) : PROPOSAL();
    const auto answer = settler.identify(
        {title, std::string(task), std::string(keyText), proposal.variable, isRole, proposal.isSure},
        collection);
    if (!answer || *answer < 1 || *answer > collection.totalVariableCount) return 0;
    if (isRole && recorded == 0) roles.push_back({std::string(keyText), *answer});
    return *answer;
}

int joinVariable(RCollection& collection, const VARINFO& variable, const NEWROLES& roles, common::RUser& user)
{
    for (const KEYROLE& role : roles) {
        const bool isKept = role.variable <= collection.variableCount && collection.writable;
        if (isKept && !recordVariable(collection, role.keyText, role.variable))
            user.about(common::labelToUtf8(common::fieldText(variable.plainLabel)),
                       collection.path + ".idv: can't note which variable is " +
                           common::labelToUtf8(role.keyText));
    }
    const int number = ++collection.totalVariableCount;
    collection.variables[static_cast<std::size_t>(number)] = variable;
    collection.variables[static_cast<std::size_t>(number)].position = number;
    return number;
}

int joinFormula(RCollection& collection, VARINFO variable, std::string formula, const NEWROLES& roles,
                common::RUser& user)
{
    variable.intParam = collection.nMacros;
    collection.formulas[static_cast<std::size_t>(collection.nMacros++)] = std::move(formula);
    return joinVariable(collection, variable, roles, user);
}

} // namespace variables
