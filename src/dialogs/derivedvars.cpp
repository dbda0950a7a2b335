#include "dialogs/derivedvars.h"

#include <algorithm>

#include <QVBoxLayout>

#include "dialogs/boxes.h"
#include "dialogs/editedvariables.h"
#include "dialogs/formparts.h"
#include "dialogs/help.h"
#include "variables/setup.h"

namespace dialogs {
namespace {

constexpr int linesShown = 18;

QString nameOf(const collection::RCollection& collection, int number)
{
    return plainOf(collection.variables[static_cast<std::size_t>(number)]);
}

RVariableRows derivedRowsOf(const collection::RCollection& collection)
{
    const auto count = static_cast<std::size_t>(collection.totalVariableCount) + 1;
    return RVariableRows(std::span(collection.variables).first(count), collection.variableCount + 1);
}

} // namespace

QString deletionQuestion(const collection::RCollection& collection, int number)
{
    QString text = QStringLiteral("Delete %1?").arg(nameOf(collection, number));
    const std::vector<int> dependents = variables::dependentVariables(collection, number);
    if (dependents.empty()) return text;
    text += QStringLiteral("\n\nThese are computed from it and go too:");
    for (const int dependent : dependents) text += u'\n' + nameOf(collection, dependent);
    return text;
}

derivedvarsDlg::derivedvarsDlg(const collection::RCollection& collection, DERIVEDACTIONS actions,
                               QWidget* parent)
    : QDialog(parent), collection_(collection), actions_(std::move(actions)),
      rows_(derivedRowsOf(collection)), choices_(makeLineList("choices", 34, this)),
      defined_(makeLineList("defined", 34, this)), add_(makePushButton("add", "&Add", this)),
      delete_(makePushButton("delete", "&Delete", this)), help_(makePushButton("help", "&Help", this)),
      close_(makePushButton("close", "&Close", this))
{
    setObjectName(QStringLiteral("derivedvars"));
    setWindowTitle(QStringLiteral("Derived Variables"));
    QStringList rows;
    for (const variables::DRVVAR& row : variables::derivedRows()) rows += fromUtf8(row.label);
    showLines(*choices_, rows);
    setVisibleLines(*choices_, linesShown);
    setVisibleLines(*defined_, linesShown);
    auto* const column = new QVBoxLayout(this);
    column->addLayout(makeLists());
    column->addLayout(makeButtons());
    connectParts();
    setTabChain({choices_, defined_, add_, delete_, help_, close_});
    choices_->setFocus();
    showDefined();
}

QLayout* derivedvarsDlg::makeLists()
{
    auto* const lists = new QHBoxLayout;
    for (const auto& [caption, list] : {std::pair(QStringLiteral("Ch&oices:"), choices_),
                                        std::pair(QStringLiteral("Already De&fined:"), defined_)}) {
        auto* const column = new QVBoxLayout;
        column->addWidget(makeCaption(caption, list));
        column->addWidget(list);
        lists->addLayout(column);
    }
    return lists;
}

QLayout* derivedvarsDlg::makeButtons()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(add_);
    row->addWidget(delete_);
    row->addStretch();
    row->addWidget(help_);
    row->addWidget(close_);
    return row;
}

void derivedvarsDlg::connectParts()
{
    connect(choices_, &QListWidget::itemSelectionChanged, this, &derivedvarsDlg::showButtons);
    connect(defined_, &QListWidget::itemSelectionChanged, this, &derivedvarsDlg::showButtons);
    whenActivated(*choices_, [this] { processAdd(); });
    whenDeleted(*defined_, [this] { processDelete(); });
    connect(add_, &QPushButton::clicked, this, &derivedvarsDlg::processAdd);
    connect(delete_, &QPushButton::clicked, this, &derivedvarsDlg::processDelete);
    connect(help_, &QPushButton::clicked, this, &derivedvarsDlg::processHelp);
    connect(close_, &QPushButton::clicked, this, &derivedvarsDlg::accept);
}

void derivedvarsDlg::processAdd()
{
    const int row = selectedRow(*choices_);
    if (row < 0) return;
    const int number = actions_.add(row);
    if (number == 0) return;
    showDefined();
    selectDefined(rows_.rowOf(number));
}

void derivedvarsDlg::processDelete()
{
    const int number = selectedNumber();
    if (number == 0 || !confirm(this, windowTitle(), deletionQuestion(collection_, number))) return;
    const int row = selectedRow(*defined_);
    actions_.remove(number);
    showDefined();
    selectDefined(std::min(row, rows_.count() - 1));
}

void derivedvarsDlg::processHelp()
{
    showHelp(this, derivedHelp);
}

void derivedvarsDlg::showDefined()
{
    rows_ = derivedRowsOf(collection_);
    showLines(*defined_, rows_.lines());
    selectDefined(-1);
}

void derivedvarsDlg::selectDefined(int row)
{
    selectRow(*defined_, row);
    showButtons();
}

void derivedvarsDlg::showButtons()
{
    add_->setEnabled(selectedRow(*choices_) >= 0);
    delete_->setEnabled(selectedNumber() > 0);
}

int derivedvarsDlg::selectedNumber() const
{
    return rows_.numberOf(selectedRow(*defined_));
}

} // namespace dialogs
