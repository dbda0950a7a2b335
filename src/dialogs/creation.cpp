#include "dialogs/creation.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "collection/variablesets.h"

namespace dialogs {
namespace {

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// High enough for all entries.
QListWidget* makeEntries(QWidget* parent)
{
    auto* const list = new QListWidget(parent);
    list->setObjectName(QStringLiteral("entries"));
    for (const collection::VARIABLESETROW& row : collection::variableSets) list->addItem(fromUtf8(row.entry));
    list->setCurrentRow(0);
    const int rows = list->sizeHintForRow(0) * list->count();
    list->setMinimumSize(list->sizeHintForColumn(0) + 4 * list->frameWidth() + 16,
                         rows + 2 * list->frameWidth());
    return list;
}

// A name may be as long as a file's.
QString shortened(const QString& name, const QFontMetrics& letters)
{
    constexpr int mostLetters = 60;
    return letters.elidedText(name, Qt::ElideMiddle, mostLetters * letters.averageCharWidth());
}

QLabel* makeLabel(const QString& text, const char* name, QWidget* parent)
{
    auto* const label = new QLabel(text, parent);
    label->setObjectName(QLatin1StringView(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

creationDlg::creationDlg(const QString& collectionName, QWidget* parent)
    : QDialog(parent), entries_(makeEntries(this))
{
    setObjectName(QStringLiteral("creation"));
    setWindowTitle(QStringLiteral("Create Collection ..."));
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(makeLabel(QStringLiteral("New collection: ") + shortened(collectionName, fontMetrics()),
                                "collectionName", this));
    QLabel* const caption = makeLabel(QStringLiteral("&Variables of the collection:"), "caption", this);
    caption->setBuddy(entries_);
    column->addWidget(caption);
    column->addWidget(entries_);
    column->addWidget(buttons);
    connect(entries_, &QListWidget::itemDoubleClicked, this, &creationDlg::processOK);
    connect(buttons, &QDialogButtonBox::accepted, this, &creationDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &creationDlg::processCancel);
    entries_->setFocus();
}

int creationDlg::variableSet() const
{
    return collection::variableSets.at(static_cast<std::size_t>(entries_->currentRow())).number;
}

} // namespace dialogs
