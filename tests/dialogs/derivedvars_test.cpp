// The forms around derived variables.

#include "dialogs/derivedvars.h"

#include <QInputDialog>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/editedpositions.h"
#include "dialogs/generalsettings.h"
#include "dialogs/identifyvar.h"
#include "dialogs/selconversion.h"
#include "dialogs/variablesettler.h"
#include "dialogs/varsettings.h"
#include "nextdialog.h"
#include "variables.h"
#include "variables/setup.h"

namespace {

using testing::ElementsAre;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::child;
using testing_support::linesOf;
using testing_support::variablesOf;
using testing_support::withNext;

void showForm(QDialog& dialog)
{
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
}

class DerivedVariables : public testing::Test {
protected:
    DerivedVariables()
    {
        collection.variableCount = collection.totalVariableCount = 2;
        setLabel(1, "Depth [m]");
        setLabel(2, "Salinity [psu]");
        addDerived("A", 2);
        addDerived("B", 3);
        addDerived("C", 1);
    }
    void setLabel(int number, const char* label)
    {
        collection::setLabel(collection.variables.at(static_cast<std::size_t>(number)), label);
    }
    int addDerived(const char* label, int source)
    {
        const int number = ++collection.totalVariableCount;
        setLabel(number, label);
        collection::VARINFO& variable = collection.variables.at(static_cast<std::size_t>(number));
        variable.nSources = 1;
        variable.sources[0] = source;
        return number;
    }
    dialogs::DERIVEDACTIONS actions()
    {
        return {[this](int row) {
                    rows.push_back(row);
                    return cancels ? 0 : addDerived("New", 1);
                },
                [this](int number) {
                    (void)variables::deleteDerivedVariable(collection, number - collection.variableCount);
                }};
    }
    collection::RCollection collection;
    std::vector<int> rows;
    bool cancels = false;
};

TEST_F(DerivedVariables, BothListsAreShown)
{
    dialogs::derivedvarsDlg dialog(collection, actions());
    showForm(dialog);
    EXPECT_EQ(dialog.windowTitle().toStdString(), "Derived Variables");
    EXPECT_EQ(child<QListWidget>(dialog, "choices").count(), 43);
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "defined")), ElementsAre("A", "B", "C"));
    EXPECT_FALSE(child<QPushButton>(dialog, "add").isEnabled());
    EXPECT_FALSE(child<QPushButton>(dialog, "delete").isEnabled());
}

TEST_F(DerivedVariables, AddWorksAtOnceAndSelectsWhatItMade)
{
    dialogs::derivedvarsDlg dialog(collection, actions());
    showForm(dialog);
    child<QListWidget>(dialog, "choices").setCurrentRow(18);
    child<QPushButton>(dialog, "add").click();
    EXPECT_THAT(rows, ElementsAre(18));
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "defined")), ElementsAre("A", "B", "C", "New"));
    EXPECT_EQ(child<QListWidget>(dialog, "defined").currentRow(), 3);
}

TEST_F(DerivedVariables, ADoubleClickAdds)
{
    cancels = true;
    dialogs::derivedvarsDlg dialog(collection, actions());
    showForm(dialog);
    auto& choices = child<QListWidget>(dialog, "choices");
    choices.setCurrentRow(2);
    Q_EMIT choices.itemDoubleClicked(choices.item(2));
    EXPECT_THAT(rows, ElementsAre(2));
    EXPECT_EQ(child<QListWidget>(dialog, "defined").count(), 3);
}

TEST_F(DerivedVariables, TheDeleteKeyAsksNamingTheDependents)
{
    dialogs::derivedvarsDlg dialog(collection, actions());
    showForm(dialog);
    auto& defined = child<QListWidget>(dialog, "defined");
    defined.setCurrentRow(0);
    defined.setFocus();
    BOX said;
    answerNext("&No", &said);
    defined.setFocus();
    QTest::keyClick(&defined, Qt::Key_Delete);
    EXPECT_EQ(said.text, "Delete A?\n\nThese are computed from it and go too:\nB");
    EXPECT_EQ(defined.count(), 3);
    answerNext("&Yes");
    child<QPushButton>(dialog, "delete").click();
    EXPECT_THAT(linesOf(defined), ElementsAre("C"));
}

