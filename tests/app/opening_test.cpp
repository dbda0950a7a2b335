// Opening: who may write, and what a change that was cut off has left.

#include "sessionfixture.h"

#include "collection/collectionlock.h"
#include "collection/journal.h"

namespace {

namespace fs = std::filesystem;
using app::OpenResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing_support::castText;
using testing_support::RAbsentUser;
using testing_support::RViewRecorder;
using testing_support::writeText;

class Opening : public testing_support::Session {
protected:
    std::string files(const std::string& name) const
    {
        return read(name + ".var") + "|" + read(name + ".hob") + "|" + read(name + ".dob");
    }
    // The closed collection "cast" and the journal of a change of its first header that was cut off.
    void cutOffAChange()
    {
        openCast();
        session.close(true);
        before = files("cast");
        const std::string hob = read("cast.hob");
        collection::RJournal journal;
        const collection::JOURNALSTATE state{static_cast<std::int64_t>(hob.size()),
                                             common::fileSize(file("cast.dob")), 4};
        ASSERT_TRUE(journal.begin(file("cast"), "EDITHEADER", state));
        constexpr std::size_t place = 6, length = 20;
        ASSERT_TRUE(journal.save(collection::JournalFile::hob, place,
                                 std::as_bytes(std::span(hob).subspan(place, length))));
        ASSERT_TRUE(journal.sync());
        writeText(file("cast.hob"),
                  hob.substr(0, place) + std::string(length, 'x') + hob.substr(place + length) + "more");
    }
    bool hasJournal() const { return common::fileExists(collection::journalPath(file("cast"))); }

