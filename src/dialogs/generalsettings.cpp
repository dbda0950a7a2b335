#include "dialogs/generalsettings.h"

#include <algorithm>

#include <QFormLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "common/limits.h"
#include "dialogs/boxes.h"
#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"

namespace dialogs {
namespace {

constexpr int numberLetters = 8;

QLineEdit* makeNumberField(const char* name, float value, QWidget* parent)
{
    return makeLineField(name, numberText(static_cast<double>(value)), numberLetters, parent);
}

// A field that shows what is in force changes nothing, not even by rounding.
bool takeNumber(const QLineEdit& field, float& value)
{
    if (field.text() == numberText(static_cast<double>(value))) return true;
    const std::optional<float> number = numberOf(field.text());
    if (!number || *number < 0) return false;
    value = *number;
    return true;
}

void takeNumber(const QSpinBox& box, int& value)
{
    if (box.value() != std::clamp(value, box.minimum(), box.maximum())) value = box.value();
}

} // namespace

generalsettingsDlg::generalsettingsDlg(const variables::COVERAGECRITERIA& coverage, QWidget* parent)
    : QDialog(parent), coverage_(coverage), levels_(makeSpinBox("minLevels", 0, common::maxLevels, this)),
      fraction_(makeSpinBox("minFraction", 0, 100, this)),
      gapOffset_(makeNumberField("gapOffset", coverage.gapOffset, this)),
      gapSlope_(makeNumberField("gapSlope", coverage.gapSlope, this)),
      gapLimit_(makeNumberField("gapLimit", coverage.gapLimit, this))
{
    setObjectName(QStringLiteral("generalsettings"));
    setWindowTitle(QStringLiteral("General Settings"));
    levels_->setValue(coverage.minLevels);
    fraction_->setValue(coverage.minFractionPercent);
    QDialogButtonBox* const buttons = makeDialogButtons(false, this);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(makeCoverageGroup());
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &generalsettingsDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &generalsettingsDlg::reject);
}

QWidget* generalsettingsDlg::makeCoverageGroup()
{
    auto* const group = new QGroupBox(QStringLiteral("Good Coverage Criteria"), this);
    auto* const form = new QFormLayout(group);
    form->addRow(
        new QLabel(QStringLiteral("Calculation of dyn. height, geostr. vel. and the vert. integral\n"
                                  "requires 'sufficient' input data. Specify good coverage criteria."),
                   group));
    fraction_->setSuffix(QStringLiteral(" %"));
    form->addRow(QStringLiteral("# Levels >"), levels_);
    form->addRow(QStringLiteral("Fraction >"), fraction_);
    form->addRow(makeGapLine());
    return group;
}

QLayout* generalsettingsDlg::makeGapLine()
{
    auto* const line = new QHBoxLayout;
    line->addWidget(new QLabel(QStringLiteral("delta-Z (Z) < min ("), this));
    line->addWidget(gapOffset_);
    line->addWidget(new QLabel(QStringLiteral("+"), this));
    line->addWidget(gapSlope_);
    line->addWidget(new QLabel(QStringLiteral("* Z ,"), this));
    line->addWidget(gapLimit_);
    line->addWidget(new QLabel(QStringLiteral(")"), this));
    return line;
}

void generalsettingsDlg::processOK()
{
    variables::COVERAGECRITERIA taken = coverage_;
    takeNumber(*levels_, taken.minLevels);
    takeNumber(*fraction_, taken.minFractionPercent);
    if (!takeNumber(*gapOffset_, taken.gapOffset) || !takeNumber(*gapSlope_, taken.gapSlope) ||
        !takeNumber(*gapLimit_, taken.gapLimit)) {
        tell(this, windowTitle(), QStringLiteral("The limits of gaps must be numbers that aren't negative."));
        return;
    }
    coverage_ = taken;
    accept();
}

} // namespace dialogs
