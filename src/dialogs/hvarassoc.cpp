#include "dialogs/hvarassoc.h"

#include <QVBoxLayout>

#include "dialogs/boxes.h"
#include "dialogs/deflinconversion.h"
#include "dialogs/formparts.h"
#include "dialogs/lineinput.h"
#include "dialogs/selconversion.h"
#include "variables/timeconversions.h"

namespace dialogs {
namespace {

QStringList conversionLines()
{
    QStringList lines;
    for (const variables::HEADERROW& row : variables::headerRows)
        lines += fromUtf8(variables::headerRowLabel(row));
    return lines;
}

} // namespace

hvarassocDlg::hvarassocDlg(const importing::SPREADSHEETDESC& desc, std::span<const std::string> labels,
                           QWidget* parent)
    : QDialog(parent), header_(desc, labels),
      view_(new RPairView(QStringLiteral("&Source Variables"), QStringLiteral("&Target Variables"), this))
{
    setObjectName(QStringLiteral("hvarassoc"));
    setWindowTitle(QStringLiteral("Header Variable Association"));
    QDialogButtonBox* const buttons = makeDialogButtons(true, this);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(view_, 1);
    column->addWidget(buttons);
    makeButtons();
    connect(buttons, &QDialogButtonBox::accepted, this, &hvarassocDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &hvarassocDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &hvarassocDlg::processHelp);
    connect(view_, &RPairView::sourceSelected, this, &hvarassocDlg::lbSource);
    connect(view_, &RPairView::targetSelected, this, &hvarassocDlg::lbTarget);
    showPairs();
    view_->sources().setFocus();
}

void hvarassocDlg::makeButtons()
{
    associate_ = view_->addButton("PB_Associate", "&Associate");
    convert_ = view_->addButton("PB_Convert", "&Convert");
    default_ = view_->addButton("PB_Default", "Set &Default");
    undo_ = view_->addButton("PB_Undo", "&Undo");
    connect(associate_, &QPushButton::clicked, this, &hvarassocDlg::processAssociate);
    connect(convert_, &QPushButton::clicked, this, &hvarassocDlg::processConvert);
    connect(default_, &QPushButton::clicked, this, &hvarassocDlg::processDefault);
    connect(undo_, &QPushButton::clicked, this, &hvarassocDlg::processUndo);
}

void hvarassocDlg::lbSource()
{
    header_.selectSource(selectedRow(view_->sources()));
    showSelection();
}

void hvarassocDlg::lbTarget()
{
    header_.selectTarget(selectedRow(view_->targets()));
    showSelection();
}

void hvarassocDlg::showPairs()
{
    view_->show(header_.pairs(), header_.sourceLines(), header_.targetLines());
    showSelection();
}

void hvarassocDlg::showSelection()
{
    view_->select(header_.pairs());
    view_->setHint(oneLine(header_.linkText()));
    associate_->setEnabled(header_.pairs().mayJoin());
    convert_->setEnabled(header_.mayConvert());
    default_->setEnabled(header_.mayUseDefault());
    undo_->setEnabled(header_.pairs().mayUndo());
}

void hvarassocDlg::processAssociate()
{
    if (!header_.pairs().mayJoin()) return;
    header_.associate();
    showPairs();
}

// The day from which a column counts, where its label doesn't tell it.
void hvarassocDlg::convertFromOrigin(const QString& caption, int id)
{
    const auto origin = askLine(this, caption, QStringLiteral("Counted since (yyyy-mm-dd hh:mm:ss):"),
                                QStringLiteral("1950-01-01 00:00:00"));
    if (origin && !header_.convertFrom(id, *origin))
        tell(this, caption, QStringLiteral("This is no date: ") + oneLine(*origin));
}

void hvarassocDlg::processConvert()
{
    if (!header_.mayConvert()) return;
    const QString source = header_.sourceName(header_.pairs().source());
    const QString target = header_.targetName(header_.pairs().target());
    const QString caption = QStringLiteral("Conversion %1 -> %2").arg(inTitle(source), inTitle(target));
    int id = header_.namedRow();
    if (id < 0) {
        selconversionDlg dialog(source, target, conversionLines(), 0, this);
        if (dialog.exec() != QDialog::Accepted) return;
        id = variables::headerRows[static_cast<std::size_t>(dialog.row())].id;
    }
    if (!header_.isRowPossible(id))
        return tell(this, caption, QStringLiteral("This conversion gives no value for %1.").arg(target));
    if (id == variables::linearRow) {
        deflinconversionDlg numbers(caption, this);
        if (numbers.exec() != QDialog::Accepted) return;
        header_.convert(id, numbers.a(), numbers.b());
    } else if (header_.needsOrigin(id)) {
        convertFromOrigin(caption, id);
    } else {
        header_.convert(id);
    }
    showPairs();
}

void hvarassocDlg::processDefault()
{
    if (!header_.mayUseDefault()) return;
    const int meta = header_.pairs().target();
    const QString caption = QStringLiteral("Default Value %1").arg(header_.targetName(meta));
    const auto line = askLine(this, caption, REditedHeader::defaultPrompt(meta), header_.defaultText(meta));
    if (!line) return;
    if (!header_.setDefault(meta, *line))
        return tell(
            this, caption,
            QStringLiteral("This is no value for %1: %2").arg(header_.targetName(meta), oneLine(*line)));
    showPairs();
}

void hvarassocDlg::processUndo()
{
    header_.undo();
    showPairs();
}

} // namespace dialogs
