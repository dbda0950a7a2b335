#include "dialogs/importopt.h"

#include <QScrollBar>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/limits.h"
#include "dialogs/deflinconversion.h"
#include "dialogs/selconversion.h"
#include "import/association.h"
#include "import/conversions.h"
#include "nextdialog.h"
#include "variables.h"

namespace {

using dialogs::importoptDlg;
using importing::IMPORTCHOICES;
using importing::ImportMode;
using testing::ElementsAre;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::child;
using testing_support::linesOf;
using testing_support::variablesOf;
using testing_support::withNext;

class ImportOptions : public testing::Test {
protected:
    void open(const std::vector<std::string>& sourceLabels, const std::vector<std::string>& targetLabels)
    {
        sourceVariables = variablesOf(sourceLabels);
        targetVariables = variablesOf(targetLabels);
        importing::associateByLabel(sourceVariables, targetVariables);
        choices.sources = sourceVariables;
        choices.targets = targetVariables;
        dialog = std::make_unique<importoptDlg>(choices);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    QListWidget& list(const char* name) { return child<QListWidget>(*dialog, name); }
    bool isOn(const char* button) { return child<QPushButton>(*dialog, button).isEnabled(); }
    void press(const char* button) { child<QPushButton>(*dialog, button).click(); }
    void select(int source, int target)
    {
        if (source > 0) list("sources").setCurrentRow(source - 1);
        if (target > 0) list("targets").setCurrentRow(target - 1);
    }
    std::string hint() { return child<QLabel>(*dialog, "hint").text().toStdString(); }
    // Chooses a row of the table of conversions in the dialog that comes next.
    void takeRow(int row, std::string* title = nullptr)
    {
        withNext<dialogs::selconversionDlg>([row, title](auto& conversions) {
            if (title) *title = conversions.windowTitle().toStdString();
            child<QListWidget>(conversions, "rows").setCurrentRow(row);
            conversions.processOK();
        });
    }
    void acceptOptions()
    {
        dialog->processOK();
        ASSERT_EQ(dialog->result(), QDialog::Accepted);
        dialog->store(choices);
    }

    IMPORTCHOICES choices;
    std::vector<collection::VARINFO> sourceVariables, targetVariables;
    std::unique_ptr<importoptDlg> dialog;
};

TEST_F(ImportOptions, ShowsWhatIsAssociatedWithoutMarkup)
{
    open({"Depth [m]", "NO~_3 [~$m~#mol/l]", "Temperature"}, {"depth [M]", "Temp ~^oC"});
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Import Options");
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("* Depth [m]", "  NO3 [umol/l]", "  Temperature"));
    EXPECT_THAT(linesOf(list("targets")), ElementsAre("* depth [M]", "  Temp oC"));
}

TEST_F(ImportOptions, AssociatesAndUndoes)
{
    open({"a", "b"}, {"x", "y"});
    EXPECT_FALSE(isOn("PB_Associate") || isOn("PB_Convert") || isOn("PB_Undo"));
    select(2, 1);
    EXPECT_TRUE(isOn("PB_Associate") && isOn("PB_Convert"));
    EXPECT_FALSE(isOn("PB_Undo"));
    press("PB_Associate");
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("  a", "* b"));
    EXPECT_THAT(linesOf(list("targets")), ElementsAre("* x", "  y"));
    EXPECT_EQ(list("sources").currentRow(), 1); // the selection stays
    EXPECT_FALSE(isOn("PB_Associate") || isOn("PB_Convert"));
    EXPECT_TRUE(isOn("PB_Undo"));
    EXPECT_EQ(hint(), "x takes b");
    acceptOptions();
    EXPECT_EQ(sourceVariables[2].assoc, 1);
    EXPECT_EQ(targetVariables[1].assocSource, 2);
    EXPECT_EQ(sourceVariables[2].scale, 1);
    EXPECT_EQ(sourceVariables[2].offset, 0);
    press("PB_Undo");
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("  a", "  b"));
    acceptOptions();
    EXPECT_EQ(sourceVariables[2].assoc, 0);
    EXPECT_EQ(targetVariables[1].assocSource, 0);
}

TEST_F(ImportOptions, SelectingALineSelectsItsPartner)
{
    open({"a", "b"}, {"b", "a"});
    select(1, 0);
    EXPECT_EQ(list("targets").currentRow(), 1);
    EXPECT_TRUE(isOn("PB_Undo"));
    select(0, 1);
    EXPECT_EQ(list("sources").currentRow(), 1);
}

