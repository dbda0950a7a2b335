// Derived variables, and what is set about variables.

#include <algorithm>
#include <numeric>

#include "app/commandfile.h"
#include "app/session.h"
#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "variables/parametersettler.h"
#include "variables/setupquestions.h"

namespace app {
namespace {

constexpr std::size_t longestKey = 60; // bytes

// The new number of each variable when those of `removed` are gone; 0 for these.
std::vector<int> numbersWithout(std::span<const int> removed, int count)
{
    std::vector<int> numbers(static_cast<std::size_t>(count) + 1);
    int next = 0;
    for (int v = 1; v <= count; ++v) {
        const bool gone = std::find(removed.begin(), removed.end(), v) != removed.end();
        numbers[static_cast<std::size_t>(v)] = gone ? 0 : ++next;
    }
    return numbers;
}

// Texts of roles stand in the table's questions.
bool isKeyOfARow(const collection::RCollection& collection, std::string_view keyText)
{
    for (const variables::DRVVAR& row : variables::derivedRows()) {
        for (const variables::SETUPQUESTION& question : variables::setupQuestions(collection, row)) {
            if (question.kind == variables::SETUPQUESTION::Kind::role && question.text == keyText)
                return true;
        }
    }
    return false;
}

} // namespace

// The row "Longitude" counts as the map does.
void RSession::takeMapDomain()
{
    surroundings.mapWest = setup.map.geometry.lonMin;
    surroundings.mapEast = setup.map.geometry.lonMax;
}

// --- over other commands

// Derived variables stay as long as what they are computed from does. `sample` are the criteria of before.
void RSession::keepDerived(const variables::DERIVEDSET& derived, std::vector<int>& numbers,
                           const collection::SELECTIONCRITERIA& sample)
{
    const std::vector<int> kept = variables::restoreDerived(collection, derived, numbers);
    numbers.insert(numbers.end(), kept.begin(), kept.end());
    const auto lost = std::count(kept.begin(), kept.end(), 0);
    if (lost > 0)
        user_.note(collection.path + ".var: " +
                   common::counted(static_cast<int>(lost), "derived variable is", "derived variables are") +
                   " gone with what was needed for them");
    const bool wasDerived = sample.sampleVariable >= derived.firstNumber &&
                            sample.sampleVariable < static_cast<int>(numbers.size());
    if (!wasDerived) return;
    collection.criteria.sampleVariable = numbers[static_cast<std::size_t>(sample.sampleVariable)];
    if (collection.criteria.sampleVariable == 0) return;
    collection.criteria.sampleMin = sample.sampleMin;
    collection.criteria.sampleMax = sample.sampleMax;
}

// The derived variables of the collection that was closed, for its files opened again.
void RSession::putBackDerived(const variables::DERIVEDSET& derived)
{
    if (!collection.isOpen || collection.variableCount != derived.firstNumber - 1) return;
    std::vector<int> same(static_cast<std::size_t>(derived.firstNumber));
    std::iota(same.begin(), same.end(), 0);
    variables::restoreDerived(collection, derived, same);
}

// --- by words

std::string RSession::setKey(std::string_view keyText, std::string_view variable)
{
    if (!collection.isOpen) return openFault();
    const int number = variableOf(variable);
    if (number == 0) return "there is no variable " + common::quoted(variable);
    if (number > collection.variableCount)
        return common::quoted(variable) + " is a derived variable, and only a stored one can play a role";
    if (!collection.writable) return "the collection is read-only";
    if (keyText.size() > longestKey || keyText.find_first_of("=\t") != std::string_view::npos)
        return common::quoted(keyText) +
               common::format(" is no key: it has more than %zu bytes, a tab or \"=\"", longestKey);
    if (!isKeyOfARow(collection, keyText))
        user_.note("set_key: no row asks for " + common::quoted(keyText) + "; macros may");
    return variables::recordVariable(collection, keyText, number) ? std::string()
                                                                  : collection.path + ".idv can't be written";
}

std::string RSession::addDerived(int row, std::span<const std::string> parameters)
{
    if (!collection.isOpen) return openFault();
    variables::RParameterSettler settler({parameters.begin(), parameters.end()}, user_);
    const int number = addDerivedVariable(row, settler);
    return tellAdded(number, settler.fault());
}

std::string RSession::addExpression(variables::EXPRESSIONDEFINITION definition,
                                    std::span<const std::string> inputs)
{
    if (!collection.isOpen) return openFault();
    variables::RParameterSettler settler({inputs.begin(), inputs.end()}, user_);
    settler.giveExpression(std::move(definition));
    const int number = addDerivedVariable(variables::rowOfCalculator(variables::idExpression), settler);
    return tellAdded(number, settler.fault());
}

std::string RSession::addMacro(const std::string& path, std::span<const std::string> inputs)
{
    if (!collection.isOpen) return openFault();
    variables::RParameterSettler settler({inputs.begin(), inputs.end()}, user_);
    settler.giveMacroFile(macroPath(path));
    const int number = addDerivedVariable(variables::rowOfCalculator(variables::idMacro), settler);
    return tellAdded(number, settler.fault());
}

// Relative to the current directory, or else one of the user's macros or of the installation's.
std::string RSession::macroPath(const std::string& path) const
{
    for (const std::string& folder : {installation.macros, installation.root + "macros/"}) {
        if (common::fileExists(path)) break;
        if (common::fileExists(folder + path)) return folder + path;
    }
    return common::absolutePath(path);
}

std::string RSession::tellAdded(int number, std::string_view fault)
{
    if (number == 0) return std::string(fault.empty() ? toldFault : fault);
    const collection::VARINFO& variable = collection.variables[static_cast<std::size_t>(number)];
    tellDone(common::format("%s: variable %d is %s", collection.name.c_str(), number,
                            common::labelToUtf8(common::fieldText(variable.plainLabel)).c_str()));
    return {};
}

std::string RSession::deleteDerived(std::string_view variable)
{
    if (!collection.isOpen) return openFault();
    const int number = variableOf(variable);
    if (number == 0) return "there is no variable " + common::quoted(variable);
    if (number <= collection.variableCount)
        return common::quoted(variable) + " is stored in the collection; change_variables takes it out";
    const int before = collection.totalVariableCount;
    deleteDerivedVariable(number);
    tellDone(
        collection.name + ": " +
        common::counted(before - collection.totalVariableCount, "derived variable", "derived variables") +
        " deleted");
    return {};
}

// --- by numbers

int RSession::addDerivedVariable(int row, variables::RVariableSettler& settler)
{
    const int number = variables::addDerivedVariable(
        collection, row, {surroundings, installation, settler, user_, macroFormat_});
    if (number > 0) collection.configChanged = true;
    return number;
}

void RSession::deleteDerivedVariable(int number)
{
    const int oldCount = collection.totalVariableCount;
    std::vector<int> removed = variables::dependentVariables(collection, number);
    removed.push_back(number);
    if (variables::deleteDerivedVariable(collection, number - collection.variableCount) == 0) return;
    graphics::GRAPHICSSETUP defaults;
    graphics::setDefaultSetup(defaults, collection, installation);
    followVariables(setup, numbersWithout(removed, oldCount), defaults, ranged_);
    currentStation.clear();
    viewChanged();
    view_.statusChanged();
}

void RSession::takeVariableSettings(std::span<const collection::VARINFO> edited)
{
    const int count = std::min(collection.totalVariableCount, static_cast<int>(edited.size()) - 1);
    for (int v = 1; v <= count; ++v) {
        const collection::VARINFO& from = edited[static_cast<std::size_t>(v)];
        collection::VARINFO& to = collection.variables[static_cast<std::size_t>(v)];
        collection::setLabel(to, common::fieldText(from.label));
        to.width = from.width;
        to.decimals = from.decimals;
        to.position = from.position;
    }
    graphics::markAllToDraw(setup);
    viewChanged();
}

// Quantities that are summed up from profiles may come or go.
void RSession::takeCoverage(const variables::COVERAGECRITERIA& coverage)
{
    if (coverage == surroundings.coverage) return;
    surroundings.coverage = coverage;
    if (!collection.isOpen) return;
    graphics::markAllToDraw(setup);
    viewChanged();
}

} // namespace app
