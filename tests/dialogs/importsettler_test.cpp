#include "dialogs/importsettler.h"

#include <fstream>

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/hvarassoc.h"
#include "dialogs/identifyvar.h"
#include "dialogs/importopt.h"
#include "dialogs/spreadshproperties.h"
#include "nextdialog.h"
#include "scripteduser.h"
#include "temporarydirectory.h"
#include "variables.h"

namespace {

using dialogs::RDialogSettler;
using importing::HeaderResult;
using importing::SPREADSHEETHEADER;
using testing_support::child;
using testing_support::enterFile;
using testing_support::variablesOf;
using testing_support::withNext;

class ImportSettler : public testing::Test {
protected:
    std::string file(const char* text)
    {
        const std::string path = folder.path() + "sea.txt";
        std::ofstream(path) << text;
        return path;
    }

    testing_support::RTemporaryDirectory folder;
    testing_support::RScriptedUser user;
    QWidget window;
    RDialogSettler settler{&window};
    SPREADSHEETHEADER header;
};

TEST_F(ImportSettler, AHeaderDividedBySemicolonsOpensThePropertiesDialog)
{
    const std::string path = file("Cruise;Station;Type;mon/day/yr;hh:mm;Lon (°E);Lat (°N);Bot. Depth [m];"
                                  "Depth [m]\nA;1;B;1/2/2000;12:00;10;20;100;5\n");
    withNext<dialogs::spreadshpropertiesDlg>([](auto& dialog) {
        EXPECT_EQ(child<QListWidget>(dialog, "labels").count(), 1);
        child<QComboBox>(dialog, "separator").setCurrentIndex(1);
        EXPECT_EQ(child<QListWidget>(dialog, "labels").count(), 9);
        dialog.processOK();
    });
    ASSERT_EQ(importing::readSpreadsheetHeader(path, &settler, user, header), HeaderResult::ok);
    EXPECT_EQ(header.desc.sepChars, ';');
    ASSERT_EQ(header.sourceCount(), 1);
    EXPECT_STREQ(header.sources[1].label, "Depth [m]");
}

TEST_F(ImportSettler, LabelsBehindTheLinesShownAreKnownToo)
{
    std::string text;
    for (int line = 1; line < 30; ++line) text += "# a comment\n";
    const std::string path = file((text + "Depth [m]\tx\n").c_str());
    withNext<dialogs::spreadshpropertiesDlg>([](auto& dialog) {
        EXPECT_EQ(child<QListWidget>(dialog, "lines").count(), 9);
        child<QSpinBox>(dialog, "headerLine").setValue(30);
        EXPECT_THAT(testing_support::linesOf(child<QListWidget>(dialog, "labels")),
                    testing::ElementsAre("  1: Depth [m]", "  2: x"));
        dialog.reject();
    });
    EXPECT_EQ(importing::readSpreadsheetHeader(path, &settler, user, header), HeaderResult::cancelled);
}

TEST_F(ImportSettler, ColumnsThatAreNotFoundOpenTheHeaderDialog)
{
    const std::string path = file("ship\teast\tnorth\tdays since 2000-01-01\tDepth [m]\n");
    withNext<dialogs::spreadshpropertiesDlg>([](auto& dialog) { dialog.processOK(); });
    withNext<dialogs::hvarassocDlg>([](auto& dialog) {
        for (const auto& [column, meta] : {std::pair(0, 0), std::pair(1, 5), std::pair(2, 6)}) {
            child<QListWidget>(dialog, "targets").setCurrentRow(meta);
            child<QListWidget>(dialog, "sources").setCurrentRow(column);
            dialog.processAssociate();
        }
        dialog.processOK();
    });
    ASSERT_EQ(importing::readSpreadsheetHeader(path, &settler, user, header), HeaderResult::ok);
    EXPECT_EQ(header.desc.nMeta, 4);
    EXPECT_EQ(header.desc.metaColumn[importing::metaLatitude], 2);
    ASSERT_EQ(header.sourceCount(), 1); // the other columns are taken
    EXPECT_EQ(header.sources[1].column, 4);
}

TEST_F(ImportSettler, CancelOfEitherDialogEndsTheImport)
{
    const std::string path = file("a\tb\n");
    withNext<dialogs::spreadshpropertiesDlg>([](auto& dialog) { dialog.reject(); });
    EXPECT_EQ(importing::readSpreadsheetHeader(path, &settler, user, header), HeaderResult::cancelled);
    withNext<dialogs::spreadshpropertiesDlg>([](auto& dialog) { dialog.processOK(); });
    withNext<dialogs::hvarassocDlg>([](auto& dialog) { dialog.reject(); });
    EXPECT_EQ(importing::readSpreadsheetHeader(path, &settler, user, header), HeaderResult::cancelled);
}

TEST_F(ImportSettler, TheOptionsChangeTheChoicesOnlyWithOk)
{
    auto sources = variablesOf({"a"}), targets = variablesOf({"b"});
    importing::IMPORTCHOICES choices;
    choices.sources = sources;
    choices.targets = targets;
    const auto associate = [](dialogs::importoptDlg& dialog) {
        child<QListWidget>(dialog, "sources").setCurrentRow(0);
        child<QListWidget>(dialog, "targets").setCurrentRow(0);
        dialog.processAssociate();
    };
    withNext<dialogs::importoptDlg>([&](auto& dialog) {
        associate(dialog);
        dialog.reject();
    });
    EXPECT_FALSE(settler.settleImport(choices));
    EXPECT_EQ(targets[1].assocSource, 0);
    withNext<dialogs::importoptDlg>([&](auto& dialog) {
        associate(dialog);
        dialog.processOK();
    });
    EXPECT_TRUE(settler.settleImport(choices));
    EXPECT_EQ(targets[1].assocSource, 1);
}

TEST_F(ImportSettler, IdentifiesAVariableOrNone)
{
    const auto variables = variablesOf({"a", "Depth [m]"});
    withNext<dialogs::identifyvarDlg>([](auto& dialog) { dialog.processOK(); });
    EXPECT_EQ(settler.identify("Task", "Depth [m]", variables), 2);
    withNext<dialogs::identifyvarDlg>([](auto& dialog) { dialog.reject(); });
    EXPECT_EQ(settler.identify("Task", "Depth [m]", variables), 0);
}

TEST_F(ImportSettler, ADescriptionIsChosenAmongTheFiles)
{
    const std::string var = folder.path() + "sea.var";
    std::ofstream(var) << "x";
    std::string title;
    withNext<QFileDialog>([&](QFileDialog& dialog) {
        title = dialog.windowTitle().toStdString();
        EXPECT_EQ(dialog.nameFilters().value(0).toStdString(), "O3X .var Files (*.var)");
        enterFile(dialog, QString::fromStdString(var));
    });
    EXPECT_EQ(settler.chooseDescription("sea.o3x", var), var);
    EXPECT_EQ(title, "Specify Source Collection of sea.o3x");
    withNext<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_FALSE(settler.chooseDescription("sea.o3x", var));
}

} // namespace
