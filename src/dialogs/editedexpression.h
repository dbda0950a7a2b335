#pragma once

// The definition of an expression while it is edited, without widgets.

#include <span>
#include <string>

#include <QStringList>

#include "collection/varinfo.h"
#include "dialogs/variablerows.h"
#include "variables/setup.h"

namespace dialogs {

// A message and its title; no text if there is nothing to say.
struct COMPLAINT {
    QString title, text;
};

// The two numbers of a format: each is read where it is a number, kept otherwise, and stays within the limits
// of the formats of variables.
void takeFormat(const QString& widthText, const QString& decimalsText, int& width, int& decimals);

class REditedExpression {
public:
    // variables: index 0 is no variable; they outlive this.
    REditedExpression(variables::EXPRESSIONDEFINITION definition,
                      std::span<const collection::VARINFO> variables);

    [[nodiscard]] const variables::EXPRESSIONDEFINITION& definition() const { return definition_; }
    [[nodiscard]] QStringList definedLines() const { return rows_.lines(); } // all variables
    [[nodiscard]] QStringList chosenLines() const; // the inputs, each behind its number

    // Appends the variable in this line of definedLines(); false if there is none, or no room.
    [[nodiscard]] bool addInput(int definedRow);
    // Later inputs move up.
    [[nodiscard]] bool removeInput(int chosenRow);
    void setLabel(const QString& text);
    void setFormat(const QString& widthText, const QString& decimalsText);
    void setFormula(const QString& text); // line ends become blanks
    // What keeps the definition from being accepted.
    [[nodiscard]] COMPLAINT complaint() const;

private:
    variables::EXPRESSIONDEFINITION definition_;
    std::span<const collection::VARINFO> variables_;
    RVariableRows rows_;
};

} // namespace dialogs
