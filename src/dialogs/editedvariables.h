#pragma once

// The list that the variable editor works on, without its widgets.

#include <string>
#include <utility>
#include <vector>

#include <QString>

#include "collection/varinfo.h"

namespace dialogs {

// Entry 0 is no variable. assocSource of an entry is the number of the old variable that it takes its data
// from, 0 for a new one.
using VariableList = std::vector<collection::VARINFO>;

[[nodiscard]] int variableCountOf(const VariableList& list);

// Puts a new variable behind place `behind` (0: in front of all). Its place, or 0 if the list is full.
[[nodiscard]] int addVariable(VariableList& list, int behind);
// False if it is the only one.
[[nodiscard]] bool removeVariable(VariableList& list, int place);
// Exchanges it with the one before (step -1) or behind it (1). False at the ends.
[[nodiscard]] bool moveVariable(VariableList& list, int place, int step);

// A text as a label of a record: control characters as blanks, no blanks at the ends, at most 60 bytes.
[[nodiscard]] std::string labelFrom(const QString& text);
// The label with control characters as blanks and no blanks at the ends, cut at 60 bytes.
void renameVariable(collection::VARINFO& variable, const QString& text);
[[nodiscard]] QString labelOf(const collection::VARINFO& variable);
[[nodiscard]] QString plainOf(const collection::VARINFO& variable); // as it reads without markup

// "8.2": width and decimals. What is beyond the limits is taken as the limit; false, with nothing changed, if
// it reads otherwise.
[[nodiscard]] bool setFormat(collection::VARINFO& variable, const QString& text);
[[nodiscard]] QString formatOf(const collection::VARINFO& variable);

// The first place without a label, 0 if all have one.
[[nodiscard]] int unlabelled(const VariableList& list);
// The first two places with the same label, 0 and 0 if all differ.
[[nodiscard]] std::pair<int, int> sameLabels(const VariableList& list);
// The numbers of the old variables 1 to oldCount that no variable takes its data from.
[[nodiscard]] std::vector<int> lostVariables(const VariableList& list, int oldCount);

} // namespace dialogs
