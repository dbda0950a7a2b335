#include "dialogs/setupexpression.h"

#include <algorithm>

#include <QFontDatabase>
#include <QFormLayout>
#include <QVBoxLayout>

#include "common/textcoding.h"
#include "dialogs/boxes.h"
#include "dialogs/formparts.h"
#include "variables/macrofile.h"

namespace dialogs {
namespace {

constexpr int labelLetters = 40, numberLetters = 4, listLetters = 34, listLines = 9, formulaLines = 4;

QPlainTextEdit* makeFormulaBox(QWidget* parent)
{
    auto* const box = new QPlainTextEdit(parent);
    box->setObjectName(QStringLiteral("formula"));
    box->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    box->setTabChangesFocus(true);
    box->setMinimumHeight(box->fontMetrics().lineSpacing() * (formulaLines + 1));
    return box;
}

} // namespace

setupexpressionDlg::setupexpressionDlg(std::span<const collection::VARINFO> variables, QWidget* parent)
    : QDialog(parent), work_({}, variables),
      label_(makeLineField("label", common::decodeLabel(definition().label), labelLetters, this)),
      width_(makeLineField("width", QString::number(definition().width), numberLetters, this)),
      decimals_(makeLineField("decimals", QString::number(definition().decimals), numberLetters, this)),
      formula_(makeFormulaBox(this)), defined_(makeLineList("defined", listLetters, this)),
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
    for (const char* const help : {operatorHelp, operandHelp}) {
        QLabel* const line = makeTextLabel(help == operatorHelp ? "operators" : "operands", this);
        line->setText(QLatin1StringView(help));
        column->addWidget(line);
    }
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &setupexpressionDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &setupexpressionDlg::reject);
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
    auto* const between = new QVBoxLayout;
    between->addStretch();
    between->addWidget(add_);
    between->addWidget(delete_);
    between->addStretch();
    grid->addLayout(between, 1, 1);
    for (QListWidget* const list : {defined_, chosen_}) {
        list->setMinimumHeight(list->fontMetrics().lineSpacing() * listLines);
        connect(list, &QListWidget::itemSelectionChanged, this, &setupexpressionDlg::showButtons);
    }
    connect(defined_, &QListWidget::itemDoubleClicked, this, &setupexpressionDlg::processAdd);
    connect(chosen_, &QListWidget::itemDoubleClicked, this, &setupexpressionDlg::processDelete);
    connect(add_, &QPushButton::clicked, this, &setupexpressionDlg::processAdd);
    connect(delete_, &QPushButton::clicked, this, &setupexpressionDlg::processDelete);
    return grid;
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
    if (work_.addInput(selectedRow(*defined_))) showInputs(selectedRow(*chosen_));
}

void setupexpressionDlg::processDelete()
{
    const int row = selectedRow(*chosen_);
    if (!work_.removeInput(row)) return;
    showInputs(std::min(row, static_cast<int>(definition().inputs.size()) - 1));
}

void setupexpressionDlg::processOK()
{
    work_.setLabel(label_->text());
    work_.setFormat(width_->text(), decimals_->text());
    work_.setFormula(formula_->toPlainText());
    const COMPLAINT complaint = work_.complaint();
    if (complaint.text.isEmpty()) return accept();
    tell(this, complaint.title, complaint.text);
    if (definition().label.empty()) return label_->setFocus();
    formula_->setFocus();
}

} // namespace dialogs
