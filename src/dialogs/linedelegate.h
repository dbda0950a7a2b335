#pragma once

#include <QStyledItemDelegate>

namespace dialogs {

// Draws the lines of a list as wide as the list, whatever they hold.
class RLineDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& line) const override
    {
        return {1, QStyledItemDelegate::sizeHint(option, line).height()};
    }
};

} // namespace dialogs
