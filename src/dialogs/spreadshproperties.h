#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>

#include "dialogs/editedspreadsheet.h"
#include "dialogs/help.h"

namespace dialogs {

// Asks how a spreadsheet is laid out, and shows what that makes of its header line.
class spreadshpropertiesDlg : public QDialog {
    Q_OBJECT
public:
    // firstLines: of the file, as UTF-8.
    spreadshpropertiesDlg(const importing::SPREADSHEETDESC& desc, std::span<const std::string> firstLines,
                          QWidget* parent = nullptr);
    [[nodiscard]] const importing::SPREADSHEETDESC& desc() const { return file_.desc(); }

public Q_SLOTS:
    void newHeaderLine();
    void newColSepChar();
    void processHelp() { showHelp(this, spreadsheetHelp); }
    void processOK();

private:
    [[nodiscard]] QLayout* makeFields();
    void showLabels();

    REditedSpreadsheet file_;
    QSpinBox *headerLine_, *firstDataLine_;
    QComboBox* separator_;
    QLineEdit* missing_;
    QListWidget *lines_, *labels_;
    QLabel* labelCaption_;
};

} // namespace dialogs
