#include "dialogs/importsettler.h"

#include "dialogs/filename.h"
#include "dialogs/formparts.h"
#include "dialogs/hvarassoc.h"
#include "dialogs/identifyvar.h"
#include "dialogs/importopt.h"
#include "dialogs/spreadshproperties.h"

namespace dialogs {

bool RDialogSettler::settleProperties(importing::SPREADSHEETDESC& desc,
                                      std::span<const std::string> firstLines)
{
    spreadshpropertiesDlg dialog(desc, firstLines, parent_);
    if (dialog.exec() != QDialog::Accepted) return false;
    desc = dialog.desc();
    return true;
}

bool RDialogSettler::settleHeaderVariables(importing::SPREADSHEETDESC& desc,
                                           std::span<const std::string> labels)
{
    hvarassocDlg dialog(desc, labels, parent_);
    if (dialog.exec() != QDialog::Accepted) return false;
    desc = dialog.desc();
    return true;
}

bool RDialogSettler::settleImport(importing::IMPORTCHOICES& choices)
{
    importoptDlg dialog(choices, parent_);
    if (dialog.exec() != QDialog::Accepted) return false;
    dialog.store(choices);
    return true;
}

int RDialogSettler::identify(std::string_view task, std::string_view meaning,
                             std::span<const collection::VARINFO> variables)
{
    identifyvarDlg dialog(fromUtf8(task), fromUtf8(meaning), variables, parent_);
    return dialog.exec() == QDialog::Accepted ? dialog.variable() : 0;
}

std::optional<std::string> RDialogSettler::chooseDescription(std::string_view listing,
                                                             const std::string& proposal)
{
    const QString chosen =
        askOpenName(parent_, QStringLiteral("Specify Source Collection of %1").arg(fromUtf8(listing)),
                    QStringLiteral("O3X .var Files (*.var)"), QString::fromStdString(proposal));
    if (chosen.isEmpty()) return std::nullopt;
    return chosen.toStdString();
}

} // namespace dialogs
