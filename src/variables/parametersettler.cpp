#include "variables/parametersettler.h"

#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"
#include "variables/timeconversions.h"

namespace variables {

bool RParameterSettler::begin(std::span<const SETUPQUESTION> questions,
                              const collection::RCollection& collection)
{
    const auto isRole = [](const SETUPQUESTION& question) {
        return question.kind == SETUPQUESTION::Kind::role;
    };
    const auto isOpen = [&](const SETUPQUESTION& question) {
        return isRole(question) && question.recorded == 0;
    };
    if (!macroFile_.empty()) return beginMacro(questions.size());
    const auto roles = std::count_if(questions.begin(), questions.end(), isRole);
    const auto open = std::count_if(questions.begin(), questions.end(), isOpen);
    const std::ptrdiff_t others = std::ssize(questions) - roles, given = std::ssize(parameters_);
    if (roles == 0 || given <= others) return true;
    if (given == others + roles) roles_ = Roles::all;
    if (given == others + open) roles_ = Roles::unrecorded;
    if (roles_ != Roles::none || dropRepeated(questions, collection)) return true;
    fail(common::format("It takes %d parameters, or %d with a variable for each of its roles, not %d.",
                        static_cast<int>(others), static_cast<int>(others + roles), static_cast<int>(given)));
    return false;
}

// A script that told some roles by parameters finds them recorded when it runs again: parameters that repeat
// what is recorded are dropped. False, with nothing dropped, if those beyond the other questions aren't all
// such.
bool RParameterSettler::dropRepeated(std::span<const SETUPQUESTION> questions,
                                     const collection::RCollection& collection)
{
    std::vector<std::string> kept;
    std::size_t next = 0;
    for (const SETUPQUESTION& question : questions) {
        if (next == parameters_.size()) break;
        const std::string& parameter = parameters_[next];
        const bool isRole = question.kind == SETUPQUESTION::Kind::role;
        const bool isRepeated = isRole && question.recorded != 0 &&
                                collection::findVariable(collection.variables, collection.totalVariableCount,
                                                         parameter) == question.recorded;
        if (!isRole) kept.push_back(parameter);
        if (!isRole || isRepeated) ++next;
    }
    if (next < parameters_.size()) return false;
    parameters_ = std::move(kept);
    return true;
}

// The user of a macro names its inputs, and they have their numbers: the parameters are all of them or none.
bool RParameterSettler::beginMacro(std::size_t inputs)
{
    if (parameters_.empty()) return true;
    roles_ = Roles::all;
    if (parameters_.size() == inputs) return true;
    fail(common::format("The macro has %zu inputs: parameters tell all of them or none, not %zu.", inputs,
                        parameters_.size()));
    return false;
}

bool RParameterSettler::finish()
{
    if (used_ < parameters_.size())
        fail("There is no question for the parameter \"" + parameters_[used_] + "\".");
    if (!fault_.empty()) return false;
    for (const std::string& note : notes_) user_.note(note);
    return true;
}

std::optional<int> RParameterSettler::identify(const IDENTIFICATION& question,
                                               const collection::RCollection& collection)
{
    if (question.isKey && roles_ == Roles::none) return likelyVariable(question, collection);
    return takeVariable(common::labelToUtf8(question.keyText), collection);
}

std::optional<int> RParameterSettler::takeVariable(std::string_view question,
                                                   const collection::RCollection& collection)
{
    const std::string* const text = next();
    if (!text) {
        fail(std::string(question) + ": a parameter must tell the variable.");
        return std::nullopt;
    }
    const int number = collection::findVariable(collection.variables, collection.totalVariableCount, *text);
    if (number != 0) return number;
    fail(std::string(question) + ": there is no variable \"" + *text + "\".");
    return std::nullopt;
}

std::optional<int> RParameterSettler::likelyVariable(const IDENTIFICATION& question,
                                                     const collection::RCollection& collection)
{
    const std::string key = common::labelToUtf8(question.keyText);
    if (question.proposed == 0 || !question.isSure) {
        fail(key +
             " isn't identified: set_key tells which stored variable it is, or parameters tell all roles.");
        return std::nullopt;
    }
    const auto& variable = collection.variables[static_cast<std::size_t>(question.proposed)];
    notes_.push_back(key + ": taken to be variable " + std::to_string(question.proposed) + ", " +
                     common::labelToUtf8(common::fieldText(variable.plainLabel)));
    return question.proposed;
}

std::optional<std::string> RParameterSettler::askNumber(std::string_view, std::string_view prompt,
                                                        std::string_view preset)
{
    const std::string* const text = next();
    if (!text) return std::string(preset);
    if (common::parseDouble(*text)) return *text;
    fail(std::string(prompt) + " \"" + *text + "\" is no number.");
    return std::nullopt;
}

std::optional<int> RParameterSettler::chooseTimeForm(std::string_view label, std::string_view target)
{
    const std::string* const text = next();
    const int form = text ? common::parseInt(*text).value_or(timeFormOf(*text)) : -1;
    if (givesDate(form)) return form;
    const std::string what = std::string(label) + " -> " + std::string(target) + ": ";
    fail(what + (text
                     ? "\"" + *text + "\" is no way to read a time."
                     : "the label doesn't tell how its numbers are read; a parameter must, such as \"year as "
                       "%Y.%f\"."));
    return std::nullopt;
}

std::optional<std::string> RParameterSettler::askOrigin(std::string_view label)
{
    const std::string* const text = next();
    double day = 0;
    if (text && referenceDayOf("since " + *text, day)) return *text;
    fail(std::string(label) +
         (text ? ": \"" + *text + "\" is no date of the form yyyy-mm-dd hh:mm:ss."
               : ": the label has no origin; a parameter yyyy-mm-dd hh:mm:ss must tell it."));
    return std::nullopt;
}

std::optional<EXPRESSIONDEFINITION>
RParameterSettler::defineExpression(const collection::RCollection& collection)
{
    if (!expression_) {
        fail("The expression is missing.");
        return std::nullopt;
    }
    EXPRESSIONDEFINITION definition = *expression_;
    while (used_ < parameters_.size()) {
        const std::string question = "#" + std::to_string(definition.inputs.size() + 1);
        const auto input = takeVariable(question, collection);
        if (!input) return std::nullopt;
        definition.inputs.push_back(*input);
    }
    return definition;
}

std::string RParameterSettler::chooseMacroFile(const std::string&)
{
    if (macroFile_.empty()) fail("The macro file is missing.");
    return macroFile_;
}

const std::string* RParameterSettler::next()
{
    return used_ < parameters_.size() ? &parameters_[used_++] : nullptr;
}

// The first fault is the one that is told.
void RParameterSettler::fail(std::string text)
{
    if (fault_.empty()) fault_ = std::move(text);
}

} // namespace variables
