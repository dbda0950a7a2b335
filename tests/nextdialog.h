#pragma once

// Does something with the modal dialog that comes up next, from inside its event loop.

#include <functional>

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace testing_support {

// A dialog of another kind that stands in the way for 10 seconds is a failure, and is cancelled.
template <typename T>
void withNext(const std::function<void(T&)>& act)
{
    constexpr qint64 patience = 10000; // ms
    auto* const timer = new QTimer(QCoreApplication::instance());
    QElapsedTimer clock;
    clock.start();
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act, clock] {
        QWidget* const modal = QApplication::activeModalWidget();
        auto* const wanted = qobject_cast<T*>(modal);
        if (!wanted && clock.elapsed() < patience) return;
        timer->stop();
        timer->deleteLater();
        if (wanted) return act(*wanted);
        ADD_FAILURE() << "no dialog of that kind came up";
        if (auto* const other = qobject_cast<QDialog*>(modal)) other->reject();
    });
    timer->start(1);
}

// Presses the button of that text ("&Yes") in the next box, and keeps what the box said.
struct BOX {
    std::string title, text;
};
inline void answerNext(const char* button, BOX* said = nullptr)
{
    withNext<QMessageBox>([button, said](QMessageBox& box) {
        if (said) *said = {box.windowTitle().toStdString(), box.text().toStdString()};
        for (QAbstractButton* const one : box.buttons()) {
            if (one->text() == QLatin1String(button)) return one->click();
        }
        ADD_FAILURE() << "the box has no button " << button;
        box.reject();
    });
}

// Types a name into a file dialog and presses its "Save", "Open" or "Choose".
inline void enterFile(QFileDialog& dialog, const QString& name)
{
    // A name that is typed takes the mark from the file in the list; one that is set doesn't.
    dialog.findChild<QListView*>(QStringLiteral("listView"))->selectionModel()->clearSelection();
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
    auto* const buttons = dialog.findChild<QDialogButtonBox*>();
    for (QAbstractButton* const button : buttons->buttons()) {
        if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole) return button->click();
    }
}

} // namespace testing_support
