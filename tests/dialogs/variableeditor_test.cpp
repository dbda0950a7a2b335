#include "dialogs/variableeditor.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/limits.h"
#include "common/text.h"
#include "nextdialog.h"

namespace {

using dialogs::variableeditorDlg;
using dialogs::VariableList;
using testing::ElementsAre;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::withNext;

VariableList listOf(const std::vector<std::string>& labels)
{
    VariableList list{collection::emptyVariable(0)};
    for (const std::string& label : labels) {
        list.push_back(collection::emptyVariable(static_cast<int>(list.size())));
        collection::setLabel(list.back(), label);
        list.back().assocSource = static_cast<int>(list.size()) - 1;
    }
    return list;
}

class VariableEditor : public testing::Test {
protected:
    // The editor of the variables of a collection with data.
    void open(const std::vector<std::string>& labels) { open(listOf(labels), listOf(labels)); }
    void open(VariableList list, VariableList old)
    {
        dialog = std::make_unique<variableeditorDlg>(QStringLiteral("Variables of x ..."), std::move(list),
                                                     std::move(old));
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
        ASSERT_TRUE(table().hasFocus());
    }
    QTableWidget& table() { return *dialog->findChild<QTableWidget*>(QStringLiteral("table")); }
    QPushButton& button(const char* name)
    {
        return *dialog->findChild<QPushButton*>(QLatin1StringView(name));
    }
    std::string shown(const char* name)
    {
        return dialog->findChild<QLabel*>(QLatin1StringView(name))->text().toStdString();
    }
    std::string cell(int place, int column) { return table().item(place - 1, column)->text().toStdString(); }
    // The labels of the list, and the sources as "label<source".
    std::vector<std::string> list()
    {
        std::vector<std::string> all;
        for (std::size_t v = 1; v < dialog->variables().size(); ++v) {
            const collection::VARINFO& variable = dialog->variables()[v];
            all.push_back(common::format("%s<%d", variable.shortLabel, variable.assocSource));
        }
        return all;
    }
    void key(int code, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&table(), Qt::Key(code), modifiers);
    }
    // Types into the editor of the current cell and finishes it.
    void type(const char* text)
    {
        auto* const editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        ASSERT_TRUE(editor);
        editor->selectAll();
        QTest::keyClicks(editor, QString::fromUtf8(text));
        QTest::keyClick(editor, Qt::Key_Return);
        QApplication::processEvents();
    }

    std::unique_ptr<variableeditorDlg> dialog;
};

TEST_F(VariableEditor, ShowsTheListAndWhereItsDataComeFrom)
{
    open({"Depth [m]", "NO~_3 [~$m~#mol/l]"});
    EXPECT_EQ(cell(2, variableeditorDlg::numberColumn), "2");
    EXPECT_EQ(cell(2, variableeditorDlg::labelColumn), "NO~_3 [~$m~#mol/l]");
    EXPECT_EQ(cell(2, variableeditorDlg::formatColumn), "8.2");
    EXPECT_EQ(cell(2, variableeditorDlg::sourceColumn), "2: NO3 [umol/l]");
    EXPECT_EQ(shown("preview"), "Without markup: Depth [m]");
    key(Qt::Key_Down);
    EXPECT_EQ(shown("preview"), "Without markup: NO3 [umol/l]");
}

TEST_F(VariableEditor, LabelsOfEitherCodingAreShown)
{
    open({"Temperature [\xB0"
          "C]",
          "Σ [1]"});
    EXPECT_EQ(cell(1, variableeditorDlg::labelColumn), "Temperature [°C]");
    EXPECT_EQ(cell(2, variableeditorDlg::labelColumn), "Σ [1]");
}

