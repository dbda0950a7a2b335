// Rewriting, thinning, copying, moving and deleting a collection, cut off at any moment: what is found then
// is the old state or the new one.

#include <gtest/gtest.h>

#include <sys/file.h>

#include "collection/check.h"
#include "collection/collectionfiles.h"
#include "collection/collectionlock.h"
#include "collection/leftovers.h"
#include "contents.h"
#include "foldermoments.h"

namespace {

using collection::RecoveryResult;
using collection::WriteResult;
using namespace testing_support;

using Labels = std::vector<std::string>;

const Labels nothing = {"no collection"};

Labels contentsAt(const std::string& path)
{
    return common::fileExists(path + ".var") ? contentsOnDisk(path, true) : nothing;
}

bool isTemporary(const std::string& name)
{
    return name.starts_with("TRG.") || name.ends_with(".jnl") || name.ends_with(".ho") ||
           name.ends_with(".va") || name.ends_with("_new");
}

void expectTidy(const std::string& directory)
{
    for (const auto& [name, content] : readFolder(directory)) {
        EXPECT_FALSE(isTemporary(name) && !name.ends_with(".lck")) << name;
    }
}

void expectConsistent(const std::string& path)
{
    if (!common::fileExists(path + ".var")) return;
    RScriptedUser user;
    for (const collection::FINDING& finding : collection::checkCollection(path, user).findings)
        EXPECT_NE(finding.kind, collection::FINDING::inconsistency) << finding.text;
}

// What the collections of these names hold, together.
Labels stateOf(const std::string& directory, const Labels& names)
{
    Labels state;
    for (const std::string& name : names) {
        state.push_back("--- " + name);
        for (const std::string& line : contentsAt(directory + name)) state.push_back(line);
    }
    return state;
}

struct SEEN {
    int before = 0, after = 0;
};

// Recovers the collections in the order of their names and says which state they are in.
void look(const Folder& moment, const Labels& names, const Labels& before, const Labels& after, SEEN& seen)
{
    RTemporaryDirectory directory;
    writeFolder(directory.path(), moment);
    for (const std::string& name : names) {
        const collection::RECOVERY recovery = collection::recoverCollection(directory.file(name));
        ASSERT_NE(recovery.result, RecoveryResult::failed) << recovery.fault;
    }
    expectTidy(directory.path());
    const Labels state = stateOf(directory.path(), names);
    ASSERT_TRUE(state == before || state == after) << testing::PrintToString(state);
    (state == before ? seen.before : seen.after)++;
    for (const std::string& name : names) expectConsistent(directory.file(name));
}

// Runs an operation in a folder and looks at all of its moments. The names are those of the collections that
// take part, in the order in which they are opened afterwards.
void expectOldOrNew(const std::string& directory, Labels names, const std::function<void()>& operation)
{
    const Labels before = stateOf(directory, names);
    RMoments moments(directory);
    moments.watch(operation);
    const Labels after = stateOf(directory, names);
    ASSERT_NE(before, after);
    expectTidy(directory);
    SEEN seen;
    const RFileCalls withoutFlushes([](const FILECALL&) { return 0; });
    for (const auto* const kind : {&moments.killed, &moments.powerless}) {
        for (std::size_t i = 0; i < kind->size(); ++i) {
            SCOPED_TRACE((kind == &moments.killed ? "killed " : "powerless ") + std::to_string(i));
            ASSERT_NO_FATAL_FAILURE(look((*kind)[i], names, before, after, seen));
        }
    }
    EXPECT_GT(seen.before, 3);
    EXPECT_GT(seen.after, 1);
}

class RCollectionInOrder : public RMagicCollection {
public:
    explicit RCollectionInOrder(const std::string& magic = hostMagic, const std::string& name = "sample")
        : RMagicCollection(magic, 4, name)
    {
        for (const char* const cast : {"7", "3", "5", "1"})
            EXPECT_EQ(put(profile(4, 4, static_cast<float>(cast[0])), 0, "A", cast), WriteResult::ok);
        EXPECT_EQ(put(profile(3, 1), 0, "B", "1"), WriteResult::ok);
        EXPECT_TRUE(collection.writeVarFile(collection.path));
        EXPECT_TRUE(collection.setVariableId("Oxygen", 4));
        collection.readInventory(true, user);
    }
    [[nodiscard]] const std::string& folder() const { return directory.path(); }
};

class AnyCut : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(BothMagics, AnyCut, testing::Values("NVQ4.0", "NVQsol"));

TEST_P(AnyCut, OfSortingAndCondensing)
{
    RCollectionInOrder sample(GetParam());
    expectOldOrNew(sample.folder(), {"sample"},
                   [&] { EXPECT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user)); });
}

