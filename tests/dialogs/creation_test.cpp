#include "dialogs/creation.h"

#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/variablesets.h"

namespace {

using dialogs::creationDlg;

class Creation : public testing::Test {
protected:
    Creation()
    {
        dialog.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    }
    QListWidget& entries() { return *dialog.findChild<QListWidget*>(QStringLiteral("entries")); }

    creationDlg dialog{QStringLiteral("Süd_1")};
};

TEST_F(Creation, OffersTheElevenSetsInOrder)
{
    std::vector<std::string> shown;
    for (int row = 0; row < entries().count(); ++row)
        shown.push_back(entries().item(row)->text().toStdString());
    EXPECT_THAT(shown,
                testing::ElementsAre(
                    "user specifies variables manually", ".var, .o4x or .txt file as template",
                    "WOCE WHP Bottle variables", "WOCE WHP CTD variables", "WOCE Surface Velocity variables",
                    "WOCE ADCP variables", "WOCE Subsurface Float variables", "WOCE Current Meter variables",
                    "WOCE Sea Level variables", "World Ocean Database variables", "WOA94/SD2 variables"));
}

TEST_F(Creation, EachEntryGivesItsNumber)
{
    const int numbers[] = {5, 1, 2, 9, 8, 11, 10, 6, 7, 4, 3};
    for (int row = 0; row < entries().count(); ++row) {
        entries().setCurrentRow(row);
        EXPECT_EQ(dialog.variableSet(), numbers[row]) << row;
    }
}

TEST_F(Creation, FirstEntryIsChosenAndTheNameShown)
{
    EXPECT_EQ(dialog.variableSet(), collection::setManual);
    EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("collectionName"))->text().toStdString(),
              "New collection: Süd_1");
}

TEST_F(Creation, AllEntriesAreInView)
{
    const QRect view = entries().viewport()->rect();
    for (int row : {0, entries().count() - 1})
        EXPECT_TRUE(view.contains(entries().visualItemRect(entries().item(row)))) << row;
}

TEST_F(Creation, EnterAcceptsTheChosenEntry)
{
    QTest::keyClick(&entries(), Qt::Key_Down);
    QTest::keyClick(&entries(), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.variableSet(), collection::setTemplate);
}

TEST_F(Creation, DoubleClickAccepts)
{
    const QPoint at = entries().visualItemRect(entries().item(3)).center();
    QTest::mouseClick(entries().viewport(), Qt::LeftButton, {}, at);
    EXPECT_TRUE(dialog.isVisible());
    QTest::mouseDClick(entries().viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.variableSet(), collection::setWhpCtd);
}

TEST_F(Creation, EscapeCancels)
{
    QTest::keyClick(&entries(), Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.isVisible());
}

TEST(CreationOfALongName, KeepsTheDialogNarrow)
{
    creationDlg dialog(QString(250, QLatin1Char('x')));
    EXPECT_LT(dialog.sizeHint().width(), dialog.fontMetrics().averageCharWidth() * 110);
}

} // namespace
