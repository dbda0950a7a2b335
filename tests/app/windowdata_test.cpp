// Imports, exports and the selection from the window: what they ask, and what comes of the answers.

#include <QComboBox>
#include <QInputDialog>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/files.h"
#include "dialogs/importopt.h"
#include "dialogs/outvarsel.h"
#include "dialogs/selcriteria.h"
#include "dialogs/spreadshproperties.h"
#include "nextdialog.h"
#include "windowfixture.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing_support::castText;
using testing_support::enterFile;
using testing_support::withNext;
using testing_support::writeText;

class WindowData : public testing_support::WindowFixture {
protected:
    void chooseFile(const char* name)
    {
        withNext<QFileDialog>([this, name](QFileDialog& dialog) {
            caption = dialog.windowTitle().toStdString();
            enterFile(dialog, QString::fromStdString(folder.file(name)));
        });
    }
    // Answers so many boxes in their order, and keeps what they said.
    void answer(std::vector<const char*> buttons)
    {
        if (buttons.empty()) return;
        withNext<QMessageBox>([this, buttons](QMessageBox& box) {
            boxes.push_back((box.windowTitle() + QStringLiteral(": ") + box.text()).toStdString());
            answer({buttons.begin() + 1, buttons.end()});
            for (QAbstractButton* const button : box.buttons()) {
                if (button->text() == QLatin1String(buttons.front())) return button->click();
            }
            ADD_FAILURE() << "no button " << buttons.front() << " in " << boxes.back();
            box.reject();
        });
    }
    void acceptNextOptions()
    {
        withNext<dialogs::importoptDlg>([](dialogs::importoptDlg& dialog) { dialog.processOK(); });
    }
    std::string read(const char* name) { return common::readFile(folder.file(name)).value_or("none"); }
    bool exists(const char* name) { return common::fileExists(folder.file(name)); }
    collection::RCollection& open() { return window->session().collection; }

    std::string caption;
    std::vector<std::string> boxes;
};

TEST_F(WindowData, SpreadsheetIsExportedByDialogs)
{
    openCast();
    chooseFile("out");
    withNext<dialogs::outvarselDlg>([](dialogs::outvarselDlg& dialog) {
        EXPECT_EQ(dialog.chosen().size(), 3u); // all of the collection are proposed
        dialog.processOK();
    });
    withNext<QInputDialog>([](QInputDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle().toStdString(), "SpreadSheet Export - Set Missing Value String");
        dialog.accept();
    });
    answer({"&OK"});
    window->processMenuItem(app::cmdExportSpreadsheet);
    EXPECT_EQ(caption, "Export to NVQ Spreadsheet File ...");
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_THAT(boxes[0], HasSubstr("3 Stations Exported to File\n\n" + folder.file("out.txt")));
    EXPECT_THAT(read("out.txt"), HasSubstr("Cruise\tStation\t"));
}

TEST_F(WindowData, ListingIsExportedBehindItsWarnings)
{
    openCast();
    answer({"&Yes", "&Yes", "&OK"});
    chooseFile("out.o4x");
    withNext<dialogs::outvarselDlg>([](dialogs::outvarselDlg& dialog) { dialog.processOK(); });
    window->processMenuItem(app::cmdExportListing4);
    ASSERT_EQ(boxes.size(), 3u);
    EXPECT_THAT(boxes[0], HasSubstr("Exporting to .o4x file ...: Note that time of observation"));
    EXPECT_THAT(boxes[1], HasSubstr("Only data that satisfy current selection criteria are exported!"));
    EXPECT_THAT(boxes[2], HasSubstr("3 Stations Exported to .o4x File"));
    EXPECT_THAT(read("out.o4x"), HasSubstr("NVQ4.0 Listing\n"));
}

TEST_F(WindowData, ImportAsksForOptionsAndBeforeAStationIsReplaced)
{
    openCast();
    chooseFile("cast.txt");
    acceptNextOptions();
    answer({"Yes to &All", "&OK"});
    window->processMenuItem(app::cmdImportSpreadsheet);
    EXPECT_EQ(caption, "Select SpreadSheet Data File ...");
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_THAT(boxes[0],
                HasSubstr("Confirm Station Replace: Station: TEST  - 1  - C Already in Collection!"));
    EXPECT_THAT(boxes[1], HasSubstr("3 Stations Imported from\n\ncast.txt"));
    EXPECT_EQ(open().stationCount, 3);
}

