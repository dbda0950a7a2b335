#pragma once

// What the forms say about formulas.

#include <QBoxLayout>

namespace dialogs {

// What the user can write in a formula.
inline constexpr const char* operatorHelp = "Operators: + - * / ** sqrt ln exp sin cos min max";
inline constexpr const char* operandHelp =
    "Operands: #1,...; %t Time; %d Day-of-Year; %x Longitude; %y Latitude";
// Why a tenth input isn't taken.
inline constexpr const char* noRoomForInput = "A formula has nine inputs at most.";

// Adds the two lines of help to a column of `parent`.
void addFormulaHelp(QBoxLayout& column, QWidget* parent);

} // namespace dialogs
