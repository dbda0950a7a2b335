#pragma once

#include <string>

#include <QDialog>
#include <QLineEdit>

namespace dialogs {

// What the program has to be told about its surroundings at the first start.
struct QUICKSETUP {
    std::string home, temp, host, user; // an empty temp stands for the system's temporary directory
};

class quickinstallDlg : public QDialog {
    Q_OBJECT
public:
    // systemTemp: what an empty temp field stands for, shown in it.
    quickinstallDlg(const QUICKSETUP& proposal, const std::string& systemTemp, QWidget* parent = nullptr);
    [[nodiscard]] QUICKSETUP setup() const; // without blanks at the ends

public Q_SLOTS:
    void processOK() { accept(); }
    void processCancel() { reject(); }
    void browseHome();
    void browseTemp();

private:
    void browse(QLineEdit* field, const QString& caption);

    QLineEdit *home_, *temp_, *host_, *user_;
};

} // namespace dialogs
