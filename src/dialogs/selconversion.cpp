#include "dialogs/selconversion.h"

#include <algorithm>

#include <QVBoxLayout>

#include "dialogs/formparts.h"

namespace dialogs {

selconversionDlg::selconversionDlg(const QString& source, const QString& target, const QStringList& rows,
                                   int preselected, QWidget* parent)
    : QDialog(parent), rows_(makeLineList("rows", 58, this))
{
    constexpr int linesShown = 24;
    setObjectName(QStringLiteral("selconversion"));
    setWindowTitle(QStringLiteral("Conversion %1 -> %2").arg(inTitle(source), inTitle(target)));
    showLines(*rows_, rows);
    setVisibleLines(*rows_, std::min(linesShown, rows_->count()));
    selectRow(*rows_, preselected);
    auto* const column = new QVBoxLayout(this);
    QDialogButtonBox* const buttons = makeDialogButtons(false, this);
    column->addWidget(makeCaption(QStringLiteral("Con&versions:"), rows_));
    column->addWidget(rows_);
    column->addWidget(buttons);
    connect(rows_, &QListWidget::itemDoubleClicked, this, &selconversionDlg::processOK);
    connect(buttons, &QDialogButtonBox::accepted, this, &selconversionDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &selconversionDlg::reject);
    rows_->setFocus();
}

void selconversionDlg::processOK()
{
    if (selectedRow(*rows_) >= 0) accept();
}

} // namespace dialogs
