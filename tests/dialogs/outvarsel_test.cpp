#include "dialogs/outvarsel.h"

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "variables.h"

namespace {

using dialogs::outvarselDlg;
using testing::ElementsAre;
using testing_support::child;
using testing_support::linesOf;
using testing_support::variablesOf;

class OutputVariables : public testing::Test {
protected:
    void open(const std::vector<int>& chosen)
    {
        dialog = std::make_unique<outvarselDlg>(variables, chosen);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    QListWidget& list() { return child<QListWidget>(*dialog, "variables"); }
    void press(const char* button) { child<QPushButton>(*dialog, button).click(); }

    std::vector<collection::VARINFO> variables =
        variablesOf({"Depth [m]", "Temp [~^oC]", "Salinity [psu]", "Sigma-0 [kg/m~^3]"});
    std::unique_ptr<outvarselDlg> dialog;
};

TEST_F(OutputVariables, ShowsAllVariablesWithThoseThatWereChosenBefore)
{
    open({4, 1, 17});
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Select Variables for Output");
    EXPECT_THAT(linesOf(list()), ElementsAre("Depth [m]", "Temp [oC]", "Salinity [psu]", "Sigma-0 [kg/m3]"));
    EXPECT_THAT(dialog->chosen(), ElementsAre(1, 4));
    EXPECT_EQ(child<QLabel>(*dialog, "count").text().toStdString(), "2 of 4 selected");
}

TEST_F(OutputVariables, LinesFollowThePositionsAndNumbersDoNot)
{
    std::swap(variables[1].position, variables[4].position);
    open({4});
    EXPECT_THAT(linesOf(list()), ElementsAre("Sigma-0 [kg/m3]", "Temp [oC]", "Salinity [psu]", "Depth [m]"));
    EXPECT_EQ(list().item(0)->checkState(), Qt::Checked);
    list().item(3)->setCheckState(Qt::Checked);
    EXPECT_THAT(dialog->chosen(), ElementsAre(1, 4));
}

TEST_F(OutputVariables, SelectAllAndInvert)
{
    open({2});
    press("invert");
    EXPECT_THAT(dialog->chosen(), ElementsAre(1, 3, 4));
    press("all");
    EXPECT_THAT(dialog->chosen(), ElementsAre(1, 2, 3, 4));
}

TEST_F(OutputVariables, AClickInTheLineTicksItOnce)
{
    open({});
    QWidget* const view = list().viewport();
    const QPoint line = list().visualItemRect(list().item(2)).center();
    QTest::mouseClick(view, Qt::LeftButton, {}, line);
    EXPECT_THAT(dialog->chosen(), ElementsAre(3));
    QTest::mouseClick(view, Qt::LeftButton, {},
                      list().visualItemRect(list().item(0)).topLeft() + QPoint(8, 6));
    EXPECT_THAT(dialog->chosen(), ElementsAre(1, 3));
    QTest::mouseClick(view, Qt::LeftButton, {}, line);
    EXPECT_THAT(dialog->chosen(), ElementsAre(1));
}

TEST_F(OutputVariables, TheBlankKeyTicks)
{
    open({});
    QTest::keyClick(&list(), Qt::Key_Down);
    QTest::keyClick(&list(), Qt::Key_Space);
    EXPECT_THAT(dialog->chosen(), ElementsAre(2));
}

TEST_F(OutputVariables, NothingChosenIsNoAnswer)
{
    open({1});
    press("invert");
    press("invert");
    QTest::keyClick(&list(), Qt::Key_Space);
    EXPECT_FALSE(child<QPushButton>(*dialog, "ok").isEnabled());
    dialog->processOK();
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(OutputVariables, EnterTakesAndEscapeDoesNot)
{
    open({1});
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    open({1});
    QTest::keyClick(&list(), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    open({1});
    press("cancel");
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

} // namespace
