// The forms that ask for one thing.

#include <QInputDialog>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/deflinconversion.h"
#include "dialogs/enterednumber.h"
#include "dialogs/help.h"
#include "dialogs/identifyvar.h"
#include "dialogs/lineinput.h"
#include "dialogs/selconversion.h"
#include "nextdialog.h"
#include "variables.h"

namespace {

using testing::ElementsAre;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::child;
using testing_support::linesOf;
using testing_support::variablesOf;
using testing_support::withNext;

template <typename T>
void showForm(T& dialog)
{
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
}

// --- identifyvarDlg

TEST(IdentifyVariable, PreselectsTheFirstLabelThatHoldsTheWord)
{
    const auto variables = variablesOf({"Pressure", "BOT. DEPTH [M]", "Depth [m]"});
    dialogs::identifyvarDlg dialog(QString::fromUtf8("Pot. Temp [°C] -> Temp [°C]"),
                                   QStringLiteral("Depth [m]"), variables);
    showForm(dialog);
    EXPECT_EQ(dialog.windowTitle().toStdString(), "Pot. Temp [°C] -> Temp [°C] - Identify Depth [m]");
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "variables")),
                ElementsAre("Pressure", "BOT. DEPTH [M]", "Depth [m]"));
    QTest::keyClick(&child<QListWidget>(dialog, "variables"), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.variable(), 2);
}

TEST(IdentifyVariable, WithoutALikelyOneTheUserHasToSelect)
{
    const auto variables = variablesOf({"a", "b"});
    dialogs::identifyvarDlg dialog(QStringLiteral("x"), QStringLiteral("Depth [m]"), variables);
    showForm(dialog);
    auto* const ok = child<QDialogButtonBox>(dialog, "buttons").button(QDialogButtonBox::Ok);
    EXPECT_FALSE(ok->isEnabled());
    dialog.processOK();
    EXPECT_TRUE(dialog.isVisible());
    child<QListWidget>(dialog, "variables").setCurrentRow(1);
    EXPECT_TRUE(ok->isEnabled());
    dialog.processOK();
    EXPECT_EQ(dialog.variable(), 2);
}

TEST(IdentifyVariable, MarkupDoesNotHideAWord)
{
    const auto variables = variablesOf({"x", "NO~_3 [~$m~#mol/l]"});
    dialogs::identifyvarDlg dialog(QStringLiteral("x"), QStringLiteral("no3"), variables);
    EXPECT_EQ(dialog.variable(), 2);
}

TEST(IdentifyVariable, NothingIsSelectedWhereNoneIsLikely)
{
    const auto variables = variablesOf({"Depth [m]"});
    dialogs::identifyvarDlg dialog(QStringLiteral("x"), QStringLiteral("Depth [m]"), variables, nullptr, 0);
    EXPECT_EQ(dialog.variable(), 0);
}

TEST(IdentifyVariable, LinesFollowThePositions)
{
    auto variables = variablesOf({"a", "Depth [m]", "c"});
    variables[1].position = 3;
    variables[3].position = 1;
    dialogs::identifyvarDlg dialog(QStringLiteral("x"), QStringLiteral("Depth [m]"), variables, nullptr, 1);
    EXPECT_THAT(linesOf(child<QListWidget>(dialog, "variables")), ElementsAre("c", "Depth [m]", "a"));
    EXPECT_EQ(dialog.variable(), 1);
    child<QListWidget>(dialog, "variables").setCurrentRow(0);
    EXPECT_EQ(dialog.variable(), 3);
}

// --- selconversionDlg

TEST(SelectConversion, GivesTheRowThatWasSelected)
{
    dialogs::selconversionDlg dialog(QStringLiteral("a [*]"), QString::fromUtf8("b [°C]"),
                                     {QStringLiteral("one"), QStringLiteral("two")}, 0);
    showForm(dialog);
    QTest::keyClick(&child<QListWidget>(dialog, "rows"), Qt::Key_Down);
    QTest::keyClick(&child<QListWidget>(dialog, "rows"), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.row(), 1);
}

