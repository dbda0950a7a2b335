#pragma once

// A list of variables as the user sees it: in the order of their positions.

#include <span>
#include <vector>

#include <QStringList>

#include "collection/varinfo.h"

namespace dialogs {

class RVariableRows {
public:
    // Of the variables from `first` on; index 0 is no variable.
    explicit RVariableRows(std::span<const collection::VARINFO> variables, int first = 1);

    [[nodiscard]] const QStringList& lines() const { return lines_; }
    [[nodiscard]] int count() const { return static_cast<int>(numbers_.size()); }
    [[nodiscard]] int numberOf(int row) const; // 0: no such row
    [[nodiscard]] int rowOf(int number) const; // -1: not in the list

private:
    std::vector<int> numbers_;
    QStringList lines_;
};

} // namespace dialogs