    std::string before;
};

class InteractiveOpening : public testing_support::InteractiveSession {};

// --- the lock

TEST_F(Opening, OpenCollectionIsMarkedUntilItIsClosed)
{
    openCast();
    collection::RCollectionLock other;
    EXPECT_FALSE(other.acquire(file("cast")));
    session.close(true);
    EXPECT_TRUE(other.acquire(file("cast")));
    other.release();
    EXPECT_FALSE(common::fileExists(file("cast.lck")));
}

TEST_F(Opening, SecondOpeningIsReadOnlyAndNamesTheHolder)
{
    openCast();
    RViewRecorder otherView;
    RAbsentUser otherUser;
    app::RSession other(otherUser, otherView);
    other.installation = session.installation;
    other.runMode = app::commandFileRun;
    ASSERT_EQ(other.open(file("cast.var")), OpenResult::ok);
    EXPECT_FALSE(other.collection.writable);
    ASSERT_EQ(otherUser.messages.size(), 1u);
    EXPECT_THAT(
        otherUser.messages[0],
        testing::StartsWith("Opening Collection ...: Collection files and/or collection directory are "
                            "write-protected!\n\nData may not be modified!\n\nCollection " +
                            file("cast.var") + " is open for writing in another NVQ session"));
    EXPECT_THAT(otherUser.messages[0], HasSubstr("process " + std::to_string(::getpid())));
    EXPECT_EQ(other.refusal(app::cmdSortAndCondense), "the collection is read-only");
    other.close(true);
    EXPECT_EQ(other.open(file("cast.txt")), OpenResult::failed); // nor is it replaced under the first
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_TRUE(session.checkCollection({}));
    session.close(true);
    ASSERT_EQ(other.open(file("cast.var")), OpenResult::ok);
    EXPECT_TRUE(other.collection.writable);
    other.close(true);
}

TEST_F(Opening, DescriptionUnderAnotherNameMarksTheFilesThatItStandsFor)
{
    openCast();
    fs::copy_file(file("cast.var"), file("alias.var"));
    RViewRecorder otherView;
    RAbsentUser otherUser;
    app::RSession other(otherUser, otherView);
    other.installation = session.installation;
    ASSERT_EQ(other.open(file("alias.var")), OpenResult::ok);
    EXPECT_EQ(other.collection.path, file("cast"));
    EXPECT_FALSE(other.collection.writable);
    other.close(true);
    session.close(true);
    ASSERT_EQ(other.open(file("alias.var")), OpenResult::ok);
    EXPECT_TRUE(other.collection.writable);
    collection::RCollectionLock third;
    EXPECT_FALSE(third.acquire(file("cast")));
    other.close(true);
}

TEST_F(Opening, FailedOpeningLeavesNoMark)
{
    EXPECT_EQ(open("missing.var"), OpenResult::failed);
    writeText(file("bad.var"), "rubbish");
    EXPECT_EQ(open("bad.var"), OpenResult::failed);
    for (const char* const name : {"missing.lck", "bad.lck"})
        EXPECT_FALSE(common::fileExists(file(name))) << name;
}

// --- what was cut off

TEST_F(Opening, CutOffChangeIsUndoneToldAndLogged)
{
    cutOffAChange();
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(files("cast"), before);
    EXPECT_FALSE(hasJournal());
    EXPECT_THAT(user->notes, testing::Contains("Collection " + file("cast.var") +
                                               ": EDITHEADER was cut off and has been undone"));
    EXPECT_THAT(read("cast.log"), testing::EndsWith("ann:box UNDONE EDITHEADER\n"));
    EXPECT_TRUE(session.checkCollection({}));
}

TEST_F(Opening, DecidedChangeIsCompletedToldAndLogged)
{
    openCast();
    session.close(true);
    fs::copy_file(file("cast.hob"), file("TRG.hob"));
    {
        collection::RJournal journal;
        const collection::JOURNALSTATE state{common::fileSize(file("cast.hob")),
                                             common::fileSize(file("cast.dob")), 4};
        ASSERT_TRUE(journal.begin(file("cast"), "SORTCONDENSE", state));
        ASSERT_TRUE(journal.willMake("TRG.hob"));
        ASSERT_TRUE(journal.sync());
        const std::vector<collection::FILEACTION> actions = {
            {collection::FILEACTION::rename, "TRG.hob", "cast.hob"}};
        ASSERT_TRUE(journal.commit(state, actions));
    }
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_FALSE(common::fileExists(file("TRG.hob")));
    EXPECT_FALSE(hasJournal());
    EXPECT_THAT(user->notes, testing::Contains(HasSubstr("SORTCONDENSE was cut off and has been completed")));
    EXPECT_THAT(read("cast.log"), testing::EndsWith("ann:box COMPLETED SORTCONDENSE\n"));
}

TEST_F(Opening, ReadOnlyOpeningLeavesACutOffChangeAlone)
{
    cutOffAChange();
    const std::string cut = files("cast");
    collection::RCollectionLock theirs;
    ASSERT_TRUE(theirs.acquire(file("cast")));
    user->messages.clear();
    EXPECT_EQ(open("cast.var"), OpenResult::failed);
    EXPECT_FALSE(session.collection.isOpen);
    ASSERT_EQ(user->messages.size(), 1u);
    EXPECT_THAT(user->messages[0], HasSubstr(file("cast.var") + " is in the middle of a change"));
    EXPECT_EQ(files("cast"), cut);
    EXPECT_TRUE(hasJournal());
    theirs.release();
    EXPECT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(files("cast"), before);
}

TEST_F(Opening, JournalThatCannotBeUsedIsNamedAndNothingIsTouched)
{
    openCast();
    session.close(true);
    before = files("cast");
    const std::string journal = collection::journalPath(file("cast"));
    for (const std::string& content :
         {std::string("rubbish that is no journal at all"), std::string(5000, 'j')}) {
        writeText(journal, content);
        user->messages.clear();
        EXPECT_EQ(open("cast.var"), OpenResult::failed);
        EXPECT_FALSE(session.collection.isOpen);
        ASSERT_EQ(user->messages.size(), 1u);
        EXPECT_THAT(user->messages[0], HasSubstr("its journal " + journal + " can't be used: "));
        EXPECT_EQ(files("cast"), before);
        EXPECT_EQ(common::readFile(journal).value_or(""), content);
    }
    EXPECT_FALSE(common::fileExists(file("cast.lck")));
}

TEST_F(Opening, ImportAsNewPutsRightFirst)
{
    cutOffAChange();
    ASSERT_EQ(open("cast.txt"), OpenResult::ok);
    EXPECT_FALSE(hasJournal());
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_TRUE(session.checkCollection({}));
    EXPECT_THAT(read("cast.log"), HasSubstr("UNDONE EDITHEADER"));
}

TEST_F(Opening, CopyPutsRightWhatItReplaces)
{
    cutOffAChange();
    writeText(file("other.txt"), castText(2, 3));
    ASSERT_EQ(open("other.txt"), OpenResult::ok);
    ASSERT_TRUE(session.copyCollection(file("cast")));
    EXPECT_FALSE(hasJournal());
    EXPECT_EQ(session.collection.stationCount, 2);
    EXPECT_TRUE(session.checkCollection({}));
}

TEST_F(Opening, CheckTellsOfACutOffChangeWithoutEndingIt)
{
    cutOffAChange();
    const std::string cut = files("cast");
    user->notes.clear();
    EXPECT_FALSE(session.checkCollection(file("cast.var")));
    EXPECT_EQ(files("cast"), cut);
    EXPECT_TRUE(hasJournal());
    EXPECT_THAT(user->notes, testing::Contains(HasSubstr(".jnl")));
}

// --- the last files

TEST_F(Opening, LastFilesThatWereNotReadAreNotLost)
{
    openCast();
    session.close(true);
    const std::string lines = "sub/other.set\nplots/my.last.png\nthree.x\n\nfive\n";
    writeText(file("cast.cfl"), lines);
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    session.close(true);
    EXPECT_EQ(read("cast.cfl"), lines);
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    session.lastFiles.graphics = file("plots/new.png");
    session.close(true);
    EXPECT_EQ(read("cast.cfl"), "sub/other.set\nplots/new.png\nthree.x\n\nfive\n");
}

TEST_F(InteractiveOpening, LastFilesThatWereReadAreWrittenBackAsTheyStood)
{
    openCast();
    session.close(true);
    const std::string lines = "sub/other.set\nplots/my.last.png\nthree.x\n\nfive\n";
    writeText(file("cast.cfl"), lines);
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(open("cast.var"), OpenResult::ok);
        EXPECT_EQ(session.lastFiles.graphics, file("plots/my.last"));
        session.close(true);
        EXPECT_EQ(read("cast.cfl"), lines);
    }
}

TEST_F(Opening, MissingLinesOfTheLastFilesAreAdded)
{
    openCast();
    session.close(true);
    writeText(file("cast.cfl"), "one");
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    session.close(true);
    EXPECT_EQ(read("cast.cfl"), "one\n\n\n\n\n");
}

TEST_F(Opening, ClosingDoesNotBringBackACollectionThatWasRemoved)
{
    openCast();
    for (const char* const suffix : {".var", ".hob", ".dob", ".cfl"}) fs::remove(file("cast") + suffix);
    session.close(true);
    EXPECT_FALSE(common::fileExists(file("cast.cfl")));
}

} // namespace
