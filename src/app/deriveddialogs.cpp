// The dialogs of derived variables and of what is set about variables.

#include "app/rappwindow.h"
#include "dialogs/macroeditor.h"

namespace app {

void RAppWindow::editMacro()
{
    const collection::RCollection& open = session_.collection;
    const auto count = open.isOpen ? static_cast<std::size_t>(open.totalVariableCount) + 1 : 0;
    const std::string& mine = session_.installation.macros;
    dialogs::editMacros(QString::fromStdString(mine), std::span(open.variables).first(count), user_, this);
}

void RAppWindow::editDerivedVariables() {}
void RAppWindow::editVariablesSettings() {}
void RAppWindow::resetKeyVariables() {}
void RAppWindow::editGeneralSettings() {}
} // namespace app
