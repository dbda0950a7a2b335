#pragma once

// What the set-ups of all kinds share: a new variable before and when it joins the collection.

#include <string>
#include <string_view>
#include <vector>

#include "variables/setup.h"

namespace variables {

// A derived variable with all that its row tells: id, format, settings, "built-in", no range yet.
[[nodiscard]] collection::VARINFO variableOfRow(const collection::RCollection& collection, const DRVVAR& row);

// Roles that were answered and aren't noted in `.idv` yet.
using NEWROLES = std::vector<KEYROLE>;

// The variable of a role, by `.idv`, by an answer that was given before, or by the settler. 0: cancelled.
[[nodiscard]] int identifyForSetup(const collection::RCollection& collection, std::string_view task,
                                   std::string_view keyText, bool isRole, NEWROLES& roles,
                                   RVariableSettler& settler);

// Puts the variable behind the others and notes the roles. Returns its number.
[[nodiscard]] int joinVariable(collection::RCollection& collection, const collection::VARINFO& variable,
                               const NEWROLES& roles, common::RUser& user);

// The same for a variable with a formula, which takes the next free slot.
[[nodiscard]] int joinFormula(collection::RCollection& collection, collection::VARINFO variable,
                              std::string formula, const NEWROLES& roles, common::RUser& user);

// Rows "Macro File" and "Expression"; 0 if nothing was added. A slot must be free.
[[nodiscard]] int loadMacroVariable(collection::RCollection& collection, const std::string& path,
                                    const SETUPTOOLS& tools);
[[nodiscard]] int addExpression(collection::RCollection& collection, const SETUPTOOLS& tools);

} // namespace variables
