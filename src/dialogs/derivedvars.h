#pragma once

#include <functional>

#include <QDialog>
#include <QListWidget>
#include <QPushButton>

#include "collection/rcollection.h"
#include "dialogs/variablerows.h"

namespace dialogs {

// What the form lets be done at once.
struct DERIVEDACTIONS {
    std::function<int(int row)> add; // a variable of a row of the table; its number, 0 if none was made
    std::function<void(int number)> remove; // a derived variable, with its dependents
};

// Adds and deletes derived variables.
class derivedvarsDlg : public QDialog {
    Q_OBJECT
public:
    // The collection outlives the dialog; only the actions change it.
    derivedvarsDlg(const collection::RCollection& collection, DERIVEDACTIONS actions,
                   QWidget* parent = nullptr);

public Q_SLOTS:
    void processAdd();
    void processDelete();
    void processHelp();

private:
    [[nodiscard]] QLayout* makeLists();
    [[nodiscard]] QLayout* makeButtons();
    void connectParts();
    void showDefined(); // the list, without a selection
    void selectDefined(int row);
    void showButtons();
    [[nodiscard]] int selectedNumber() const; // of a derived variable, 0 if none is selected

    const collection::RCollection& collection_;
    DERIVEDACTIONS actions_;
    RVariableRows rows_; // of the derived variables
    QListWidget *choices_, *defined_;
    QPushButton *add_, *delete_, *help_, *close_;
};

// What a deletion is asked with: the variable and those that go with it.
[[nodiscard]] QString deletionQuestion(const collection::RCollection& collection, int number);

} // namespace dialogs
