#pragma once

#include <QDialog>

#include "dialogs/editedheader.h"
#include "dialogs/help.h"
#include "dialogs/pairview.h"

namespace dialogs {

// Asks which columns of a spreadsheet hold the stations' labels, dates and positions, and for the values of
// those that have no column.
class hvarassocDlg : public QDialog {
    Q_OBJECT
public:
    // labels: of the columns, as UTF-8.
    hvarassocDlg(const importing::SPREADSHEETDESC& desc, std::span<const std::string> labels,
                 QWidget* parent = nullptr);
    [[nodiscard]] importing::SPREADSHEETDESC desc() const { return header_.desc(); }

public Q_SLOTS:
    void lbSource();
    void lbTarget();
    void processAssociate();
    void processConvert();
    void processDefault();
    void processUndo();
    void processHelp() { showHelp(this, spreadsheetHelp); }
    void processOK() { accept(); }

private:
    void makeButtons();
    void showPairs();
    void showSelection();
    void convertFromOrigin(const QString& caption, int id);

    REditedHeader header_;
    RPairView* view_;
    QPushButton *associate_ = nullptr, *convert_ = nullptr, *default_ = nullptr, *undo_ = nullptr;
};

} // namespace dialogs