TEST_F(VariableEditor, NewCollectionHasNoSources)
{
    open(listOf({"Depth [m]"}), {});
    EXPECT_TRUE(table().isColumnHidden(variableeditorDlg::sourceColumn));
    key(Qt::Key_Delete);
    EXPECT_THAT(list(), ElementsAre("Depth<0")); // the only one
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(VariableEditor, KeysAddRemoveAndMove)
{
    open({"a", "b", "c"});
    key(Qt::Key_Insert);
    type("new one [x]");
    EXPECT_THAT(list(), ElementsAre("a<1", "new one<0", "b<2", "c<3"));
    key(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_THAT(list(), ElementsAre("a<1", "b<2", "new one<0", "c<3"));
    key(Qt::Key_Up, Qt::ControlModifier);
    key(Qt::Key_Up, Qt::ControlModifier);
    key(Qt::Key_Up, Qt::ControlModifier); // at the end
    EXPECT_THAT(list(), ElementsAre("new one<0", "a<1", "b<2", "c<3"));
    key(Qt::Key_Delete);
    EXPECT_THAT(list(), ElementsAre("a<1", "b<2", "c<3"));
    for (int v = 1; v <= 3; ++v) EXPECT_EQ(dialog->variables()[static_cast<std::size_t>(v)].position, v);
}

TEST_F(VariableEditor, ButtonsDoTheSameAsTheKeys)
{
    open({"a", "b"});
    EXPECT_FALSE(button("up").isEnabled());
    button("down").click();
    EXPECT_THAT(list(), ElementsAre("b<2", "a<1"));
    EXPECT_FALSE(button("down").isEnabled());
    button("up").click();
    button("remove").click();
    EXPECT_THAT(list(), ElementsAre("b<2"));
    EXPECT_FALSE(button("remove").isEnabled());
    button("rename").click();
    type("z");
    button("add").click();
    type("y");
    EXPECT_THAT(list(), ElementsAre("z<2", "y<0"));
    button("reset").click();
    EXPECT_THAT(list(), ElementsAre("a<1", "b<2"));
    EXPECT_EQ(cell(1, variableeditorDlg::labelColumn), "a");
}

TEST_F(VariableEditor, F2EditsTheLabelAndSetsAllItsForms)
{
    open({"a", "b"});
    key(Qt::Key_F2);
    type("Nitrate [~$m~#mol/l] in the water of the sea, as it was measured by the ship");
    const collection::VARINFO& variable = dialog->variables()[1];
    EXPECT_STREQ(variable.shortLabel, "Nitrate");
    EXPECT_STREQ(variable.plainLabel, "Nitrate [umol/l] in the water of the sea, as it was meas");
    EXPECT_EQ(std::string(variable.label).size(), 60u);
    EXPECT_EQ(cell(1, variableeditorDlg::labelColumn), variable.label); // as it was understood
    EXPECT_THAT(shown("preview"), testing::StartsWith("Without markup: Nitrate [umol/l]"));
}

TEST_F(VariableEditor, F2EditsTheFormatInItsColumn)
{
    open({"a"});
    table().setCurrentCell(0, variableeditorDlg::formatColumn);
    key(Qt::Key_F2);
    type("1.9");
    EXPECT_EQ(cell(1, variableeditorDlg::formatColumn), "7.4");
    EXPECT_EQ(dialog->variables()[1].decimals, 4);
    key(Qt::Key_F2);
    type("wide");
    EXPECT_EQ(cell(1, variableeditorDlg::formatColumn), "7.4");
}

TEST_F(VariableEditor, F2OnTheNumberEditsTheLabel)
{
    open({"a"});
    table().setCurrentCell(0, variableeditorDlg::numberColumn);
    key(Qt::Key_F2);
    type("q");
    EXPECT_THAT(list(), ElementsAre("q<1"));
}

TEST_F(VariableEditor, DataMayComeFromAnotherVariable)
{
    open({"a", "b"});
    table().setCurrentCell(0, variableeditorDlg::sourceColumn);
    key(Qt::Key_F2);
    auto* const box = qobject_cast<QComboBox*>(QApplication::focusWidget());
    ASSERT_TRUE(box);
    EXPECT_EQ(box->count(), 3);
    EXPECT_EQ(box->currentText().toStdString(), "1: a");
    EXPECT_EQ(box->itemText(0).toStdString(), "new (no data)");
    QTest::keyClick(box, Qt::Key_Down);
    QTest::keyClick(box, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_THAT(list(), ElementsAre("a<2", "b<2"));
    EXPECT_EQ(cell(1, variableeditorDlg::sourceColumn), "2: b");
}

TEST_F(VariableEditor, EscapeLeavesACellAsItWas)
{
    open({"a"});
    key(Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("q"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_THAT(list(), ElementsAre("a<1"));
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(VariableEditor, DeleteInACellRemovesALetterOnly)
{
    open({"ab", "c"});
    key(Qt::Key_F2);
    QWidget* const editor = QApplication::focusWidget();
    QTest::keyClick(editor, Qt::Key_Home);
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_THAT(list(), ElementsAre("b<1", "c<2"));
}

TEST_F(VariableEditor, OkTakesWhatIsBeingTyped)
{
    open({"a"});
    key(Qt::Key_F2);
    auto* const editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(editor);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("typed"));
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_THAT(list(), ElementsAre("typed<1"));
}

TEST_F(VariableEditor, FullListTakesNoMore)
{
    open(std::vector<std::string>(common::maxVariables - 1, "x"));
    key(Qt::Key_Insert);
    type("the fiftieth");
    BOX box;
    answerNext("&OK", &box);
    key(Qt::Key_Insert);
    EXPECT_EQ(box.text, "Maximum number of variables reached!");
    EXPECT_EQ(dialog->variables().size(), 51u);
}

TEST_F(VariableEditor, SameLabelsAreToldAndAllowed)
{
    open({"a", "b", "c"});
    EXPECT_EQ(shown("warning"), "");
    key(Qt::Key_F2);
    type("C");
    EXPECT_EQ(shown("warning"), "Variables 1 and 3 have the same label.");
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(VariableEditor, FirstVariableWithoutDataIsToldAbout)
{
    open({"a", "b"});
    key(Qt::Key_Insert);
    type("n");
    EXPECT_EQ(shown("warning"), "");
    key(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(shown("warning"),
              "Variable 1 takes no data: stations without values of variable 1 can't be kept.");
}

TEST_F(VariableEditor, MissingLabelKeepsTheDialogOpen)
{
    open({"a", "b"});
    key(Qt::Key_Down);
    key(Qt::Key_F2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QApplication::processEvents();
    table().setCurrentCell(0, 1);
    BOX box;
    answerNext("&OK", &box);
    dialog->processOK();
    EXPECT_EQ(box.text, "Variable 2 has no label.");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(table().currentRow(), 1);
}

TEST_F(VariableEditor, LossOfDataIsAskedOnceForAllVariables)
{
    open({"a", "b", "c"});
    key(Qt::Key_Delete);
    key(Qt::Key_Delete);
    BOX box;
    answerNext("&No", &box);
    dialog->processOK();
    EXPECT_EQ(box.text, "The data of these variables will be lost:\n\n    1: a\n    2: b\n\nContinue?");
    EXPECT_TRUE(dialog->isVisible());
    answerNext("&Yes");
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_THAT(list(), ElementsAre("c<3"));
}

TEST_F(VariableEditor, RemovedVariableWhoseDataAnotherTakesIsNoLoss)
{
    open({"a", "b"});
    key(Qt::Key_Delete);
    key(Qt::Key_Insert);
    type("a again");
    table().setCurrentCell(1, variableeditorDlg::sourceColumn);
    key(Qt::Key_F2);
    QWidget* const box = QApplication::focusWidget();
    QTest::keyClick(box, Qt::Key_Down);
    QTest::keyClick(box, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_THAT(list(), ElementsAre("b<2", "a again<1"));
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(VariableEditor, EnterIsOkAndEscapeIsCancel)
{
    open({"a"});
    key(Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    open({"a"});
    key(Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(VariableEditor, SourcesThatThereAreNoneOfAreNew)
{
    VariableList list = listOf({"a", "b"});
    list[1].assocSource = 7;
    list[2].assocSource = -1;
    open(list, listOf({"a", "b"}));
    EXPECT_THAT(this->list(), ElementsAre("a<0", "b<0"));
}

TEST_F(VariableEditor, EmptyListMayBeFilledButNotLeftEmpty)
{
    open(VariableList{}, {});
    answerNext("&OK");
    dialog->processOK();
    dialog->activateWindow(); // the offscreen platform doesn't, behind a box
    EXPECT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    EXPECT_TRUE(table().hasFocus());
    key(Qt::Key_Insert);
    type("first");
    EXPECT_THAT(list(), ElementsAre("first<0"));
}

} // namespace
