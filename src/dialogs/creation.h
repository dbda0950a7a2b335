#pragma once

#include <QDialog>
#include <QListWidget>

namespace dialogs {

// Asks which variables a new collection gets.
class creationDlg : public QDialog {
    Q_OBJECT
public:
    explicit creationDlg(const QString& collectionName, QWidget* parent = nullptr);
    [[nodiscard]] int variableSet() const; // a collection::VariableSet

public Q_SLOTS:
    void processOK() { accept(); }
    void processCancel() { reject(); }

private:
    QListWidget* entries_;
};

} // namespace dialogs
