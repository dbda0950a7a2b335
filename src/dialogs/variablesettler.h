#pragma once

#include <QPointer>
#include <QWidget>

#include "variables/setup.h"

namespace dialogs {

// Settles the set-up of derived variables by dialogs over a window.
class RDialogVariableSettler final : public variables::RVariableSettler {
public:
    explicit RDialogVariableSettler(QWidget* parent) : parent_(parent) {}

    [[nodiscard]] std::optional<int> identify(const variables::IDENTIFICATION& question,
                                              const collection::RCollection& collection) override;
    [[nodiscard]] std::optional<std::string> askNumber(std::string_view title, std::string_view prompt,
                                                       std::string_view preset) override;
    [[nodiscard]] std::optional<int> chooseTimeForm(std::string_view label, std::string_view target) override;
    [[nodiscard]] std::optional<std::string> askOrigin(std::string_view label) override;
    [[nodiscard]] std::optional<variables::EXPRESSIONDEFINITION>
    defineExpression(const collection::RCollection& collection) override;
    [[nodiscard]] std::string chooseMacroFile(const std::string& folder) override;

private:
    QPointer<QWidget> parent_;
};

} // namespace dialogs