TEST_F(DerivedVariables, ReturnOnAChoiceAdds)
{
    dialogs::derivedvarsDlg dialog(collection, actions());
    showForm(dialog);
    auto& choices = child<QListWidget>(dialog, "choices");
    choices.setCurrentRow(7);
    choices.setFocus();
    QTest::keyClick(&choices, Qt::Key_Return);
    EXPECT_THAT(rows, ElementsAre(7));
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClick(&choices, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(DerivedVariables, BehindADeletionTheLineThatMovedUpIsSelected)
{
    dialogs::derivedvarsDlg dialog(collection, actions());
    showForm(dialog);
    auto& defined = child<QListWidget>(dialog, "defined");
    defined.setCurrentRow(1); // B, of which nothing is computed
    answerNext("&Yes");
    defined.setFocus();
    QTest::keyClick(&defined, Qt::Key_Delete);
    EXPECT_THAT(linesOf(defined), ElementsAre("A", "C"));
    EXPECT_EQ(defined.currentRow(), 1);
    showForm(dialog); // again the active one, behind the question
    answerNext("&Yes");
    defined.setFocus();
    QTest::keyClick(&defined, Qt::Key_Delete);
    EXPECT_EQ(defined.currentRow(), 0);
    EXPECT_TRUE(child<QPushButton>(dialog, "delete").isEnabled());
}

TEST_F(DerivedVariables, DefinedOnesStandByTheirPositions)
{
    for (int v = 1; v <= 5; ++v) collection.variables.at(static_cast<std::size_t>(v)).position = v;
    std::swap(collection.variables[3].position, collection.variables[5].position);
    dialogs::derivedvarsDlg dialog(collection, actions());
    showForm(dialog);
    auto& defined = child<QListWidget>(dialog, "defined");
    EXPECT_THAT(linesOf(defined), ElementsAre("C", "B", "A"));
    defined.setCurrentRow(0);
    answerNext("&Yes");
    defined.setFocus();
    QTest::keyClick(&defined, Qt::Key_Delete);
    EXPECT_THAT(linesOf(defined), ElementsAre("B", "A"));
}

// --- positions

std::vector<int> positionsOf(const std::vector<collection::VARINFO>& variables)
{
    std::vector<int> positions;
    for (std::size_t v = 1; v < variables.size(); ++v) positions.push_back(variables[v].position);
    return positions;
}

TEST(Positions, ThoseInBetweenMoveByOne)
{
    auto variables = variablesOf({"a", "b", "c", "d"});
    dialogs::moveToPosition(variables, 4, 2);
    EXPECT_THAT(positionsOf(variables), ElementsAre(1, 3, 4, 2));
    dialogs::moveToPosition(variables, 1, 3);
    EXPECT_THAT(positionsOf(variables), ElementsAre(3, 2, 4, 1));
    dialogs::moveToPosition(variables, 2, 99);
    EXPECT_THAT(positionsOf(variables), ElementsAre(2, 4, 3, 1));
    EXPECT_THAT(dialogs::numbersByPosition(variables), ElementsAre(4, 1, 3, 2));
}

TEST(Positions, DoubleOnesAreSettled)
{
    auto variables = variablesOf({"a", "b", "c"});
    variables[1].position = 7;
    variables[2].position = variables[3].position = 0;
    dialogs::settlePositions(variables);
    EXPECT_THAT(positionsOf(variables), ElementsAre(3, 1, 2));
}

// --- varsettingsDlg

TEST(VariableSettings, EditsACopy)
{
    const auto variables = variablesOf({"a [m]", "b", "c"});
    dialogs::varsettingsDlg dialog(variables);
    showForm(dialog);
    EXPECT_EQ(dialog.windowTitle().toStdString(), "Variables Settings");
    child<QLineEdit>(dialog, "label").setText(QStringLiteral("Alpha [km]"));
    child<QSpinBox>(dialog, "width").setValue(9);
    child<QSpinBox>(dialog, "decimals").setValue(4);
    dialog.processOK();
    EXPECT_STREQ(dialog.variables().at(1).label, "Alpha [km]");
    EXPECT_STREQ(dialog.variables().at(1).shortLabel, "Alpha");
    EXPECT_EQ(dialog.variables().at(1).width, 9);
    EXPECT_EQ(dialog.variables().at(1).decimals, 4);
    EXPECT_STREQ(variables.at(1).label, "a [m]");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST(VariableSettings, ALabelIsCutAtSixtyBytes)
{
    dialogs::varsettingsDlg dialog(variablesOf({"a"}));
    showForm(dialog);
    QTest::keyClicks(&child<QLineEdit>(dialog, "label"), QString(80, u'x'));
    dialog.processOK();
    EXPECT_EQ(std::string(dialog.variables().at(1).label).size(), 60u);
}

TEST(VariableSettings, AVariableKeepsItsLabelIfItIsEmptied)
{
    dialogs::varsettingsDlg dialog(variablesOf({"a"}));
    showForm(dialog);
    child<QLineEdit>(dialog, "label").clear();
    dialog.processOK();
    EXPECT_STREQ(dialog.variables().at(1).label, "a");
}

TEST(VariableSettings, ANewPositionMovesTheLine)
{
    dialogs::varsettingsDlg dialog(variablesOf({"a", "b", "c"}));
    showForm(dialog);
    child<QSpinBox>(dialog, "position").setValue(3);
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "variables")), ElementsAre("b", "c", "a"));
    EXPECT_EQ(child<QListWidget>(dialog, "variables").currentRow(), 2);
    EXPECT_EQ(child<QSpinBox>(dialog, "position").value(), 3);
    EXPECT_THAT(positionsOf(dialog.variables()), ElementsAre(3, 1, 2));
}

