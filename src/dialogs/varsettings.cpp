#include "dialogs/varsettings.h"

#include <algorithm>

#include <QFormLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "collection/varformat.h"
#include "dialogs/editedpositions.h"
#include "dialogs/editedvariables.h"
#include "dialogs/formparts.h"

namespace dialogs {
namespace {

constexpr int linesShown = 16, labelBytes = 60;

} // namespace

QString rangeText(const collection::VARINFO& variable)
{
    if (!(variable.rangeMin <= variable.rangeMax)) return QStringLiteral("no values seen yet");
    const int decimals = std::clamp(variable.decimals, 0, collection::mostDecimals);
    return QStringLiteral("%1 - %2").arg(
        QString::number(static_cast<double>(variable.rangeMin), 'f', decimals),
        QString::number(static_cast<double>(variable.rangeMax), 'f', decimals));
}

varsettingsDlg::varsettingsDlg(std::span<const collection::VARINFO> variables, QWidget* parent)
    : QDialog(parent), variables_(variables.begin(), variables.end()),
      list_(makeLineList("variables", 40, this)), label_(makeLineField("label", {}, 40, this)),
      width_(makeSpinBox("width", collection::leastExtraWidth,
                         collection::mostDecimals + collection::mostExtraWidth, this)),
      decimals_(makeSpinBox("decimals", 0, collection::mostDecimals, this)),
      position_(makeSpinBox("position", 1, std::max(1, static_cast<int>(variables.size()) - 1), this)),
      range_(makeTextLabel("range", this))
{
    setObjectName(QStringLiteral("varsettings"));
    setWindowTitle(QStringLiteral("Variables Settings"));
    settlePositions(variables_);
    label_->setMaxLength(labelBytes);
    setVisibleLines(*list_, linesShown);
    QDialogButtonBox* const buttons = makeDialogButtons(false, this);
    auto* const row = new QHBoxLayout;
    row->addWidget(list_);
    row->addLayout(makeFields());
    auto* const column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &varsettingsDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &varsettingsDlg::reject);
    connectParts();
    list_->setFocus();
    showVariables(variables_.size() > 1 ? numbersByPosition(variables_).front() : 0);
}

QLayout* varsettingsDlg::makeFields()
{
    auto* const form = new QFormLayout;
    form->addRow(QStringLiteral("&Label:"), label_);
    form->addRow(QStringLiteral("&Width:"), width_);
    form->addRow(QStringLiteral("&Decimals:"), decimals_);
    form->addRow(QStringLiteral("&Position:"), position_);
    form->addRow(QStringLiteral("Data Range:"), range_);
    return form;
}

void varsettingsDlg::connectParts()
{
    connect(list_, &QListWidget::itemSelectionChanged, this, &varsettingsDlg::showFields);
    connect(label_, &QLineEdit::editingFinished, this, &varsettingsDlg::takeLabel);
    connect(width_, &QSpinBox::valueChanged, this, &varsettingsDlg::takeFormat);
    connect(decimals_, &QSpinBox::valueChanged, this, &varsettingsDlg::takeFormat);
    connect(position_, &QSpinBox::valueChanged, this, &varsettingsDlg::takePosition);
}

void varsettingsDlg::showVariables(int number)
{
    numbers_ = numbersByPosition(variables_);
    QStringList lines;
    for (const int v : numbers_) lines += plainOf(variables_[static_cast<std::size_t>(v)]);
    {
        const QSignalBlocker quiet(list_);
        showLines(*list_, lines);
        const auto line = std::find(numbers_.begin(), numbers_.end(), number);
        selectRow(*list_, line == numbers_.end() ? -1 : static_cast<int>(line - numbers_.begin()));
    }
    showFields();
}

// A value of a file that a field can't show is shown as its limit, and stays as it is until it is edited.
void varsettingsDlg::showFields()
{
    const int number = selectedNumber();
    for (QWidget* const field : std::initializer_list<QWidget*>{label_, width_, decimals_, position_})
        field->setEnabled(number > 0);
    if (number == 0) return;
    const QSignalBlocker quietWidth(width_), quietDecimals(decimals_), quietPosition(position_);
    const collection::VARINFO& variable = variables_[static_cast<std::size_t>(number)];
    label_->setText(labelOf(variable));
    width_->setValue(variable.width);
    decimals_->setValue(variable.decimals);
    position_->setValue(variable.position);
    range_->setText(rangeText(variable));
}

// A variable without a label would have no name: the old one stays then.
void varsettingsDlg::takeLabel()
{
    const int number = selectedNumber();
    if (number == 0) return;
    collection::VARINFO& variable = variables_[static_cast<std::size_t>(number)];
    if (label_->text() == labelOf(variable)) return;
    if (!label_->text().trimmed().isEmpty()) renameVariable(variable, label_->text());
    showVariables(number);
}

// Width and decimals depend on each other: what is shown is what was taken.
void varsettingsDlg::takeFormat()
{
    const int number = selectedNumber();
    if (number == 0) return;
    collection::VARINFO& variable = variables_[static_cast<std::size_t>(number)];
    int width = width_->value(), decimals = decimals_->value();
    collection::clampFormat(width, decimals);
    variable.width = width;
    variable.decimals = decimals;
    const QSignalBlocker quietWidth(width_), quietDecimals(decimals_);
    width_->setValue(width);
    decimals_->setValue(decimals);
    range_->setText(rangeText(variable));
}

void varsettingsDlg::takePosition()
{
    const int number = selectedNumber();
    if (number == 0) return;
    moveToPosition(variables_, number, position_->value());
    showVariables(number);
}

void varsettingsDlg::processOK()
{
    takeLabel();
    accept();
}

int varsettingsDlg::selectedNumber() const
{
    const int row = selectedRow(*list_);
    return row < 0 || static_cast<std::size_t>(row) >= numbers_.size()
               ? 0
               : numbers_[static_cast<std::size_t>(row)];
}

} // namespace dialogs
