#include "dialogs/spreadshproperties.h"

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/limits.h"
#include "nextdialog.h"
#include "variables.h"

namespace {

using dialogs::REditedSpreadsheet;
using dialogs::spreadshpropertiesDlg;
using importing::SPREADSHEETDESC;
using testing::ElementsAre;
using testing_support::child;
using testing_support::linesOf;

SPREADSHEETDESC description()
{
    return importing::defaultDescription("/data/sea.txt");
}

TEST(EditedSpreadsheet, LineNumbersBelowTwoCountAsOne)
{
    REditedSpreadsheet file(description(), {});
    for (const int line : {1, 0, -7}) {
        file.setHeaderLine(5);
        file.setHeaderLine(line);
        file.setFirstDataLine(line);
        EXPECT_EQ(file.desc().headerLine, 1);
        EXPECT_EQ(file.desc().firstDataLine, 1);
    }
    file.setFirstDataLine(2);
    EXPECT_EQ(file.desc().firstDataLine, 2);
}

TEST(EditedSpreadsheet, DataBeginBehindTheHeaderLine)
{
    REditedSpreadsheet file(description(), {});
    file.setHeaderLine(7);
    EXPECT_EQ(file.desc().firstDataLine, 8);
    file.setFirstDataLine(12);
    file.setHeaderLine(8);
    EXPECT_EQ(file.desc().firstDataLine, 12);
}

TEST(EditedSpreadsheet, AMissingValueThatIsNoNumberLeavesTheOldOne)
{
    REditedSpreadsheet file(description(), {});
    EXPECT_TRUE(file.setMissingValue(QStringLiteral(" -999.9 ")));
    EXPECT_EQ(file.desc().missingValue, -999.9f);
    for (const char* text : {"", "none", "-99x", "nan", "inf", "1e400"}) {
        EXPECT_FALSE(file.setMissingValue(QLatin1StringView(text))) << text;
        EXPECT_EQ(file.desc().missingValue, -999.9f);
    }
}

TEST(EditedSpreadsheet, TheSystemsOwnMissingValueCanBeGivenAgain)
{
    REditedSpreadsheet file(description(), {});
    ASSERT_TRUE(file.setMissingValue(QStringLiteral("-9")));
    EXPECT_TRUE(file.setMissingValue(QStringLiteral("-1e+10")));
    EXPECT_EQ(file.desc().missingValue, common::MISSING_VALUE);
}

class SpreadsheetProperties : public testing::Test {
protected:
    void open(const std::vector<std::string>& lines)
    {
        dialog = std::make_unique<spreadshpropertiesDlg>(description(), lines);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    QListWidget& list(const char* name) { return child<QListWidget>(*dialog, name); }
    QSpinBox& number(const char* name) { return child<QSpinBox>(*dialog, name); }
    std::vector<std::string> labels() { return linesOf(list("labels")); }

    std::unique_ptr<spreadshpropertiesDlg> dialog;
};

TEST_F(SpreadsheetProperties, ShowsTheFirstNineLinesAndTheColumnLabels)
{
    open({"Süd\tx y\t ", "2", "3", "4", "5", "6", "7", "8", "9", "10"});
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Spreadsheet File Properties");
    EXPECT_THAT(linesOf(list("lines")),
                ElementsAre("1: Süd→x y→ ", "2: 2", "3: 3", "4: 4", "5: 5", "6: 6", "7: 7", "8: 8", "9: 9"));
    EXPECT_THAT(labels(), ElementsAre("  1: Süd", "  2: x y", "  3: "));
    EXPECT_EQ(child<QLineEdit>(*dialog, "missing").text().toStdString(), "-1e+10");
}

TEST_F(SpreadsheetProperties, AnotherHeaderLineRebuildsTheLabelsAtOnce)
{
    open({"# a comment", "a\tb", "1\t2"});
    EXPECT_THAT(labels(), ElementsAre("  1: # a comment"));
    number("headerLine").setValue(2);
    EXPECT_THAT(labels(), ElementsAre("  1: a", "  2: b"));
    EXPECT_EQ(number("firstDataLine").value(), 3);
    dialog->processOK();
    EXPECT_EQ(dialog->desc().headerLine, 2);
    EXPECT_EQ(dialog->desc().firstDataLine, 3);
}

TEST_F(SpreadsheetProperties, AnotherSeparatorRebuildsTheLabelsAtOnce)
{
    open({"a b;c/d", "1 2;3/4"});
    QComboBox& separator = child<QComboBox>(*dialog, "separator");
    std::vector<std::string> names;
    for (int i = 0; i < separator.count(); ++i) names.push_back(separator.itemText(i).toStdString());
    EXPECT_THAT(names, ElementsAre("TAB", ";", "SPACE", "/"));
    separator.setCurrentIndex(1);
    EXPECT_THAT(labels(), ElementsAre("  1: a b", "  2: c/d"));
    separator.setCurrentIndex(2);
    EXPECT_THAT(labels(), ElementsAre("  1: a", "  2: b;c/d"));
    separator.setCurrentIndex(3);
    EXPECT_THAT(labels(), ElementsAre("  1: a b;c", "  2: d"));
    EXPECT_EQ(dialog->desc().sepChars, '/');
    EXPECT_EQ(dialog->desc().sepIndex, 3);
}

TEST_F(SpreadsheetProperties, OkTakesTheMissingValue)
{
    open({"a"});
    child<QLineEdit>(*dialog, "missing").setText(QStringLiteral("-99"));
    QTest::keyClick(&child<QLineEdit>(*dialog, "missing"), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->desc().missingValue, -99);
}

TEST_F(SpreadsheetProperties, AnUnreadableMissingValueLeavesTheOldOne)
{
    open({"a"});
    child<QLineEdit>(*dialog, "missing").setText(QStringLiteral("n/a"));
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->desc().missingValue, common::MISSING_VALUE);
}

TEST_F(SpreadsheetProperties, ALineThatIsNotThereHasNoLabels)
{
    open({"a", "b"});
    number("headerLine").setValue(30);
    EXPECT_TRUE(labels().empty());
    EXPECT_EQ(number("firstDataLine").value(), 31);
    dialog->processOK();
    EXPECT_EQ(dialog->desc().headerLine, 30);
}

TEST_F(SpreadsheetProperties, LongLinesAreCut)
{
    open({std::string(500000, 'x') + "\t<b>y</b>"});
    EXPECT_LE(list("lines").item(0)->text().size(), 1000);
    EXPECT_LE(dialog->width(), 1100);
    EXPECT_EQ(list("labels").item(1)->text().toStdString(), "  2: <b>y</b>");
}

TEST_F(SpreadsheetProperties, EscapeCancels)
{
    open({"a"});
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(SpreadsheetProperties, HelpTellsWhatTheFormIsFor)
{
    open({"a"});
    testing_support::BOX said;
    testing_support::answerNext("&OK", &said);
    dialog->processHelp();
    EXPECT_NE(said.text.find("spreadsheet"), std::string::npos);
}

} // namespace
