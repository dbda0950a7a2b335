// The dialogs of derived variables and of what is set about variables.

#include "app/rappwindow.h"
#include "common/text.h"
#include "dialogs/derivedvars.h"
#include "dialogs/generalsettings.h"
#include "dialogs/macroeditor.h"
#include "dialogs/variablesettler.h"
#include "dialogs/varsettings.h"

namespace app {
namespace {

// All variables of a collection, derived ones included; index 0 is no variable.
std::span<const collection::VARINFO> allVariables(const collection::RCollection& open)
{
    return std::span(open.variables).first(static_cast<std::size_t>(open.totalVariableCount) + 1);
}

} // namespace

void RAppWindow::editDerivedVariables()
{
    if (!user_.interactive()) return;
    QWidget* over = this; // what questions are asked over
    dialogs::derivedvarsDlg dialog(session_.collection,
                                   {[&](int row) {
                                        dialogs::RDialogVariableSettler settler(over);
                                        return session_.addDerivedVariable(row, settler);
                                    },
                                    [&](int number) { session_.deleteDerivedVariable(number); }},
                                   this);
    over = &dialog;
    dialog.exec();
}

void RAppWindow::editVariablesSettings()
{
    if (!user_.interactive()) return;
    dialogs::varsettingsDlg dialog(allVariables(session_.collection), this);
    if (dialog.exec() == QDialog::Accepted) session_.takeVariableSettings(dialog.variables());
}

void RAppWindow::resetKeyVariables()
{
    if (!user_.interactive()) return;
    dialogs::RDialogVariableSettler settler(this);
    const int changes = variables::resetKeyVariables(session_.collection, settler, user_);
    if (changes > 0) user_.status(common::format("%d of the key variables changed", changes));
}

void RAppWindow::editGeneralSettings()
{
    if (!user_.interactive()) return;
    dialogs::generalsettingsDlg dialog(session_.surroundings.coverage, this);
    if (dialog.exec() == QDialog::Accepted) session_.takeCoverage(dialog.coverage());
}

void RAppWindow::editMacro()
{
    if (!user_.interactive()) return;
    const collection::RCollection& open = session_.collection;
    const auto offered = open.isOpen ? allVariables(open) : std::span<const collection::VARINFO>();
    dialogs::editMacros(QString::fromStdString(session_.installation.macros), offered, user_, this);
}

} // namespace app
