#include "dialogs/macroeditor.h"

#include <algorithm>
#include <array>

#include <QDir>
#include <QFormLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "dialogs/boxes.h"
#include "dialogs/filename.h"
#include "dialogs/formparts.h"
#include "dialogs/formulahelp.h"
#include "dialogs/variablerows.h"

namespace dialogs {
namespace {

constexpr int labelLetters = 40, numberLetters = 4, listLetters = 30, listLines = 7;
const char* const filter = "NVQ Macro Files (*.mac)";

// The answers to unsaved changes.
constexpr auto saveAnswers = std::to_array<std::string_view>({"&Yes", "&No", "&Cancel"});
enum SaveAnswer { saveYes, saveNo, saveCancel };

} // namespace

macroeditorDlg::macroeditorDlg(const QString& folder, std::span<const collection::VARINFO> variables,
                               common::RUser& user, QWidget* parent)
    : QDialog(parent), folder_(folder), user_(user),
      label_(makeLineField("label", QString(), labelLetters, this)),
      width_(makeLineField("width", QString(), numberLetters, this)),
      decimals_(makeLineField("decimals", QString(), numberLetters, this)),
      entry_(makeLineField("entry", QString(), listLetters, this)),
      expression_(makeTextBox("expression", 5, this)), comment_(makeTextBox("comment", 5, this)),
      defined_(makeLineList("defined", listLetters, this)), new_(makeLineList("new", listLetters, this)),
      add_(makePushButton("add", "<<", this)), delete_(makePushButton("delete", ">>", this)),
      check_(makePushButton("check", "Chec&k", this)), save_(makePushButton("save", "&Save", this)),
      saveAs_(makePushButton("saveAs", "Save &As", this)), close_(makePushButton("close", "&Close", this))
{
    setObjectName(QStringLiteral("macroeditor"));
    layOut();
    connectFields();
    connectParts();
    chainTabs();
    offerInputs(variables);
    showMacro();
    label_->setFocus();
}

// --- what it is made of

void macroeditorDlg::layOut()
{
    auto* const column = new QVBoxLayout(this);
    column->addLayout(makeFields());
    column->addWidget(makeInputGroup(), 1);
    column->addWidget(makeTextGroup(QStringLiteral("Expression"), expression_));
    column->addWidget(makeTextGroup(QStringLiteral("Comments"), comment_));
    column->addLayout(makeButtonRow());
}

QLayout* macroeditorDlg::makeFields()
{
    auto* const format = new QHBoxLayout;
    format->addWidget(width_);
    format->addWidget(new QLabel(QStringLiteral("."), this));
    format->addWidget(decimals_);
    format->addStretch();
    auto* const form = new QFormLayout;
    form->addRow(QStringLiteral("&Label:"), label_);
    form->addRow(makeCaption(QStringLiteral("&Format:"), width_), format);
    return form;
}

QWidget* macroeditorDlg::makeInputGroup()
{
    auto* const group = new QGroupBox(QStringLiteral("Input Variables"), this);
    auto* const grid = new QGridLayout(group);
    for (QWidget* const part : std::initializer_list<QWidget*>{defined_, new_, entry_, add_, delete_})
        part->setParent(group);
    grid->addWidget(makeCaption(QStringLiteral("&Defined:"), defined_), 0, 0);
    grid->addWidget(makeCaption(QStringLiteral("&New:"), entry_), 0, 2);
    grid->addWidget(defined_, 1, 0, 2, 1);
    grid->addLayout(makeButtonsBetween(add_, delete_), 1, 1, 2, 1);
    grid->addWidget(entry_, 1, 2);
    grid->addWidget(new_, 2, 2);
    for (QListWidget* const list : {defined_, new_})
        list->setMinimumHeight(list->fontMetrics().lineSpacing() * listLines);
    add_->setToolTip(QStringLiteral("Adds the text of the line as the next input"));
    delete_->setToolTip(QStringLiteral("Takes the input away; the later ones move up"));
    return group;
}

QWidget* macroeditorDlg::makeTextGroup(const QString& title, QPlainTextEdit* box)
{
    auto* const group = new QGroupBox(title, this);
    auto* const column = new QVBoxLayout(group);
    column->addWidget(box);
    if (box == expression_) addFormulaHelp(*column, group);
    return group;
}

QLayout* macroeditorDlg::makeButtonRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(check_);
    row->addStretch();
    for (QPushButton* const button : {save_, saveAs_, close_}) row->addWidget(button);
    return row;
}

