#pragma once

#include <QDialog>
#include <QListWidget>
#include <QStringList>

namespace dialogs {

// Asks for a row of a table of conversions.
class selconversionDlg : public QDialog {
    Q_OBJECT
public:
    // The caption is "Conversion <source> -> <target>".
    selconversionDlg(const QString& source, const QString& target, const QStringList& rows, int preselected,
                     QWidget* parent = nullptr);
    [[nodiscard]] int row() const { return rows_->currentRow(); } // of the table, from 0

public Q_SLOTS:
    void processOK();

private:
    QListWidget* rows_;
};

} // namespace dialogs
