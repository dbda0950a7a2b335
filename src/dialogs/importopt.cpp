#include "dialogs/importopt.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "common/limits.h"
#include "dialogs/boxes.h"
#include "dialogs/deflinconversion.h"
#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"
#include "dialogs/lineinput.h"
#include "dialogs/selconversion.h"
#include "import/conversions.h"

namespace dialogs {
namespace {

using importing::ImportMode;
using importing::variableConversions;

QStringList conversionLines()
{
    QStringList lines;
    for (const importing::CONVERSIONROW& row : variableConversions) lines += fromUtf8(row.label);
    return lines;
}

QComboBox* makeModeBox(QWidget* parent)
{
    auto* const box = new QComboBox(parent);
    box->setObjectName(QStringLiteral("mode"));
    box->addItems({QStringLiteral("Add/Replace Station Data"),
                   QStringLiteral("Merge Data (selected variables)"),
                   QStringLiteral("Update Data (selected variables)")});
    return box;
}

} // namespace

importoptDlg::importoptDlg(const importing::IMPORTCHOICES& choices, QWidget* parent)
    : QDialog(parent), import_(choices), identify_(choices.identify), mayUseDefaults_(choices.mayUseDefaults),
      mode_(makeModeBox(this)), check_(new QCheckBox(QStringLiteral("Check for &Existing Stations"), this)),
      cruises_(makeLineList("cruises", 30, this)), sourceLabel_(new QLineEdit(this)),
      view_(new RPairView(QStringLiteral("&Source File"), QStringLiteral("&Target Collection"), this))
{
    setObjectName(QStringLiteral("importopt"));
    setWindowTitle(QStringLiteral("Import Options"));
    QDialogButtonBox* const buttons = makeDialogButtons(true, this);
    auto* const upper = new QHBoxLayout;
    upper->addWidget(makeModes());
    upper->addWidget(makeCruises(), 1);
    auto* const column = new QVBoxLayout(this);
    column->addLayout(upper);
    column->addWidget(view_, 1);
    column->addWidget(buttons);
    makeButtons();
    connect(buttons, &QDialogButtonBox::accepted, this, &importoptDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &importoptDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &importoptDlg::processHelp);
    connect(view_, &RPairView::sourceSelected, this, &importoptDlg::newSrcVar);
    connect(view_, &RPairView::targetSelected, this, &importoptDlg::newTrgVar);
    showMode();
    showPairs();
    view_->sources().setFocus();
}

// --- what it is made of

QWidget* importoptDlg::makeModes()
{
    auto* const group = new QGroupBox(QStringLiteral("Import Mode"), this);
    check_->setObjectName(QStringLiteral("check"));
    auto* const column = new QVBoxLayout(group);
    column->addWidget(mode_);
    column->addWidget(check_);
    column->addStretch();
    mode_->setCurrentIndex(static_cast<int>(import_.mode()) - 1);
    connect(mode_, &QComboBox::currentIndexChanged, this, &importoptDlg::newMode);
    connect(check_, &QCheckBox::clicked, this, [this](bool on) { import_.setChecksExisting(on); });
    return group;
}

QWidget* importoptDlg::makeCruises()
{
    constexpr int linesShown = 4;
    auto* const group = new QGroupBox(QStringLiteral("Cruise Label Association"), this);
    sourceLabel_->setObjectName(QStringLiteral("sourceLabel"));
    sourceLabel_->setMaxLength(common::labelLength);
    showLines(*cruises_, import_.cruiseLines());
    setVisibleLines(*cruises_, linesShown);
    auto* const row = new QHBoxLayout(group);
    auto* const left = new QVBoxLayout;
    left->addWidget(makeCaption(QStringLiteral("C&ruise in the collection:"), cruises_));
    left->addWidget(cruises_);
    auto* const right = new QVBoxLayout;
    right->addWidget(makeCaption(QStringLiteral("&Label in the source file:"), sourceLabel_));
    right->addWidget(sourceLabel_);
    right->addStretch();
    row->addLayout(left, 3);
    row->addLayout(right, 2);
    connect(cruises_, &QListWidget::itemSelectionChanged, this, &importoptDlg::newTrgCruise);
    connect(sourceLabel_, &QLineEdit::textEdited, this, &importoptDlg::newSrcCruise);
    newTrgCruise();
    group->setEnabled(cruises_->count() > 0);
    return group;
}

void importoptDlg::makeButtons()
{
    associate_ = view_->addButton("PB_Associate", "&Associate");
    convert_ = view_->addButton("PB_Convert", "&Convert");
    undo_ = view_->addButton("PB_Undo", "&Undo");
    useDefault_ = view_->addButton("PB_UseDefault", "Use &Default");
    useDefault_->setVisible(mayUseDefaults_);
    connect(associate_, &QPushButton::clicked, this, &importoptDlg::processAssociate);
    connect(convert_, &QPushButton::clicked, this, &importoptDlg::processConvert);
    connect(undo_, &QPushButton::clicked, this, &importoptDlg::processUndo);
    connect(useDefault_, &QPushButton::clicked, this, &importoptDlg::processUseDefault);
}

// --- mode and cruises

void importoptDlg::newMode()
{
    import_.setMode(static_cast<ImportMode>(mode_->currentIndex() + 1));
    showMode();
}

void importoptDlg::showMode()
{
    check_->setChecked(import_.checksExisting());
    check_->setEnabled(import_.mode() == ImportMode::addReplace);
}

void importoptDlg::newSrcCruise()
{
    if (const int cruise = selectedRow(*cruises_); cruise >= 0)
        import_.setSourceLabel(cruise, sourceLabel_->text());
}

void importoptDlg::newTrgCruise()
{
    const int cruise = selectedRow(*cruises_);
    sourceLabel_->setEnabled(cruise >= 0);
    sourceLabel_->setText(cruise >= 0 ? import_.sourceLabel(cruise) : QString());
}

// --- variables

void importoptDlg::newSrcVar()
{
    import_.selectSource(selectedRow(view_->sources()));
    showSelection();
}

void importoptDlg::newTrgVar()
{
    import_.selectTarget(selectedRow(view_->targets()));
    showSelection();
}

void importoptDlg::showPairs()
{
    view_->show(import_.pairs(), import_.sourceLines(), import_.targetLines());
    showSelection();
}

void importoptDlg::showSelection()
{
    const RPairedLists& pairs = import_.pairs();
    view_->select(pairs);
    view_->setHint(oneLine(import_.linkText()));
    associate_->setEnabled(pairs.mayJoin());
    convert_->setEnabled(pairs.mayJoin());
    undo_->setEnabled(pairs.mayUndo());
    useDefault_->setEnabled(import_.mayUseDefault());
}

void importoptDlg::processAssociate()
{
    if (!import_.pairs().mayJoin()) return;
    import_.associate();
    showPairs();
}

// The potential temperature can only be converted with depth and salinity of the same level.
bool importoptDlg::knowsKeyVariables()
{
    constexpr auto row = static_cast<std::size_t>(importing::potentialTemperatureRow);
    const std::string_view task = variableConversions[row].label;
    return identify_ && identify_(task, "Depth [m]") > 0 && identify_(task, "Salinity [psu]") > 0;
}

bool importoptDlg::askConversion(float& scale, float& offset)
{
    const RPairedLists& pairs = import_.pairs();
    selconversionDlg dialog(import_.sourceName(pairs.source()), import_.targetName(pairs.target()),
                            conversionLines(), 0, this);
    if (dialog.exec() != QDialog::Accepted) return false;
    const importing::CONVERSIONROW& row = variableConversions[static_cast<std::size_t>(dialog.row())];
    scale = row.a;
    offset = row.b;
    if (row.id == importing::potentialTemperatureRow) return knowsKeyVariables();
    if (row.id != importing::generalLinearRow) return true;
    deflinconversionDlg numbers(dialog.windowTitle(), this);
    if (numbers.exec() != QDialog::Accepted) return false;
    scale = numbers.a();
    offset = numbers.b();
    return true;
}

void importoptDlg::processConvert()
{
    float scale = 1, offset = 0;
    if (!import_.pairs().mayJoin() || !askConversion(scale, offset)) return;
    import_.associate(scale, offset);
    showPairs();
}

void importoptDlg::processUndo()
{
    import_.undo();
    showPairs();
}

void importoptDlg::processUseDefault()
{
    if (!import_.mayUseDefault()) return;
    const int target = import_.pairs().target();
    const QString caption = QStringLiteral("Default Value %1").arg(inTitle(import_.targetName(target)));
    const auto line =
        askLine(this, caption, QStringLiteral("Default value:"), numberText(import_.defaultValue(target)));
    if (!line) return;
    const std::optional<float> value = numberOf(*line);
    if (!value) return tell(this, caption, QStringLiteral("This is no number: ") + oneLine(*line));
    import_.useDefault(*value);
    showPairs();
}

void importoptDlg::processOK()
{
    if (import_.isModePossible()) return accept();
    tell(this, QStringLiteral("Collection is empty ..."),
         QStringLiteral("Merge/Update not possible for empty collections."));
    mode_->setFocus();
}

} // namespace dialogs