void macroeditorDlg::connectFields()
{
    const auto take = [this](auto act) {
        return [this, act] {
            if (filling_) return;
            act();
            showState();
        };
    };
    connect(label_, &QLineEdit::textChanged, this, take([this] { work_.setLabel(label_->text()); }));
    connect(width_, &QLineEdit::editingFinished, this, take([this] { takeFormatFields(); }));
    connect(decimals_, &QLineEdit::editingFinished, this, take([this] { takeFormatFields(); }));
    connect(expression_, &QPlainTextEdit::textChanged, this,
            take([this] { work_.setExpression(expression_->toPlainText()); }));
    connect(comment_, &QPlainTextEdit::textChanged, this,
            take([this] { work_.setComment(comment_->toPlainText()); }));
    connect(entry_, &QLineEdit::textChanged, this, &macroeditorDlg::showState);
    connect(entry_, &QLineEdit::returnPressed, this, &macroeditorDlg::processAdd);
    connect(defined_, &QListWidget::itemSelectionChanged, this, &macroeditorDlg::showState);
    connect(new_, &QListWidget::itemSelectionChanged, this, [this] {
        const int row = selectedRow(*new_);
        if (row >= 0) entry_->setText(new_->item(row)->text());
    });
}

void macroeditorDlg::connectParts()
{
    whenActivated(*new_, [this] { processAdd(); });
    whenActivated(*defined_, [this] { processDelete(); });
    whenDeleted(*defined_, [this] { processDelete(); });
    connect(add_, &QPushButton::clicked, this, &macroeditorDlg::processAdd);
    connect(delete_, &QPushButton::clicked, this, &macroeditorDlg::processDelete);
    connect(check_, &QPushButton::clicked, this, &macroeditorDlg::processCheck);
    connect(save_, &QPushButton::clicked, this, &macroeditorDlg::processSave);
    connect(saveAs_, &QPushButton::clicked, this, &macroeditorDlg::processSaveAs);
    connect(close_, &QPushButton::clicked, this, &macroeditorDlg::reject);
}

void macroeditorDlg::chainTabs()
{
    setTabChain({label_, width_, decimals_, defined_, add_, delete_, entry_, new_, expression_, comment_,
                 check_, save_, saveAs_, close_});
}

void macroeditorDlg::offerInputs(std::span<const collection::VARINFO> variables)
{
    showLines(*new_, RVariableRows(variables).lines());
}

// --- what it shows

void macroeditorDlg::showMacro()
{
    filling_ = true;
    label_->setText(work_.label());
    width_->setText(QString::number(work_.macro().width));
    decimals_->setText(QString::number(work_.macro().decimals));
    expression_->setPlainText(work_.expression());
    comment_->setPlainText(work_.comment());
    filling_ = false;
    showInputs(-1);
}

void macroeditorDlg::showInputs(int selected)
{
    showLines(*defined_, work_.inputLines());
    selectRow(*defined_, selected);
    showState();
}

void macroeditorDlg::showState()
{
    setWindowTitle(QStringLiteral("Macro Editor - ") + inTitle(work_.fileName()));
    add_->setEnabled(!entry_->text().trimmed().isEmpty() &&
                     work_.macro().nInputs < variables::maxMacroInputs);
    delete_->setEnabled(selectedRow(*defined_) >= 0);
    save_->setEnabled(work_.isDirty() || work_.path().empty());
}

void macroeditorDlg::takeFormatFields()
{
    work_.setFormat(width_->text(), decimals_->text());
    width_->setText(QString::number(work_.macro().width));
    decimals_->setText(QString::number(work_.macro().decimals));
}

// --- what it does

QWidget* macroeditorDlg::over()
{
    return isVisible() || !parentWidget() ? this : parentWidget();
}