TEST(VariableSettings, TheDataRangeIsShown)
{
    auto variables = variablesOf({"a"});
    EXPECT_EQ(dialogs::rangeText(variables[1]).toStdString(), "no values seen yet");
    variables[1].rangeMin = -1.5f;
    variables[1].rangeMax = 20;
    EXPECT_EQ(dialogs::rangeText(variables[1]).toStdString(), "-1.50 - 20.00");
}

// --- generalsettingsDlg

TEST(GeneralSettings, TakesTheCoverageCriteria)
{
    dialogs::generalsettingsDlg dialog(variables::COVERAGECRITERIA{});
    showForm(dialog);
    EXPECT_EQ(child<QLineEdit>(dialog, "gapOffset").text().toStdString(), "175");
    child<QSpinBox>(dialog, "minLevels").setValue(6);
    child<QSpinBox>(dialog, "minFraction").setValue(50);
    child<QLineEdit>(dialog, "gapSlope").setText(QStringLiteral("0.25"));
    child<QLineEdit>(dialog, "gapLimit").setText(QStringLiteral("900"));
    dialog.processOK();
    EXPECT_EQ(dialog.coverage(), (variables::COVERAGECRITERIA{6, 50, 175.0f, 0.25f, 900.0f}));
}

TEST(GeneralSettings, ATextThatIsNoNumberIsTold)
{
    dialogs::generalsettingsDlg dialog(variables::COVERAGECRITERIA{});
    showForm(dialog);
    child<QSpinBox>(dialog, "minLevels").setValue(6);
    child<QLineEdit>(dialog, "gapLimit").setText(QStringLiteral("deep"));
    answerNext("&OK");
    dialog.processOK();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.coverage(), variables::COVERAGECRITERIA{});
}

