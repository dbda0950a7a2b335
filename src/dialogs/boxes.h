#pragma once

// The boxes of a dialog, over the dialog itself.

#include <QString>
#include <QWidget>

namespace dialogs {

// A notice with one button.
void tell(QWidget* over, const QString& title, const QString& text);

// A question with "&Yes", "&No", "&Cancel", of which "&No" is the default; true for yes.
[[nodiscard]] bool confirm(QWidget* over, const QString& title, const QString& text);

} // namespace dialogs
