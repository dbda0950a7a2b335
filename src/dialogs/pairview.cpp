#include "dialogs/pairview.h"

#include <utility>

#include <QGridLayout>

#include "dialogs/formparts.h"

namespace dialogs {
namespace {

constexpr int lettersShown = 32, linesShown = 14;

} // namespace

RPairView::RPairView(const QString& sourceTitle, const QString& targetTitle, QWidget* parent)
    : QWidget(parent), sources_(makeLineList("sources", lettersShown, this)),
      targets_(makeLineList("targets", lettersShown, this)), buttons_(new QVBoxLayout),
      hint_(makeTextLabel("hint", this))
{
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(makeCaption(sourceTitle, sources_), 0, 0);
    grid->addWidget(makeCaption(targetTitle, targets_), 0, 2);
    grid->addWidget(sources_, 1, 0);
    grid->addLayout(buttons_, 1, 1);
    grid->addWidget(targets_, 1, 2);
    grid->addWidget(hint_, 2, 0, 1, 3);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(1, 1);
    buttons_->addStretch();
    buttons_->addStretch();
    for (QListWidget* const list : {sources_, targets_})
        list->setMinimumHeight(list->fontMetrics().lineSpacing() * linesShown);
    hint_->setMinimumHeight(hint_->fontMetrics().lineSpacing()); // so that nothing jumps
    setTabOrder(sources_, targets_);
    connectLists();
}

// A click on the line that is selected already counts as well: it makes the line the one that buttons are
// about.
void RPairView::connectLists()
{
    const auto tellSource = [this] {
        if (!filling_) Q_EMIT sourceSelected();
    };
    const auto tellTarget = [this] {
        if (!filling_) Q_EMIT targetSelected();
    };
    connect(sources_, &QListWidget::itemSelectionChanged, this, tellSource);
    connect(sources_, &QListWidget::itemClicked, this, tellSource);
    connect(targets_, &QListWidget::itemSelectionChanged, this, tellTarget);
    connect(targets_, &QListWidget::itemClicked, this, tellTarget);
    connect(targets_, &QListWidget::itemDoubleClicked, this, &RPairView::targetActivated);
}

QPushButton* RPairView::addButton(const char* name, const char* caption)
{
    QPushButton* const button = makePushButton(name, caption, this);
    buttons_->insertWidget(buttons_->count() - 1, button);
    return button;
}

void RPairView::setHint(const QString& hint)
{
    hint_->setText(hint);
}

void RPairView::show(const RPairedLists& pairs, const QStringList& sourceLines,
                     const QStringList& targetLines)
{
    filling_ = true;
    showLines(*sources_, sourceLines);
    showLines(*targets_, targetLines);
    select(pairs);
    bringIntoSight(*sources_);
    bringIntoSight(*targets_);
    filling_ = false;
}

void RPairView::select(const RPairedLists& pairs)
{
    const bool wasFilling = std::exchange(filling_, true);
    selectRow(*sources_, pairs.source());
    selectRow(*targets_, pairs.target());
    filling_ = wasFilling;
}

} // namespace dialogs
