// The commands on derived variables and on what is set about variables, from the window.

#include <QInputDialog>
#include <QMenuBar>
#include <QMimeData>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/files.h"
#include "dialogs/derivedvars.h"
#include "dialogs/generalsettings.h"
#include "dialogs/identifyvar.h"
#include "dialogs/macroeditor.h"
#include "dialogs/setupexpression.h"
#include "dialogs/varsettings.h"
#include "nextdialog.h"
#include "windowfixture.h"

namespace {

using dialogs::derivedvarsDlg;
using dialogs::identifyvarDlg;
using dialogs::macroeditorDlg;
using dialogs::varsettingsDlg;
using testing::HasSubstr;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::enterFile;
using testing_support::withNext;
using testing_support::writeText;

template <typename T>
T& child(QWidget& form, const char* name)
{
    T* const found = form.findChild<T*>(QLatin1StringView(name));
    if (!found) qFatal("the form has no %s", name);
    return *found;
}

void press(QWidget& form, const char* button)
{
    child<QPushButton>(form, button).click();
}

class WindowDerived : public testing_support::WindowFixture {
protected:
    // The state of an entry when its menu is open.
    bool isOffered(int commandId)
    {
        for (QAction* const entry : window->menuBar()->actions()) {
            if (!entry->menu()->actions().contains(window->action(commandId))) continue;
            Q_EMIT entry->menu()->aboutToShow();
            const bool enabled = window->action(commandId)->isEnabled();
            Q_EMIT entry->menu()->aboutToHide();
            return enabled;
        }
        ADD_FAILURE() << "no menu has command " << commandId;
        return false;
    }
    // Opens "Derived Variables", does something there and closes it.
    void inForm(const std::function<void(derivedvarsDlg&)>& act)
    {
        withNext<derivedvarsDlg>([act](derivedvarsDlg& form) {
            act(form);
            press(form, "close");
        });
        window->processMenuItem(app::cmdDerivedVariables);
    }
    // Adds a variable of a row; what it asks has to be answered.
    static void add(derivedvarsDlg& form, const char* row)
    {
        auto& choices = child<QListWidget>(form, "choices");
        const auto found = choices.findItems(QString::fromUtf8(row), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1);
        choices.setCurrentItem(found.first());
        press(form, "add");
    }
    // Answers the next questions for variables with what they propose, or with the first one, then goes on.
    void identifyNext(int times, const std::function<void()>& then = {})
    {
        withNext<identifyvarDlg>([this, times, then](identifyvarDlg& question) {
            asked.push_back(question.windowTitle().toStdString());
            auto& list = child<QListWidget>(question, "variables");
            if (list.selectedItems().isEmpty()) list.setCurrentRow(0);
            if (times > 1) identifyNext(times - 1, then);
            if (times == 1 && then) then();
            question.processOK();
        });
    }
    void enterNumber(const char* text)
    {
        withNext<QInputDialog>([text](QInputDialog& line) {
            line.setTextValue(QLatin1StringView(text));
            line.accept();
        });
    }
    void addPotentialTemperature()
    {
        identifyNext(3, [this] { enterNumber("0"); });
        inForm([](derivedvarsDlg& form) { add(form, "Potential Temperature"); });
        ASSERT_EQ(open().totalVariableCount, 4);
    }
    app::RSession& session() { return window->session(); }
    collection::RCollection& open() { return session().collection; }
    std::string labelOf(int variable) { return open().variables.at(std::size_t(variable)).shortLabel; }
    std::string idv() { return common::readFile(open().path + ".idv").value_or(""); }

    std::vector<std::string> asked; // titles of identifications
    BOX box;
};

// --- when they may run

TEST_F(WindowDerived, EntriesNeedWhatTheyWorkOn)
{
    for (const int id : {app::cmdDerivedVariables, app::cmdVariablesSettings, app::cmdKeyVariables})
        EXPECT_FALSE(isOffered(id)) << id;
    EXPECT_TRUE(isOffered(app::cmdGeneralSettings));
    EXPECT_TRUE(isOffered(app::cmdMacroEditor));
    openCast();
    EXPECT_TRUE(isOffered(app::cmdDerivedVariables));
    EXPECT_TRUE(isOffered(app::cmdVariablesSettings));
    EXPECT_FALSE(isOffered(app::cmdKeyVariables)); // no role is recorded
    runLines("set_key Depth [m]=1\n");
    EXPECT_TRUE(isOffered(app::cmdKeyVariables));
}

TEST_F(WindowDerived, AnotherCommandOrADropOverAFormIsRefused)
{
    openCast();
    writeText(folder.file("other.txt"), testing_support::castText(1, 2));
    inForm([this](derivedvarsDlg&) {
        window->processMenuItem(app::cmdClose);
        window->processMenuItem(app::cmdDerivedVariables);
        QMimeData data;
        data.setText(QString::fromStdString("file://" + folder.file("other.txt")));
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &drop);
    });
    EXPECT_TRUE(open().isOpen);
    EXPECT_EQ(open().path, folder.file("cast"));
}

