#include "dialogs/boxes.h"

#include <QMessageBox>
#include <QPushButton>

namespace dialogs {

void tell(QWidget* over, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::NoButton, over);
    box.setTextFormat(Qt::PlainText);
    box.addButton(QStringLiteral("&OK"), QMessageBox::AcceptRole);
    box.exec();
}

bool confirm(QWidget* over, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::NoButton, over);
    box.setTextFormat(Qt::PlainText);
    const QPushButton* const yes = box.addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
    QPushButton* const no = box.addButton(QStringLiteral("&No"), QMessageBox::NoRole);
    QPushButton* const cancel = box.addButton(QStringLiteral("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(no);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == yes;
}

} // namespace dialogs
