// The commands on the collection as a whole, from the window: what they ask, and what comes of the answers.

#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/variablesets.h"
#include "common/files.h"
#include "dialogs/creation.h"
#include "dialogs/resolution.h"
#include "dialogs/variableeditor.h"
#include "nextdialog.h"
#include "windowfixture.h"

namespace {

using dialogs::creationDlg;
using dialogs::variableeditorDlg;
using testing::HasSubstr;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::enterFile;
using testing_support::withNext;
using testing_support::writeText;

class WindowCommands : public testing_support::WindowFixture {
protected:
    // Leaves the next file dialog with this file of the folder.
    void chooseFile(const char* name)
    {
        withNext<QFileDialog>([this, name](QFileDialog& dialog) {
            caption = dialog.windowTitle().toStdString();
            filters = dialog.nameFilters().join(QStringLiteral(";;")).toStdString();
            proposal = dialog.selectedFiles().value(0).toStdString();
            enterFile(dialog, QString::fromStdString(folder.file(name)));
        });
    }
    // Leaves the next creation dialog with this set; `then` is done just before.
    void chooseSet(int set, const std::function<void()>& then = {})
    {
        withNext<creationDlg>([this, set, then](creationDlg& dialog) {
            newName = dialog.findChild<QLabel*>(QStringLiteral("collectionName"))->text().toStdString();
            auto* const entries = dialog.findChild<QListWidget*>(QStringLiteral("entries"));
            for (int row = 0; row < entries->count() && dialog.variableSet() != set; ++row)
                entries->setCurrentRow(row);
            if (then) then();
            dialog.processOK();
        });
    }
    void makeNorth()
    {
        chooseFile("north");
        chooseSet(collection::setSeaLevel);
        window->processMenuItem(app::cmdNew);
        ASSERT_TRUE(open().isOpen);
    }
    app::RSession& session() { return window->session(); }
    collection::RCollection& open() { return session().collection; }
    bool exists(const std::string& name) { return common::fileExists(folder.file(name)); }
    std::string labelOf(int variable) { return open().variables.at(std::size_t(variable)).shortLabel; }
    std::string log() { return common::readFile(open().path + ".log").value_or(""); }