TEST(VariableSettings, CancelKeepsTheLabelsOfTheCaller)
{
    const auto variables = variablesOf({"a"});
    dialogs::varsettingsDlg dialog(variables);
    showForm(dialog);
    QTest::keyClick(&child<QLineEdit>(dialog, "label"), Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_STREQ(variables.at(1).label, "a");
}

TEST(GeneralSettings, WhatAFieldCannotShowStaysUntilItIsEdited)
{
    variables::COVERAGECRITERIA criteria;
    criteria.minLevels = -7;
    criteria.minFractionPercent = 150;
    dialogs::generalsettingsDlg dialog(criteria);
    showForm(dialog);
    dialog.processOK();
    EXPECT_EQ(dialog.coverage(), criteria);
    dialogs::generalsettingsDlg edited(criteria);
    showForm(edited);
    child<QSpinBox>(edited, "minFraction").setValue(90);
    edited.processOK();
    EXPECT_EQ(edited.coverage().minLevels, -7);
    EXPECT_EQ(edited.coverage().minFractionPercent, 90);
}

// --- the settler

TEST_F(DerivedVariables, TheProposedVariableIsMarked)
{
    dialogs::RDialogVariableSettler settler(nullptr);
    const variables::IDENTIFICATION question{"Task - Identify Salinity [psu]", "Task", "Salinity [psu]", 4,
                                             true};
    std::string title;
    withNext<dialogs::identifyvarDlg>([&](auto& dialog) {
        title = dialog.windowTitle().toStdString();
        dialog.processOK();
    });
    EXPECT_EQ(settler.identify(question, collection), 4);
    EXPECT_EQ(title, question.title);
    withNext<dialogs::identifyvarDlg>([](auto& dialog) { dialog.reject(); });
    EXPECT_EQ(settler.identify(question, collection), std::nullopt);
}

TEST(DialogVariableSettler, TheWaysToReadATimeAreListed)
{
    dialogs::RDialogVariableSettler settler(nullptr);
    withNext<dialogs::selconversionDlg>([](auto& dialog) {
        EXPECT_EQ(dialog.windowTitle().toStdString(), "Conversion t -> Time [yr]");
        auto& rows = child<QListWidget>(dialog, "rows");
        EXPECT_EQ(rows.count(), 15);
        rows.setCurrentRow(14);
        dialog.processOK();
    });
    EXPECT_EQ(settler.chooseTimeForm("t", "Time [yr]"), 34);
}

TEST(DialogVariableSettler, ANumberIsALine)
{
    dialogs::RDialogVariableSettler settler(nullptr);
    withNext<QInputDialog>([](QInputDialog& dialog) {
        EXPECT_EQ(dialog.textValue().toStdString(), "0");
        dialog.setTextValue(QStringLiteral("1000"));
        dialog.accept();
    });
    EXPECT_EQ(settler.askNumber("Dynamic Height", "Dynamic Height - Enter Ref. Press. [db]:", "0"), "1000");
}

// Answers the next line with this; what it showed at first is kept.
void enterLine(const char* text, std::string* shown, const std::function<void()>& then = {})
{
    withNext<QInputDialog>([=](QInputDialog& dialog) {
        *shown = dialog.textValue().toStdString();
        dialog.setTextValue(QLatin1StringView(text));
        if (then) then();
        dialog.accept();
    });
}

TEST(DialogVariableSettler, ANumberIsAskedForUntilItReads)
{
    dialogs::RDialogVariableSettler settler(nullptr);
    std::string shown;
    BOX said;
    enterLine("ten", &shown, [&] {
        withNext<QMessageBox>([&](QMessageBox& box) {
            said.text = box.text().toStdString();
            enterLine("10", &shown);
            box.accept();
        });
    });
    EXPECT_EQ(settler.askNumber("Dynamic Height", "Ref.:", "0"), "10");
    EXPECT_EQ(said.text, "\"ten\" is no number.");
    EXPECT_EQ(shown, "ten");
}

TEST(DialogVariableSettler, AnOriginIsAskedForUntilItReadsOrIsCancelled)
{
    dialogs::RDialogVariableSettler settler(nullptr);
    std::string shown;
    BOX said;
    enterLine("yesterday", &shown, [&] {
        withNext<QMessageBox>([&](QMessageBox& box) {
            said.text = box.text().toStdString();
            withNext<QInputDialog>([](QInputDialog& again) { again.reject(); });
            box.accept();
        });
    });
    EXPECT_EQ(settler.askOrigin("t [days]"), std::nullopt);
    EXPECT_EQ(said.text, "\"yesterday\" is no date of the form yyyy-mm-dd hh:mm:ss.");
    enterLine("1970-01-01 00:00:00", &shown);
    EXPECT_EQ(settler.askOrigin("t [days]"), "1970-01-01 00:00:00");
    EXPECT_EQ(shown, "1950-01-01 00:00:00");
}

} // namespace
