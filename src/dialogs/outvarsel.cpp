#include "dialogs/outvarsel.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "dialogs/formparts.h"
#include "dialogs/linedelegate.h"

namespace dialogs {
namespace {

// A click anywhere in a line ticks it, or takes its tick away.
class RTickDelegate : public RLineDelegate {
public:
    using RLineDelegate::RLineDelegate;

    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& line) override
    {
        if (event->type() == QEvent::KeyPress) return RLineDelegate::editorEvent(event, model, option, line);
        if (event->type() == QEvent::MouseButtonDblClick) return true; // its release ticks
        if (event->type() != QEvent::MouseButtonRelease) return false;
        if (static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton) return false;
        const bool ticked = line.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return model->setData(line, ticked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    }
};

bool isTicked(const QListWidgetItem& item)
{
    return item.checkState() == Qt::Checked;
}

void tick(QListWidgetItem& item, bool on)
{
    item.setCheckState(on ? Qt::Checked : Qt::Unchecked);
}

} // namespace

outvarselDlg::outvarselDlg(std::span<const collection::VARINFO> variables, const std::vector<int>& chosen,
                           QWidget* parent)
    : QDialog(parent), rows_(variables), variables_(makeLineList("variables", 44, this)),
      count_(makeTextLabel("count", this))
{
    constexpr int linesShown = 16;
    setObjectName(QStringLiteral("outvarsel"));
    setWindowTitle(QStringLiteral("Select Variables for Output"));
    showLines(*variables_, rows_.lines());
    variables_->setItemDelegate(new RTickDelegate(variables_));
    variables_->setMinimumHeight(variables_->fontMetrics().lineSpacing() * linesShown);
    for (int row = 0; row < variables_->count(); ++row)
        tick(*variables_->item(row),
             std::find(chosen.begin(), chosen.end(), rows_.numberOf(row)) != chosen.end());
    auto* const left = new QVBoxLayout;
    left->addWidget(makeCaption(QStringLiteral("&Variables:"), variables_));
    left->addWidget(variables_);
    left->addWidget(count_);
    auto* const columns = new QHBoxLayout(this);
    columns->addLayout(left, 1);
    columns->addWidget(makeButtonColumn());
    connect(variables_, &QListWidget::itemChanged, this, &outvarselDlg::showCount);
    variables_->setCurrentRow(0);
    variables_->setFocus();
    showCount();
}

QWidget* outvarselDlg::makeButtonColumn()
{
    auto* const column = new QWidget(this);
    auto* const rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name, const char* caption, auto slot) {
        QPushButton* const button = makePushButton(name, caption, column);
        connect(button, &QPushButton::clicked, this, slot);
        rows->addWidget(button);
        return button;
    };
    ok_ = add("ok", "&OK", &outvarselDlg::processOK);
    add("cancel", "&Cancel", &outvarselDlg::reject);
    rows->addSpacing(12);
    add("all", "Select &All", &outvarselDlg::processAll);
    add("invert", "&Invert Selection", &outvarselDlg::processInvert);
    rows->addStretch();
    ok_->setDefault(true);
    return column;
}

std::vector<int> outvarselDlg::chosen() const
{
    std::vector<int> numbers;
    for (int row = 0; row < variables_->count(); ++row) {
        if (isTicked(*variables_->item(row))) numbers.push_back(rows_.numberOf(row));
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

void outvarselDlg::processAll()
{
    for (int row = 0; row < variables_->count(); ++row) tick(*variables_->item(row), true);
}

void outvarselDlg::processInvert()
{
    for (int row = 0; row < variables_->count(); ++row) {
        QListWidgetItem& item = *variables_->item(row);
        tick(item, !isTicked(item));
    }
}

void outvarselDlg::processOK()
{
    if (!chosen().empty()) accept();
}

// An export of nothing would be one of everything.
void outvarselDlg::showCount()
{
    const auto count = static_cast<int>(chosen().size());
    count_->setText(QStringLiteral("%1 of %2 selected").arg(count).arg(variables_->count()));
    ok_->setEnabled(count > 0);
}

} // namespace dialogs