TEST_F(WindowDerived, AFormChangesNoOtherCollectionThanItsOwn)
{
    openCast();
    runLines("copy_collection " + folder.file("second.var") + "\nopen_collection " + folder.file("cast.var") +
             "\n");
    withNext<varsettingsDlg>([this](varsettingsDlg& form) {
        child<QLineEdit>(form, "label").setText(QStringLiteral("Mine"));
        (void)session().openArgument(folder.file("second.var"), folder.path());
        form.processOK();
    });
    window->processMenuItem(app::cmdVariablesSettings);
    EXPECT_EQ(open().path, folder.file("second"));
    EXPECT_EQ(labelOf(1), "Depth");
}

// --- adding and deleting

TEST_F(WindowDerived, AVariableIsAddedByQuestions)
{
    openCast();
    addPotentialTemperature();
    EXPECT_EQ(labelOf(4), "Tpot-0");
    EXPECT_THAT(asked, testing::ElementsAre("Potential Temperature - Identify Depth [m]",
                                            "Potential Temperature - Identify Temperature [C]",
                                            "Potential Temperature - Identify Salinity [psu]"));
    EXPECT_THAT(idv(), HasSubstr("Depth [m]=1\n"));
}

TEST_F(WindowDerived, CancelAtAnyQuestionLeavesAllAsItWas)
{
    openCast();
    for (int answered = 0; answered < 3; ++answered) {
        const auto cancel = [] {
            withNext<identifyvarDlg>([](identifyvarDlg& question) { question.reject(); });
        };
        if (answered > 0) identifyNext(answered, cancel);
        if (answered == 0) cancel();
        inForm([](derivedvarsDlg& form) {
            add(form, "Potential Temperature");
            EXPECT_EQ(child<QListWidget>(form, "defined").count(), 0);
        });
        EXPECT_EQ(open().totalVariableCount, 3);
        EXPECT_EQ(idv(), "");
    }
    identifyNext(3, [] { withNext<QInputDialog>([](QInputDialog& line) { line.reject(); }); });
    inForm([](derivedvarsDlg& form) { add(form, "Potential Temperature"); });
    EXPECT_EQ(open().totalVariableCount, 3);
    EXPECT_EQ(idv(), "");
}

TEST_F(WindowDerived, AVariableThatIsPlottedMayBeDeleted)
{
    openCast();
    addPotentialTemperature();
    runLines("set_mode scatter\nset_window 1,Tpot-0,Depth\n");
    ASSERT_EQ(session().setup.window(1).xVar, 4);
    inForm([this](derivedvarsDlg& form) {
        child<QListWidget>(form, "defined").setCurrentRow(0);
        answerNext("&Yes", &box);
        press(form, "delete");
        EXPECT_EQ(child<QListWidget>(form, "defined").count(), 0);
    });
    EXPECT_THAT(box.text, HasSubstr("Delete Tpot-0"));
    EXPECT_EQ(open().totalVariableCount, 3);
    EXPECT_NE(session().setup.window(1).xVar, 4);
    EXPECT_EQ(session().state, app::stateReady);
}

TEST_F(WindowDerived, BoxesStandOverTheFormThatIsOpen)
{
    openCast();
    QWidget* over = nullptr;
    inForm([&](derivedvarsDlg& form) {
        withNext<QMessageBox>([&](QMessageBox& message) {
            over = message.parentWidget();
            message.accept();
        });
        add(form, "Patches");
        EXPECT_EQ(over, &form);
    });
}

// --- macros

