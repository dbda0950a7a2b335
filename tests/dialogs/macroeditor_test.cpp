#include "dialogs/macroeditor.h"

#include <QDir>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/files.h"
#include "nextdialog.h"
#include "scripteduser.h"
#include "temporarydirectory.h"
#include "variables.h"

namespace {

using dialogs::macroeditorDlg;
using dialogs::REditedMacro;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::child;
using testing_support::enterFile;
using testing_support::linesOf;
using testing_support::variablesOf;
using testing_support::withNext;

// --- without widgets

TEST(EditedMacro, ANewOneHasNoFileAndIsAsItsFileWouldBe)
{
    const REditedMacro work;
    EXPECT_EQ(work.fileName().toStdString(), "NewMacro.mac");
    EXPECT_EQ(work.label().toStdString(), "New Variable [units]");
    EXPECT_EQ(work.expression().toStdString(), "1\n");
    EXPECT_EQ(work.macro().width, 8);
    EXPECT_EQ(work.macro().decimals, 2);
    EXPECT_EQ(work.macro().nInputs, 0);
    EXPECT_FALSE(work.isDirty());
}

TEST(EditedMacro, AnyChangeMakesItDirtyAndNoChangeDoesNot)
{
    const auto isDirtyAfter = [](auto act) {
        REditedMacro work({}, "a.mac");
        act(work);
        return work.isDirty();
    };
    EXPECT_TRUE(isDirtyAfter([](REditedMacro& work) { work.setLabel(QStringLiteral("x")); }));
    EXPECT_TRUE(isDirtyAfter([](REditedMacro& work) { work.setFormat(QStringLiteral("9"), {}); }));
    EXPECT_TRUE(isDirtyAfter([](REditedMacro& work) { work.setExpression(QStringLiteral("2")); }));
    EXPECT_TRUE(isDirtyAfter([](REditedMacro& work) { work.setComment(QStringLiteral("2")); }));
    EXPECT_TRUE(isDirtyAfter([](REditedMacro& work) { EXPECT_TRUE(work.addInput(QStringLiteral("a"))); }));
    EXPECT_FALSE(isDirtyAfter([](REditedMacro& work) {
        work.setLabel(work.label());
        work.setFormat(QStringLiteral("x"), QStringLiteral("2"));
        work.setExpression(work.expression());
        work.setComment(work.comment());
        EXPECT_FALSE(work.addInput(QStringLiteral("  ")));
        EXPECT_FALSE(work.removeInput(0));
    }));
}

TEST(EditedMacro, InputsAreTrimmedAppendedAndMoveUp)
{
    REditedMacro work;
    work.setExpression(QStringLiteral("#1 #2 + #3 +"));
    for (const char* const input : {" a ", "b", "c"}) EXPECT_TRUE(work.addInput(QLatin1StringView(input)));
    EXPECT_TRUE(work.removeInput(0));
    EXPECT_THAT(work.inputLines(), ElementsAre(QStringLiteral("#1 b"), QStringLiteral("#2 c")));
    EXPECT_EQ(work.expression().toStdString(), "#1 #2 + #3 +");
    EXPECT_EQ(work.macro().inputs[2], "");
    for (int i = 2; i < 9; ++i) EXPECT_TRUE(work.addInput(QStringLiteral("d")));
    EXPECT_FALSE(work.addInput(QStringLiteral("e")));
}

TEST(EditedMacro, CarriageReturnsInFrontOfLineFeedsGo)
{
    REditedMacro work;
    work.setExpression(QStringLiteral("1 2\r\n+\r\n"));
    work.setComment(QStringLiteral("a\r\nb"));
    EXPECT_EQ(work.macro().expression, "1 2\n+\n");
    EXPECT_EQ(work.macro().comment, "a\nb\n");
    EXPECT_EQ(work.comment().toStdString(), "a\nb");
}

TEST(EditedMacro, WhatIsTooLongCannotBeStored)
{
    REditedMacro work;
    EXPECT_TRUE(work.obstacle().isEmpty());
    work.setExpression(QString(500, QLatin1Char('1')));
    EXPECT_EQ(work.obstacle().toStdString(), "The expression has 500 bytes; a macro file holds 499.");
    work.setExpression(QString(499, QLatin1Char('1')));
    EXPECT_TRUE(work.obstacle().isEmpty());
    work.setComment(QString(1000, QLatin1Char('c')));
    EXPECT_EQ(work.obstacle().toStdString(), "The comment has 1001 bytes; a macro file holds 1000.");
}

TEST(EditedMacro, KnowsWhatAVariableWouldSufferFrom)
{
    REditedMacro work;
    EXPECT_THAT(work.fault().toStdString(), HasSubstr("Lines of one character are passed over"));
    work.setExpression(QStringLiteral("1 foo +"));
    EXPECT_EQ(work.fault().toStdString(), "Word 2, \"foo\": neither an operator, an operand nor a number.");
    work.setExpression(QStringLiteral("%x 2 *"));
    EXPECT_EQ(work.fault().toStdString(), "");
    work.setLabel(QStringLiteral(" "));
    EXPECT_EQ(work.fault().toStdString(), "The macro has no label.");
}

// --- the dialog

class MacroEditor : public testing::Test {
protected:
    void open()
    {
        dialog = std::make_unique<macroeditorDlg>(folder, variables, user);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    void openMacro()
    {
        variables::MACRO macro;
        macro.nInputs = 1;
        macro.inputs[0] = "Depth [m]";
        macro.label = "Twice [m]";
        macro.expression = "#1 2 *\n";
        macro.comment = "About it.\n";
        ASSERT_TRUE(variables::writeMacroFile(path("twice.mac"), macro));
        open();
        ASSERT_TRUE(dialog->openFile(QString::fromStdString(path("twice.mac"))));
    }
    [[nodiscard]] std::string path(const std::string& name) const { return directory.path() + name; }
    [[nodiscard]] variables::MACRO stored(const std::string& name) const
    {
        variables::MACRO macro;
        variables::MACROFAULT fault;
        EXPECT_TRUE(variables::readMacroFile(path(name), macro, fault)) << fault.text;
        return macro;
    }
    void press(const char* button) { child<QPushButton>(*dialog, button).click(); }
    [[nodiscard]] std::vector<std::string> inputs()
    {
        return linesOf(child<QListWidget>(*dialog, "defined"));
    }
    void type(const char* formula)
    {
        child<QPlainTextEdit>(*dialog, "expression").setPlainText(QLatin1StringView(formula));
    }

    static constexpr int yes = 0, no = 1, cancel = 2; // of unsaved changes

    testing_support::RTemporaryDirectory directory;
    QString folder = QString::fromStdString(directory.path());
    std::vector<collection::VARINFO> variables = variablesOf({"Temp [~^oC]", "Salinity [psu]"});
    testing_support::RScriptedUser user;
    std::unique_ptr<macroeditorDlg> dialog;
};

TEST_F(MacroEditor, WithoutAFileStartsWithANewMacro)
{
    open();
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Macro Editor - NewMacro.mac");
    EXPECT_EQ(child<QLineEdit>(*dialog, "label").text().toStdString(), "New Variable [units]");
    EXPECT_EQ(child<QPlainTextEdit>(*dialog, "expression").toPlainText().toStdString(), "1\n");
    EXPECT_THAT(inputs(), ElementsAre());
    EXPECT_FALSE(dialog->edited().isDirty());
    dialog->reject(); // asks nothing
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(MacroEditor, ShowsTheFileThatIsChosen)
{
    openMacro();
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Macro Editor - twice.mac");
    EXPECT_THAT(inputs(), ElementsAre("#1 Depth [m]"));
    EXPECT_EQ(child<QPlainTextEdit>(*dialog, "comment").toPlainText().toStdString(), "About it.");
    EXPECT_FALSE(dialog->edited().isDirty());
    EXPECT_THAT(user.statusTexts, Contains("Opening " + path("twice.mac") + " ..."));
}

TEST_F(MacroEditor, AsksForAFileUntilOneIsReadOrNoneIsWanted)
{
    ASSERT_TRUE(common::writeFile(path("bad.mac"), "NVQ3\n"));
    open();
    BOX said;
    std::string title;
    withNext<QFileDialog>([&](QFileDialog& files) {
        title = files.windowTitle().toStdString();
        answerNext("&OK", &said);
        enterFile(files, QStringLiteral("bad.mac"));
        withNext<QFileDialog>([](QFileDialog& again) { again.reject(); });
    });
    dialog->chooseFile();
    EXPECT_EQ(title, "Select NVQ macro ...");
    EXPECT_EQ(said.text, "Not a valid NVQ4.0 macro file!\n\n" + path("bad.mac") +
                             ":1: the file doesn't begin with \"NVQ4.0\"");
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Macro Editor - NewMacro.mac");
}

TEST_F(MacroEditor, AddsTheTextOfTheEntryLine)
{
    open();
    EXPECT_FALSE(child<QPushButton>(*dialog, "add").isEnabled());
    child<QLineEdit>(*dialog, "entry").setText(QStringLiteral("  Oxygen [ml/l] "));
    press("add");
    child<QListWidget>(*dialog, "new").setCurrentRow(0);
    EXPECT_EQ(child<QLineEdit>(*dialog, "entry").text().toStdString(), "Temp [oC]");
    press("add");
    EXPECT_THAT(inputs(), ElementsAre("#1 Oxygen [ml/l]", "#2 Temp [oC]"));
    EXPECT_TRUE(dialog->edited().isDirty());
    child<QListWidget>(*dialog, "defined").setCurrentRow(0);
    press("delete");
    EXPECT_THAT(inputs(), ElementsAre("#1 Temp [oC]"));
}

TEST_F(MacroEditor, InputsAreTrimmedAndNothingElse)
{
    open();
    child<QLineEdit>(*dialog, "entry").setText(QStringLiteral(" Oxygen  [ml/l] "));
    press("add");
    EXPECT_EQ(dialog->edited().macro().inputs[0], "Oxygen  [ml/l]");
}

TEST_F(MacroEditor, ReturnAddsALineAndTheDeleteKeyTakesItAway)
{
    open();
    auto& offered = child<QListWidget>(*dialog, "new");
    offered.setCurrentRow(1);
    offered.setFocus();
    QTest::keyClick(&offered, Qt::Key_Return);
    EXPECT_THAT(inputs(), ElementsAre("#1 Salinity [psu]"));
    auto& defined = child<QListWidget>(*dialog, "defined");
    defined.setCurrentRow(0);
    defined.setFocus();
    QTest::keyClick(&defined, Qt::Key_Delete);
    EXPECT_THAT(inputs(), ElementsAre());
}

TEST_F(MacroEditor, WhyATenthInputIsNotTakenIsTold)
{
    open();
    auto& offered = child<QListWidget>(*dialog, "new");
    offered.setFocus();
    for (int i = 0; i < 9; ++i) {
        offered.setCurrentRow(0);
        QTest::keyClick(&offered, Qt::Key_Return);
    }
    ASSERT_EQ(inputs().size(), 9u);
    offered.setCurrentRow(1);
    BOX said;
    answerNext("&OK", &said);
    offered.setFocus();
    QTest::keyClick(&offered, Qt::Key_Return);
    EXPECT_EQ(said.text, "A formula has nine inputs at most.");
    EXPECT_EQ(inputs().size(), 9u);
}

TEST_F(MacroEditor, OffersVariablesByTheirPositions)
{
    std::swap(variables[1].position, variables[2].position);
    open();
    EXPECT_THAT(linesOf(child<QListWidget>(*dialog, "new")), ElementsAre("Salinity [psu]", "Temp [oC]"));
}

TEST_F(MacroEditor, SaveNeedsAChange)
{
    openMacro();
    auto& save = child<QPushButton>(*dialog, "save");
    EXPECT_FALSE(save.isEnabled());
    type("#1 7 *\n");
    EXPECT_TRUE(save.isEnabled());
}

TEST_F(MacroEditor, ChecksAMacroWithoutALabel)
{
    openMacro();
    child<QLineEdit>(*dialog, "label").clear();
    BOX said;
    answerNext("&OK", &said);
    press("check");
    EXPECT_EQ(said.text, "The macro has no label.");
}

TEST_F(MacroEditor, EscapeClosesWhatHasNotChanged)
{
    openMacro();
    QTest::keyClick(&child<QLineEdit>(*dialog, "label"), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(user.messages.empty());
}

TEST_F(MacroEditor, NoBusyStateLiesOverAMessage)
{
    ASSERT_TRUE(common::writeFile(path("bad.mac"), "NVQ3\n"));
    open();
    int busy = -1;
    withNext<QMessageBox>([&](QMessageBox& box) {
        busy = user.busy;
        box.accept();
    });
    EXPECT_FALSE(dialog->openFile(QString::fromStdString(path("bad.mac"))));
    EXPECT_EQ(busy, 0);
}

TEST_F(MacroEditor, SavesToItsFile)
{
    openMacro();
    type("#1 3 *\n");
    child<QLineEdit>(*dialog, "width").setText(QStringLiteral("9"));
    press("save");
    EXPECT_FALSE(dialog->edited().isDirty());
    EXPECT_EQ(stored("twice.mac").expression, "#1 3 *\n");
    EXPECT_EQ(stored("twice.mac").width, 9);
    EXPECT_EQ(stored("twice.mac").comment, "About it.\n");
}

TEST_F(MacroEditor, SavesUnderANewName)
{
    openMacro();
    type("#1 4 *\n");
    std::string title;
    withNext<QFileDialog>([&](QFileDialog& files) {
        title = files.windowTitle().toStdString();
        enterFile(files, QStringLiteral("fourfold"));
    });
    press("saveAs");
    EXPECT_EQ(title, "Save NVQ macro ...");
    EXPECT_EQ(stored("fourfold.mac").expression, "#1 4 *\n");
    EXPECT_EQ(stored("twice.mac").expression, "#1 2 *\n");
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Macro Editor - fourfold.mac");
}

TEST_F(MacroEditor, ANewMacroIsSavedUnderANameThatIsAskedFor)
{
    open();
    type("%x 2 *\n");
    withNext<QFileDialog>([](QFileDialog& files) { files.reject(); });
    EXPECT_FALSE(dialog->processSave());
    EXPECT_TRUE(dialog->edited().isDirty());
    withNext<QFileDialog>([](QFileDialog& files) { enterFile(files, QStringLiteral("x.mac")); });
    EXPECT_TRUE(dialog->processSave());
    EXPECT_EQ(stored("x.mac").expression, "%x 2 *\n");
}

TEST_F(MacroEditor, AFaultyMacroIsSavedAfterAQuestion)
{
    openMacro();
    type("#1 #2 *\n");
    BOX said;
    answerNext("&No", &said);
    EXPECT_FALSE(dialog->processSave());
    EXPECT_EQ(said.text, "Word 2, \"#2\": the last input is #1.\n\nSave it all the same?");
    EXPECT_EQ(stored("twice.mac").expression, "#1 2 *\n");
    answerNext("&Yes");
    EXPECT_TRUE(dialog->processSave());
    EXPECT_EQ(stored("twice.mac").expression, "#1 #2 *\n");
}

TEST_F(MacroEditor, ChecksWhenItIsAsked)
{
    openMacro();
    BOX said;
    answerNext("&OK", &said);
    press("check");
    EXPECT_EQ(said.text, "Nothing is wrong with this macro.");
    type("+\n");
    answerNext("&OK", &said);
    press("check");
    EXPECT_THAT(said.text, HasSubstr("The formula is empty."));
}

TEST_F(MacroEditor, WhatIsTooLongStays)
{
    openMacro();
    child<QPlainTextEdit>(*dialog, "comment").setPlainText(QString(1001, QLatin1Char('c')));
    BOX said;
    answerNext("&OK", &said);
    EXPECT_FALSE(dialog->processSave());
    EXPECT_THAT(said.text, HasSubstr("The comment has 1002 bytes"));
    EXPECT_TRUE(dialog->edited().isDirty());
}

TEST_F(MacroEditor, AsksAboutUnsavedChangesWhenItIsClosed)
{
    openMacro();
    type("#1 5 *\n");
    user.choices = {cancel, yes};
    dialog->reject();
    EXPECT_THAT(user.messages, ElementsAre("Macro Editor: twice.mac has changed.\n\nSave the changes?"));
    EXPECT_TRUE(dialog->isVisible());
    dialog->close();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(stored("twice.mac").expression, "#1 5 *\n");
}

TEST_F(MacroEditor, ChangesThatAreNotWantedGo)
{
    openMacro();
    type("#1 5 *\n");
    user.choices = {no};
    dialog->reject();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(stored("twice.mac").expression, "#1 2 *\n");
}

TEST_F(MacroEditor, AFileThatCannotBeWrittenIsTold)
{
    openMacro();
    type("#1 5 *\n");
    ASSERT_EQ(::remove(path("twice.mac").c_str()), 0);
    ASSERT_TRUE(QDir(folder).mkdir(QStringLiteral("twice.mac")));
    BOX said;
    answerNext("&OK", &said);
    EXPECT_FALSE(dialog->processSave());
    EXPECT_THAT(said.text, HasSubstr("can't be written"));
    EXPECT_TRUE(dialog->edited().isDirty());
}

} // namespace