TEST(SelectConversion, EscapeSelectsNothing)
{
    dialogs::selconversionDlg dialog(QStringLiteral("a"), QStringLiteral("b"), {QStringLiteral("one")}, 0);
    showForm(dialog);
    QTest::keyClick(&child<QListWidget>(dialog, "rows"), Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

// --- deflinconversionDlg

TEST(LinearConversion, StartsAsTheIdentity)
{
    dialogs::deflinconversionDlg dialog(QStringLiteral("Conversion"));
    showForm(dialog);
    EXPECT_EQ(child<QLineEdit>(dialog, "a").text().toStdString(), "1.0");
    EXPECT_EQ(child<QLineEdit>(dialog, "b").text().toStdString(), "0.0");
    QTest::keyClick(&child<QLineEdit>(dialog, "a"), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.a(), 1);
    EXPECT_EQ(dialog.b(), 0);
}

TEST(LinearConversion, StaysWithAFieldThatHoldsNoNumber)
{
    dialogs::deflinconversionDlg dialog(QStringLiteral("Conversion"));
    showForm(dialog);
    child<QLineEdit>(dialog, "a").setText(QStringLiteral("2,5"));
    for (const char* const wrong : {"x", "", "1e99", "-1e10"}) { // the last stands for no value
        child<QLineEdit>(dialog, "b").setText(QLatin1StringView(wrong));
        BOX said;
        answerNext("&OK", &said);
        dialog.processOK();
        EXPECT_EQ(said.text, std::string("b is no number: ") + wrong);
        EXPECT_TRUE(dialog.isVisible());
    }
    child<QLineEdit>(dialog, "b").setText(QStringLiteral("3"));
    dialog.processOK();
    EXPECT_EQ(dialog.a(), 2.5f);
    EXPECT_EQ(dialog.b(), 3);
}

// --- askLine

TEST(LineInput, GivesTheLineOrNothing)
{
    std::string title, prompt, preset;
    withNext<QInputDialog>([&](QInputDialog& dialog) {
        title = dialog.windowTitle().toStdString();
        prompt = dialog.labelText().toStdString();
        preset = dialog.textValue().toStdString();
        dialog.setTextValue(QString::fromUtf8("Süd"));
        dialog.accept();
    });
    const auto line =
        dialogs::askLine(nullptr, QStringLiteral("Title"), QStringLiteral("<b>?</b>"), QStringLiteral("old"));
    EXPECT_EQ(line.value_or(QString()).toStdString(), "Süd");
    EXPECT_EQ(title + prompt + preset, "Title<b>?</b>old");
    withNext<QInputDialog>([](QInputDialog& dialog) { dialog.reject(); });
    EXPECT_FALSE(dialogs::askLine(nullptr, QStringLiteral("Title"), QStringLiteral("?")));
}

// --- numbers and help

TEST(EnteredNumber, ReadsAPointOrAComma)
{
    EXPECT_EQ(dialogs::numberOf(QStringLiteral(" 1.5 ")), 1.5f);
    EXPECT_EQ(dialogs::numberOf(QStringLiteral("1,5")), 1.5f);
    EXPECT_EQ(dialogs::numberOf(QStringLiteral("-2e3")), -2000.0f);
    for (const char* const wrong : {"", " ", "x", "1 2", "1,000,5", "1.000,5", "nan", "inf", "1e39", "0x10"})
        EXPECT_FALSE(dialogs::numberOf(QLatin1StringView(wrong))) << wrong;
}

TEST(Help, KnowsItsTopics)
{
    EXPECT_FALSE(dialogs::helpText(dialogs::importHelp).empty());
    EXPECT_FALSE(dialogs::helpText(dialogs::spreadsheetHelp).empty());
    EXPECT_TRUE(dialogs::helpText("IDH_NOTHING").empty());
}

} // namespace
