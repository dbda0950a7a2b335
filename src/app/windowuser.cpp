#include "app/windowuser.h"

#include <algorithm>
#include <vector>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>

namespace app {
namespace {

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

common::Answer ask(QWidget* parent, std::string_view title, std::string_view text, common::Answer proposed)
{
    QMessageBox box(QMessageBox::Question, fromUtf8(title), fromUtf8(text), QMessageBox::NoButton, parent);
    box.setTextFormat(Qt::PlainText); // texts quote files
    QPushButton* const yes = box.addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
    QPushButton* const no = box.addButton(QStringLiteral("&No"), QMessageBox::NoRole);
    QPushButton* const cancel = box.addButton(QStringLiteral("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(proposed == common::Answer::yes  ? yes
                         : proposed == common::Answer::no ? no
                                                          : cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == yes) return common::Answer::yes;
    return box.clickedButton() == no ? common::Answer::no : common::Answer::cancel;
}

} // namespace

bool RWindowUser::interactive() const
{
    return parts_.onScreen && parts_.session && parts_.session->runMode == interactiveRun;
}

// A box over the window alone could come up behind the form that is open.
QWidget* RWindowUser::over() const
{
    QWidget* const form = QApplication::activeModalWidget();
    return form ? form : parts_.window;
}

void RWindowUser::about(std::string_view title, std::string_view text)
{
    if (!interactive()) return headless_.about(title, text);
    QMessageBox box(QMessageBox::NoIcon, fromUtf8(title), fromUtf8(text), QMessageBox::NoButton, over());
    box.setTextFormat(Qt::PlainText); // texts quote files
    box.addButton(QStringLiteral("&OK"), QMessageBox::AcceptRole);
    box.exec();
}

common::Answer RWindowUser::question(std::string_view title, std::string_view text, common::Answer proposed)
{
    if (!interactive()) return headless_.question(title, text, proposed);
    return ask(over(), title, text, proposed);
}

int RWindowUser::choose(std::string_view title, std::string_view text,
                        std::span<const std::string_view> buttons, int proposed, int escape)
{
    if (!interactive()) return headless_.choose(title, text, buttons, proposed, escape);
    QMessageBox box(QMessageBox::Question, fromUtf8(title), fromUtf8(text), QMessageBox::NoButton, over());
    box.setTextFormat(Qt::PlainText); // texts quote files
    std::vector<QAbstractButton*> made;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        // A role of its own for each would let the style change their order.
        QPushButton* const button = box.addButton(fromUtf8(buttons[i]), QMessageBox::ActionRole);
        if (static_cast<int>(i) == proposed) box.setDefaultButton(button);
        if (static_cast<int>(i) == escape) box.setEscapeButton(button);
        made.push_back(button);
    }
    box.exec();
    const auto clicked = std::find(made.begin(), made.end(), box.clickedButton());
    return clicked == made.end() ? escape : static_cast<int>(clicked - made.begin());
}

bool RWindowUser::report(std::string_view title, std::string_view text)
{
    if (!interactive()) return headless_.report(title, text);
    QMessageBox box(QMessageBox::Information, fromUtf8(title), fromUtf8(text), QMessageBox::NoButton, over());
    box.setTextFormat(Qt::PlainText); // texts quote files
    QPushButton* const good = box.addButton(QStringLiteral("&OK"), QMessageBox::AcceptRole);
    box.addButton(QStringLiteral("&Undo"), QMessageBox::DestructiveRole);
    QPushButton* const cancel = box.addButton(QStringLiteral("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(good);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == good;
}

void RWindowUser::note(std::string_view text)
{
    headless_.note(text);
}

void RWindowUser::status(std::string_view text)
{
    if (!parts_.statusField) return;
    parts_.statusField->setText(fromUtf8(text));
    if (parts_.onScreen && depth_ > 0) parts_.statusField->repaint();
}

void RWindowUser::beginBusy(std::string_view text)
{
    status(text);
    if (++depth_ > 1) return;
    abort_ = false;
    if (parts_.session) {
        savedState_ = parts_.session->state;
        parts_.session->state = stateBusy;
    }
    if (parts_.onScreen) showBar();
}

void RWindowUser::showBar()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    bar_ = new QProgressBar(parts_.window->statusBar());
    bar_->setRange(0, 100);
    bar_->setAlignment(Qt::AlignCenter);
    bar_->setGeometry(parts_.stationField->geometry());
    bar_->setValue(0);
    bar_->show();
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void RWindowUser::setProgress(double percent)
{
    if (!parts_.onScreen) return; // nothing is shown and nobody can press a key
    if (bar_) bar_->setValue(static_cast<int>(std::clamp(percent, 0.0, 100.0)));
    QApplication::processEvents();
}

void RWindowUser::endBusy(std::string_view text)
{
    if (depth_ == 0 || --depth_ > 0) return;
    if (parts_.session) parts_.session->state = savedState_;
    if (parts_.onScreen) {
        delete bar_.data();
        QApplication::restoreOverrideCursor();
    }
    status(text);
}

bool RWindowUser::askAbort(std::string_view question, std::string_view title)
{
    if (!abort_) return false;
    if (!interactive()) {
        headless_.about(title, question); // ESC was pressed over a command file: it is taken for a yes
        return true;
    }
    abort_ = ask(over(), title, question, common::Answer::yes) == common::Answer::yes;
    return abort_;
}

} // namespace app
