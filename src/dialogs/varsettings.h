#pragma once

#include <span>
#include <vector>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>

#include "collection/varinfo.h"

namespace dialogs {

// Labels, formats and places of variables.
class varsettingsDlg : public QDialog {
    Q_OBJECT
public:
    // variables: all of the collection, derived ones included; index 0 is no variable. The dialog works on a
    // copy.
    explicit varsettingsDlg(std::span<const collection::VARINFO> variables, QWidget* parent = nullptr);
    [[nodiscard]] const std::vector<collection::VARINFO>& variables() const { return variables_; }

public Q_SLOTS:
    void processOK();

private:
    [[nodiscard]] QLayout* makeFields();
    void connectParts();
    void showVariables(int number); // the list, with this one selected
    void showFields();
    void takeLabel();
    void takeFormat();
    void takePosition();
    [[nodiscard]] int selectedNumber() const; // 0: none

    std::vector<collection::VARINFO> variables_;
    std::vector<int> numbers_; // of the lines of the list
    QListWidget* list_;
    QLineEdit* label_;
    QSpinBox *width_, *decimals_, *position_;
    QLabel* range_;
};

// The range of the values seen so far, in the variable's format.
[[nodiscard]] QString rangeText(const collection::VARINFO& variable);

} // namespace dialogs
