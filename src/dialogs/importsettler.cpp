#include "dialogs/importsettler.h"

#include "dialogs/filename.h"
#include "dialogs/formparts.h"
#include "dialogs/hvarassoc.h"
#include "dialogs/identifyvar.h"
#include "dialogs/importopt.h"
#include "dialogs/spreadshproperties.h"
#include "import/conversions.h"

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
    identified_.clear(); // of another collection, perhaps
    constexpr auto row = static_cast<std::size_t>(importing::potentialTemperatureRow);
    const std::string_view task = importing::variableConversions[row].label;
    const auto identifyTarget = [&](std::string_view meaning) {
        return choices.identify ? choices.identify(task, meaning) : identify(task, meaning, choices.targets);
    };
    importoptDlg dialog(choices, identifyTarget, parent_);
    if (dialog.exec() != QDialog::Accepted) return false;
    dialog.store(choices);
    return true;
}

int RDialogSettler::identify(std::string_view task, std::string_view meaning,
                             std::span<const collection::VARINFO> variables)
{
    if (const auto known = identified_.find(meaning); known != identified_.end()) return known->second;
    identifyvarDlg dialog(fromUtf8(task), fromUtf8(meaning), variables, parent_);
    if (dialog.exec() != QDialog::Accepted) return 0;
    identified_.emplace(meaning, dialog.variable());
    return dialog.variable();
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
