#include "dialogs/lineinput.h"

#include <QInputDialog>
#include <QLabel>

namespace dialogs {

std::optional<QString> askLine(QWidget* parent, const QString& caption, const QString& prompt,
                               const QString& preset)
{
    constexpr int lineLetters = 60;
    QInputDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("lineinput"));
    dialog.setWindowTitle(caption);
    dialog.setLabelText(prompt);
    dialog.setTextValue(preset); // makes the label
    for (QLabel* const label : dialog.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
    dialog.resize(dialog.fontMetrics().averageCharWidth() * lineLetters, dialog.sizeHint().height());
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.textValue();
}

} // namespace dialogs
