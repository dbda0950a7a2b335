#pragma once

#include <span>
#include <vector>

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "collection/varinfo.h"
#include "dialogs/variablerows.h"

namespace dialogs {

// Asks which variables an export writes.
class outvarselDlg : public QDialog {
    Q_OBJECT
public:
    // variables: all of the collection, derived ones included; index 0 is no variable. chosen: the numbers of
    // those that are ticked at the beginning.
    outvarselDlg(std::span<const collection::VARINFO> variables, const std::vector<int>& chosen,
                 QWidget* parent = nullptr);
    [[nodiscard]] std::vector<int> chosen() const; // the numbers of those that are ticked, ascending

public Q_SLOTS:
    void processAll();
    void processInvert();
    void processOK();

private:
    [[nodiscard]] QWidget* makeButtonColumn();
    void showCount();

    const RVariableRows rows_;
    QListWidget* variables_;
    QLabel* count_;
    QPushButton* ok_ = nullptr;
};

} // namespace dialogs
