#include "dialogs/quickinstall.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace dialogs {
namespace {

constexpr const char* homeHelp =
    "Base directory of NVQ run-time environment, e.g., the directory that contains\n"
    "the bin_... directory. (hint: use \"/cdrom/nvqmp\" if, for instance,\n"
    "the nvqmp executable is in \"/cdrom/nvqmp/bin_linux-i386\")";
constexpr const char* tempHelp =
    "NVQ uses this directory for temporary storage. Leave blank to use the system\n"
    "default tmp directory. Otherwise choose a directory on a local disk and\n"
    "make sure you have write permission for it.";
constexpr const char* hostHelp = "Name of this computer, for the log of your collections.";
constexpr const char* userHelp = "Your name, for the log of your collections.";

constexpr int fieldLetters = 60; // a field shows a path of this many letters

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QLineEdit* makeField(const char* name, const std::string& value, QWidget* parent)
{
    auto* const field = new QLineEdit(QString::fromStdString(value), parent);
    field->setObjectName(text(name));
    field->setMinimumWidth(field->fontMetrics().averageCharWidth() * fieldLetters);
    return field;
}

QPushButton* makeBrowser(const char* name, QWidget* parent)
{
    auto* const button = new QPushButton(QStringLiteral("Browse ..."), parent);
    button->setObjectName(text(name));
    button->setAutoDefault(false);
    return button;
}

// Three rows: the caption, the field with its button, the help text.
void addRows(QGridLayout* grid, const char* caption, QLineEdit* field, QPushButton* button, const char* help)
{
    auto* const title = new QLabel(text(caption), field->parentWidget());
    title->setBuddy(field);
    auto* const below = new QLabel(text(help), field->parentWidget());
    below->setObjectName(field->objectName() + QStringLiteral("Help"));
    below->setTextFormat(Qt::PlainText);
    below->setIndent(12);
    const int row = grid->rowCount();
    grid->addWidget(title, row, 0, 1, 2);
    grid->addWidget(field, row + 1, 0, 1, button ? 1 : 2);
    if (button) grid->addWidget(button, row + 1, 1);
    grid->addWidget(below, row + 2, 0, 1, 2);
    grid->setRowMinimumHeight(row + 3, 10);
}

std::string valueOf(const QLineEdit* field)
{
    return field->text().trimmed().toStdString();
}

} // namespace

quickinstallDlg::quickinstallDlg(const QUICKSETUP& proposal, const std::string& systemTemp, QWidget* parent)
    : QDialog(parent), home_(makeField("home", proposal.home, this)),
      temp_(makeField("temp", proposal.temp, this)), host_(makeField("host", proposal.host, this)),
      user_(makeField("user", proposal.user, this))
{
    setObjectName(QStringLiteral("quickinstall"));
    setWindowTitle(QStringLiteral("NVQ Quick Installation"));
    temp_->setPlaceholderText(QString::fromStdString(systemTemp));
    QPushButton* const homeButton = makeBrowser("browseHome", this);
    QPushButton* const tempButton = makeBrowser("browseTemp", this);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* const grid = new QGridLayout(this);
    addRows(grid, "&Installation Directory", home_, homeButton, homeHelp);
    addRows(grid, "&Temp Directory", temp_, tempButton, tempHelp);
    addRows(grid, "Computer &Name", host_, nullptr, hostHelp);
    addRows(grid, "&User Name", user_, nullptr, userHelp);
    grid->addWidget(buttons, grid->rowCount(), 0, 1, 2);
    QWidget* last = home_;
    for (QWidget* const next :
         std::initializer_list<QWidget*>{homeButton, temp_, tempButton, host_, user_, buttons}) {
        setTabOrder(last, next);
        last = next;
    }
    connect(homeButton, &QPushButton::clicked, this, &quickinstallDlg::browseHome);
    connect(tempButton, &QPushButton::clicked, this, &quickinstallDlg::browseTemp);
    connect(buttons, &QDialogButtonBox::accepted, this, &quickinstallDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &quickinstallDlg::processCancel);
    home_->setFocus();
}

QUICKSETUP quickinstallDlg::setup() const
{
    return {valueOf(home_), valueOf(temp_), valueOf(host_), valueOf(user_)};
}

void quickinstallDlg::browseHome()
{
    browse(home_, QStringLiteral("Installation Directory"));
}

void quickinstallDlg::browseTemp()
{
    browse(temp_, QStringLiteral("Temp Directory"));
}

void quickinstallDlg::browse(QLineEdit* field, const QString& caption)
{
    const QString start = field->text().trimmed();
    QFileDialog dialog(this, caption, start.isEmpty() ? field->placeholderText() : start);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (dialog.exec() == QDialog::Accepted) field->setText(dialog.selectedFiles().value(0));
}

} // namespace dialogs
