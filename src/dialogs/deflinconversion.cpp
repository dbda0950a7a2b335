#include "dialogs/deflinconversion.h"

#include <QFormLayout>

#include "common/limits.h"
#include "dialogs/boxes.h"
#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"

namespace dialogs {
namespace {

constexpr int letters = 44; // so that the title has room as well

} // namespace
deflinconversionDlg::deflinconversionDlg(const QString& caption, QWidget* parent)
    : QDialog(parent), fieldA_(makeLineField("a", QStringLiteral("1.0"), letters, this)),
      fieldB_(makeLineField("b", QStringLiteral("0.0"), letters, this))
{
    setObjectName(QStringLiteral("deflinconversion"));
    setWindowTitle(caption);
    QLabel* const formula = makeTextLabel("formula", this);
    formula->setWordWrap(false);
    formula->setText(QStringLiteral("New value = a x + b, where x is the value in the file"));
    QDialogButtonBox* const buttons = makeDialogButtons(false, this);
    auto* const form = new QFormLayout(this);
    form->addRow(formula);
    form->addRow(QStringLiteral("&a:"), fieldA_);
    form->addRow(QStringLiteral("&b:"), fieldB_);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &deflinconversionDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &deflinconversionDlg::reject);
    fieldA_->setFocus();
    fieldA_->selectAll();
}

bool deflinconversionDlg::take(QLineEdit* field, const char* name, float& number)
{
    const std::optional<float> entered = numberOf(field->text());
    if (entered && *entered != common::MISSING_VALUE) { // which marks conversions of another kind
        number = *entered;
        return true;
    }
    tell(this, windowTitle(),
         QStringLiteral("%1 is no number: %2").arg(QLatin1StringView(name), oneLine(field->text())));
    field->setFocus();
    field->selectAll();
    return false;
}

void deflinconversionDlg::processOK()
{
    if (take(fieldA_, "a", numberA_) && take(fieldB_, "b", numberB_)) accept();
}

} // namespace dialogs
