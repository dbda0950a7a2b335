#include "dialogs/editedexpression.h"

#include <algorithm>

#include "collection/varformat.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "dialogs/editedvariables.h"
#include "variables/formula.h"
#include "variables/macrofile.h"

namespace dialogs {
namespace {

constexpr std::size_t mostInputs = variables::maxMacroInputs;

} // namespace

void takeFormat(const QString& widthText, const QString& decimalsText, int& width, int& decimals)
{
    decimals = common::parseInt(decimalsText.toStdString()).value_or(decimals);
    width = common::parseInt(widthText.toStdString()).value_or(width);
    collection::clampFormat(width, decimals);
}

REditedExpression::REditedExpression(variables::EXPRESSIONDEFINITION definition,
                                     std::span<const collection::VARINFO> variables)
    : definition_(std::move(definition)), variables_(variables), rows_(variables)
{
    std::erase_if(definition_.inputs, [&](int number) {
        return number < 1 || static_cast<std::size_t>(number) >= variables_.size();
    });
    if (definition_.inputs.size() > mostInputs) definition_.inputs.resize(mostInputs);
}

QStringList REditedExpression::chosenLines() const
{
    QStringList lines;
    for (const int number : definition_.inputs) {
        lines += QStringLiteral("#%1 ").arg(lines.size() + 1) +
                 plainOf(variables_[static_cast<std::size_t>(number)]);
    }
    return lines;
}

bool REditedExpression::addInput(int definedRow)
{
    const int number = rows_.numberOf(definedRow);
    if (number == 0 || definition_.inputs.size() >= mostInputs) return false;
    definition_.inputs.push_back(number);
    return true;
}

bool REditedExpression::removeInput(int chosenRow)
{
    if (chosenRow < 0 || static_cast<std::size_t>(chosenRow) >= definition_.inputs.size()) return false;
    definition_.inputs.erase(definition_.inputs.begin() + chosenRow);
    return true;
}

void REditedExpression::setLabel(const QString& text)
{
    definition_.label = labelFrom(text);
}

void REditedExpression::setFormat(const QString& widthText, const QString& decimalsText)
{
    takeFormat(widthText, decimalsText, definition_.width, definition_.decimals);
}

void REditedExpression::setFormula(const QString& text)
{
    definition_.formula = text.toStdString();
    std::replace_if(
        definition_.formula.begin(), definition_.formula.end(), [](char c) { return c == '\n' || c == '\r'; },
        ' ');
}

COMPLAINT REditedExpression::complaint() const
{
    const QString missing = QStringLiteral("Information missing ...");
    if (definition_.label.empty()) return {missing, QStringLiteral("You must enter a Label!")};
    if (common::trimBlanks(definition_.formula).empty())
        return {missing, QStringLiteral("You must enter an Expression!")};
    const std::string fault =
        variables::formulaFault(definition_.formula, static_cast<int>(definition_.inputs.size()));
    if (fault.empty()) return {};
    return {QStringLiteral("Faulty expression ..."), QString::fromStdString(fault)};
}

} // namespace dialogs
