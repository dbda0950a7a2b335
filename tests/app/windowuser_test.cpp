#include "app/windowuser.h"

#include <array>
#include <functional>

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using common::Answer;

class WindowUser : public testing::Test {
protected:
    WindowUser() : session(user, view)
    {
        user.attach({&window, &status, &station, &session, true});
        session.state = app::stateReady;
    }

    // Does something with the box that comes up next.
    void withNextBox(const std::function<void(QMessageBox&)>& act)
    {
        QTimer::singleShot(0, &window, [this, act] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box) return withNextBox(act);
            title = box->windowTitle().toStdString();
            text = box->text().toStdString();
            buttons.clear();
            for (QAbstractButton* const button : box->buttons())
                buttons.push_back(button->text().toStdString());
            act(*box);
        });
    }
    void clickNext(const char* label)
    {
        withNextBox([label](QMessageBox& box) {
            for (QAbstractButton* const button : box.buttons()) {
                if (button->text() == QLatin1StringView(label)) button->click();
            }
        });
    }
    void escapeNext()
    {
        withNextBox([](QMessageBox& box) { box.reject(); });
    }

    QMainWindow window;
    QLabel status, station;
    app::RSessionView view;
    app::RWindowUser user;
    app::RSession session;
    std::string title, text;
    std::vector<std::string> buttons;
};

TEST_F(WindowUser, NoticeHasOneButton)
{
    clickNext("&OK");
    user.about("Title", "Ümlaut");
    EXPECT_EQ(title, "Title");
    EXPECT_EQ(text, "Ümlaut");
    EXPECT_THAT(buttons, testing::ElementsAre("&OK"));
}

TEST_F(WindowUser, BoxesStandOverTheOpenFormOrElseTheWindow)
{
    QDialog form;
    form.open();
    const QWidget* over = nullptr;
    const auto look = [&] {
        withNextBox([&](QMessageBox& box) {
            over = box.parentWidget();
            box.reject();
        });
    };
    look();
    user.about("Title", "text");
    EXPECT_EQ(over, &form);
    look();
    (void)user.question("t", "q", Answer::yes);
    EXPECT_EQ(over, &form);
    form.close();
    look();
    user.about("Title", "text");
    EXPECT_EQ(over, &window);
}

TEST_F(WindowUser, QuestionHasThreeAnswers)
{
    clickNext("&Yes");
    EXPECT_EQ(user.question("t", "q", Answer::yes), Answer::yes);
    EXPECT_THAT(buttons, testing::UnorderedElementsAre("&Yes", "&No", "&Cancel"));
    clickNext("&No");
    EXPECT_EQ(user.question("t", "q", Answer::yes), Answer::no);
    clickNext("&Cancel");
    EXPECT_EQ(user.question("t", "q", Answer::yes), Answer::cancel);
    escapeNext();
    EXPECT_EQ(user.question("t", "q", Answer::yes), Answer::cancel);
}

TEST_F(WindowUser, ProposedAnswerIsTheDefaultButton)
{
    for (const Answer proposed : {Answer::yes, Answer::no, Answer::cancel}) {
        withNextBox([](QMessageBox& box) { box.defaultButton()->click(); });
        EXPECT_EQ(user.question("t", "q", proposed), proposed);
    }
}

TEST_F(WindowUser, EveryAnswerToAReportButOkUndoes)
{
    clickNext("&OK");
    EXPECT_TRUE(user.report("t", "r"));
    clickNext("&Undo");
    EXPECT_FALSE(user.report("t", "r"));
    escapeNext();
    EXPECT_FALSE(user.report("t", "r"));
}

TEST_F(WindowUser, ChoiceHasTheButtonsAskedForInTheirOrder)
{
    constexpr auto wanted = std::to_array<std::string_view>({"&Yes", "Yes to &All", "&No", "&Cancel"});
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        clickNext(wanted[i].data());
        EXPECT_EQ(user.choose("Confirm", "Replace It?", wanted, 0, 3), static_cast<int>(i));
        EXPECT_EQ(title, "Confirm");
        EXPECT_EQ(text, "Replace It?");
        EXPECT_THAT(buttons, testing::ElementsAre("&Yes", "Yes to &All", "&No", "&Cancel"));
    }
    escapeNext();
    EXPECT_EQ(user.choose("Confirm", "Replace It?", wanted, 0, 3), 3);
}

TEST_F(WindowUser, TextsOfFilesAreShownAsTheyAre)
{
    withNextBox([](QMessageBox& box) {
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        box.reject();
    });
    user.about("Error reading input file ...", "<b>1</b>");
}

TEST_F(WindowUser, ProposedChoiceIsTheDefaultButton)
{
    constexpr auto wanted = std::to_array<std::string_view>({"&OK", "&Cancel"});
    withNextBox([](QMessageBox& box) { box.defaultButton()->click(); });
    EXPECT_EQ(user.choose("Opening", "Go on?", wanted, 1, 1), 1);
}

TEST_F(WindowUser, CommandFileTakesTheProposedChoice)
{
    session.runMode = app::commandFileRun;
    constexpr auto wanted = std::to_array<std::string_view>({"&OK", "&Cancel"});
    testing::internal::CaptureStderr();
    EXPECT_EQ(user.choose("Opening", "Go\non?", wanted, 0, 1), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Opening: Go on?\n");
}

TEST_F(WindowUser, CommandFileIsNotAsked)
{
    session.runMode = app::commandFileRun;
    EXPECT_FALSE(user.interactive());
    testing::internal::CaptureStderr();
    user.about("Title", "two\n\nlines");
    EXPECT_EQ(user.question("Ask", "q", Answer::no), Answer::no);
    EXPECT_TRUE(user.report("Report", "r"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Title: two lines\nAsk: q\nReport: r\n");
}

TEST_F(WindowUser, BusyStateNestsAndComesBack)
{
    user.setAbort(true);
    user.beginBusy("Working ...");
    EXPECT_EQ(session.state, app::stateBusy);
    EXPECT_FALSE(user.abortRequested()); // of an earlier operation
    EXPECT_EQ(status.text().toStdString(), "Working ...");
    EXPECT_EQ(window.findChildren<QProgressBar*>().size(), 1);
    user.beginBusy("Inner ...");
    user.setProgress(250);
    EXPECT_EQ(window.findChild<QProgressBar*>()->value(), 100);
    user.endBusy({});
    EXPECT_EQ(session.state, app::stateBusy);
    user.endBusy("Done");
    EXPECT_EQ(session.state, app::stateReady);
    EXPECT_EQ(status.text().toStdString(), "Done");
    EXPECT_TRUE(window.findChildren<QProgressBar*>().isEmpty());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(WindowUser, AbortIsAskedOnlyWhenRaised)
{
    EXPECT_FALSE(user.askAbort("Really Want to Abort?", "t"));
    user.setAbort(true);
    clickNext("&Yes");
    EXPECT_TRUE(user.askAbort("Really Want to Abort?", "t"));
    EXPECT_TRUE(user.abortRequested()); // yes leaves the flag
    EXPECT_EQ(text, "Really Want to Abort?");
    clickNext("&No");
    EXPECT_FALSE(user.askAbort("Really Want to Abort?", "t"));
    EXPECT_FALSE(user.abortRequested());
}

TEST_F(WindowUser, AbortOfACommandFileIsAYes)
{
    session.runMode = app::commandFileRun;
    user.setAbort(true);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(user.askAbort("Really Want to Abort?", "t"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "t: Really Want to Abort?\n");
}

} // namespace
