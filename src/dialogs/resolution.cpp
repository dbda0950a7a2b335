#include "dialogs/resolution.h"

#include <QDialogButtonBox>
#include <QFormLayout>

namespace dialogs {

resolutionDlg::resolutionDlg(int proposed, QWidget* parent) : QDialog(parent), field_(new QSpinBox(this))
{
    setObjectName(QStringLiteral("resolution"));
    setWindowTitle(QStringLiteral("Save Screen to File ..."));
    field_->setRange(1, highestResolution);
    field_->setValue(proposed);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* const form = new QFormLayout(this);
    form->addRow(QStringLiteral("Resolution [dpi]:"), field_);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &resolutionDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &resolutionDlg::reject);
}

} // namespace dialogs
