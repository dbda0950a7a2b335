#include "collection/collectionlock.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "temporarydirectory.h"

namespace collection {
namespace {

namespace fs = std::filesystem;

class CollectionLock : public testing::Test {
protected:
    [[nodiscard]] bool exists() const { return fs::exists(path + ".lck"); }
    testing_support::RTemporaryDirectory directory;
    std::string path = directory.file("sample");
    RCollectionLock lock;
};

TEST_F(CollectionLock, IsHeldByOneAndGoneAfterwards)
{
    ASSERT_TRUE(lock.acquire(path));
    EXPECT_TRUE(lock.isHeld());
    EXPECT_TRUE(exists());
    RCollectionLock other;
    std::string holder;
    EXPECT_FALSE(other.acquire(path, &holder));
    EXPECT_FALSE(other.isHeld());
    EXPECT_NE(holder.find(common::format(", process %ld", static_cast<long>(::getpid()))), std::string::npos)
        << holder;
    EXPECT_NE(holder.find('@'), std::string::npos);
    EXPECT_EQ(holder.find('\n'), std::string::npos);
    other.release(); // of nothing
    EXPECT_TRUE(exists());
    lock.release();
    EXPECT_FALSE(lock.isHeld());
    EXPECT_FALSE(exists());
    EXPECT_TRUE(other.acquire(path));
}

TEST_F(CollectionLock, GoesWithItsObject)
{
    {
        RCollectionLock shortly;
        ASSERT_TRUE(shortly.acquire(path));
    }
    EXPECT_FALSE(exists());
    ASSERT_TRUE(lock.acquire(path));
}

TEST_F(CollectionLock, AnotherCollectionTakesTheOldMarkAway)
{
    ASSERT_TRUE(lock.acquire(path));
    ASSERT_TRUE(lock.acquire(directory.file("other")));
    EXPECT_FALSE(exists());
    EXPECT_TRUE(fs::exists(directory.file("other.lck")));
}

TEST_F(CollectionLock, TheSameLockCanBeTakenAgain)
{
    ASSERT_TRUE(lock.acquire(path));
    EXPECT_TRUE(lock.acquire(path));
    EXPECT_TRUE(lock.isHeld());
    EXPECT_TRUE(exists());
}

TEST_F(CollectionLock, WhatADeadProcessLeftIsTakenOver)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        RCollectionLock own;
        if (!own.acquire(path)) ::_exit(1);
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_TRUE(exists());
    ASSERT_TRUE(lock.acquire(path));
    EXPECT_TRUE(lock.isHeld());
    const std::string text = common::readFile(path + ".lck").value_or("");
    EXPECT_NE(text.find(common::format("process %ld\n", static_cast<long>(::getpid()))), std::string::npos)
        << text;
    lock.release();
    EXPECT_FALSE(exists());
}

TEST_F(CollectionLock, AnotherProcessHoldsIt)
{
    int ready[2], done[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(done), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    char byte = 'x';
    if (child == 0) {
        RCollectionLock own;
        byte = own.acquire(path) ? 'y' : 'n';
        static_cast<void>(::write(ready[1], &byte, 1) + ::read(done[0], &byte, 1));
        own.release();
        ::_exit(0);
    }
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ASSERT_EQ(byte, 'y');
    std::string holder;
    EXPECT_FALSE(lock.acquire(path, &holder));
    EXPECT_NE(holder.find(common::format("process %ld", static_cast<long>(child))), std::string::npos)
        << holder;
    ASSERT_EQ(::write(done[1], &byte, 1), 1);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(lock.acquire(path));
    EXPECT_TRUE(lock.isHeld());
    for (const int end : {ready[0], ready[1], done[0], done[1]}) ::close(end);
}

// Whoever opened the file before it was removed gets the lock of a file that is no longer there.
TEST_F(CollectionLock, AFileThatWasRemovedMeanwhileLocksNobodyOut)
{
    ASSERT_TRUE(lock.acquire(path));
    const int old = ::open((path + ".lck").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(old, 0);
    lock.release();
    ASSERT_EQ(::flock(old, LOCK_EX | LOCK_NB), 0);
    ASSERT_TRUE(lock.acquire(path)); // of a file of its own
    EXPECT_TRUE(lock.isHeld());
    ::close(old);
    EXPECT_TRUE(exists());
}

TEST_F(CollectionLock, AMarkThatSomebodyReplacedIsNotRemoved)
{
    ASSERT_TRUE(lock.acquire(path));
    fs::remove(path + ".lck");
    RCollectionLock other;
    ASSERT_TRUE(other.acquire(path));
    lock.release();
    EXPECT_TRUE(exists());
    RCollectionLock third;
    EXPECT_FALSE(third.acquire(path));
}

// Many that take and release at the same time: never two at once.
TEST_F(CollectionLock, IsNeverHeldTwice)
{
    std::atomic<int> holders{0}, taken{0};
    std::atomic<bool> twice{false};
    const auto work = [&] {
        for (int i = 0; i < 2000; ++i) {
            RCollectionLock own;
            if (!own.acquire(path) || !own.isHeld()) continue;
            if (holders.fetch_add(1) != 0) twice = true;
            ++taken;
            holders.fetch_sub(1);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
    EXPECT_FALSE(twice);
    EXPECT_GT(taken, 100);
    EXPECT_FALSE(exists());
}

TEST_F(CollectionLock, WhereNothingCanBeMadeNothingIsLocked)
{
    EXPECT_TRUE(lock.acquire("/nowhere/at/all/sample"));
    EXPECT_FALSE(lock.isHeld());
    fs::create_directory(path + ".lck");
    EXPECT_TRUE(lock.acquire(path));
    EXPECT_FALSE(lock.isHeld());
    lock.release();
    EXPECT_TRUE(exists());
}

TEST_F(CollectionLock, NeitherALinkNorAPipeIsWrittenTo)
{
    const std::string target = directory.file("target");
    ASSERT_TRUE(common::writeFile(target, "precious"));
    fs::create_symlink(target, path + ".lck");
    EXPECT_FALSE(lock.acquire(path)); // it can't be tried, so it may be held
    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(common::readFile(target).value_or(""), "precious");
    fs::remove(path + ".lck");
    ASSERT_EQ(::mkfifo((path + ".lck").c_str(), 0600), 0);
    EXPECT_TRUE(lock.acquire(path)); // and nobody waits
    EXPECT_FALSE(lock.isHeld());
    EXPECT_TRUE(exists());
}

} // namespace
} // namespace collection