TEST_F(ImportOptions, APartnerStandsThreeLinesBelowTheTop)
{
    std::vector<std::string> labels, turned;
    for (int v = 1; v <= 40; ++v) labels.push_back("v" + std::to_string(v));
    turned.assign(labels.rbegin(), labels.rend());
    open(labels, turned);
    select(15, 0); // target 26
    QListWidget& targets = list("targets");
    EXPECT_EQ(targets.indexAt(QPoint(2, 2)).row(), 22);
    press("PB_Undo"); // rebuilds both
    EXPECT_EQ(list("sources").indexAt(QPoint(2, 2)).row(), 11);
    select(39, 0); // target 2
    EXPECT_EQ(targets.indexAt(QPoint(2, 2)).row(), 0);
}

TEST_F(ImportOptions, AClickOnTheSelectedLineMakesItTheOneThatIsUndone)
{
    open({"a", "b"}, {"a", "y"});
    select(0, 1); // and a
    select(2, 0); // free, the target stays selected
    EXPECT_FALSE(isOn("PB_Undo"));
    const QRect line = list("targets").visualItemRect(list("targets").item(0));
    QTest::mouseClick(list("targets").viewport(), Qt::LeftButton, {}, line.center());
    EXPECT_TRUE(isOn("PB_Undo"));
    EXPECT_EQ(list("sources").currentRow(), 0);
}

TEST_F(ImportOptions, ASecondChoiceForSalinityNeverTakesTheTarget)
{
    open({"CTDSAL"}, {"Depth [m]", "Temperature", "Salinity"});
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("* CTDSAL"));
    EXPECT_THAT(linesOf(list("targets")), ElementsAre("  Depth [m]", "  Temperature", "  Salinity"));
    select(1, 0);
    EXPECT_EQ(list("targets").currentRow(), 2);
    acceptOptions();
    EXPECT_EQ(sourceVariables[1].assoc, 3);
    EXPECT_EQ(targetVariables[3].assocSource, 0);
}

// --- conversions

TEST_F(ImportOptions, AConversionStoresTheNumbersOfItsRow)
{
    open({"OXYGEN [ml/l]"}, {"Oxygen [~$m~#mol/kg]"});
    select(1, 1);
    std::string title;
    takeRow(4, &title);
    press("PB_Convert");
    EXPECT_EQ(title, "Conversion OXYGEN [ml/l] -> Oxygen [umol/kg]");
    EXPECT_EQ(hint(), "Oxygen [umol/kg] takes OXYGEN [ml/l] (Oxygen [ml/l] -> Oxygen [umol/kg])");
    acceptOptions();
    EXPECT_EQ(sourceVariables[1].assoc, 1);
    EXPECT_FLOAT_EQ(sourceVariables[1].scale, 43.53f);
    EXPECT_EQ(sourceVariables[1].offset, 0);
}

TEST_F(ImportOptions, TheNineConversionsAreOffered)
{
    open({"a"}, {"b"});
    select(1, 1);
    std::vector<std::string> rows;
    withNext<dialogs::selconversionDlg>([&](auto& conversions) {
        rows = linesOf(child<QListWidget>(conversions, "rows"));
        conversions.reject();
    });
    press("PB_Convert");
    ASSERT_EQ(rows.size(), 9U);
    EXPECT_EQ(rows[3], "Pot. Temp [°C] -> Temp [°C]");
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("  a")); // cancelled
}

TEST_F(ImportOptions, ASpecialConversionIsMarkedByTheMissingValue)
{
    open({"Depth"}, {"Pressure"});
    select(1, 1);
    takeRow(2);
    press("PB_Convert");
    acceptOptions();
    EXPECT_EQ(sourceVariables[1].offset, common::MISSING_VALUE);
    EXPECT_EQ(sourceVariables[1].scale, importing::depthToPressure);
}

TEST_F(ImportOptions, TheGeneralConversionAsksForItsNumbers)
{
    open({"a"}, {"b"});
    select(1, 1);
    takeRow(8);
    std::string presets;
    withNext<dialogs::deflinconversionDlg>([&](auto& numbers) {
        presets = child<QLineEdit>(numbers, "a").text().toStdString() + " " +
                  child<QLineEdit>(numbers, "b").text().toStdString();
        child<QLineEdit>(numbers, "a").setText(QStringLiteral("0.5"));
        child<QLineEdit>(numbers, "b").setText(QStringLiteral("-2"));
        numbers.processOK();
    });
    press("PB_Convert");
    EXPECT_EQ(presets, "1.0 0.0");
    EXPECT_EQ(hint(), "b takes a (0.5 x + -2)");
    acceptOptions();
    EXPECT_EQ(sourceVariables[1].scale, 0.5f);
    EXPECT_EQ(sourceVariables[1].offset, -2.0f);
}

