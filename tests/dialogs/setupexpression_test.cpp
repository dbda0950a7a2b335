#include "dialogs/setupexpression.h"

#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nextdialog.h"
#include "variables.h"

namespace {

using dialogs::REditedExpression;
using dialogs::setupexpressionDlg;
using testing::ElementsAre;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::child;
using testing_support::linesOf;
using testing_support::variablesOf;

const std::vector<collection::VARINFO> someVariables =
    variablesOf({"Depth [m]", "Temp [~^oC]", "NO~_3 [~$m~#mol/kg]"});

// --- without widgets

TEST(EditedExpression, InputsAreAddedAtTheEndAndMoveUp)
{
    REditedExpression work({}, someVariables);
    EXPECT_TRUE(work.addInput(2));
    EXPECT_TRUE(work.addInput(0));
    EXPECT_TRUE(work.addInput(2)); // a variable may come twice
    EXPECT_THAT(work.chosenLines(),
                ElementsAre(QStringLiteral("#1 NO3 [umol/kg]"), QStringLiteral("#2 Depth [m]"),
                            QStringLiteral("#3 NO3 [umol/kg]")));
    EXPECT_TRUE(work.removeInput(0));
    EXPECT_THAT(work.definition().inputs, ElementsAre(1, 3));
}

TEST(EditedExpression, ThereAreNineInputsAtMost)
{
    REditedExpression work({}, someVariables);
    for (int i = 0; i < 9; ++i) EXPECT_TRUE(work.addInput(0));
    EXPECT_FALSE(work.addInput(0));
    EXPECT_FALSE(work.removeInput(9));
    EXPECT_FALSE(work.removeInput(-1));
}

TEST(EditedExpression, ALineThatIsNotThereAddsNothing)
{
    REditedExpression work({}, someVariables);
    EXPECT_FALSE(work.addInput(-1));
    EXPECT_FALSE(work.addInput(3));
    EXPECT_FALSE(REditedExpression({}, {}).addInput(0));
}

TEST(EditedExpression, AFormatIsReadWhereItReads)
{
    REditedExpression work({}, someVariables);
    work.setFormat(QStringLiteral("10"), QStringLiteral("x"));
    EXPECT_EQ(work.definition().width, 10);
    EXPECT_EQ(work.definition().decimals, 3);
    work.setFormat(QString(), QStringLiteral("1"));
    EXPECT_EQ(work.definition().width, 10);
    EXPECT_EQ(work.definition().decimals, 1);
    work.setFormat(QStringLiteral("99"), QStringLiteral("9"));
    EXPECT_EQ(work.definition().width, 19);
    EXPECT_EQ(work.definition().decimals, 4);
}

TEST(EditedExpression, LineEndsOfAFormulaBecomeBlanks)
{
    REditedExpression work({}, someVariables);
    work.setFormula(QStringLiteral("1 2\r\n+\n"));
    EXPECT_EQ(work.definition().formula, "1 2  + ");
}

// --- the dialog

class SetupExpression : public testing::Test {
protected:
    SetupExpression() : dialog(someVariables)
    {
        dialog.show();
        dialog.activateWindow();
    }
    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog)); }
    void press(const char* button) { child<QPushButton>(dialog, button).click(); }
    void type(const char* formula)
    {
        child<QPlainTextEdit>(dialog, "formula").setPlainText(QLatin1StringView(formula));
    }
    // What pressing OK says.
    BOX said()
    {
        BOX box;
        answerNext("&OK", &box);
        dialog.processOK();
        EXPECT_TRUE(dialog.isVisible());
        return box;
    }
    setupexpressionDlg dialog;
};

TEST_F(SetupExpression, StartsWithItsDefaults)
{
    EXPECT_EQ(dialog.windowTitle().toStdString(), "Setup Expression Variable");
    EXPECT_EQ(child<QLineEdit>(dialog, "label").text().toStdString(), "New Var [units]");
    EXPECT_EQ(child<QLineEdit>(dialog, "width").text().toStdString(), "8");
    EXPECT_EQ(child<QLineEdit>(dialog, "decimals").text().toStdString(), "3");
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "defined")),
                ElementsAre("Depth [m]", "Temp [oC]", "NO3 [umol/kg]"));
    EXPECT_EQ(child<QLabel>(dialog, "operators").text().toStdString(),
              "Operators: + - * / ** sqrt ln exp sin cos min max");
    EXPECT_EQ(child<QLabel>(dialog, "operands").text().toStdString(),
              "Operands: #1,...; %t Time; %d Day-of-Year; %x Longitude; %y Latitude");
}