TEST_F(WindowDerived, NoBusyStateLiesOverTheQuestionsOfAMacro)
{
    openCast();
    writeText(folder.file("faulty.mac"),
              "NVQ4.0 Macro\nSome words\n"
              ">|--->----------------------------------------------------------|>--|\n"
              "     Sum [x]                                                      9.4\n"
              "#1   Salinity [psu]                                              \n"
              "\n#1 foo +\n");
    const auto isFree = [this] {
        return session().state == app::stateReady && !QApplication::overrideCursor() &&
               window->statusBar()->findChildren<QProgressBar*>().isEmpty();
    };
    bool questionIsFree = false, boxIsFree = false;
    inForm([&](derivedvarsDlg& form) {
        withNext<QFileDialog>([&](QFileDialog& files) {
            withNext<identifyvarDlg>([&](identifyvarDlg& question) {
                questionIsFree = isFree();
                withNext<QMessageBox>([&](QMessageBox& message) {
                    boxIsFree = isFree();
                    box = {message.windowTitle().toStdString(), message.text().toStdString()};
                    message.accept();
                });
                question.processOK();
            });
            enterFile(files, QString::fromStdString(folder.file("faulty.mac")));
        });
        add(form, "Macro File");
    });
    EXPECT_TRUE(questionIsFree);
    EXPECT_TRUE(boxIsFree);
    EXPECT_EQ(box.title, "Loading Macro");
    EXPECT_EQ(box.text,
              folder.file("faulty.mac") + ": Word 2, \"foo\": neither an operator, an operand nor a number.");
    EXPECT_EQ(labelOf(4), "Sum"); // it is loaded all the same
}

TEST_F(WindowDerived, TheMacroEditorNeedsNoCollection)
{
    int offered = -1;
    withNext<QFileDialog>([&](QFileDialog& files) {
        EXPECT_EQ(files.parentWidget(), window.get());
        withNext<macroeditorDlg>([&](macroeditorDlg& form) {
            offered = child<QListWidget>(form, "new").count();
            form.reject();
        });
        files.reject();
    });
    window->processMenuItem(app::cmdMacroEditor);
    EXPECT_EQ(offered, 0);
    openCast();
    withNext<QFileDialog>([&](QFileDialog& files) {
        withNext<macroeditorDlg>([&](macroeditorDlg& form) {
            offered = child<QListWidget>(form, "new").count();
            form.reject();
        });
        files.reject();
    });
    window->processMenuItem(app::cmdMacroEditor);
    EXPECT_EQ(offered, 3);
}

// --- settings and roles

TEST_F(WindowDerived, RolesThatWereAnsweredOtherwiseAreTold)
{
    openCast();
    runLines("set_key Depth [m]=1\nset_key Salinity [psu]=3\n");
    const auto answer = [](int row, const std::function<void()>& then) {
        withNext<identifyvarDlg>([row, then](identifyvarDlg& question) {
            child<QListWidget>(question, "variables").setCurrentRow(row);
            if (then) then();
            question.processOK();
        });
    };
    answer(1, [&] { answer(2, {}); });
    window->processMenuItem(app::cmdKeyVariables);
    EXPECT_EQ(status(), "1 key variable changed");
    answer(0, [&] { answer(1, {}); });
    window->processMenuItem(app::cmdKeyVariables);
    EXPECT_EQ(status(), "2 key variables changed");
    EXPECT_EQ(idv(), "Depth [m]=1\nSalinity [psu]=2\n");
    answer(0, [&] { answer(1, {}); });
    window->processMenuItem(app::cmdKeyVariables);
    EXPECT_EQ(status(), session().statusText());
}

TEST_F(WindowDerived, SettingsOfVariablesAreTakenWithOK)
{
    openCast();
    const auto rename = [](bool accepted) {
        withNext<varsettingsDlg>([accepted](varsettingsDlg& form) {
            child<QLineEdit>(form, "label").setText(QStringLiteral("Level [m]"));
            accepted ? form.processOK() : form.reject();
        });
    };
    rename(false);
    window->processMenuItem(app::cmdVariablesSettings);
    EXPECT_EQ(labelOf(1), "Depth");
    rename(true);
    window->processMenuItem(app::cmdVariablesSettings);
    EXPECT_EQ(labelOf(1), "Level");
    EXPECT_EQ(status(), session().statusText());
}

TEST_F(WindowDerived, CriteriaOfCoverageAreTakenWithOK)
{
    const auto set = [](int levels, bool accepted) {
        withNext<dialogs::generalsettingsDlg>([levels, accepted](auto& form) {
            child<QSpinBox>(form, "minLevels").setValue(levels);
            accepted ? form.processOK() : form.reject();
        });
    };
    const int before = session().surroundings.coverage.minLevels;
    set(before + 5, false);
    window->processMenuItem(app::cmdGeneralSettings);
    EXPECT_EQ(session().surroundings.coverage.minLevels, before);
    set(before + 5, true);
    window->processMenuItem(app::cmdGeneralSettings);
    EXPECT_EQ(session().surroundings.coverage.minLevels, before + 5);
}

} // namespace
