#include "common/files.h"

#include <cstring>
#include <filesystem>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/byteorder.h"
#include "common/headlessuser.h"
#include "filesizelimit.h"
#include "temporarydirectory.h"

namespace common {
namespace {

void put(const std::string& path, std::string_view text)
{
    const FilePtr file = openFile(path, "wb");
    ASSERT_TRUE(file);
    ASSERT_EQ(std::fwrite(text.data(), 1, text.size(), file.get()), text.size());
}

TEST(ReplacementFile, OldFileStandsUntilCommit)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string path = directory.file("a.var");
    put(path, "old");
    {
        RReplacementFile file(path);
        ASSERT_TRUE(file.stream());
        std::fputs("half", file.stream());
    }
    EXPECT_EQ(readFile(path), "old");
    RReplacementFile file(path);
    std::fputs("new", file.stream());
    EXPECT_EQ(readFile(path), "old");
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(readFile(path), "new");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 1);
}

TEST(ReplacementFile, APreparedOneNeedsNoMoreRoom)
{
    testing_support::RTemporaryDirectory directory;
    const std::string path = directory.file("f");
    ASSERT_TRUE(writeFile(path, "old"));
    RReplacementFile file(path);
    std::fputs("new", file.stream());
    ASSERT_TRUE(file.prepare());
    EXPECT_EQ(readFile(path), "old");
    const testing_support::RFileSizeLimit full(0);
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(readFile(path), "new");
}

TEST(ReplacementFile, WhatCantBePreparedChangesNothing)
{
    testing_support::RTemporaryDirectory directory;
    const std::string path = directory.file("f");
    ASSERT_TRUE(writeFile(path, "old"));
    {
        RReplacementFile file(path);
        const testing_support::RFileSizeLimit full(2);
        std::fputs("newer", file.stream());
        EXPECT_FALSE(file.prepare());
        EXPECT_FALSE(file.commit());
    }
    EXPECT_EQ(readFile(path), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()),
                            std::filesystem::directory_iterator()),
              1);
}

TEST(ReplacementFile, WritesThroughALink)
{
    const testing_support::RTemporaryDirectory directory;
    put(directory.file("real"), "old");
    std::filesystem::create_symlink("real", directory.file("link"));
    RReplacementFile file(directory.file("link"));
    std::fputs("new", file.stream());
    EXPECT_TRUE(file.commit());
    EXPECT_TRUE(std::filesystem::is_symlink(directory.file("link")));
    EXPECT_EQ(readFile(directory.file("real")), "new");
}

TEST(ReplacementFile, MissingDirectoryGivesNoStream)
{
    RReplacementFile file("/nowhere/at/all/x");
    EXPECT_FALSE(file.stream());
    EXPECT_FALSE(file.commit());
}

TEST(Files, DirectoryIsNoFile)
{
    EXPECT_FALSE(openFile("/", "rb"));
}

TEST(Files, OnlyADirectoryIsFlushedAsOne)
{
    testing_support::RTemporaryDirectory directory;
    ASSERT_TRUE(writeFile(directory.file("f"), "x"));
    EXPECT_TRUE(syncDirectory(directory.path()));
    EXPECT_TRUE(syncDirectory(""));
    EXPECT_FALSE(syncDirectory(directory.file("f")));
    EXPECT_FALSE(syncDirectory("/nowhere/at/all"));
}

TEST(Files, ReadFileKeepsToItsLimit)
{
    const testing_support::RTemporaryDirectory directory;
    put(directory.file("a"), "12345");
    EXPECT_FALSE(readFile(directory.file("a"), 4));
    EXPECT_EQ(readFile(directory.file("a"), 5), "12345");
}

TEST(Files, WriteFileTakesAllBytesOrLeavesTheOldFile)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string path = directory.file("a");
    ASSERT_TRUE(writeFile(path, std::string_view("1\0\n2", 4)));
    EXPECT_EQ(readFile(path), std::string("1\0\n2", 4));
    {
        const testing_support::RFileSizeLimit full(100);
        EXPECT_FALSE(writeFile(path, std::string(1000, 'x')));
    }
    EXPECT_EQ(readFile(path), std::string("1\0\n2", 4));
    EXPECT_FALSE(writeFile(directory.file("none/a"), "1"));
}

TEST(Files, RelativePathsComeBack)
{
    EXPECT_EQ(makeRelative("/a/b/c.cfg", "/a/b/"), "c.cfg");
    EXPECT_EQ(makeRelative("/a/x/c.cfg", "/a/b/"), "../x/c.cfg");
    EXPECT_EQ(makeRelative("/q/x/c.cfg", "/a/b/d/"), "/q/x/c.cfg");
    EXPECT_EQ(makeAbsolute("../x/c.cfg", "/a/b/"), "/a/x/c.cfg");
}

TEST(Files, DeleteMatchingTakesOnlyItsOwn)
{
    const testing_support::RTemporaryDirectory directory;
    put(directory.file("NVQ_1.val"), "");
    put(directory.file("NVQ_2.val"), "");
    EXPECT_EQ(deleteMatching(directory.path(), "NVQ_1*", -1), 1);
    EXPECT_EQ(deleteMatching(directory.path(), "NVQ_*", 1), 0);
    EXPECT_TRUE(fileExists(directory.file("NVQ_2.val")));
}

TEST(SplitPath, PartsJoinToThePath)
{
    const PATHPARTS parts = splitPath("/a.b/c.d.var");
    EXPECT_EQ(parts.directory, "/a.b/");
    EXPECT_EQ(parts.baseName, "c.d");
    EXPECT_EQ(parts.extension, ".var");
}

TEST(ReverseBytes, InPlaceAndOddSizes)
{
    char words[] = "abcdefgh";
    reverseBytes(words, 2, 4, words);
    EXPECT_STREQ(words, "dcbahgfe");
    char items[] = "abcdef";
    reverseBytes(items, 2, 3, items);
    EXPECT_STREQ(items, "cbafed");
}

TEST(HeadlessUser, MessageIsOneLine)
{
    EXPECT_EQ(RHeadlessUser::messageLine("Title ...", "one\n\n  two\n"), "Title ...: one two");
    EXPECT_EQ(RHeadlessUser::messageLine("", "x"), "x");
}

TEST(HeadlessUser, QuestionTakesItsDefault)
{
    RHeadlessUser user;
    testing::internal::CaptureStderr();
    EXPECT_EQ(user.question("T", "Q?", Answer::no), Answer::no);
    EXPECT_TRUE(user.report("T", "done"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "T: Q?\nT: done\n");
    EXPECT_FALSE(user.askAbort("Abort?", "T"));
}

} // namespace
} // namespace common
