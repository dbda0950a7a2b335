#pragma once

// The words of a command file that are about derived variables. Each takes the text behind its word as one
// field and gives back what is wrong, empty if nothing is.

#include <string>

#include "app/commandfile.h"

namespace app {

[[nodiscard]] std::string runSetKey(Fields fields, RCommandTarget& target);     // KEY TEXT=variable
[[nodiscard]] std::string runAddDerived(Fields fields, RCommandTarget& target); // ROW LABEL[,parameter ...]
[[nodiscard]] std::string runAddExpression(Fields fields,
                                           RCommandTarget& target); // label,format,formula,input,...
[[nodiscard]] std::string runAddMacro(Fields fields, RCommandTarget& target);      // path[,input ...]
[[nodiscard]] std::string runDeleteDerived(Fields fields, RCommandTarget& target); // variable

} // namespace app