TEST_F(WindowData, CancelledOptionsImportNothing)
{
    openCast();
    writeText(folder.file("more.txt"), castText(9, 2));
    chooseFile("more.txt");
    withNext<dialogs::importoptDlg>([](dialogs::importoptDlg& dialog) { dialog.reject(); });
    window->processMenuItem(app::cmdImportSpreadsheet);
    EXPECT_EQ(open().stationCount, 3);
    EXPECT_EQ(window->session().state, app::stateReady);
}

TEST_F(WindowData, ForeignTextAsksForItsProperties)
{
    writeText(folder.file("plain.txt"), "depth|temp\n1|2\n");
    withNext<dialogs::spreadshpropertiesDlg>([](dialogs::spreadshpropertiesDlg& dialog) { dialog.reject(); });
    EXPECT_EQ(window->session().open(folder.file("plain.txt")), app::OpenResult::failed);
    EXPECT_FALSE(exists("plain.var"));
    EXPECT_FALSE(open().isOpen);
}

TEST_F(WindowData, CommandFileIsAskedNothing)
{
    openCast();
    runLines("import_file spreadsheet," + folder.file("cast.txt") +
             "\nselect station=2:3\nexport_listing o4x,out.o4x\n"
             "export_collection part\nexport_spreadsheet part.txt,none\n");
    EXPECT_TRUE(exists("out.o4x"));
    EXPECT_TRUE(exists("part.var"));
    EXPECT_TRUE(exists("part.txt"));
    EXPECT_EQ(open().selectedStationCount, 2);
}

TEST_F(WindowData, SelectionOfACommandFileChangesThePicture)
{
    openCast();
    const QImage before = picture();
    runLines("select station=2\n");
    EXPECT_NE(picture(), before);
    runLines("select reset\n");
    EXPECT_EQ(picture(), before);
}

TEST_F(WindowData, CriteriaAreEditedInTheirDialog)
{
    openCast();
    withNext<dialogs::selcriteriaDlg>([](dialogs::selcriteriaDlg& dialog) {
        dialog.rbBottle();
        dialog.qfGood();
        dialog.processOK();
    });
    answer({"&OK"}); // no station is one of a bottle
    window->processMenuItem(app::cmdSelectionCriteria);
    EXPECT_STREQ(open().criteria.stationType, "B");
    EXPECT_EQ(open().qualityLimit, 0);
    EXPECT_EQ(open().selectedStationCount, 0);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_THAT(boxes[0], HasSubstr("No Valid Station Found!"));
}

TEST_F(WindowData, ChosenCruiseIsHighlightedUntilTheDialogIsLeft)
{
    openCast();
    const QImage before = picture();
    QImage during;
    withNext<dialogs::selcriteriaDlg>([&](dialogs::selcriteriaDlg& dialog) {
        dialog.findChild<QComboBox*>(QStringLiteral("cruise"))->setCurrentText(QStringLiteral("TEST"));
        dialog.cruiseChange();
        during = picture();
        dialog.reject();
    });
    window->processMenuItem(app::cmdSelectionCriteria);
    EXPECT_NE(during, before);
    EXPECT_EQ(picture(), before);
    EXPECT_EQ(open().selectedStationCount, 3);
}

TEST_F(WindowData, CancelledCriteriaStayAsTheyWere)
{
    openCast();
    withNext<dialogs::selcriteriaDlg>([](dialogs::selcriteriaDlg& dialog) {
        dialog.rbXBT();
        dialog.processCancel();
    });
    window->processMenuItem(app::cmdSelectionCriteria);
    EXPECT_STREQ(open().criteria.stationType, "*");
    EXPECT_EQ(open().selectedStationCount, 3);
}

TEST_F(WindowData, RefusedCommandsAskNothing)
{
    for (const int id : {app::cmdSelectionCriteria, app::cmdImportSpreadsheet, app::cmdImportListing3,
                         app::cmdImportListing4, app::cmdExportListing3, app::cmdExportListing4,
                         app::cmdExportSpreadsheet, app::cmdExportCollection})
        window->processMenuItem(id);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace
