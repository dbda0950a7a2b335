// Variables with formulas: expressions and macro files.

#include <algorithm>
#include <filesystem>

#include "collection/varformat.h"
#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "variables/formula.h"
#include "variables/macrofile.h"
#include "variables/newvariable.h"

namespace variables {
namespace {

using collection::RCollection;
using collection::VARINFO;

const DRVVAR& rowOf(int id)
{
    return derivedRows()[static_cast<std::size_t>(rowOfCalculator(id))];
}

std::string onOneLine(std::string formula)
{
    std::replace_if(
        formula.begin(), formula.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return formula;
}

bool setInputs(VARINFO& variable, const std::vector<int>& inputs, int variableCount)
{
    if (inputs.size() > maxMacroInputs) return false;
    for (const int input : inputs) {
        if (input < 1 || input > variableCount) return false;
        variable.sources[variable.nSources++] = input;
    }
    return true;
}

std::string fileName(const std::string& path)
{
    return std::filesystem::path(path).filename().string();
}

constexpr std::string_view macroTitle = "Loading Macro";

// Reads the file; tells what is wrong with it when the busy state has ended.
bool readMacro(const std::string& path, MACRO& macro, common::RUser& user)
{
    MACROFAULT fault;
    {
        const common::RBusyGuard busy(user, "Loading Macro " + fileName(path) + " ...");
        if (readMacroFile(path, macro, fault)) return true;
    }
    user.about(macroTitle, (fault.line > 0 ? "Not a valid NVQ macro!\n\n" : "") + faultText(path, fault));
    return false;
}

// Says what a macro that is loaded all the same suffers from.
void tellWeakness(const std::string& path, int lineLeftOut, const std::string& fault, common::RUser& user)
{
    std::string text;
    if (lineLeftOut > 0)
        text =
            common::format("the formula is too long; its line %d and what follows is left out", lineLeftOut);
    if (!fault.empty()) text += (text.empty() ? "" : "\n") + fault;
    if (!text.empty()) user.about(macroTitle, path + ": " + text);
}

// The question for input n (from 0). One without a text plays no role that could be recorded.
SETUPQUESTION inputQuestion(const RCollection& collection, const MACRO& macro, int n)
{
    const std::string key = collection::plainLabelOf(macro.inputs[static_cast<std::size_t>(n)]);
    if (key.empty()) return {SETUPQUESTION::Kind::variable, "#" + std::to_string(n + 1), n + 1, 0, ""};
    return {SETUPQUESTION::Kind::role, key, n + 1, recordedVariable(collection, key), ""};
}

// Binds the inputs to variables. False if the user cancelled.
bool identifyInputs(const RCollection& collection, const MACRO& macro, VARINFO& variable, NEWROLES& roles,
                    RVariableSettler& settler)
{
    variable.nSources = std::clamp(macro.nInputs, 0, maxMacroInputs);
    for (int n = 0; n < variable.nSources; ++n) {
        const SETUPQUESTION question = inputQuestion(collection, macro, n);
        const int input = identifyForSetup(collection, macroTitle, question.text,
                                           question.kind == SETUPQUESTION::Kind::role, roles, settler);
        if (input == 0) return false;
        variable.sources[n] = input;
    }
    return true;
}

std::vector<SETUPQUESTION> inputQuestions(const RCollection& collection, const MACRO& macro)
{
    std::vector<SETUPQUESTION> questions;
    for (int n = 0; n < std::clamp(macro.nInputs, 0, maxMacroInputs); ++n)
        questions.push_back(inputQuestion(collection, macro, n));
    return questions;
}

} // namespace

SETUPFAULT definitionFault(const EXPRESSIONDEFINITION& definition, int variableCount)
{
    const std::string missing = "Information missing ...", faulty = "Faulty expression ...";
    if (common::trimBlanks(definition.label).empty()) return {missing, "You must enter a Label!"};
    if (common::trimBlanks(definition.formula).empty()) return {missing, "You must enter an Expression!"};
    if (!collection::isFormat(definition.width, definition.decimals))
        return {faulty,
                common::format("The format %d.%d isn't possible: 0 to %d decimals, and a width that is "
                               "larger by %d to %d.",
                               definition.width, definition.decimals, collection::mostDecimals,
                               collection::leastExtraWidth, collection::mostExtraWidth)};
    VARINFO probe{};
    if (!setInputs(probe, definition.inputs, variableCount))
        return {faulty, common::format("An expression has at most %d inputs, all of them variables of the "
                                       "collection.",
                                       maxMacroInputs)};
    return {faulty, formulaFault(onOneLine(definition.formula), probe.nSources)};
}

int addExpression(RCollection& collection, const SETUPTOOLS& tools)
{
    if (!tools.settler.begin({}, collection)) return 0;
    const auto definition = tools.settler.defineExpression(collection);
    if (!definition || !tools.settler.finish()) return 0;
    if (const auto [title, text] = definitionFault(*definition, collection.totalVariableCount);
        !text.empty()) {
        tools.user.about(title, text);
        return 0;
    }
    VARINFO variable = variableOfRow(collection, rowOf(idExpression));
    variable.width = definition->width;
    variable.decimals = definition->decimals;
    collection::setLabel(variable,
                         common::labelFromFile(definition->label, common::isValidUtf8(definition->label)));
    (void)setInputs(variable, definition->inputs, collection.totalVariableCount);
    return joinFormula(collection, variable, onOneLine(definition->formula), {}, tools.user);
}

int loadMacroVariable(RCollection& collection, const std::string& path, const SETUPTOOLS& tools)
{
    MACRO macro;
    macro.width = tools.macroFormat.width;
    macro.decimals = tools.macroFormat.decimals;
    if (!readMacro(path, macro, tools.user)) return 0;
    tools.macroFormat = {macro.width, macro.decimals};
    VARINFO variable = variableOfRow(collection, rowOf(idMacro));
    common::copyText(variable.source, path);
    variable.width = macro.width;
    variable.decimals = macro.decimals;
    collection::setLabel(variable, macro.label.empty() ? common::splitPath(path).baseName : macro.label);
    NEWROLES roles;
    if (!tools.settler.begin(inputQuestions(collection, macro), collection) ||
        !identifyInputs(collection, macro, variable, roles, tools.settler) || !tools.settler.finish())
        return 0;
    int lineLeftOut = 0;
    const std::string formula = joinedFormula(macro.expression, &lineLeftOut);
    const int number = joinFormula(collection, variable, formula, roles, tools.user);
    tellWeakness(path, lineLeftOut, formulaFault(formula, variable.nSources), tools.user);
    return number;
}

} // namespace variables