TEST_P(AnyCut, OfAChangeOfVariables)
{
    RCollectionInOrder sample(GetParam());
    std::vector<collection::VARINFO> list(sample.collection.variables.begin(),
                                          sample.collection.variables.begin() + 4);
    for (int v = 1; v <= 3; ++v) list[static_cast<std::size_t>(v)].assocSource = v;
    expectOldOrNew(sample.folder(), {"sample"}, [&] {
        EXPECT_TRUE(sample.collection.changeVariableSet(sample.station, list, sample.user));
    });
    EXPECT_EQ(sample.bytes(".idv"), "missing"); // the variable is gone
}

TEST_P(AnyCut, OfADeletion)
{
    RCollectionInOrder sample(GetParam());
    expectOldOrNew(sample.folder(), {"sample"},
                   [&] { EXPECT_EQ(sample.collection.deleteStation(2, sample.user), 1); });
}

TEST_P(AnyCut, OfTheDeletionOfAllStations)
{
    RMagicCollection sample(GetParam());
    ASSERT_EQ(sample.put(profile(3, 1)), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    expectOldOrNew(sample.directory.path(), {"sample"}, [&] {
        EXPECT_EQ(sample.collection.deleteEmptyStations(sample.user), 1);
        EXPECT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user));
    });
}

TEST(AnyCutOfFiles, OfACopy)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    expectOldOrNew(sample.folder(), {"sample", "copy"}, [&] {
        EXPECT_EQ(collection::copyCollection(sample.collection.path, sample.folder() + "copy"),
                  collection::FilesResult::ok);
    });
}

TEST(AnyCutOfFiles, OfACopyOverAnother)
{
    RCollectionInOrder sample;
    RSampleCollection old(3, "old");
    ASSERT_EQ(old.put(profile(9, 3)), WriteResult::ok);
    ASSERT_TRUE(old.collection.writeVarFile(old.collection.path));
    sample.collection.closeStationFiles();
    old.collection.closeStationFiles();
    Folder both = readFolder(sample.folder());
    both.merge(readFolder(old.directory.path()));
    writeFolder(sample.folder(), both);
    expectOldOrNew(sample.folder(), {"old", "sample"}, [&] {
        EXPECT_EQ(collection::copyCollection(sample.collection.path, sample.folder() + "old"),
                  collection::FilesResult::ok);
    });
}

// Whichever name is opened first.
TEST(AnyCutOfFiles, OfAMove)
{
    for (const Labels& names : {Labels{"sample", "moved"}, Labels{"moved", "sample"}}) {
        RCollectionInOrder sample;
        sample.collection.closeStationFiles();
        expectOldOrNew(sample.folder(), names, [&] {
            EXPECT_EQ(collection::moveCollection(sample.collection.path, sample.folder() + "moved"),
                      collection::FilesResult::ok);
        });
    }
}

// Where files can't be moved to a free name in one step, as in some network folders.
TEST(AnyCutOfFiles, OfAMoveByTwoNames)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    const Labels before = stateOf(sample.folder(), {"sample"});
    const RFileCalls oldKernel([](const FILECALL& call) { return call.name == "renameat2" ? EINVAL : 0; });
    ASSERT_EQ(collection::moveCollection(sample.collection.path, sample.folder() + "moved"),
              collection::FilesResult::ok);
    EXPECT_EQ(contentsAt(sample.folder() + "moved"), Labels(before.begin() + 1, before.end()));
    EXPECT_EQ(contentsAt(sample.collection.path), nothing);
}

// Where files can't be moved at all they are copied.
TEST(AnyCutOfFiles, OfAMoveThatHasToCopy)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    const Labels before = contentsAt(sample.collection.path);
    {
        const RFileCalls otherDisk([](const FILECALL& call) { return call.name == "renameat2" ? EXDEV : 0; });
        ASSERT_EQ(collection::moveCollection(sample.collection.path, sample.folder() + "moved"),
                  collection::FilesResult::ok);
    }
    EXPECT_EQ(contentsAt(sample.folder() + "moved"), before);
    EXPECT_EQ(contentsAt(sample.collection.path), nothing);
    expectTidy(sample.folder());
}

TEST(AnyCutOfFiles, OfADeletionOfTheCollection)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    expectOldOrNew(sample.folder(), {"sample"}, [&] {
        EXPECT_EQ(collection::deleteCollection(sample.collection.path, true, true),
                  collection::FilesResult::ok);
    });
}

// --- calls that fail

