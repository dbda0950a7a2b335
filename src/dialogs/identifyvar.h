#pragma once

#include <span>

#include <QDialog>
#include <QListWidget>
#include <QPushButton>

#include "collection/varinfo.h"

namespace dialogs {

// The number of the first variable (index 0 is no variable) whose label holds `searched`, case ignored; 0 if
// there is none.
[[nodiscard]] int firstLike(std::span<const collection::VARINFO> variables, const QString& searched);

// Asks which of the collection's variables one of a meaning is.
class identifyvarDlg : public QDialog {
    Q_OBJECT
public:
    // The caption is "<task> - Identify <meaning>".
    identifyvarDlg(const QString& task, const QString& meaning,
                   std::span<const collection::VARINFO> variables, QWidget* parent = nullptr);
    [[nodiscard]] int variable() const { return variables_->currentRow() + 1; }

public Q_SLOTS:
    void processOK();

private:
    void showOK();

    QListWidget* variables_;
    QPushButton* ok_;
};

} // namespace dialogs
