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

// What a form over the open collection was made for. If that has been replaced under the form, what the form
// says would meet variables of another one.
class RFormSubject {
public:
    explicit RFormSubject(const collection::RCollection& open) : open_(open), path_(open.path) {}
    [[nodiscard]] bool isOpen() const { return open_.isOpen && open_.path == path_; }

private:
    const collection::RCollection& open_;
    const std::string path_;
};

} // namespace

bool RAppWindow::editDerivedVariables()
{
    if (!user_.interactive()) return false;
    const RFormSubject subject(session_.collection);
    QWidget* over = this; // what questions are asked over
    dialogs::derivedvarsDlg dialog(session_.collection,
                                   {[&](int row) {
                                        if (!subject.isOpen()) return 0;
                                        dialogs::RDialogVariableSettler settler(over);
                                        return session_.addDerivedVariable(row, settler);
                                    },
                                    [&](int number) {
                                        if (subject.isOpen()) session_.deleteDerivedVariable(number);
                                    }},
                                   this);
    over = &dialog;
    dialog.exec();
    return false;
}

bool RAppWindow::editVariablesSettings()
{
    if (!user_.interactive()) return false;
    const RFormSubject subject(session_.collection);
    dialogs::varsettingsDlg dialog(allVariables(session_.collection), this);
    if (dialog.exec() == QDialog::Accepted && subject.isOpen())
        session_.takeVariableSettings(dialog.variables());
    return false;
}

bool RAppWindow::resetKeyVariables()
{
    if (!user_.interactive()) return false;
    dialogs::RDialogVariableSettler settler(this);
    const int changes = variables::resetKeyVariables(session_.collection, settler, user_);
    if (changes == 0) return false;
    user_.status(changes == 1 ? "1 key variable changed"
                              : common::format("%d key variables changed", changes));
    return true;
}

bool RAppWindow::editGeneralSettings()
{
    if (!user_.interactive()) return false;
    dialogs::generalsettingsDlg dialog(session_.surroundings.coverage, this);
    if (dialog.exec() == QDialog::Accepted) session_.takeCoverage(dialog.coverage());
    return false;
}

bool RAppWindow::editMacro()
{
    if (!user_.interactive()) return false;
    const collection::RCollection& open = session_.collection;
    const auto offered = open.isOpen ? allVariables(open) : std::span<const collection::VARINFO>();
    dialogs::editMacros(QString::fromStdString(session_.installation.macros), offered, user_, this);
    return false;
}

} // namespace app