    std::string caption, filters, proposal, newName;
    BOX box;
};

// --- a new collection

TEST_F(WindowCommands, NewStandsInTheFileMenuAndIsAlwaysPossible)
{
    QMenu* const file = window->menuBar()->actions().first()->menu();
    Q_EMIT file->aboutToShow();
    EXPECT_TRUE(window->action(app::cmdNew)->isEnabled());
    EXPECT_EQ(window->action(app::cmdNew)->text().toStdString(), "&New");
    EXPECT_EQ(window->action(app::cmdNew)->shortcut(), QKeySequence(QStringLiteral("Ctrl+N")));
    Q_EMIT file->aboutToHide();
}

TEST_F(WindowCommands, NewAsksForANameAndASetOfVariables)
{
    chooseFile("north"); // without an extension
    chooseSet(collection::setSeaLevel);
    window->processMenuItem(app::cmdNew);
    EXPECT_EQ(newName, "New collection: north");
    EXPECT_TRUE(open().isOpen);
    EXPECT_EQ(open().path, folder.file("north"));
    EXPECT_EQ(open().variableCount, 2);
    EXPECT_EQ(open().type, "HYD");
    EXPECT_THAT(log(), HasSubstr(" CREATE\n"));
    EXPECT_EQ(status(), folder.file("north.var: made with 2 variables"));
    EXPECT_EQ(window->windowTitle().toStdString(), "NVQ - " + folder.file("north.var"));
}

TEST_F(WindowCommands, NewByHandOpensTheEditorWithThreeVariables)
{
    chooseFile("own");
    chooseSet(collection::setManual, [] {
        withNext<variableeditorDlg>([](variableeditorDlg& dialog) {
            EXPECT_EQ(dialog.variables().size(), 4u);
            EXPECT_STREQ(dialog.variables()[3].shortLabel, "Salinity");
            EXPECT_TRUE(dialog.findChild<QTableWidget*>()->isColumnHidden(variableeditorDlg::sourceColumn));
            dialog.processAdd();
            dialog.processOK();
        });
    });
    window->processMenuItem(app::cmdNew);
    EXPECT_TRUE(open().isOpen);
    EXPECT_EQ(open().variableCount, 4);
    EXPECT_EQ(labelOf(2), "New Variable");
}

TEST_F(WindowCommands, CancelInTheEditorStopsTheCreation)
{
    chooseFile("own");
    chooseSet(collection::setManual,
              [] { withNext<variableeditorDlg>([](variableeditorDlg& dialog) { dialog.processCancel(); }); });
    window->processMenuItem(app::cmdNew);
    EXPECT_FALSE(open().isOpen);
    EXPECT_FALSE(exists("own.var"));
    EXPECT_EQ(status(), "Choose File>Open to open or File>New to create a collection.");
}

TEST_F(WindowCommands, CancelOfTheSetStopsTheCreation)
{
    chooseFile("own");
    withNext<creationDlg>([](creationDlg& dialog) { dialog.processCancel(); });
    window->processMenuItem(app::cmdNew);
    EXPECT_FALSE(exists("own.var"));
}

TEST_F(WindowCommands, CancelOfTheNameAsksNothingElse)
{
    withNext<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    window->processMenuItem(app::cmdNew);
    EXPECT_FALSE(open().isOpen);
}

TEST_F(WindowCommands, NewFromATemplateAsksForIt)
{
    std::string templateCaption, templateFilters;
    chooseFile("own");
    chooseSet(collection::setTemplate, [&] {
        withNext<QFileDialog>([&](QFileDialog& dialog) {
            templateCaption = dialog.windowTitle().toStdString();
            templateFilters = dialog.nameFilters().join(QStringLiteral(";;")).toStdString();
            enterFile(dialog, QString::fromStdString(folder.file("cast.txt")));
        });
    });
    window->processMenuItem(app::cmdNew);
    EXPECT_EQ(templateCaption, "Select Template for own ...");
    EXPECT_EQ(templateFilters, "Collection Files (*.var);;NVQ SpreadSheet Files (*.txt);;o4x Files (*.o4x)");
    EXPECT_TRUE(open().isOpen);
    EXPECT_EQ(open().variableCount, 3);
    EXPECT_EQ(labelOf(2), "Temperature");
}

TEST_F(WindowCommands, BadTemplateIsToldAndNothingMade)
{
    writeText(folder.file("bad.var"), "nonsense");
    chooseFile("own");
    chooseSet(collection::setTemplate, [&] {
        withNext<QFileDialog>([&](QFileDialog& dialog) {
            withNext<QMessageBox>([&](QMessageBox& first) { // what is wrong with it
                answerNext("&OK", &box);
                first.accept();
            });
            enterFile(dialog, QString::fromStdString(folder.file("bad.var")));
        });
    });
    window->processMenuItem(app::cmdNew);
    EXPECT_EQ(box.title, "Template usage failed ...");
    EXPECT_EQ(box.text, "Make sure file format of " + folder.file("bad.var") +
                            " is valid\nand file is currently not in use by another application!");
    EXPECT_FALSE(exists("own.var"));
}

TEST_F(WindowCommands, CollectionThatIsThereIsAskedAboutOnce)
{
    makeNorth();
    window->processMenuItem(app::cmdClose);
    chooseFile("north");
    chooseSet(collection::setWhpCtd, [&] { answerNext("&No", &box); });
    window->processMenuItem(app::cmdNew);
    EXPECT_EQ(box.text, "Collection\n\n" + folder.file("north.var") + "\n\nalready exists!  Replace it?");
    EXPECT_FALSE(open().isOpen);
    chooseFile("north");
    chooseSet(collection::setWhpCtd, [&] { answerNext("&Yes"); });
    window->processMenuItem(app::cmdNew);
    EXPECT_EQ(open().variableCount, 4);
}

TEST_F(WindowCommands, MissingCollectionOfTheCommandLineMayBeCreated)
{
    chooseSet(collection::setWoa94);
    const app::ARGUMENT argument{app::ARGUMENT::file, folder.file("a b.var")};
    window->workThrough({&argument, 1});
    EXPECT_EQ(newName, "New collection: a_b");
    EXPECT_TRUE(open().isOpen);
    EXPECT_EQ(open().path, folder.file("a_b"));
    EXPECT_EQ(open().variableCount, 7);
}

// --- where nobody is asked

TEST_F(WindowCommands, CommandFileIsAskedNothing)
{
    openCast();
    session().runMode = app::commandFileRun;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(session().createCollection(folder.file("x"), std::nullopt));
    EXPECT_FALSE(session().createCollection({}, std::nullopt));
    EXPECT_FALSE(session().copyCollection({}));
    EXPECT_FALSE(session().addLogComment(std::nullopt));
    testing::internal::GetCapturedStderr();
    session().runMode = app::interactiveRun;
    EXPECT_FALSE(exists("x.var"));
    EXPECT_TRUE(open().isOpen);
}

TEST_F(WindowCommands, WindowThatNobodySeesAsksNothing)
{
    window.reset();
    makeWindow(false);
    EXPECT_TRUE(window->checkInstallation());
    testing::internal::CaptureStderr();
    window->processMenuItem(app::cmdNew);
    EXPECT_FALSE(session().createCollection(folder.file("x"), std::nullopt));
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(exists("x.var"));
}

// --- the open collection as a whole

TEST_F(WindowCommands, CopyProposesANameAndOpensTheCopy)
{
    openCast();
    chooseFile("second");
    window->processMenuItem(app::cmdCopy);
    EXPECT_EQ(caption, "Select Target Collection Name ...");
    EXPECT_EQ(filters, "Collection Name (*.var)");
    EXPECT_EQ(proposal, folder.file("copy_of_cast.var"));
    EXPECT_EQ(open().path, folder.file("second"));
    EXPECT_TRUE(exists("cast.var"));
    EXPECT_EQ(open().stationCount, 3);
    EXPECT_EQ(status(), folder.file("cast.var: copied to ") + folder.file("second.var"));
}

TEST_F(WindowCommands, MoveTakesTheCollectionAlong)
{
    openCast();
    chooseFile("moved.var");
    window->processMenuItem(app::cmdMove);
    EXPECT_EQ(open().path, folder.file("moved"));
    EXPECT_FALSE(exists("cast.var"));
    EXPECT_FALSE(exists("cast.hob"));
}

TEST_F(WindowCommands, DeleteAsksFirst)
{
    openCast();
    answerNext("&Cancel", &box);
    window->processMenuItem(app::cmdDelete);
    EXPECT_EQ(box.title, "Confirm Deletion ...");
    EXPECT_EQ(box.text, "Really want to delete current collection?");
    EXPECT_TRUE(exists("cast.hob"));
    withNext<QMessageBox>([&](QMessageBox& question) {
        answerNext("&OK", &box);
        question.defaultButton()->click(); // yes
    });
    window->processMenuItem(app::cmdDelete);
    EXPECT_THAT(box.text, HasSubstr(" deleted!"));
    EXPECT_FALSE(exists("cast.hob"));
    EXPECT_FALSE(open().isOpen);
    EXPECT_EQ(status(), "Choose File>Open to open or File>New to create a collection.");
}

TEST_F(WindowCommands, SortAndCondenseTellsWhatItDid)
{
    openCast();
    window->processMenuItem(app::cmdSortAndCondense);
    EXPECT_THAT(status(), HasSubstr("3 stations sorted and condensed"));
    EXPECT_THAT(log(), HasSubstr(" SORTCONDENSE\n"));
    EXPECT_EQ(session().state, app::stateReady);
}

TEST_F(WindowCommands, VariablesAreEditedAndChanged)
{
    openCast();
    withNext<variableeditorDlg>([&](variableeditorDlg& dialog) {
        EXPECT_EQ(dialog.windowTitle().toStdString(), "Variables of cast ...");
        auto* const table = dialog.findChild<QTableWidget*>();
        EXPECT_EQ(table->item(2, variableeditorDlg::sourceColumn)->text().toStdString(), "3: Salinity [psu]");
        table->setCurrentCell(1, variableeditorDlg::labelColumn);
        dialog.processRemove();
        answerNext("&Yes", &box);
        dialog.processOK();
    });
    window->processMenuItem(app::cmdChangeVariables);
    EXPECT_EQ(box.text, "The data of these variables will be lost:\n\n    2: Temperature [°C]\n\nContinue?");
    EXPECT_EQ(open().variableCount, 2);
    EXPECT_EQ(labelOf(2), "Salinity");
    EXPECT_THAT(log(), HasSubstr(" CHANGEVARSET\n"));
    collection::STATIONDATA station;
    ASSERT_EQ(open().loadStation(1, station, false), collection::LoadResult::ok);
    EXPECT_FLOAT_EQ(station.values[static_cast<std::size_t>(station.offset[2])], 34.0f);
}

TEST_F(WindowCommands, CancelledEditorChangesNothing)
{
    openCast();
    withNext<variableeditorDlg>([&](variableeditorDlg& dialog) {
        dialog.processRemove();
        dialog.processCancel();
    });
    window->processMenuItem(app::cmdChangeVariables);
    EXPECT_EQ(open().variableCount, 3);
    EXPECT_THAT(log(), testing::Not(HasSubstr("CHANGEVARSET")));
}

TEST_F(WindowCommands, DeletionsOfStationsAskFirst)
{
    openCast();
    answerNext("&OK", &box);
    window->processMenuItem(app::cmdDeleteEmpty);
    EXPECT_EQ(box.text, "No empty station found.");
    answerNext("&No", &box);
    window->processMenuItem(app::cmdDeleteSelected);
    EXPECT_EQ(box.text, "Really want to delete 3 stations?");
    EXPECT_EQ(open().stationCount, 3);
    answerNext("&Yes");
    window->processMenuItem(app::cmdDeleteSelected);
    EXPECT_EQ(open().stationCount, 0);
    EXPECT_EQ(common::fileSize(folder.file("cast.dob")), 0);
}

TEST_F(WindowCommands, CurrentStationIsDeletedIfThereIsOne)
{
    openCast();
    answerNext("&OK", &box);
    window->processMenuItem(app::cmdDeleteCurrent);
    EXPECT_EQ(box.text, "There is no current station.");
    EXPECT_EQ(open().stationCount, 3);
    open().currentStation = 2;
    answerNext("&Yes", &box);
    window->processMenuItem(app::cmdDeleteCurrent);
    EXPECT_EQ(box.text, "Really want to delete current station?");
    EXPECT_EQ(open().stationCount, 2);
    EXPECT_THAT(log(), HasSubstr(" DELETE_SINGLE TEST 2 "));
}

TEST_F(WindowCommands, CommentOfTheLogIsALineOfText)
{
    openCast();
    withNext<QInputDialog>([this](QInputDialog& dialog) {
        caption = dialog.windowTitle().toStdString();
        dialog.setTextValue(QStringLiteral("Größe geprüft"));
        dialog.accept();
    });
    window->processMenuItem(app::cmdLogComment);
    EXPECT_EQ(caption, "Add log File Comment");
    EXPECT_THAT(log(), HasSubstr(" COMMENT Größe geprüft\n"));
    const std::string before = log();
    withNext<QInputDialog>([](QInputDialog& dialog) { dialog.reject(); });
    window->processMenuItem(app::cmdLogComment);
    EXPECT_EQ(log(), before);
}

TEST_F(WindowCommands, RefusedOnesAskNothing)
{
    for (const int id :
         {app::cmdCopy, app::cmdMove, app::cmdDelete, app::cmdSortAndCondense, app::cmdChangeVariables,
          app::cmdDeleteSelected, app::cmdDeleteEmpty, app::cmdDeleteCurrent, app::cmdLogComment})
        window->processMenuItem(id); // nothing is open
    openCast();
    open().writable = false;
    for (const int id : {app::cmdMove, app::cmdDelete, app::cmdSortAndCondense, app::cmdChangeVariables,
                         app::cmdDeleteSelected, app::cmdDeleteEmpty, app::cmdDeleteCurrent})
        window->processMenuItem(id);
    EXPECT_EQ(open().stationCount, 3);
}

TEST_F(WindowCommands, PictureIsSavedUnderTheExtensionOfItsKind)
{
    openCast();
    withNext<QFileDialog>([this](QFileDialog& dialog) {
        dialog.selectNameFilter(QStringLiteral("JPEG (*.jpg)"));
        withNext<dialogs::resolutionDlg>([this](dialogs::resolutionDlg& resolution) {
            answerNext("&OK", &box);
            resolution.processOK();
        });
        enterFile(dialog, QString::fromStdString(folder.file("plot")));
    });
    window->processMenuItem(app::cmdSaveScreen);
    EXPECT_EQ(box.text, "Plot written to: " + folder.file("plot.jpg"));
    EXPECT_TRUE(exists("plot.jpg"));
}

} // namespace
