#pragma once

#include <span>

#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

#include "dialogs/editedexpression.h"

namespace dialogs {

// Asks for a formula over the variables of the collection, with its label and format.
class setupexpressionDlg : public QDialog {
    Q_OBJECT
public:
    // variables: those of the collection, derived ones included; index 0 is no variable. They outlive the
    // dialog.
    explicit setupexpressionDlg(std::span<const collection::VARINFO> variables, QWidget* parent = nullptr);
    [[nodiscard]] const variables::EXPRESSIONDEFINITION& definition() const { return work_.definition(); }

public Q_SLOTS:
    void processAdd();
    void processDelete();
    void processOK();

private:
    [[nodiscard]] QLayout* makeFields();
    [[nodiscard]] QLayout* makeLists();
    void connectParts();
    void showInputs(int selected);
    void showButtons();
    void takeFormatFields();

    REditedExpression work_;
    QLineEdit *label_, *width_, *decimals_;
    QPlainTextEdit* formula_;
    QListWidget *defined_, *chosen_;
    QPushButton *add_, *delete_;
};

} // namespace dialogs
