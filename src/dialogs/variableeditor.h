#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>

#include "dialogs/editedvariables.h"

namespace dialogs {

// Edits a copy of a list of variables: which there are, in which order, with which labels and formats; and,
// for a collection that has data, from which of its old variables each one takes its data.
class variableeditorDlg : public QDialog {
    Q_OBJECT
public:
    enum Column : int { numberColumn, labelColumn, formatColumn, sourceColumn, columnCount };

    // variables and old: entry 0 is no variable. old: the variables that hold data; nothing for a new
    // collection, whose list has no column for them.
    variableeditorDlg(const QString& title, VariableList variables, VariableList old,
                      QWidget* parent = nullptr);
    // Numbered from 1, with all forms of the labels; assocSource is the number of the old variable.
    [[nodiscard]] const VariableList& variables() const { return work_; }

public Q_SLOTS:
    void processOK(); // asks if data would be lost
    void processCancel() { reject(); }
    void processAdd();
    void processRemove();
    void processRename();
    void processUp() { move(-1); }
    void processDown() { move(1); }
    void processReset();

private:
    void buildTable();
    void layOut(QWidget* buttonColumn, QWidget* buttons);
    [[nodiscard]] QWidget* makeButtonColumn();
    [[nodiscard]] QPushButton* makeButton(const char* name, const char* text, const char* keys,
                                          void (variableeditorDlg::*slot)());
    void makeKeys();

    [[nodiscard]] int oldCount() const { return variableCountOf(old_); }
    [[nodiscard]] int currentPlace() const { return table_->currentRow() + 1; } // 0: none
    void select(int place, int column);
    void showList(int place);
    void showRow(int place);
    void showHints();
    void takeCell(int row, int column);
    void editCurrent();
    void move(int step);
    [[nodiscard]] bool isComplete();
    [[nodiscard]] bool mayLose();

    const VariableList initial_, old_;
    VariableList work_;
    QTableWidget* table_;
    QLabel *preview_, *warning_;
    QPushButton *remove_ = nullptr, *rename_ = nullptr, *up_ = nullptr, *down_ = nullptr;
    bool filling_ = false; // the table is changed from here, not by the user
};

} // namespace dialogs
