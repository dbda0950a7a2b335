#pragma once

#include <optional>
#include <span>

#include <QDialog>
#include <QListWidget>
#include <QPushButton>

#include "collection/varinfo.h"
#include "dialogs/variablerows.h"

namespace dialogs {

// The number of the first variable (index 0 is no variable) whose label holds `searched`, case ignored; 0 if
// there is none.
[[nodiscard]] int firstLike(std::span<const collection::VARINFO> variables, const QString& searched);

// Asks which of the collection's variables one of a meaning is.
class identifyvarDlg : public QDialog {
    Q_OBJECT
public:
    // The caption is "<task> - Identify <meaning>". Index 0 of `all` is no variable. preselected: the
    // variable that is selected at the beginning, 0 for none; nothing: the first whose label holds the
    // meaning.
    identifyvarDlg(const QString& task, const QString& meaning, std::span<const collection::VARINFO> all,
                   QWidget* parent = nullptr, std::optional<int> preselected = {});
    [[nodiscard]] int variable() const { return rows_.numberOf(variables_->currentRow()); }

public Q_SLOTS:
    void processOK();

private:
    void showOK();

    const RVariableRows rows_;
    QListWidget* variables_;
    QPushButton* ok_;
};

} // namespace dialogs
