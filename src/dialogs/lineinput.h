#pragma once

#include <optional>

#include <QString>
#include <QWidget>

namespace dialogs {

// Asks for one line of text, which starts as `preset`; nothing if the user cancels.
[[nodiscard]] std::optional<QString> askLine(QWidget* parent, const QString& caption, const QString& prompt,
                                             const QString& preset = {});

} // namespace dialogs