TEST_F(ImportOptions, CancelledNumbersLeaveNothingChanged)
{
    open({"a"}, {"b"});
    select(1, 1);
    takeRow(8);
    QTimer::singleShot(
        100, [] { withNext<dialogs::deflinconversionDlg>([](auto& numbers) { numbers.reject(); }); });
    press("PB_Convert");
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("  a"));
    EXPECT_TRUE(isOn("PB_Convert"));
}

TEST_F(ImportOptions, PotentialTemperatureIdentifiesDepthAndSalinity)
{
    std::vector<std::string> asked;
    choices.identify = [&](std::string_view task, std::string_view meaning) {
        asked.push_back(std::string(task) + ": " + std::string(meaning));
        return 1;
    };
    open({"theta"}, {"Temp"});
    select(1, 1);
    takeRow(3);
    press("PB_Convert");
    EXPECT_THAT(asked, ElementsAre("Pot. Temp [°C] -> Temp [°C]: Depth [m]",
                                   "Pot. Temp [°C] -> Temp [°C]: Salinity [psu]"));
    acceptOptions();
    EXPECT_EQ(sourceVariables[1].assoc, 1);
    EXPECT_EQ(sourceVariables[1].scale, importing::potentialToTemperature);
    EXPECT_EQ(sourceVariables[1].offset, common::MISSING_VALUE);
}

TEST_F(ImportOptions, PotentialTemperatureIsRefusedWithoutDepthOrSalinity)
{
    for (const std::string_view refused : {"Depth [m]", "Salinity [psu]"}) {
        choices.identify = [&](std::string_view, std::string_view meaning) {
            return meaning == refused ? 0 : 2;
        };
        open({"theta"}, {"Temp"});
        select(1, 1);
        takeRow(3);
        press("PB_Convert");
        EXPECT_THAT(linesOf(list("sources")), ElementsAre("  theta")) << refused;
        acceptOptions();
        EXPECT_EQ(targetVariables[1].assocSource, 0) << refused;
    }
}

// --- default values

TEST_F(ImportOptions, AFreeTargetTakesADefaultValue)
{
    choices.mayUseDefaults = true;
    open({"a"}, {"a", "b"});
    select(0, 1);
    EXPECT_FALSE(isOn("PB_UseDefault")); // it has a source
    select(0, 2);
    EXPECT_TRUE(isOn("PB_UseDefault"));
    std::string title, preset;
    withNext<QDialog>([&](QDialog& line) {
        auto* const field = line.findChild<QLineEdit*>();
        title = line.windowTitle().toStdString();
        preset = field->text().toStdString();
        field->setText(QStringLiteral("34.5"));
        line.accept();
    });
    press("PB_UseDefault");
    EXPECT_EQ(title, "Default Value b");
    EXPECT_EQ(preset, "0");
    EXPECT_THAT(linesOf(list("targets")), ElementsAre("* a", "+ b"));
    EXPECT_FALSE(isOn("PB_UseDefault"));
    EXPECT_TRUE(isOn("PB_Undo"));
    EXPECT_EQ(hint(), "b takes its default value 34.5");
    acceptOptions();
    EXPECT_EQ(targetVariables[2].assocSource, -1);
    EXPECT_EQ(targetVariables[2].defaultValue, 34.5f);
}

TEST_F(ImportOptions, ADefaultThatIsNoNumberIsTold)
{
    choices.mayUseDefaults = true;
    open({"a"}, {"b"});
    select(0, 1);
    withNext<QDialog>([](QDialog& line) {
        line.findChild<QLineEdit*>()->setText(QStringLiteral("<b>none</b>"));
        line.accept();
    });
    BOX said;
    answerNext("&OK", &said);
    press("PB_UseDefault");
    EXPECT_EQ(said.text, "This is no number: <b>none</b>");
    EXPECT_THAT(linesOf(list("targets")), ElementsAre("  b"));
}

TEST_F(ImportOptions, OnlySpreadsheetsHaveDefaultValues)
{
    open({"a"}, {"b"});
    select(0, 1);
    EXPECT_FALSE(child<QPushButton>(*dialog, "PB_UseDefault").isVisible());
    dialog->processUseDefault(); // nothing
    EXPECT_THAT(linesOf(list("targets")), ElementsAre("  b"));
}

// --- mode and cruises

TEST_F(ImportOptions, OffersTheThreeModes)
{
    choices.mode = ImportMode::merge;
    open({"a"}, {"a"});
    QComboBox& mode = child<QComboBox>(*dialog, "mode");
    ASSERT_EQ(mode.count(), 3);
    EXPECT_EQ(mode.itemText(0).toStdString(), "Add/Replace Station Data");
    EXPECT_EQ(mode.itemText(1).toStdString(), "Merge Data (selected variables)");
    EXPECT_EQ(mode.itemText(2).toStdString(), "Update Data (selected variables)");
    EXPECT_EQ(mode.currentIndex(), 1);
    mode.setCurrentIndex(2);
    acceptOptions();
    EXPECT_EQ(choices.mode, ImportMode::update);
}

