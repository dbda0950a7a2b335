// The first start of the program: what it asks, and what it keeps.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/files.h"
#include "dialogs/quickinstall.h"
#include "nextdialog.h"
#include "windowfixture.h"

namespace {

using dialogs::quickinstallDlg;
using testing::HasSubstr;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::withNext;
using testing_support::writeText;

class FirstStart : public testing_support::WindowFolder {
protected:
    FirstStart() { ::unsetenv("NVQMPTEMP"); }

    static QLineEdit& field(quickinstallDlg& dialog, const char* name)
    {
        return *dialog.findChild<QLineEdit*>(QLatin1StringView(name));
    }
    std::string settings() { return common::readFile(folder.file("home/.nvq")).value_or("none"); }
};

const std::string build = NVQ_BUILD_DIR "/";

TEST_F(FirstStart, OnAScreenProposesAndKeepsWhatWasEntered)
{
    makeWindow(true);
    std::string home, temp;
    withNext<quickinstallDlg>([&](quickinstallDlg& dialog) {
        home = field(dialog, "home").text().toStdString();
        temp = field(dialog, "temp").text().toStdString();
        EXPECT_FALSE(field(dialog, "temp").placeholderText().isEmpty());
        EXPECT_FALSE(field(dialog, "user").text().isEmpty());
        field(dialog, "temp").setText(QString::fromStdString(folder.path()));
        field(dialog, "host").setText(QStringLiteral("desk"));
        field(dialog, "user").setText(QStringLiteral("Éva"));
        dialog.processOK();
    });
    EXPECT_TRUE(window->checkInstallation());
    EXPECT_EQ(home, build);
    EXPECT_EQ(temp, "");
    EXPECT_EQ(window->session().installation.temp, folder.path());
    EXPECT_EQ(window->session().installation.user, "Éva");
    EXPECT_THAT(settings(), HasSubstr("[Setup]\nNVQMPHOME = " + build + "\nNVQMPTEMP = " + folder.path() +
                                      "\nNVQMPUSER = Éva\nNVQMPHOST = desk\n[Geometry]\n"));
    EXPECT_TRUE(common::directoryExists(folder.file("home/nvq_local/cmd_files")));
}

TEST_F(FirstStart, SecondStartAsksNothing)
{
    makeWindow(true);
    withNext<quickinstallDlg>([](quickinstallDlg& dialog) { dialog.processOK(); });
    EXPECT_TRUE(window->checkInstallation());
    window.reset();
    makeWindow(true);
    EXPECT_TRUE(window->checkInstallation()); // a dialog would wait forever
}

TEST_F(FirstStart, BadDirectoriesAreToldAndTheDialogComesAgain)
{
    makeWindow(true);
    BOX root, temp;
    std::string again;
    withNext<quickinstallDlg>([&](quickinstallDlg& dialog) {
        field(dialog, "home").setText(QString::fromStdString(folder.file("gone")));
        field(dialog, "temp").setText(QString::fromStdString(folder.file("cast.txt")));
        withNext<QMessageBox>([&](QMessageBox& first) {
            root = {first.windowTitle().toStdString(), first.text().toStdString()};
            answerNext("&OK", &temp);
            first.accept();
        });
        withNext<quickinstallDlg>([&](quickinstallDlg& next) {
            again = field(next, "home").text().toStdString();
            field(next, "home").setText(QString::fromStdString(build));
            field(next, "temp").clear();
            next.processOK();
        });
        dialog.processOK();
    });
    EXPECT_TRUE(window->checkInstallation());
    EXPECT_EQ(root.title, "Installation problem...");
    EXPECT_EQ(root.text,
              "Bad Installation Directory!\n\nNVQ executable " + folder.file("gone/bin/nvqmp not found!"));
    EXPECT_EQ(temp.title, "Installation problem...");
    EXPECT_EQ(temp.text,
              "Bad temp Directory!\n\nNVQ temp directory " + folder.file("cast.txt not found or read-only!"));
    EXPECT_EQ(again, folder.file("gone"));
    EXPECT_THAT(settings(), HasSubstr("NVQMPHOME = " + build + "\nNVQMPTEMP = \n"));
}

TEST_F(FirstStart, CancelEndsTheProgram)
{
    makeWindow(true);
    BOX box;
    withNext<quickinstallDlg>([&](quickinstallDlg& dialog) {
        answerNext("&OK", &box);
        dialog.processCancel();
    });
    EXPECT_FALSE(window->checkInstallation());
    EXPECT_EQ(box.title, "Bad NVQ installation...");
    EXPECT_EQ(box.text, "See installation instructions on how to install and setup NVQ.");
    EXPECT_TRUE(window->isClosed());
    EXPECT_EQ(window->exitCode(), 1);
    EXPECT_THAT(settings(), testing::Not(HasSubstr("NVQMPHOME")));
}

TEST_F(FirstStart, WithoutAScreenTheProgramsOwnDirectoryIsTaken)
{
    makeWindow(false);
    EXPECT_TRUE(window->checkInstallation());
    window.reset();
    EXPECT_EQ(settings().find("NVQMPHOME"), std::string::npos);
}

TEST_F(FirstStart, SizesOfTextComeFromTheScreenUnlessTheFileTellsThem)
{
    makeWindow(true);
    EXPECT_GE(window->session().settings.fontScaleFac, 0.85f);
    EXPECT_TRUE(window->session().settings.fontSizesKnown);
    window.reset();
    writeText(folder.file("home/.nvq"), "[Font]\nfontScaleFac = 1.5\ntxtFontPtSize = 11\n");
    makeWindow(true);
    EXPECT_FLOAT_EQ(window->session().settings.fontScaleFac, 1.5f);
    EXPECT_EQ(window->session().settings.txtFontPtSize, 11);
    window.reset();
    std::filesystem::remove(folder.file("home/.nvq"));
    makeWindow(false);
    EXPECT_FALSE(window->session().settings.fontSizesKnown);
}

} // namespace