TEST_F(SetupExpression, GivesTheDefinition)
{
    child<QListWidget>(dialog, "defined").setCurrentRow(1);
    press("add");
    child<QListWidget>(dialog, "defined").setCurrentRow(0);
    press("add");
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "chosen")), ElementsAre("#1 Temp [oC]", "#2 Depth [m]"));
    child<QLineEdit>(dialog, "label").setText(QStringLiteral("dT [1]"));
    child<QLineEdit>(dialog, "width").setText(QStringLiteral("7"));
    type("#1\n#2 /");
    dialog.processOK();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.definition().label, "dT [1]");
    EXPECT_EQ(dialog.definition().width, 7);
    EXPECT_EQ(dialog.definition().decimals, 3);
    EXPECT_EQ(dialog.definition().formula, "#1 #2 /");
    EXPECT_THAT(dialog.definition().inputs, ElementsAre(2, 1));
}

TEST_F(SetupExpression, DeletesTheSelectedInput)
{
    child<QListWidget>(dialog, "defined").setCurrentRow(1);
    press("add");
    press("add");
    child<QListWidget>(dialog, "chosen").setCurrentRow(0);
    press("delete");
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "chosen")), ElementsAre("#1 Temp [oC]"));
    press("delete");
    EXPECT_FALSE(child<QPushButton>(dialog, "delete").isEnabled());
    EXPECT_THAT(dialog.definition().inputs, ElementsAre());
}

TEST_F(SetupExpression, StaysWithoutALabel)
{
    child<QLineEdit>(dialog, "label").clear();
    const BOX box = said();
    EXPECT_EQ(box.title, "Information missing ...");
    EXPECT_EQ(box.text, "You must enter a Label!");
}

TEST_F(SetupExpression, StaysWithoutAnExpression)
{
    type(" \n");
    const BOX box = said();
    EXPECT_EQ(box.title, "Information missing ...");
    EXPECT_EQ(box.text, "You must enter an Expression!");
}

TEST_F(SetupExpression, StaysWithAFaultyExpression)
{
    type("1 foo +");
    EXPECT_EQ(said().text, "Word 2, \"foo\": neither an operator, an operand nor a number.");
    type("#1");
    EXPECT_EQ(said().text, "Word 1, \"#1\": the formula has no inputs.");
    type("1 2 +");
    dialog.processOK();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(SetupExpression, ReturnAddsALineAndPressesNoButton)
{
    auto& defined = child<QListWidget>(dialog, "defined");
    defined.setCurrentRow(1);
    defined.setFocus();
    QTest::keyClick(&defined, Qt::Key_Return);
    EXPECT_THAT(dialog.definition().inputs, ElementsAre(2));
    EXPECT_TRUE(dialog.isVisible());
    Q_EMIT defined.itemDoubleClicked(defined.item(1));
    EXPECT_THAT(dialog.definition().inputs, ElementsAre(2, 2));
}

TEST_F(SetupExpression, TheDeleteKeyTakesAnInputAway)
{
    press("add"); // nothing is selected
    child<QListWidget>(dialog, "defined").setCurrentRow(1);
    press("add");
    auto& chosen = child<QListWidget>(dialog, "chosen");
    chosen.setCurrentRow(0);
    chosen.setFocus();
    QTest::keyClick(&chosen, Qt::Key_Delete);
    EXPECT_THAT(dialog.definition().inputs, ElementsAre());
}

TEST_F(SetupExpression, WhyATenthInputIsNotTakenIsTold)
{
    auto& defined = child<QListWidget>(dialog, "defined");
    defined.setCurrentRow(0);
    for (int i = 0; i < 9; ++i) press("add");
    EXPECT_FALSE(child<QPushButton>(dialog, "add").isEnabled());
    BOX said;
    answerNext("&OK", &said);
    defined.setFocus();
    QTest::keyClick(&defined, Qt::Key_Return);
    EXPECT_EQ(said.text, "A formula has nine inputs at most.");
    EXPECT_EQ(dialog.definition().inputs.size(), 9u);
}

TEST_F(SetupExpression, ShowsTheFormatThatIsTaken)
{
    child<QLineEdit>(dialog, "width").setText(QStringLiteral("99"));
    said(); // there is no expression
    EXPECT_EQ(child<QLineEdit>(dialog, "width").text().toStdString(), "18");
}

TEST_F(SetupExpression, TheLabelIsTrimmedAndNothingElse)
{
    child<QLineEdit>(dialog, "label").setText(QStringLiteral("  a  [b] "));
    type("1 2 +");
    dialog.processOK();
    EXPECT_EQ(dialog.definition().label, "a  [b]");
}

TEST_F(SetupExpression, EscapeCancels)
{
    QTest::keyClick(&child<QLineEdit>(dialog, "label"), Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

TEST(SetupExpressionOrder, VariablesStandByTheirPositions)
{
    auto variables = someVariables;
    variables[1].position = 3;
    variables[3].position = 1;
    setupexpressionDlg dialog(variables);
    auto& defined = child<QListWidget>(dialog, "defined");
    EXPECT_THAT(linesOf(defined), ElementsAre("NO3 [umol/kg]", "Temp [oC]", "Depth [m]"));
    defined.setCurrentRow(0);
    child<QPushButton>(dialog, "add").click();
    EXPECT_THAT(dialog.definition().inputs, ElementsAre(3));
}

} // namespace