void macroeditorDlg::chooseFile()
{
    for (;;) {
        const QString path =
            askOpenName(over(), QStringLiteral("Select NVQ macro ..."), QLatin1StringView(filter), folder_);
        if (path.isEmpty() || openFile(path)) return;
    }
}

// The busy state ends before anything is told.
bool macroeditorDlg::readBusily(const QString& path, variables::MACRO& macro, variables::MACROFAULT& fault)
{
    const common::RBusyGuard busy(user_, "Opening " + path.toStdString() + " ...");
    return variables::readMacroFile(QFile::encodeName(path).toStdString(), macro, fault);
}

bool macroeditorDlg::openFile(const QString& path)
{
    const std::string file = QFile::encodeName(path).toStdString();
    variables::MACRO macro;
    variables::MACROFAULT fault;
    if (!readBusily(path, macro, fault)) {
        tell(over(), QStringLiteral("Macro Editor"),
             QStringLiteral("Not a valid NVQ4.0 macro file!\n\n") +
                 QString::fromStdString(variables::faultText(path.toStdString(), fault)));
        return false;
    }
    work_ = REditedMacro(std::move(macro), file);
    showMacro();
    return true;
}

void macroeditorDlg::processAdd()
{
    if (!work_.addInput(entry_->text())) {
        if (work_.macro().nInputs >= variables::maxMacroInputs)
            tell(this, windowTitle(), QLatin1StringView(noRoomForInput));
        return;
    }
    entry_->clear();
    selectRow(*new_, -1);
    showInputs(selectedRow(*defined_));
}

void macroeditorDlg::processDelete()
{
    const int row = selectedRow(*defined_);
    if (work_.removeInput(row)) showInputs(std::min(row, work_.macro().nInputs - 1));
}

void macroeditorDlg::processCheck()
{
    const QString fault = work_.obstacle().isEmpty() ? work_.fault() : work_.obstacle();
    tell(this, windowTitle(), fault.isEmpty() ? QStringLiteral("Nothing is wrong with this macro.") : fault);
}

bool macroeditorDlg::mayBeSaved()
{
    takeFormatFields(); // a key may have come before the field was left
    const QString obstacle = work_.obstacle(), fault = work_.fault();
    if (!obstacle.isEmpty()) {
        tell(this, windowTitle(), obstacle);
        return false;
    }
    return fault.isEmpty() ||
           confirm(this, windowTitle(), fault + QStringLiteral("\n\nSave it all the same?"));
}

bool macroeditorDlg::saveTo(const QString& path)
{
    const bool saved = work_.save(QFile::encodeName(path).toStdString());
    if (!saved) tell(this, windowTitle(), path + QStringLiteral(" can't be written."));
    showState();
    return saved;
}

bool macroeditorDlg::processSave()
{
    if (work_.path().empty()) return processSaveAs();
    return mayBeSaved() && saveTo(QFile::decodeName(work_.path().c_str()));
}

bool macroeditorDlg::processSaveAs()
{
    if (!mayBeSaved()) return false;
    const QString proposal = work_.path().empty() ? QDir(folder_).filePath(work_.fileName())
                                                  : QFile::decodeName(work_.path().c_str());
    const QString path =
        askSaveName(this, QStringLiteral("Save NVQ macro ..."), QLatin1StringView(filter), proposal, true);
    return !path.isEmpty() && saveTo(path);
}

void macroeditorDlg::reject()
{
    takeFormatFields();
    if (work_.isDirty()) {
        const std::string text = work_.fileName().toStdString() + " has changed.\n\nSave the changes?";
        const int answer = user_.choose("Macro Editor", text, saveAnswers, saveYes, saveCancel);
        if (answer == saveCancel || (answer == saveYes && !processSave())) return;
    }
    QDialog::reject();
}

void editMacros(const QString& folder, std::span<const collection::VARINFO> variables, common::RUser& user,
                QWidget* parent)
{
    macroeditorDlg dialog(folder, variables, user, parent);
    dialog.chooseFile();
    dialog.exec();
}

} // namespace dialogs
