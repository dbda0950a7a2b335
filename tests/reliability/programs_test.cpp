// Two programs at once: on the same collection, and on two collections of one folder.

#include <csignal>
#include <filesystem>

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/files.h"
#include "folder.h"
#include "operations.h"
#include "process.h"
#include "program.h"
#include "tracedchild.h"

namespace reliability {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class Programs : public testing::Test {
protected:
    Programs()
    {
        for (const std::string& name : {home, folder}) fs::create_directories(name);
        makeSample(folder, "sample", "NVQ4.0");
        makeSample(folder, "other", "NVQsol");
    }
    PROGRAMRUN run(const std::string& lines) const { return runProgram(home, folder, lines); }
    [[nodiscard]] std::string bytes(const std::string& name) const
    {
        std::string all;
        for (const char* const suffix : {".var", ".hob", ".dob", ".log", ".inv", ".cid"})
            all += common::readFile(folder + name + suffix).value_or("none");
        return all;
    }

    const testing_support::RTemporaryDirectory directory;
    const std::string home = directory.file("home/"), folder = directory.file("data/");
};

TEST_F(Programs, CheckFailsOnABrokenCollectionAndPassesOnASoundOne)
{
    const PROGRAMRUN sound = run("open_collection sample.var\ncheck_collection\n");
    EXPECT_EQ(sound.code, 0) << sound.error;
    fs::resize_file(folder + "sample.dob", 20);
    const PROGRAMRUN broken = run("open_collection sample.var\ncheck_collection\n");
    EXPECT_EQ(broken.code, 1) << broken.error;
    EXPECT_THAT(broken.error, HasSubstr("sample.dob"));
}

TEST_F(Programs, SecondOpensReadOnlyAndChangesNothing)
{
    const ROpenCollection first(folder, "sample");
    ASSERT_TRUE(first.isOpen());
    const std::string before = bytes("sample");
    for (const char* const line : {"sort_condense", "delete_empty", "delete_station 1", "delete_collection",
                                   "move_collection moved.var"}) {
        const PROGRAMRUN second = run(std::string("open_collection sample.var\n") + line + "\n");
        EXPECT_EQ(second.code, 1) << line << ": " << second.error;
        EXPECT_THAT(second.error, HasSubstr("Data may not be modified!")) << line;
        EXPECT_EQ(bytes("sample"), before) << line;
    }
    const PROGRAMRUN reader = run("open_collection sample.var\nexport_data out.txt\n");
    EXPECT_EQ(reader.code, 0) << reader.error;
    EXPECT_TRUE(common::fileExists(folder + "out.txt"));
}

TEST_F(Programs, CopyOntoACollectionThatIsOpenElsewhereIsRefused)
{
    const ROpenCollection first(folder, "other");
    const std::string before = bytes("other"), source = bytes("sample");
    for (const char* const line : {"copy_collection other.var", "move_collection other.var"}) {
        const PROGRAMRUN second = run(std::string("open_collection sample.var\n") + line + "\n");
        EXPECT_EQ(second.code, 1) << line << ": " << second.error;
        EXPECT_EQ(bytes("other"), before) << line;
        EXPECT_EQ(bytes("sample"), source) << line;
    }
}

TEST_F(Programs, LockOfAKilledProgramIsTakenOver)
{
    const pid_t child = ::fork();
    if (child == 0) {
        const ROpenCollection open(folder, "sample");
        ::raise(SIGSTOP);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, WUNTRACED), child);
    {
        const ROpenCollection second(folder, "sample");
        EXPECT_FALSE(second.isOpen());
    }
    EXPECT_THAT(run("open_collection sample.var\ndelete_station 1\n").error,
                HasSubstr("Data may not be modified!"));
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    const PROGRAMRUN second = run("open_collection sample.var\ndelete_station 1\n");
    EXPECT_EQ(second.code, 0) << second.error;
    EXPECT_THAT(second.error, Not(HasSubstr("may not be modified")));
    EXPECT_FALSE(common::fileExists(folder + "sample.lck"));
}

// Lets a process sort "sample" until it has made its target files.
bool sortHalfway(RTracedChild& child, const std::string& folder)
{
    while (child.toNextCall()) {
        if (child.call().path == folder + "TRG.hob" && child.call().kind == FILECALL::write) return true;
    }
    return false;
}

TEST_F(Programs, SecondSortInTheSameFolderIsToldAndSpoilsNothing)
{
    const std::string before = bytes("other");
    RTracedChild first(folder, [this] {
        ROpenCollection open(folder, "sample");
        return open.isOpen() && open.collection.sortAndCondense(open.station, open.user) ? 0 : 1;
    });
    if (!first.isTraced()) GTEST_SKIP() << "processes can't be traced here";
    ASSERT_TRUE(sortHalfway(first, folder));
    const PROGRAMRUN second = run("open_collection other.var\nsort_condense\n");
    EXPECT_EQ(second.code, 1) << second.error;
    EXPECT_THAT(second.error, HasSubstr("Another program is rewriting a collection"));
    EXPECT_EQ(bytes("other"), before);
    EXPECT_EQ(first.runToEnd(), 0);
    const PROGRAMRUN third = run("open_collection other.var\nsort_condense\ncheck_collection\n");
    EXPECT_EQ(third.code, 0) << third.error;
    EXPECT_EQ(run("open_collection sample.var\ncheck_collection\n").code, 0);
}

TEST_F(Programs, FilesOfASortThatDiedGoWithTheNextOpeningOfItsCollection)
{
    RTracedChild first(folder, [this] {
        ROpenCollection open(folder, "sample");
        return open.isOpen() && open.collection.sortAndCondense(open.station, open.user) ? 0 : 1;
    });
    if (!first.isTraced()) GTEST_SKIP() << "processes can't be traced here";
    ASSERT_TRUE(sortHalfway(first, folder));
    first.kill();
    const std::string before = bytes("other");
    const PROGRAMRUN second = run("open_collection other.var\nsort_condense\n");
    EXPECT_EQ(second.code, 1) << second.error; // they may still belong to somebody
    EXPECT_EQ(bytes("other"), before);
    const PROGRAMRUN third = run("open_collection sample.var\n");
    EXPECT_EQ(third.code, 0) << third.error;
    EXPECT_THAT(common::readFile(folder + "sample.log").value_or(""), HasSubstr("UNDONE "));
    EXPECT_FALSE(common::fileExists(folder + "TRG.hob"));
    EXPECT_EQ(run("open_collection other.var\nsort_condense\n").code, 0);
}

TEST_F(Programs, WriteProtectedFolderIsToldAndLeftAlone)
{
    const std::string before = bytes("sample");
    for (const char* const line : {"sort_condense", "delete_empty", "delete_collection"}) {
        const auto said = withOwnMounts([&]() -> std::string {
            if (!mountReadOnly(folder)) return "mount";
            const PROGRAMRUN ended = run(std::string("open_collection sample.var\n") + line + "\n");
            return std::to_string(ended.code) + " " + ended.error;
        });
        if (!said || *said == "mount") GTEST_SKIP() << "mounting isn't permitted here";
        EXPECT_EQ(said->front(), '1') << line << *said;
        EXPECT_THAT(*said, HasSubstr("write-protected")) << line;
        EXPECT_EQ(bytes("sample"), before) << line;
    }
}

} // namespace
} // namespace reliability