// Lets every call fail in turn: the operation ends, and the collection is as before or as after it.
void expectOldOrNewAfterFailures(const std::function<bool(RCollectionInOrder&)>& operation)
{
    for (int failing = 1;; ++failing) {
        RCollectionInOrder sample;
        const Labels before = contentsOf(sample.collection);
        int calls = 0;
        bool done = false;
        {
            const RFileCalls failure([&](const FILECALL&) { return ++calls == failing ? ENOSPC : 0; });
            done = operation(sample);
        }
        sample.collection.closeStationFiles();
        ASSERT_NE(collection::recoverCollection(sample.collection.path).result, RecoveryResult::failed);
        expectTidy(sample.folder());
        const Labels found = contentsAt(sample.collection.path);
        EXPECT_EQ(found == before, !done) << "call " << failing;
        expectConsistent(sample.collection.path);
        if (calls < failing) return;
    }
}

TEST(FailureOfAnyCall, InSortingAndCondensing)
{
    expectOldOrNewAfterFailures([](RCollectionInOrder& sample) {
        return sample.collection.sortAndCondense(sample.station, sample.user);
    });
}

TEST(FailureOfAnyCall, InADeletion)
{
    expectOldOrNewAfterFailures(
        [](RCollectionInOrder& sample) { return sample.collection.deleteStation(1, sample.user) == 1; });
}

TEST(FailureOfAnyCall, InAMove)
{
    for (int failing = 1;; ++failing) {
        RCollectionInOrder sample;
        const Labels before = contentsOf(sample.collection);
        sample.collection.closeStationFiles();
        int calls = 0;
        {
            const RFileCalls failure([&](const FILECALL&) { return ++calls == failing ? EIO : 0; });
            static_cast<void>(collection::moveCollection(sample.collection.path, sample.folder() + "moved"));
        }
        ASSERT_NE(collection::recoverCollection(sample.collection.path).result, RecoveryResult::failed);
        ASSERT_NE(collection::recoverCollection(sample.folder() + "moved").result, RecoveryResult::failed);
        const Labels there = contentsAt(sample.folder() + "moved"), here = contentsAt(sample.collection.path);
        EXPECT_TRUE(there == before || here == before) << "call " << failing;
        EXPECT_TRUE(there == before || there == nothing) << "call " << failing;
        if (calls < failing) return;
    }
}

// --- several programs

TEST(SeveralPrograms, TheSecondRewritingInAFolderWaits)
{
    RCollectionInOrder sample;
    const std::string lock = sample.folder() + "TRG.lck";
    const common::FilePtr theirs = common::openFile(lock, "wb");
    ASSERT_TRUE(theirs);
    ASSERT_EQ(::flock(::fileno(theirs.get()), LOCK_EX | LOCK_NB), 0);
    const Labels before = contentsOf(sample.collection);
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    ASSERT_EQ(sample.user.messages.size(), 1U);
    EXPECT_NE(sample.user.messages[0].find("Another program is rewriting a collection"), std::string::npos);
    EXPECT_EQ(contentsOf(sample.collection), before);
    EXPECT_FALSE(common::fileExists(sample.collection.path + ".jnl"));
}

// A sorting was killed before it made a file; then another collection of the folder is sorted, and meanwhile
// the first one is opened again.
TEST(SeveralPrograms, RecoveryLeavesTheFilesOfARunningRewriting)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    {
        collection::RJournal journal;
        ASSERT_TRUE(journal.begin(sample.collection.path, "SORTCONDENSE", {-1, -1, 0}));
        ASSERT_TRUE(journal.willMake("TRG.hob") && journal.sync());
    }
    ASSERT_TRUE(common::writeFile(sample.folder() + "TRG.hob", "theirs"));
    const common::FilePtr theirs = common::openFile(sample.folder() + "TRG.lck", "wb");
    ASSERT_EQ(::flock(::fileno(theirs.get()), LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(collection::recoverCollection(sample.collection.path).result, RecoveryResult::failed);
    EXPECT_TRUE(common::fileExists(sample.folder() + "TRG.hob"));
    ASSERT_EQ(::flock(::fileno(theirs.get()), LOCK_UN), 0);
    EXPECT_EQ(collection::recoverCollection(sample.collection.path).result, RecoveryResult::undone);
    EXPECT_FALSE(common::fileExists(sample.folder() + "TRG.hob"));
}

TEST(SeveralPrograms, MarkOfAKilledRewritingGoes)
{
    RTemporaryDirectory directory;
    ASSERT_TRUE(common::writeFile(directory.file("TRG.lck"), "user@host, process 1\n"));
    EXPECT_EQ(collection::removeLeftovers(directory.file("sample")), 1);
    EXPECT_FALSE(common::fileExists(directory.file("TRG.lck")));
}

// --- a move whose way is barred

// The journal of a move from "sample" to "moved", decided but not begun.
void decideMove(const RCollectionInOrder& sample)
{
    collection::RJournal journal;
    ASSERT_TRUE(journal.begin(sample.collection.path, "MOVE", {-1, -1, 0}));
    ASSERT_TRUE(journal.willMake("sample.var_new") && journal.sync());
    std::string description = sample.bytes(".var");
    description.replace(description.find("sample"), 6, "moved");
    ASSERT_TRUE(common::writeFile(sample.collection.path + ".var_new", description));
    using collection::FILEACTION;
    const FILEACTION actions[] = {{FILEACTION::moveAway, "sample.hob", "moved.hob"},
                                  {FILEACTION::moveAway, "sample.dob", "moved.dob"},
                                  {FILEACTION::moveAway, "sample.log", "moved.log"},
                                  {FILEACTION::moveAway, "sample.var_new", "moved.var"},
                                  {FILEACTION::remove, "sample.var", {}}};
    ASSERT_TRUE(journal.commit({-1, -1, 0}, actions));
}

TEST(BarredMove, IsDroppedBeforeItBegins)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    const Labels before = contentsAt(sample.collection.path);
    decideMove(sample);
    ASSERT_TRUE(common::writeFile(sample.folder() + "moved.hob", "made meanwhile"));
    EXPECT_EQ(collection::recoverCollection(sample.collection.path).result, RecoveryResult::undone);
    EXPECT_EQ(contentsAt(sample.collection.path), before);
    EXPECT_EQ(common::readFile(sample.folder() + "moved.hob"), "made meanwhile");
    expectTidy(sample.folder());
}

