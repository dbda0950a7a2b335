#include "dialogs/spreadshproperties.h"

#include <QFormLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"

namespace dialogs {
namespace {

constexpr int lastLine = 1000000;

QSpinBox* makeNumberField(const char* name, int value, QWidget* parent)
{
    auto* const field = new QSpinBox(parent);
    field->setObjectName(QLatin1StringView(name));
    field->setRange(1, lastLine);
    field->setValue(value);
    return field;
}

QComboBox* makeSeparators(int index, QWidget* parent)
{
    auto* const box = new QComboBox(parent);
    box->setObjectName(QStringLiteral("separator"));
    for (const importing::SEPARATORROW& row : importing::separators) box->addItem(fromUtf8(row.name));
    box->setCurrentIndex(index);
    return box;
}

} // namespace

spreadshpropertiesDlg::spreadshpropertiesDlg(const importing::SPREADSHEETDESC& desc,
                                             std::span<const std::string> firstLines, QWidget* parent)
    : QDialog(parent), file_(desc, firstLines),
      headerLine_(makeNumberField("headerLine", desc.headerLine, this)),
      firstDataLine_(makeNumberField("firstDataLine", desc.firstDataLine, this)),
      separator_(makeSeparators(desc.sepIndex, this)),
      missing_(makeLineField("missing", numberText(desc.missingValue), 12, this)),
      lines_(makeLineList("lines", 84, this)), labels_(makeLineList("labels", 34, this)),
      labelCaption_(makeCaption(QString(), labels_))
{
    constexpr int labelsShown = 10;
    setObjectName(QStringLiteral("spreadshproperties"));
    setWindowTitle(QStringLiteral("Spreadsheet File Properties"));
    showLines(*lines_, file_.lines());
    setVisibleLines(*lines_, 9);
    labels_->setMinimumHeight(labels_->fontMetrics().lineSpacing() * labelsShown);
    QDialogButtonBox* const buttons = makeDialogButtons(true, this);
    auto* const column = new QVBoxLayout(this);
    auto* const lower = new QHBoxLayout;
    auto* const right = new QVBoxLayout;
    column->addWidget(makeCaption(QStringLiteral("First Lines of the &File:"), lines_));
    column->addWidget(lines_);
    column->addLayout(lower, 1);
    column->addWidget(buttons);
    lower->addLayout(makeFields());
    lower->addSpacing(16);
    lower->addLayout(right, 1);
    right->addWidget(labelCaption_);
    right->addWidget(labels_);
    connect(headerLine_, &QSpinBox::valueChanged, this, &spreadshpropertiesDlg::newHeaderLine);
    connect(firstDataLine_, &QSpinBox::valueChanged, this,
            [this] { file_.setFirstDataLine(firstDataLine_->value()); });
    connect(separator_, &QComboBox::currentIndexChanged, this, &spreadshpropertiesDlg::newColSepChar);
    connect(buttons, &QDialogButtonBox::accepted, this, &spreadshpropertiesDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &spreadshpropertiesDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &spreadshpropertiesDlg::processHelp);
    showLabels();
    headerLine_->setFocus();
    headerLine_->selectAll();
}

QLayout* spreadshpropertiesDlg::makeFields()
{
    auto* const form = new QFormLayout;
    form->addRow(QStringLiteral("&Header Line:"), headerLine_);
    form->addRow(QStringLiteral("First &Data Line:"), firstDataLine_);
    form->addRow(QStringLiteral("Column &Sep. Char.:"), separator_);
    form->addRow(QStringLiteral("&Missing Value String:"), missing_);
    return form;
}

void spreadshpropertiesDlg::showLabels()
{
    const QStringList labels = file_.labels();
    QStringList lines;
    for (qsizetype i = 0; i < labels.size(); ++i)
        lines += QStringLiteral("%1: %2").arg(i + 1, 3).arg(labels[i]);
    showLines(*labels_, lines);
    labelCaption_->setText(
        file_.knowsHeaderLine()
            ? QStringLiteral("Column &Labels (%1):").arg(labels.size())
            : QStringLiteral("Column &Labels: line %1 is not shown here").arg(desc().headerLine));
}

void spreadshpropertiesDlg::newHeaderLine()
{
    file_.setHeaderLine(headerLine_->value());
    const QSignalBlocker quiet(firstDataLine_);
    firstDataLine_->setValue(file_.desc().firstDataLine);
    showLabels();
}

void spreadshpropertiesDlg::newColSepChar()
{
    file_.setSeparator(separator_->currentIndex());
    showLabels();
}

void spreadshpropertiesDlg::processOK()
{
    static_cast<void>(file_.setMissingValue(missing_->text()));
    accept();
}

} // namespace dialogs
