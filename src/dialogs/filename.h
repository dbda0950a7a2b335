#pragma once

#include <QString>
#include <QWidget>

namespace dialogs {

// `name` with the extension of the filter `chosen` ("Text (*.txt)"), unless it ends in one that a filter of
// `filters` ("Text (*.txt);;PNG (*.png)") names.
[[nodiscard]] QString withFilterExtension(const QString& name, const QString& chosen, const QString& filters);

// Asks for a file that is there; empty if the user cancels. `start` is a directory or a file in it.
[[nodiscard]] QString askOpenName(QWidget* parent, const QString& caption, const QString& filters,
                                  const QString& start);

// Asks for the name of a file to be made, which has the extension of the chosen filter; empty if the user
// cancels. confirmed: a file that is there is taken only after a question.
[[nodiscard]] QString askSaveName(QWidget* parent, const QString& caption, const QString& filters,
                                  const QString& proposal, bool confirmed);

} // namespace dialogs
