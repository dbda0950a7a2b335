#pragma once

// Parts that many forms have. Whatever comes from a file is shown as plain text, of a length that fits.

#include <functional>
#include <initializer_list>
#include <string_view>

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStringList>

namespace dialogs {

[[nodiscard]] QString fromUtf8(std::string_view text);

// A text for one line of a form: control characters as blanks, at most `most` characters.
[[nodiscard]] QString oneLine(const QString& text, int most = 200);
// A text from a file as part of a window's title.
[[nodiscard]] QString inTitle(const QString& text);

// A label that shows its text as it is, in several lines if it must.
[[nodiscard]] QLabel* makeTextLabel(const char* name, QWidget* parent);
// A label whose letter with "&" leads to `field`.
[[nodiscard]] QLabel* makeCaption(const QString& text, QWidget* field);

// A list of lines in letters of one width, for a line of about `letters` letters. What is longer ends in dots
// and stands whole in its tip.
[[nodiscard]] QListWidget* makeLineList(const char* name, int letters, QWidget* parent);
// Gives the list these lines; selection and place stay as far as there are as many lines.
void showLines(QListWidget& list, const QStringList& lines);
// Makes the list as high as so many of its lines.
void setVisibleLines(QListWidget& list, int count);
[[nodiscard]] int selectedRow(const QListWidget& list); // -1: none
// Selects a row, none for -1. One that wasn't selected is brought into sight.
void selectRow(QListWidget& list, int row);
// Scrolls so that the selected row stands three lines below the top.
void bringIntoSight(QListWidget& list);

// Does this by a double click on a line and by Return, which then presses no button of the form.
void whenActivated(QListWidget& list, const std::function<void()>& act);
// Does this by the Delete key.
void whenDeleted(QListWidget& list, const std::function<void()>& act);

// A field of one line, for about `letters` letters.
[[nodiscard]] QLineEdit* makeLineField(const char* name, const QString& text, int letters, QWidget* parent);
// A field of several lines in letters of one width, at least so many lines high. Tab leaves it.
[[nodiscard]] QPlainTextEdit* makeTextBox(const char* name, int lines, QWidget* parent);
// A field for a whole number, which counts when it is left.
[[nodiscard]] QSpinBox* makeSpinBox(const char* name, int least, int most, QWidget* parent);
// Two buttons one above the other, to stand in the middle between two lists.
[[nodiscard]] QBoxLayout* makeButtonsBetween(QPushButton* upper, QPushButton* lower);
// A button that isn't pressed by Enter.
[[nodiscard]] QPushButton* makePushButton(const char* name, const char* caption, QWidget* parent);
// "OK", "Cancel" and, with `help`, "Help".
[[nodiscard]] QDialogButtonBox* makeDialogButtons(bool help, QWidget* parent);

// Tab goes through these in this order.
void setTabChain(std::initializer_list<QWidget*> parts);

} // namespace dialogs
