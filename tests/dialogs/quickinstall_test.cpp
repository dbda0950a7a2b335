#include "dialogs/quickinstall.h"

#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "nextdialog.h"
#include "temporarydirectory.h"

namespace {

using dialogs::quickinstallDlg;
using dialogs::QUICKSETUP;

class QuickInstall : public testing::Test {
protected:
    QuickInstall()
    {
        dialog.show();
        dialog.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
    }
    QLineEdit& field(const char* name) { return *dialog.findChild<QLineEdit*>(QLatin1StringView(name)); }
    std::string help(const char* name)
    {
        return dialog.findChild<QLabel*>(QLatin1StringView(name))->text().toStdString();
    }

    quickinstallDlg dialog{{"/opt/nvq/", "", "box", "ann"}, "/var/tmp/"};
};

TEST_F(QuickInstall, ShowsTheProposal)
{
    EXPECT_EQ(dialog.windowTitle().toStdString(), "NVQ Quick Installation");
    EXPECT_EQ(field("home").text().toStdString(), "/opt/nvq/");
    EXPECT_EQ(field("temp").text().toStdString(), "");
    EXPECT_EQ(field("temp").placeholderText().toStdString(), "/var/tmp/");
    EXPECT_EQ(field("host").text().toStdString(), "box");
    EXPECT_EQ(field("user").text().toStdString(), "ann");
}

TEST_F(QuickInstall, HelpStandsBelowEachField)
{
    EXPECT_EQ(help("homeHelp"),
              "Base directory of NVQ run-time environment, e.g., the directory that contains\n"
              "the bin_... directory. (hint: use \"/cdrom/nvqmp\" if, for instance,\n"
              "the nvqmp executable is in \"/cdrom/nvqmp/bin_linux-i386\")");
    EXPECT_EQ(help("tempHelp"),
              "NVQ uses this directory for temporary storage. Leave blank to use the system\n"
              "default tmp directory. Otherwise choose a directory on a local disk and\n"
              "make sure you have write permission for it.");
    for (const char* const name : {"home", "temp", "host", "user"}) {
        const auto* const label =
            dialog.findChild<QLabel*>(QLatin1StringView(name) + QLatin1StringView("Help"));
        EXPECT_FALSE(label->text().isEmpty()) << name;
        EXPECT_GE(label->y(), field(name).geometry().bottom()) << name;
    }
}

TEST_F(QuickInstall, FieldsAreReachedInTheirOrder)
{
    EXPECT_TRUE(field("home").hasFocus());
    std::vector<std::string> order;
    for (int i = 0; i < 6; ++i) {
        order.push_back(QApplication::focusWidget()->objectName().toStdString());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const std::vector<std::string> expected = {"home", "browseHome", "temp", "browseTemp", "host", "user"};
    EXPECT_EQ(order, expected);
}

TEST_F(QuickInstall, EnterGivesWhatWasTyped)
{
    field("home").selectAll();
    QTest::keyClicks(&field("home"), QStringLiteral("  /usr/nvq "));
    QTest::keyClick(&field("home"), Qt::Key_Tab);
    QTest::keyClicks(&field("temp"), QStringLiteral("/scratch"));
    QTest::keyClick(&field("temp"), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    const QUICKSETUP setup = dialog.setup();
    EXPECT_EQ(setup.home, "/usr/nvq");
    EXPECT_EQ(setup.temp, "/scratch");
    EXPECT_EQ(setup.host, "box");
    EXPECT_EQ(setup.user, "ann");
}

TEST_F(QuickInstall, EmptyTempStaysEmpty)
{
    dialog.processOK();
    EXPECT_EQ(dialog.setup().temp, "");
}

TEST_F(QuickInstall, EscapeCancels)
{
    QTest::keyClick(&field("user"), Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

TEST_F(QuickInstall, BrowsingFillsTheField)
{
    const testing_support::RTemporaryDirectory folder;
    for (const char* const name : {"home", "temp"}) {
        testing_support::withNext<QFileDialog>([&folder](QFileDialog& browser) {
            EXPECT_EQ(browser.fileMode(), QFileDialog::Directory);
            testing_support::enterFile(browser, QString::fromStdString(folder.path()));
        });
        const QString button = QLatin1StringView(name) == QLatin1StringView("home")
                                   ? QStringLiteral("browseHome")
                                   : QStringLiteral("browseTemp");
        dialog.findChild<QPushButton*>(button)->click();
        EXPECT_EQ(QDir(field(name).text()), QDir(QString::fromStdString(folder.path())));
    }
}

TEST_F(QuickInstall, CancelledBrowsingChangesNothing)
{
    testing_support::withNext<QFileDialog>([](QFileDialog& browser) { browser.reject(); });
    dialog.browseHome();
    EXPECT_EQ(field("home").text().toStdString(), "/opt/nvq/");
}

} // namespace
