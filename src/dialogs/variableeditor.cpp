#include "dialogs/variableeditor.h"

#include <algorithm>
#include <memory>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "common/limits.h"
#include "common/text.h"
#include "dialogs/boxes.h"

namespace dialogs {
namespace {

constexpr int sourceRole = Qt::UserRole; // of a cell: the number of the old variable

constexpr const char* help = "F2 or a double click edits a cell. Labels carry their units in square "
                             "brackets. A format is the width of "
                             "a number and its decimals, such as 8.2.";

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

std::size_t index(int place)
{
    return static_cast<std::size_t>(place);
}

QString sourceText(const VariableList& old, int source)
{
    if (source < 1 || source > variableCountOf(old)) return QStringLiteral("new (no data)");
    return QString::number(source) + QStringLiteral(": ") + plainOf(old[index(source)]);
}

// A choice among the old variables.
class RSourceDelegate : public QStyledItemDelegate {
public:
    RSourceDelegate(const VariableList& old, QObject* parent) : QStyledItemDelegate(parent), old_(old) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        auto* const box = new QComboBox(parent);
        for (int source = 0; source <= variableCountOf(old_); ++source)
            box->addItem(sourceText(old_, source), source);
        return box;
    }
    void setEditorData(QWidget* editor, const QModelIndex& cell) const override
    {
        auto* const box = static_cast<QComboBox*>(editor);
        box->setCurrentIndex(std::max(box->findData(cell.data(sourceRole)), 0));
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& cell) const override
    {
        model->setData(cell, static_cast<QComboBox*>(editor)->currentData(), sourceRole);
    }

private:
    const VariableList& old_;
};

QLabel* makeLabel(const char* name, QWidget* parent)
{
    auto* const label = new QLabel(parent);
    label->setObjectName(text(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QTableWidgetItem* makeCell(int column)
{
    auto cell = std::make_unique<QTableWidgetItem>();
    if (column == variableeditorDlg::numberColumn) {
        cell->setFlags(cell->flags() & ~Qt::ItemIsEditable);
        cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    return cell.release(); // the table takes it
}

// Sources that there are; entry 0 is there in any case.
VariableList cleanList(VariableList list, int oldCount)
{
    if (list.empty()) list.push_back(collection::emptyVariable(0));
    for (collection::VARINFO& variable : list) {
        if (variable.assocSource < 0 || variable.assocSource > oldCount) variable.assocSource = 0;
    }
    return list;
}

} // namespace

variableeditorDlg::variableeditorDlg(const QString& title, VariableList variables, VariableList old,
                                     QWidget* parent)
    : QDialog(parent), initial_(cleanList(std::move(variables), variableCountOf(old))), old_(std::move(old)),
      work_(initial_), table_(new QTableWidget(0, columnCount, this)), preview_(makeLabel("preview", this)),
      warning_(makeLabel("warning", this))
{
    setObjectName(QStringLiteral("variableeditor"));
    setWindowTitle(title);
    buildTable();
    QWidget* const buttonColumn = makeButtonColumn();
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &variableeditorDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &variableeditorDlg::processCancel);
    layOut(buttonColumn, buttons);
    makeKeys();
    showList(1);
    table_->setFocus();
}

// --- what it is made of

void variableeditorDlg::buildTable()
{
    table_->setObjectName(QStringLiteral("table"));
    table_->setHorizontalHeaderLabels({QStringLiteral("No."), QStringLiteral("Label"),
                                       QStringLiteral("Format"), QStringLiteral("Data from")});
    table_->verticalHeader()->hide();
    table_->setColumnHidden(sourceColumn, oldCount() == 0);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::AnyKeyPressed);
    table_->setTabKeyNavigation(false); // so that the buttons are reached
    table_->setAlternatingRowColors(true);
    table_->setWordWrap(false);
    table_->setItemDelegateForColumn(sourceColumn, new RSourceDelegate(old_, table_));
    QHeaderView* const header = table_->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(labelColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(sourceColumn, QHeaderView::Stretch);
    connect(table_, &QTableWidget::cellChanged, this, &variableeditorDlg::takeCell);
    connect(table_, &QTableWidget::currentCellChanged, this, [this] { showHints(); });
    connect(table_, &QTableWidget::cellDoubleClicked, this, [this](int, int column) {
        if (column == numberColumn) processRename();
    });
}

QPushButton* variableeditorDlg::makeButton(const char* name, const char* caption, const char* keys,
                                           void (variableeditorDlg::*slot)())
{
    auto* const button = new QPushButton(text(caption), this);
    button->setObjectName(text(name));
    button->setToolTip(text(keys));
    button->setAutoDefault(false); // Enter is OK
    connect(button, &QPushButton::clicked, this, slot);
    return button;
}

QWidget* variableeditorDlg::makeButtonColumn()
{
    auto* const column = new QWidget(this);
    auto* const rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(makeButton("add", "&Add", "Ins", &variableeditorDlg::processAdd));
    rows->addWidget(remove_ = makeButton("remove", "Re&move", "Del", &variableeditorDlg::processRemove));
    rows->addWidget(rename_ = makeButton("rename", "Re&name", "F2", &variableeditorDlg::processRename));
    rows->addSpacing(12);
    rows->addWidget(up_ = makeButton("up", "Move &Up", "Ctrl+Up", &variableeditorDlg::processUp));
    rows->addWidget(down_ = makeButton("down", "Move &Down", "Ctrl+Down", &variableeditorDlg::processDown));
    rows->addSpacing(12);
    rows->addWidget(makeButton("reset", "&Reset", "All as it was", &variableeditorDlg::processReset));
    rows->addStretch();
    return column;
}

void variableeditorDlg::layOut(QWidget* buttonColumn, QWidget* buttons)
{
    QLabel* const hint = makeLabel("hint", this);
    hint->setText(text(help));
    QPalette red = warning_->palette();
    red.setColor(QPalette::WindowText, QColor(176, 0, 0));
    warning_->setPalette(red);
    auto* const upper = new QHBoxLayout;
    upper->addWidget(table_, 1);
    upper->addWidget(buttonColumn);
    auto* const column = new QVBoxLayout(this);
    column->addLayout(upper, 1);
    column->addWidget(preview_);
    column->addWidget(warning_);
    column->addWidget(hint);
    column->addWidget(buttons);
    const QFontMetrics letters = fontMetrics();
    const bool twoLists = oldCount() > 0;
    warning_->setMinimumHeight(letters.lineSpacing() * (twoLists ? 2 : 1)); // so that nothing jumps
    warning_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    resize(letters.averageCharWidth() * (twoLists ? 120 : 85), letters.height() * 30);
}

void variableeditorDlg::makeKeys()
{
    const auto key = [this](const QKeySequence& keys, void (variableeditorDlg::*slot)()) {
        auto* const shortcut = new QShortcut(keys, table_); // not while a cell is edited
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, slot);
    };
    key(Qt::Key_Insert, &variableeditorDlg::processAdd);
    key(Qt::Key_Delete, &variableeditorDlg::processRemove);
    key(Qt::Key_F2, &variableeditorDlg::editCurrent);
    key(Qt::CTRL | Qt::Key_Up, &variableeditorDlg::processUp);
    key(Qt::CTRL | Qt::Key_Down, &variableeditorDlg::processDown);
}

// --- the list in the table

void variableeditorDlg::select(int place, int column)
{
    if (place < 1 || place > variableCountOf(work_)) return;
    table_->setCurrentCell(place - 1, column);
}

void variableeditorDlg::showList(int place)
{
    const int column = std::max(table_->currentColumn(), static_cast<int>(labelColumn));
    table_->setRowCount(variableCountOf(work_));
    for (int v = 1; v <= variableCountOf(work_); ++v) showRow(v);
    select(place, column);
    showHints();
}

// Cells are changed and not replaced: one of them may be about to tell that it was edited.
void variableeditorDlg::showRow(int place)
{
    const collection::VARINFO& variable = work_[index(place)];
    const QString texts[columnCount] = {QString::number(place), labelOf(variable), formatOf(variable),
                                        sourceText(old_, variable.assocSource)};
    filling_ = true;
    for (int column = 0; column < columnCount; ++column) {
        QTableWidgetItem* item = table_->item(place - 1, column);
        if (!item) table_->setItem(place - 1, column, item = makeCell(column));
        item->setText(texts[column]);
        if (column == sourceColumn) item->setData(sourceRole, variable.assocSource);
    }
    filling_ = false;
}

void variableeditorDlg::showHints()
{
    const int place = currentPlace(), count = variableCountOf(work_);
    const bool chosen = place >= 1 && place <= count;
    remove_->setEnabled(chosen && count > 1);
    rename_->setEnabled(chosen);
    up_->setEnabled(place > 1);
    down_->setEnabled(chosen && place < count);
    preview_->setText(chosen ? QStringLiteral("Without markup: ") + plainOf(work_[index(place)]) : QString());
    std::string warnings;
    const auto [first, second] = sameLabels(work_);
    if (first > 0) warnings = common::format("Variables %d and %d have the same label.", first, second);
    if (count > 0 && oldCount() > 0 && work_[1].assocSource == 0) {
        if (!warnings.empty()) warnings += '\n';
        warnings += "Variable 1 takes no data: stations without values of variable 1 can't be kept.";
    }
    warning_->setText(text(warnings));
}

// What the user has left in a cell. It is shown again as it was understood.
void variableeditorDlg::takeCell(int row, int column)
{
    if (filling_ || row < 0 || row >= variableCountOf(work_)) return;
    const int place = row + 1;
    collection::VARINFO& variable = work_[index(place)];
    const QTableWidgetItem* const cell = table_->item(row, column);
    if (column == labelColumn) renameVariable(variable, cell->text());
    if (column == formatColumn) static_cast<void>(setFormat(variable, cell->text()));
    if (column == sourceColumn) variable.assocSource = cell->data(sourceRole).toInt();
    showRow(place);
    showHints();
}

// --- what the user does

void variableeditorDlg::editCurrent()
{
    if (table_->currentColumn() == numberColumn) return processRename();
    if (table_->currentItem()) table_->editItem(table_->currentItem());
}

void variableeditorDlg::processRename()
{
    select(currentPlace(), labelColumn);
    if (table_->currentItem()) table_->editItem(table_->currentItem());
}

void variableeditorDlg::processAdd()
{
    const int place = addVariable(work_, currentPlace());
    if (place == 0)
        return tell(this, QStringLiteral("Could not add variable ..."),
                    QStringLiteral("Maximum number of variables reached!"));
    showList(place);
    processRename();
}

void variableeditorDlg::processRemove()
{
    const int place = currentPlace();
    if (removeVariable(work_, place)) showList(std::min(place, variableCountOf(work_)));
}

void variableeditorDlg::move(int step)
{
    const int place = currentPlace();
    if (moveVariable(work_, place, step)) showList(place + step);
}

void variableeditorDlg::processReset()
{
    work_ = initial_;
    showList(1);
}

void variableeditorDlg::processOK()
{
    setFocus(); // a cell that is being edited is finished
    if (isComplete() && mayLose()) return accept();
    table_->setFocus();
}

// False, after a message, if something is missing.
bool variableeditorDlg::isComplete()
{
    const int place = unlabelled(work_);
    if (variableCountOf(work_) > 0 && place == 0) return true;
    tell(this, windowTitle(),
         place > 0 ? QStringLiteral("Variable %1 has no label.").arg(place)
                   : QStringLiteral("A collection has at least one variable."));
    select(place, labelColumn);
    return false;
}

bool variableeditorDlg::mayLose()
{
    constexpr std::size_t listed = 20; // more don't fit into a box
    const std::vector<int> lost = lostVariables(work_, oldCount());
    if (lost.empty()) return true;
    QString message = QStringLiteral("The data of these variables will be lost:\n\n");
    for (std::size_t i = 0; i < std::min(lost.size(), listed); ++i)
        message += QStringLiteral("    ") + sourceText(old_, lost[i]) + QLatin1Char('\n');
    if (lost.size() > listed)
        message += QStringLiteral("    and %1 more\n").arg(static_cast<int>(lost.size() - listed));
    return confirm(this, windowTitle(), message + QStringLiteral("\nContinue?"));
}

} // namespace dialogs
