#pragma once

#include <string>

#include <QPointer>
#include <QWidget>

#include "import/importoptions.h"

namespace dialogs {

// Settles an import by dialogs over a window.
class RDialogSettler final : public importing::RImportSettler {
public:
    explicit RDialogSettler(QWidget* parent) : parent_(parent) {}

    [[nodiscard]] bool settleProperties(importing::SPREADSHEETDESC& desc,
                                        std::span<const std::string> firstLines) override;
    [[nodiscard]] bool settleHeaderVariables(importing::SPREADSHEETDESC& desc,
                                             std::span<const std::string> labels) override;
    [[nodiscard]] bool settleImport(importing::IMPORTCHOICES& choices) override;
    [[nodiscard]] int identify(std::string_view task, std::string_view meaning,
                               std::span<const collection::VARINFO> variables) override;
    [[nodiscard]] std::optional<std::string> chooseDescription(std::string_view listing,
                                                               const std::string& proposal) override;

private:
    QPointer<QWidget> parent_;
};

} // namespace dialogs