TEST_F(ImportOptions, MergeAndUpdateForceTheCheck)
{
    choices.checkExisting = false;
    open({"a"}, {"a"});
    QCheckBox& check = child<QCheckBox>(*dialog, "check");
    EXPECT_FALSE(check.isChecked());
    child<QComboBox>(*dialog, "mode").setCurrentIndex(1);
    EXPECT_TRUE(check.isChecked());
    EXPECT_FALSE(check.isEnabled());
    acceptOptions();
    EXPECT_TRUE(choices.checkExisting);
    child<QComboBox>(*dialog, "mode").setCurrentIndex(0);
    EXPECT_FALSE(check.isChecked()); // as it was chosen
    acceptOptions();
    EXPECT_FALSE(choices.checkExisting);
    check.click();
    acceptOptions();
    EXPECT_TRUE(choices.checkExisting);
}

TEST_F(ImportOptions, MergeAndUpdateAreRefusedForAnEmptyCollection)
{
    choices.emptyCollection = true;
    open({"a"}, {"a"});
    for (const int mode : {1, 2}) {
        child<QComboBox>(*dialog, "mode").setCurrentIndex(mode);
        BOX said;
        answerNext("&OK", &said);
        dialog->processOK();
        EXPECT_EQ(said.title, "Collection is empty ...");
        EXPECT_EQ(said.text, "Merge/Update not possible for empty collections.");
        EXPECT_TRUE(dialog->isVisible()); // stays
    }
    child<QComboBox>(*dialog, "mode").setCurrentIndex(0);
    acceptOptions();
    EXPECT_EQ(choices.mode, ImportMode::addReplace);
}

TEST_F(ImportOptions, ACruiseTakesItsLabelInTheSource)
{
    choices.cruises = {{"", "B", "A16N"},
                       {"", "C", "A16N"},
                       {"old", "B",
                        "S\xFC"
                        "d"}};
    open({"a"}, {"a"});
    EXPECT_THAT(linesOf(list("cruises")), ElementsAre("A16N  (type B)", "A16N  (type C)", "Süd"));
    QLineEdit& label = child<QLineEdit>(*dialog, "sourceLabel");
    EXPECT_FALSE(label.isEnabled());
    list("cruises").setCurrentRow(2);
    EXPECT_EQ(label.text().toStdString(), "old");
    list("cruises").setCurrentRow(1);
    EXPECT_EQ(label.text().toStdString(), "");
    label.insert(QString::fromUtf8(" Nörd 12.50 "));
    list("cruises").setCurrentRow(0);
    EXPECT_EQ(label.text().toStdString(), "");
    acceptOptions();
    EXPECT_EQ(choices.cruises[0].sourceLabel, "");
    EXPECT_EQ(choices.cruises[1].sourceLabel, "N\xF6rd 12.50"); // as labels of files are kept
    EXPECT_EQ(choices.cruises[2].sourceLabel, "old");
}

TEST_F(ImportOptions, ACruiseLabelHasAtMostTwentyLetters)
{
    choices.cruises = {{"", "B", "A"}};
    open({"a"}, {"a"});
    list("cruises").setCurrentRow(0);
    QTest::keyClicks(&child<QLineEdit>(*dialog, "sourceLabel"), QStringLiteral("123456789 123456789 123"));
    acceptOptions();
    EXPECT_EQ(choices.cruises[0].sourceLabel, "123456789 123456789");
}

TEST_F(ImportOptions, CancelLeavesTheChoicesAlone)
{
    choices.cruises = {{"", "B", "A"}};
    open({"a", "b"}, {"a", "x"});
    select(2, 2);
    press("PB_Associate");
    child<QComboBox>(*dialog, "mode").setCurrentIndex(1);
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_EQ(targetVariables[2].assocSource, 0);
    EXPECT_EQ(choices.mode, ImportMode::addReplace);
}

TEST_F(ImportOptions, EnterIsOk)
{
    open({"a"}, {"a"});
    QTest::keyClick(&list("sources"), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(ImportOptions, HelpTellsWhatTheFormIsFor)
{
    open({"a"}, {"a"});
    BOX said;
    answerNext("&OK", &said);
    dialog->processHelp();
    EXPECT_NE(said.text.find("Associate"), std::string::npos);
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ImportOptions, FitsASmallScreen)
{
    choices.mayUseDefaults = true;
    std::vector<std::string> labels;
    for (int v = 0; v < 50; ++v) labels.push_back(std::string(60, static_cast<char>('a' + v % 26)));
    open(labels, labels);
    EXPECT_LE(dialog->width(), 1000);
    EXPECT_LE(dialog->height(), 700);
}

} // namespace
