#include "dialogs/formparts.h"

#include <algorithm>

#include <QFontDatabase>
#include <QScrollBar>
#include <QShortcut>

#include "dialogs/linedelegate.h"

namespace dialogs {
namespace {

constexpr int linesAbove = 3; // that stay in sight above a selected line
constexpr int mostLetters = 1000;

bool isControl(QChar c)
{
    return c.unicode() < 32 || (c.unicode() >= 127 && c.unicode() < 160) || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

// A tip is taken for rich text if it looks like it.
QString tipOf(const QString& line)
{
    return QStringLiteral("<p style='white-space:pre'>") + line.toHtmlEscaped() + QStringLiteral("</p>");
}

void showLine(QListWidget& list, int row, const QString& line)
{
    constexpr int shortLine = 30;
    QListWidgetItem* const item = list.item(row);
    item->setText(oneLine(line, mostLetters));
    item->setToolTip(line.size() > shortLine ? tipOf(oneLine(line, mostLetters)) : QString());
}

void onKey(QListWidget& list, Qt::Key key, const std::function<void()>& act)
{
    auto* const shortcut = new QShortcut(QKeySequence(key), &list);
    shortcut->setContext(Qt::WidgetShortcut);
    QObject::connect(shortcut, &QShortcut::activated, &list, [act] { act(); });
}

} // namespace

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString oneLine(const QString& text, int most)
{
    QString line = text.size() > most ? text.first(most - 1) + QChar(0x2026) : text;
    for (QChar& c : line) {
        if (isControl(c)) c = QLatin1Char(' ');
    }
    return line;
}

QString inTitle(const QString& text)
{
    constexpr int most = 60;
    QString title = oneLine(text, most);
    return title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")); // marks unsaved changes elsewhere
}

QLabel* makeTextLabel(const char* name, QWidget* parent)
{
    auto* const label = new QLabel(parent);
    label->setObjectName(QLatin1StringView(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel* makeCaption(const QString& text, QWidget* field)
{
    auto* const caption = new QLabel(text, field->parentWidget());
    caption->setBuddy(field);
    return caption;
}

QListWidget* makeLineList(const char* name, int letters, QWidget* parent)
{
    auto* const list = new QListWidget(parent);
    list->setObjectName(QLatin1StringView(name));
    list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    list->setItemDelegate(new RLineDelegate(list));
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTextElideMode(Qt::ElideRight);
    list->setUniformItemSizes(true);
    list->setMinimumWidth(list->fontMetrics().averageCharWidth() * letters +
                          list->verticalScrollBar()->sizeHint().width() + 2 * list->frameWidth());
    return list;
}

void showLines(QListWidget& list, const QStringList& lines)
{
    const auto count = static_cast<int>(lines.size());
    while (list.count() > count) delete list.takeItem(list.count() - 1);
    while (list.count() < count) list.addItem(QString());
    for (int row = 0; row < count; ++row) showLine(list, row, lines[row]);
}

void setVisibleLines(QListWidget& list, int count)
{
    const int line = list.count() > 0 ? list.sizeHintForRow(0) : list.fontMetrics().lineSpacing();
    list.setFixedHeight(line * count + 2 * list.frameWidth());
}

int selectedRow(const QListWidget& list)
{
    const QModelIndexList selected = list.selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}

void selectRow(QListWidget& list, int row)
{
    if (row == selectedRow(list)) return;
    if (row < 0 || row >= list.count()) return list.clearSelection();
    list.setCurrentRow(row, QItemSelectionModel::ClearAndSelect);
    bringIntoSight(list);
}

void bringIntoSight(QListWidget& list)
{
    const int row = selectedRow(list);
    if (row >= 0)
        list.scrollToItem(list.item(std::max(0, row - linesAbove)), QAbstractItemView::PositionAtTop);
}

void whenActivated(QListWidget& list, const std::function<void()>& act)
{
    QObject::connect(&list, &QListWidget::itemDoubleClicked, &list, [act] { act(); });
    // The list itself would pass Return on to the form; and it takes a single click for it in some styles.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) onKey(list, key, act);
}

void whenDeleted(QListWidget& list, const std::function<void()>& act)
{
    onKey(list, Qt::Key_Delete, act);
}

QLineEdit* makeLineField(const char* name, const QString& text, int letters, QWidget* parent)
{
    auto* const field = new QLineEdit(text, parent);
    field->setObjectName(QLatin1StringView(name));
    field->setMinimumWidth(field->fontMetrics().averageCharWidth() * letters);
    return field;
}

QPlainTextEdit* makeTextBox(const char* name, int lines, QWidget* parent)
{
    auto* const box = new QPlainTextEdit(parent);
    box->setObjectName(QLatin1StringView(name));
    box->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    box->setTabChangesFocus(true);
    box->setMinimumHeight(box->fontMetrics().lineSpacing() * (lines + 1));
    return box;
}

QSpinBox* makeSpinBox(const char* name, int least, int most, QWidget* parent)
{
    auto* const box = new QSpinBox(parent);
    box->setObjectName(QLatin1StringView(name));
    box->setRange(least, most);
    box->setKeyboardTracking(false);
    return box;
}

QBoxLayout* makeButtonsBetween(QPushButton* upper, QPushButton* lower)
{
    auto* const column = new QVBoxLayout;
    column->addStretch();
    column->addWidget(upper);
    column->addWidget(lower);
    column->addStretch();
    return column;
}

QPushButton* makePushButton(const char* name, const char* caption, QWidget* parent)
{
    auto* const button = new QPushButton(QString::fromUtf8(caption), parent);
    button->setObjectName(QLatin1StringView(name));
    button->setAutoDefault(false);
    return button;
}

QDialogButtonBox* makeDialogButtons(bool help, QWidget* parent)
{
    auto* const buttons = new QDialogButtonBox(parent);
    buttons->setObjectName(QStringLiteral("buttons"));
    buttons->addButton(QDialogButtonBox::Ok)->setDefault(true);
    buttons->addButton(QDialogButtonBox::Cancel)->setAutoDefault(false);
    if (help) buttons->addButton(QDialogButtonBox::Help)->setAutoDefault(false);
    return buttons;
}

void setTabChain(std::initializer_list<QWidget*> parts)
{
    QWidget* before = nullptr;
    for (QWidget* const part : parts) {
        if (before) QWidget::setTabOrder(before, part);
        before = part;
    }
}

} // namespace dialogs