TEST(BarredMove, WaitsWhenItHasBegun)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    const Labels before = contentsAt(sample.collection.path);
    decideMove(sample);
    std::filesystem::rename(sample.folder() + "sample.hob", sample.folder() + "moved.hob");
    ASSERT_TRUE(common::writeFile(sample.folder() + "moved.var", "made meanwhile"));
    const collection::RECOVERY recovery = collection::recoverCollection(sample.collection.path);
    EXPECT_EQ(recovery.result, RecoveryResult::failed);
    EXPECT_NE(recovery.fault, "");
    EXPECT_EQ(common::readFile(sample.folder() + "moved.var"), "made meanwhile");
    std::filesystem::remove(sample.folder() + "moved.var");
    EXPECT_EQ(collection::recoverCollection(sample.collection.path).result, RecoveryResult::completed);
    EXPECT_EQ(contentsAt(sample.folder() + "moved"), before);
    EXPECT_EQ(contentsAt(sample.collection.path), nothing);
}

TEST(BarredMove, LeavesASideFileBehind)
{
    RCollectionInOrder sample;
    sample.collection.closeStationFiles();
    const Labels before = contentsAt(sample.collection.path);
    decideMove(sample);
    ASSERT_TRUE(common::writeFile(sample.folder() + "moved.log", "made meanwhile"));
    EXPECT_EQ(collection::recoverCollection(sample.collection.path).result, RecoveryResult::completed);
    EXPECT_EQ(contentsAt(sample.folder() + "moved"), before);
    EXPECT_EQ(common::readFile(sample.folder() + "moved.log"), "made meanwhile");
    EXPECT_TRUE(common::fileExists(sample.folder() + "sample.log"));
}

// A journal that somebody wrote can't take files that are no part of the collection, or give them other
// kinds.
TEST(BarredMove, JournalOfOtherFilesIsRefused)
{
    using collection::FILEACTION;
    const FILEACTION bad[] = {
        {FILEACTION::moveAway, "sample.cfg", "moved.cfg"}, {FILEACTION::moveAway, "sample.hob", "moved.dob"},
        {FILEACTION::moveAway, "sample.var", "moved.var"}, {FILEACTION::moveAway, "other.hob", "moved.hob"},
        {FILEACTION::moveAway, "sample.hob", ".hob"},      {FILEACTION::moveAway, "sample.hob", "sample.hob"},
        {FILEACTION::moveAway, "sample.hob", ""}};
    for (const FILEACTION& action : bad) {
        RCollectionInOrder sample;
        sample.collection.closeStationFiles();
        {
            collection::RJournal journal;
            ASSERT_TRUE(journal.begin(sample.collection.path, "MOVE", {-1, -1, 0}));
            ASSERT_TRUE(journal.commit({-1, -1, 0}, {&action, 1}));
        }
        const Folder before = readFolder(sample.folder());
        EXPECT_EQ(collection::recoverCollection(sample.collection.path).result, RecoveryResult::failed);
        EXPECT_EQ(readFolder(sample.folder()), before);
    }
}

} // namespace
