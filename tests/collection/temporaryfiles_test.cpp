#include "collection/temporaryfiles.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "samplecollection.h"

namespace collection {
namespace {

namespace fs = std::filesystem;
using testing_support::RSampleCollection;

class TemporaryFiles : public testing::Test {
protected:
    void make(const std::string& name, int daysOld = 0)
    {
        const std::string path = sample.directory.file(name);
        ASSERT_TRUE(common::openFile(path, "wb"));
        fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(25 * daysOld));
    }
    [[nodiscard]] bool has(const std::string& name) const
    {
        return fs::exists(fs::symlink_status(sample.directory.file(name)));
    }
    RSampleCollection sample;
    RCollection& collection = sample.collection;
};

TEST_F(TemporaryFiles, TwoOpeningsHaveDifferentPrefixesAndTheFirstFilesAreGone)
{
    collection.makeTempId();
    ASSERT_TRUE(collection.openTemporaryFiles());
    const std::string first = collection.tempId;
    EXPECT_TRUE(first.starts_with("NVQ_"));
    EXPECT_TRUE(has(first + ".val"));
    EXPECT_TRUE(has(first + ".sel"));
    make(first + "_sample.info");
    collection.closeTemporaryFiles();
    collection.makeTempId();
    EXPECT_NE(collection.tempId, first);
    ASSERT_TRUE(collection.openTemporaryFiles());
    EXPECT_FALSE(has(first + ".val"));
    EXPECT_FALSE(has(first + ".sel"));
    EXPECT_FALSE(has(first + "_sample.info"));
}

TEST_F(TemporaryFiles, ATakenPrefixIsLeftToItsOwner)
{
    collection.makeTempId();
    const std::string wanted = collection.tempId;
    make(wanted + ".val");
    ASSERT_TRUE(collection.openTemporaryFiles());
    EXPECT_NE(collection.tempId, wanted);
    EXPECT_TRUE(has(wanted + ".val"));
}

TEST_F(TemporaryFiles, ThoseOfARunningProgramStay)
{
    RCollection other;
    other.tempDirectory = sample.directory.path();
    ASSERT_TRUE(other.openTemporaryFiles());
    make(other.tempId + "_x.info", 9);
    ASSERT_TRUE(collection.openTemporaryFiles());
    collection.closeTemporaryFiles();
    EXPECT_TRUE(has(other.tempId + ".val"));
    EXPECT_TRUE(has(other.tempId + ".sel"));
    EXPECT_TRUE(has(other.tempId + "_x.info"));
}

TEST_F(TemporaryFiles, ThoseOfADeadProgramGo)
{
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        RCollection theirs;
        theirs.tempDirectory = sample.directory.path();
        const bool opened = theirs.openTemporaryFiles();
        theirs.tempId.resize(20, ' ');
        static_cast<void>(::write(pipe[1], opened ? theirs.tempId.data() : "", 20));
        for (;;) ::pause();
    }
    std::string id(20, ' ');
    ASSERT_EQ(::read(pipe[0], id.data(), 20), 20);
    id = common::trimBlanks(id);
    removeLeftTemporaryFiles(sample.directory.path());
    EXPECT_TRUE(has(id + ".val")); // as long as it runs
    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    make(id + "_x.info");
    removeLeftTemporaryFiles(sample.directory.path());
    EXPECT_FALSE(has(id + ".val"));
    EXPECT_FALSE(has(id + ".sel"));
    EXPECT_FALSE(has(id + "_x.info"));
    ::close(pipe[0]);
    ::close(pipe[1]);
}

TEST_F(TemporaryFiles, FilesWithoutAListGoWhenTheyAreOlderThanADay)
{
    make("NVQ_1.sel", 1);
    make("NVQ_2_x.info");
    removeLeftTemporaryFiles(sample.directory.path());
    EXPECT_FALSE(has("NVQ_1.sel"));
    EXPECT_TRUE(has("NVQ_2_x.info"));
}

TEST_F(TemporaryFiles, NothingElseIsTouched)
{
    make("NVQ_", 9);
    make("NVQ_1", 9);
    make("NVQ_notes.txt", 9);
    make("NVQ_1x.val", 9);
    make("NVQ_12.val"); // of another prefix than NVQ_1
    make("other.val", 9);
    fs::create_directory(sample.directory.file("NVQ_3.val"));
    fs::create_directory(sample.directory.file("NVQ_3.sel"));
    fs::create_directory(sample.directory.file("NVQ_4_dir"));
    removeTemporaryFiles(sample.directory.path(), "NVQ_1");
    removeTemporaryFiles(sample.directory.path(), "NVQ_3");
    removeTemporaryFiles(sample.directory.path(), "");
    EXPECT_TRUE(has("NVQ_12.val"));
    removeLeftTemporaryFiles(sample.directory.path());
    for (const char* const name : {"NVQ_", "NVQ_1", "NVQ_notes.txt", "NVQ_1x.val", "other.val", "NVQ_3.val",
                                   "NVQ_3.sel", "NVQ_4_dir"}) {
        EXPECT_TRUE(has(name)) << name;
    }
}

TEST_F(TemporaryFiles, LinksAreNotFollowed)
{
    make("precious", 9);
    fs::create_symlink(sample.directory.file("precious"), sample.directory.file("NVQ_5.val"));
    fs::create_symlink(sample.directory.file("precious"), sample.directory.file("NVQ_6.sel"));
    removeLeftTemporaryFiles(sample.directory.path());
    EXPECT_TRUE(has("NVQ_5.val"));
    EXPECT_TRUE(has("NVQ_6.sel"));
    removeTemporaryFiles(sample.directory.path(), "NVQ_6");
    EXPECT_FALSE(has("NVQ_6.sel"));
    EXPECT_TRUE(has("precious"));
}

TEST_F(TemporaryFiles, AListThatWasTakenAwayIsNotLocked)
{
    const std::string path = sample.directory.file("NVQ_7.val");
    const common::FilePtr file = common::openFile(path, "wb");
    EXPECT_TRUE(lockTemporaryFile(file.get(), path));
    fs::remove(path);
    EXPECT_FALSE(lockTemporaryFile(file.get(), path));
    make("NVQ_7.val"); // another one
    EXPECT_FALSE(lockTemporaryFile(file.get(), path));
}

TEST_F(TemporaryFiles, NoTemporaryDirectoryIsAFailure)
{
    collection.tempDirectory = "/nowhere/at/all/";
    EXPECT_FALSE(collection.openTemporaryFiles());
    removeLeftTemporaryFiles("/nowhere/at/all/");
}

} // namespace
} // namespace collection
