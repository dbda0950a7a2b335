#include "dialogs/setupexpression.h"

#include <algorithm>

#include <QFormLayout>
#include <QVBoxLayout>

#include "common/textcoding.h"
#include "dialogs/boxes.h"
#include "dialogs/formparts.h"
#include "dialogs/formulahelp.h"
#include "variables/macrofile.h"

namespace dialogs {
namespace {

constexpr int labelLetters = 40, numberLetters = 4, listLetters = 34, listLines = 9, formulaLines = 4;

} // namespace

setupexpressionDlg::setupexpressionDlg(std::span<const collection::VARINFO> variables, QWidget* parent)
    : QDialog(parent), work_({}, variables),
      label_(makeLineField("label", common::decodeLabel(definition().label), labelLetters, this)),
      width_(makeLineField("width", QString::number(definition().width), numberLetters, this)),
      decimals_(makeLineField("decimals", QString::number(definition().decimals), numberLetters, this)),
      formula_(makeTextBox("formula", formulaLines, this)),
      defined_(makeLineList("defined", listLetters, this)),
      chosen_(makeLineList("chosen", listLetters, this)), add_(makePushButton("add", ">>", this)),
      delete_(makePushButton("delete", "<<", this))
{
    setObjectName(QStringLiteral("setupexpression"));
    setWindowTitle(QStringLiteral("Setup Expression Variable"));
    add_->setToolTip(QStringLiteral("Adds the variable to the inputs"));
    delete_->setToolTip(QStringLiteral("Takes the input away; the later ones move up"));
    QDialogButtonBox* const buttons = makeDialogButtons(false, this);
    auto* const column = new QVBoxLayout(this);
    column->addLayout(makeFields());
    column->addLayout(makeLists(), 1);
    column->addWidget(makeCaption(QStringLiteral("E&xpression:"), formula_));
    column->addWidget(formula_);
    addFormulaHelp(*column, this);
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &setupexpressionDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &setupexpressionDlg::reject);
    connectParts();
    setTabChain({label_, width_, decimals_, defined_, add_, delete_, chosen_, formula_,
                 buttons->button(QDialogButtonBox::Ok), buttons->button(QDialogButtonBox::Cancel)});
    showLines(*defined_, work_.definedLines());
    showInputs(-1);
    label_->setFocus();
    label_->selectAll();
}

QLayout* setupexpressionDlg::makeFields()
{
    auto* const format = new QHBoxLayout;
    format->addWidget(width_);
    format->addWidget(new QLabel(QStringLiteral("."), this));
    format->addWidget(decimals_);
    format->addStretch();
    auto* const form = new QFormLayout;
    form->addRow(QStringLiteral("&Label:"), label_);
    QLabel* const caption = makeCaption(QStringLiteral("&Format:"), width_);
    form->addRow(caption, format);
    return form;
}

QLayout* setupexpressionDlg::makeLists()
{
    auto* const grid = new QGridLayout;
    grid->addWidget(makeCaption(QStringLiteral("&Defined:"), defined_), 0, 0);
    grid->addWidget(makeCaption(QStringLiteral("&Inputs:"), chosen_), 0, 2);
    grid->addWidget(defined_, 1, 0);
    grid->addWidget(chosen_, 1, 2);
    grid->addLayout(makeButtonsBetween(add_, delete_), 1, 1);
    for (QListWidget* const list : {defined_, chosen_})
        list->setMinimumHeight(list->fontMetrics().lineSpacing() * listLines);
    return grid;
}

void setupexpressionDlg::connectParts()
{
    for (QListWidget* const list : {defined_, chosen_})
        connect(list, &QListWidget::itemSelectionChanged, this, &setupexpressionDlg::showButtons);
    for (QLineEdit* const field : {width_, decimals_})
        connect(field, &QLineEdit::editingFinished, this, &setupexpressionDlg::takeFormatFields);
    whenActivated(*defined_, [this] { processAdd(); });
    whenActivated(*chosen_, [this] { processDelete(); });
    whenDeleted(*chosen_, [this] { processDelete(); });
    connect(add_, &QPushButton::clicked, this, &setupexpressionDlg::processAdd);
    connect(delete_, &QPushButton::clicked, this, &setupexpressionDlg::processDelete);
}

void setupexpressionDlg::showInputs(int selected)
{
    showLines(*chosen_, work_.chosenLines());
    selectRow(*chosen_, selected);
    showButtons();
}

void setupexpressionDlg::showButtons()
{
    const bool room = definition().inputs.size() < variables::maxMacroInputs;
    add_->setEnabled(room && selectedRow(*defined_) >= 0);
    delete_->setEnabled(selectedRow(*chosen_) >= 0);
}

void setupexpressionDlg::processAdd()
{
    const int row = selectedRow(*defined_);
    if (work_.addInput(row)) return showInputs(selectedRow(*chosen_));
    if (row >= 0) tell(this, windowTitle(), QLatin1StringView(noRoomForInput));
}

void setupexpressionDlg::processDelete()
{
    const int row = selectedRow(*chosen_);
    if (!work_.removeInput(row)) return;
    showInputs(std::min(row, static_cast<int>(definition().inputs.size()) - 1));
}

void setupexpressionDlg::takeFormatFields()
{
    work_.setFormat(width_->text(), decimals_->text());
    width_->setText(QString::number(definition().width));
    decimals_->setText(QString::number(definition().decimals));
}

void setupexpressionDlg::processOK()
{
    work_.setLabel(label_->text());
    takeFormatFields(); // a key may have come before the field was left
    work_.setFormula(formula_->toPlainText());
    const COMPLAINT complaint = work_.complaint();
    if (complaint.text.isEmpty()) return accept();
    tell(this, complaint.title, complaint.text);
    if (definition().label.empty()) return label_->setFocus();
    formula_->setFocus();
}

} // namespace dialogs
