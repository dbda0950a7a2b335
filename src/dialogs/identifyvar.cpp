#include "dialogs/identifyvar.h"

#include <QVBoxLayout>

#include "dialogs/editedvariables.h"
#include "dialogs/formparts.h"

namespace dialogs {

int firstLike(std::span<const collection::VARINFO> variables, const QString& searched)
{
    for (std::size_t v = 1; v < variables.size(); ++v) {
        if (plainOf(variables[v]).toLower().contains(searched.toLower())) return static_cast<int>(v);
    }
    return 0;
}

identifyvarDlg::identifyvarDlg(const QString& task, const QString& meaning,
                               std::span<const collection::VARINFO> all, QWidget* parent,
                               std::optional<int> preselected)
    : QDialog(parent), rows_(all), variables_(makeLineList("variables", 44, this))
{
    constexpr int linesShown = 12;
    setObjectName(QStringLiteral("identifyvar"));
    setWindowTitle(QStringLiteral("%1 - Identify %2").arg(inTitle(task), inTitle(meaning)));
    showLines(*variables_, rows_.lines());
    variables_->setMinimumHeight(variables_->fontMetrics().lineSpacing() * linesShown);
    QLabel* const caption = makeCaption(
        QStringLiteral("&Which variable is %1?").arg(oneLine(meaning).replace(u'&', QStringLiteral("&&"))),
        variables_);
    caption->setTextFormat(Qt::PlainText);
    QDialogButtonBox* const buttons = makeDialogButtons(false, this);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(caption);
    column->addWidget(variables_);
    column->addWidget(buttons);
    connect(variables_, &QListWidget::itemSelectionChanged, this, &identifyvarDlg::showOK);
    whenActivated(*variables_, [this] { processOK(); });
    connect(buttons, &QDialogButtonBox::accepted, this, &identifyvarDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &identifyvarDlg::reject);
    variables_->setFocus();
    selectRow(*variables_, rows_.rowOf(preselected ? *preselected : firstLike(all, meaning)));
    showOK();
}

void identifyvarDlg::showOK()
{
    ok_->setEnabled(selectedRow(*variables_) >= 0);
}

void identifyvarDlg::processOK()
{
    if (selectedRow(*variables_) >= 0) accept();
}

} // namespace dialogs
